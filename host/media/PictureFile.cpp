#include "host/media/PictureFile.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/media/Orientation.h"

#include <wincodec.h>
#include <wrl/client.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <limits>

namespace vixahost::media {

using Microsoft::WRL::ComPtr;

namespace {

struct FormatRow
{
    PictureFormat format;
    const GUID* container;
    bool alpha;
};

const FormatRow formats[] = {
    {PictureFormat::Png, &GUID_ContainerFormatPng, true},
    {PictureFormat::Bmp, &GUID_ContainerFormatBmp, false},
    {PictureFormat::Jpeg, &GUID_ContainerFormatJpeg, false},
    {PictureFormat::Tiff, &GUID_ContainerFormatTiff, true},
};

struct Ending
{
    const wchar_t* text;
    PictureFormat format;
};

const Ending endings[] = {{L".png", PictureFormat::Png},   {L".bmp", PictureFormat::Bmp},
                          {L".dib", PictureFormat::Bmp},   {L".jpg", PictureFormat::Jpeg},
                          {L".jpeg", PictureFormat::Jpeg}, {L".tif", PictureFormat::Tiff},
                          {L".tiff", PictureFormat::Tiff}};

const FormatRow& RowOf(PictureFormat format)
{
    return *std::find_if(std::begin(formats), std::end(formats), [&](const auto& row) { return row.format == format; });
}

// Turns a failure of a codec into the host's own.
class Step
{
public:
    Step(const char* verbText, const std::filesystem::path& path) : verb(verbText), file(path) {}
    void operator()(HRESULT result, const char* advice) const
    {
        if (FAILED(result))
            throw FailedJob(std::string("Can't ") + verb + " " + Show(file) + " (" + Show(result) + "); " + advice);
    }

private:
    const char* verb;
    const std::filesystem::path& file;
};

ComPtr<IWICImagingFactory> Factory()
{
    ComPtr<IWICImagingFactory> factory;
    const HRESULT result =
        CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&factory));
    if (FAILED(result))
        throw FailedJob("The system's picture codecs can't be had (" + Show(result) + ").");
    return factory;
}

// Not through the codecs' metadata: not every system's codecs hand it out.
unsigned OrientationOfFile(const std::filesystem::path& file)
{
    // A camera writes what it knows in front of the pixels, all but TIFF, where it may stand anywhere.
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    return OrientationOf({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

} // namespace

std::optional<PictureFormat> PictureFormatOf(const std::filesystem::path& file)
{
    const std::wstring ending = file.extension().native();
    for (const Ending& known : endings)
        if (_wcsicmp(ending.c_str(), known.text) == 0)
            return known.format;
    return std::nullopt;
}

Picture ReadPicture(const std::filesystem::path& file)
{
    const Step read("read", file);
    constexpr const char* damaged = "the file is damaged or cut short: get a whole copy of it.";
    const ComPtr<IWICImagingFactory> factory = Factory();
    ComPtr<IWICBitmapDecoder> decoder;
    read(factory->CreateDecoderFromFilename(file.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnDemand,
                                            &decoder),
         "it must be a whole PNG, BMP, JPEG or TIFF picture or an AVI clip.");
    GUID container = {};
    read(decoder->GetContainerFormat(&container), damaged);
    if (std::none_of(std::begin(formats), std::end(formats),
                     [&](const FormatRow& known) { return IsEqualGUID(*known.container, container); }))
        throw FailedJob(Show(file) + " is a picture of a format that isn't supported; convert it to PNG, BMP, JPEG or "
                                     "TIFF first.");
    ComPtr<IWICBitmapFrameDecode> frame;
    read(decoder->GetFrame(0, &frame), damaged);
    ComPtr<IWICBitmapSource> source;
    read(WICConvertBitmapSource(GUID_WICPixelFormat32bppBGRA, frame.Get(), &source), damaged);

    UINT width = 0, height = 0;
    read(source->GetSize(&width, &height), damaged);
    constexpr std::uint64_t largest = std::numeric_limits<std::int32_t>::max();
    if (width == 0 || height == 0 || std::uint64_t{width} * height * 4 > largest)
        throw FailedJob(Show(file) + " measures " + std::to_string(width) + " x " + std::to_string(height) +
                        " pixels, which doesn't fit a 32-bit program; make it smaller first.");

    Picture picture(static_cast<int>(width), static_cast<int>(height));
    read(source->CopyPixels(nullptr, static_cast<UINT>(picture.RowBytes()), static_cast<UINT>(picture.pixels.size()),
                            picture.pixels.data()),
         damaged);
    double dpiX = 0, dpiY = 0;
    if (SUCCEEDED(frame->GetResolution(&dpiX, &dpiY)) && dpiX > 0 && dpiY > 0) {
        picture.dpiX = dpiX;
        picture.dpiY = dpiY;
    }
    const unsigned orientation = OrientationOfFile(file);
    return orientation == 1 ? picture : TurnUpright(picture, orientation);
}

void WritePicture(const std::filesystem::path& file, PictureFormat format, const Picture& picture)
{
    const Step write("write", file);
    constexpr const char* advice = "is the disk full or the folder protected?";
    const FormatRow& row = RowOf(format);
    const ComPtr<IWICImagingFactory> factory = Factory();
    ComPtr<IWICStream> stream;
    write(factory->CreateStream(&stream), advice);
    write(stream->InitializeFromFilename(file.c_str(), GENERIC_WRITE), advice);
    ComPtr<IWICBitmapEncoder> encoder;
    write(factory->CreateEncoder(*row.container, nullptr, &encoder), advice);
    write(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache), advice);
    ComPtr<IWICBitmapFrameEncode> frame;
    ComPtr<IPropertyBag2> options;
    write(encoder->CreateNewFrame(&frame, &options), advice);
    if (format == PictureFormat::Jpeg) {
        // The codec's own default shows its blocks beside sharpened edges.
        wchar_t name[] = L"ImageQuality";
        PROPBAG2 option = {};
        option.pstrName = name;
        VARIANT quality = {};
        quality.vt = VT_R4;
        quality.fltVal = 0.95f;
        options->Write(1, &option, &quality); // a codec without the option keeps its default
    }
    write(frame->Initialize(options.Get()), advice);
    write(frame->SetSize(static_cast<UINT>(picture.width), static_cast<UINT>(picture.height)), advice);
    write(frame->SetResolution(picture.dpiX, picture.dpiY), advice);
    const bool alpha = row.alpha && HasAlpha(picture);
    GUID pixelFormat = alpha ? GUID_WICPixelFormat32bppBGRA : GUID_WICPixelFormat24bppBGR;
    write(frame->SetPixelFormat(&pixelFormat), advice);

    ComPtr<IWICBitmap> bitmap;
    write(factory->CreateBitmapFromMemory(
              static_cast<UINT>(picture.width), static_cast<UINT>(picture.height),
              alpha ? GUID_WICPixelFormat32bppBGRA : GUID_WICPixelFormat32bppBGR, static_cast<UINT>(picture.RowBytes()),
              static_cast<UINT>(picture.pixels.size()), const_cast<BYTE*>(picture.pixels.data()), &bitmap),
          advice);
    ComPtr<IWICBitmapSource> source;
    write(WICConvertBitmapSource(pixelFormat, bitmap.Get(), &source), advice);
    write(frame->WriteSource(source.Get(), nullptr), advice);
    write(frame->Commit(), advice);
    write(encoder->Commit(), advice);
}

bool HasAlpha(const Picture& picture)
{
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        if (picture.pixels[i] != 255)
            return true;
    return false;
}

} // namespace vixahost::media
