#include "host/media/PictureFile.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/media/DibSize.h"
#include "host/media/PictureFacts.h"
#include "host/media/Room.h"

#include <wincodec.h>
#include <wrl/client.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <new>

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

// Turns a failure of a codec into the host's own. Short memory becomes std::bad_alloc, whoever was short of it.
class Step
{
public:
    Step(const char* verbText, const std::filesystem::path& path) : verb(verbText), file(path) {}
    void operator()(HRESULT result, const char* advice) const
    {
        if (result == E_OUTOFMEMORY)
            throw std::bad_alloc();
        if (FAILED(result))
            throw FailedJob(std::string("Can't ") + verb + " " + Show(file) + ": " + Explain(result) + "; " + advice);
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
        throw FailedJob("The system's picture codecs can't be had: " + Explain(result) + ".");
    return factory;
}

// The most bytes of a picture that codecs count without a mistake.
constexpr std::int64_t countable = 0xFFFFFFFF;

FailedJob TooLarge(const std::filesystem::path& file, std::uint32_t width, std::uint32_t height)
{
    return FailedJob(Show(file) + " measures " + std::to_string(width) + " x " + std::to_string(height) +
                     " pixels, which is more than the system's picture codecs can count; make it smaller first.");
}

// What is looked at before a codec sees the file: nothing of a bitmap file, which has no orientation and may be very
// large.
std::vector<std::uint8_t> BytesToLookAt(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    char start[2] = {};
    stream.read(start, sizeof start);
    if (start[0] == 'B' && start[1] == 'M')
        return {};
    // A camera writes what it knows in front of the pixels, all but TIFF, where it may stand anywhere.
    stream.clear();
    stream.seekg(0, std::ios::end);
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::max<std::streamoff>(stream.tellg(), 0)));
    stream.seekg(0);
    stream.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

// Some codecs make room for a picture as soon as they see the file, by a count of its bytes in 32 bits, and fill more.
void RefuseUncountable(std::span<const std::uint8_t> content, const std::filesystem::path& file)
{
    const auto size = StoredSizeOf(content);
    if (size && !DibBytes(size->width, size->height, 32, countable / size->sampleBytes))
        throw TooLarge(file, size->width, size->height);
}

// The bytes of a source's pixels; one of the largest format's when its own isn't known.
std::uint64_t SourceBytes(IWICImagingFactory& factory, IWICBitmapSource& source, UINT width, UINT height)
{
    UINT bits = 64;
    WICPixelFormatGUID format;
    ComPtr<IWICComponentInfo> component;
    ComPtr<IWICPixelFormatInfo> info;
    if (SUCCEEDED(source.GetPixelFormat(&format)) && SUCCEEDED(factory.CreateComponentInfo(format, &component)) &&
        SUCCEEDED(component.As(&info)))
        info->GetBitsPerPixel(&bits);
    return (std::uint64_t{width} * bits + 7) / 8 * height;
}

// Codecs and converters keep a copy of what is asked for at once: pixels come and go in pieces of about this size.
constexpr std::size_t pieceBytes = std::size_t{4} << 20;

// Calls take(first row, rows) until the picture is through.
template <typename Take>
void InPieces(const Picture& picture, Take take, std::size_t mostBytes = pieceBytes)
{
    const int most = std::max(static_cast<int>(mostBytes / picture.RowBytes()), 1);
    for (int y = 0, rows = 0; y < picture.height; y += rows)
        take(y, rows = std::min(most, picture.height - y));
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

namespace {

// `width` and `height` are set as soon as they are known.
Picture ReadThroughCodec(const std::filesystem::path& file, UINT& width, UINT& height)
{
    const Step read("read", file);
    constexpr const char* damaged = "the file is damaged or cut short: get a whole copy of it.";
    unsigned orientation = 1;
    {
        const std::vector<std::uint8_t> content = BytesToLookAt(file);
        RefuseUncountable(content, file);
        orientation = OrientationOf(content); // not every system's codecs hand it out
    }
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
    // The others look for rows from the end, or in pieces of their own.
    const bool countsFromStart =
        IsEqualGUID(container, GUID_ContainerFormatPng) || IsEqualGUID(container, GUID_ContainerFormatJpeg);
    ComPtr<IWICBitmapFrameDecode> frame;
    read(decoder->GetFrame(0, &frame), damaged);
    ComPtr<IWICBitmapSource> source;
    read(WICConvertBitmapSource(GUID_WICPixelFormat32bppBGRA, frame.Get(), &source), damaged);

    read(source->GetSize(&width, &height), damaged);
    // Some codecs find a row by a count of bytes in 32 bits with a sign, and none counts more than 32 bits' worth of
    // the result. Past the first a picture comes whole: then only its first row is looked for.
    const bool comesWhole = SourceBytes(*factory.Get(), *frame.Get(), width, height) > INT32_MAX;
    if (!DibBytes(width, height, 32, comesWhole ? countable : PTRDIFF_MAX) || (comesWhole && !countsFromStart))
        throw TooLarge(file, width, height);

    Picture picture(static_cast<int>(width), static_cast<int>(height));
    InPieces(
        picture,
        [&](int y, int rows) {
            const WICRect piece = {0, y, picture.width, rows};
            const std::size_t bytes = picture.RowBytes() * static_cast<std::size_t>(rows);
            read(source->CopyPixels(&piece, static_cast<UINT>(picture.RowBytes()), static_cast<UINT>(bytes),
                                    picture.Row(y)),
                 damaged);
        },
        comesWhole ? countable : pieceBytes);
    double dpiX = 0, dpiY = 0;
    if (SUCCEEDED(frame->GetResolution(&dpiX, &dpiY)) && dpiX > 0 && dpiY > 0) {
        picture.dpiX = dpiX;
        picture.dpiY = dpiY;
    }
    return orientation == 1 ? std::move(picture) : TurnUpright(picture, orientation);
}

void WriteThroughCodec(const std::filesystem::path& file, PictureFormat format, const Picture& picture,
                       const std::filesystem::path& called)
{
    const Step write("write", called);
    constexpr const char* advice = "is the disk full or the folder protected?";
    // Not every system's codec sees that it has lost the directory behind so many pixels.
    if (format == PictureFormat::Tiff && !DibBytes(picture.width, picture.height, 32))
        throw FailedJob(Show(called) + " would be larger than TIFF files can be; name a PNG file instead.");
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
    const GUID wanted = alpha ? GUID_WICPixelFormat32bppBGRA : GUID_WICPixelFormat24bppBGR;
    GUID pixelFormat = wanted;
    write(frame->SetPixelFormat(&pixelFormat), advice);
    if (!IsEqualGUID(pixelFormat, wanted)) // every codec of these formats takes it
        write(WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT, "take another format.");

    const std::size_t pixelBytes = alpha ? 4 : 3, rowBytes = static_cast<std::size_t>(picture.width) * pixelBytes;
    std::vector<std::uint8_t> piece;
    InPieces(picture, [&](int y, int rows) {
        piece.resize(rowBytes * static_cast<std::size_t>(rows));
        std::uint8_t* out = piece.data();
        for (const std::uint8_t* in = picture.Row(y); out != piece.data() + piece.size(); in += 4, out += pixelBytes)
            std::copy_n(in, pixelBytes, out);
        write(frame->WritePixels(static_cast<UINT>(rows), static_cast<UINT>(rowBytes), static_cast<UINT>(piece.size()),
                                 piece.data()),
              advice);
    });
    write(frame->Commit(), advice);
    write(encoder->Commit(), advice);
}

} // namespace

Picture ReadPicture(const std::filesystem::path& file)
{
    UINT width = 0, height = 0;
    try {
        return ReadThroughCodec(file, width, height);
    } catch (const std::bad_alloc&) {
    }
    // Measured when everything has been given back.
    throw width > 0 ? NoRoomFor(static_cast<int>(width), static_cast<int>(height)) : NoRoomFor(Show(file));
}

void WritePicture(const std::filesystem::path& file, PictureFormat format, const Picture& picture,
                  const std::filesystem::path& called)
{
    try {
        return WriteThroughCodec(file, format, picture, called.empty() ? file : called);
    } catch (const std::bad_alloc&) {
    }
    throw NoRoomFor(picture.width, picture.height);
}

bool HasAlpha(const Picture& picture)
{
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        if (picture.pixels[i] != 255)
            return true;
    return false;
}

} // namespace vixahost::media
