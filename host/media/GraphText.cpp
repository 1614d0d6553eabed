#include "host/media/GraphText.h"

#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/media/Pins.h"

#include <dvdmedia.h>

#include <array>
#include <cstdlib>

namespace vixahost::media {

using Microsoft::WRL::ComPtr;

namespace {

std::string NameOf(const GUID& id)
{
    struct Name
    {
        const GUID* id;
        const char* name;
    };
    static const Name names[] = {
        {&MEDIATYPE_Video, "MEDIATYPE_Video"},
        {&MEDIASUBTYPE_RGB32, "MEDIASUBTYPE_RGB32"},
        {&MEDIASUBTYPE_RGB24, "MEDIASUBTYPE_RGB24"},
        {&FORMAT_VideoInfo, "FORMAT_VideoInfo"},
        {&FORMAT_VideoInfo2, "FORMAT_VideoInfo2"},
        {&MEDIATYPE_Stream, "MEDIATYPE_Stream"},
        {&FORMAT_None, "FORMAT_None"},
        {&GUID_NULL, "GUID_NULL"},
    };
    for (const Name& name : names)
        if (*name.id == id)
            return name.name;
    std::array<wchar_t, 40> text{};
    StringFromGUID2(id, text.data(), static_cast<int>(text.size()));
    return Utf8(text.data());
}

std::string TypeText(IPin* pin)
{
    AM_MEDIA_TYPE type = {};
    if (const HRESULT result = pin->ConnectionMediaType(&type); FAILED(result))
        return Explain(result);
    std::string text = NameOf(type.majortype) + ", " + NameOf(type.subtype) + ", " + NameOf(type.formattype);
    const BITMAPINFOHEADER* header = nullptr;
    if (type.formattype == FORMAT_VideoInfo && type.cbFormat >= sizeof(VIDEOINFOHEADER))
        header = &reinterpret_cast<const VIDEOINFOHEADER*>(type.pbFormat)->bmiHeader;
    else if (type.formattype == FORMAT_VideoInfo2 && type.cbFormat >= sizeof(VIDEOINFOHEADER2))
        header = &reinterpret_cast<const VIDEOINFOHEADER2*>(type.pbFormat)->bmiHeader;
    if (header)
        text += ", " + std::to_string(header->biWidth) + " x " + std::to_string(std::labs(header->biHeight)) +
                (header->biHeight < 0 ? " top-down" : " bottom-up");
    text += ", " + std::to_string(type.lSampleSize) + " bytes a frame";
    CoTaskMemFree(type.pbFormat);
    if (type.pUnk)
        type.pUnk->Release();
    return text;
}

// `before` is the allocator of the connection before; takes the place of it.
std::string AllocatorText(IPin* input, const IMemAllocator* lastOwn, ComPtr<IMemAllocator>& before)
{
    ComPtr<IMemInputPin> memory;
    ComPtr<IMemAllocator> allocator;
    ALLOCATOR_PROPERTIES given = {};
    if (FAILED(input->QueryInterface(IID_PPV_ARGS(&memory))))
        return "none, the next filter reads bytes itself";
    HRESULT result = memory->GetAllocator(&allocator);
    if (SUCCEEDED(result))
        result = allocator->GetProperties(&given);
    if (FAILED(result))
        return Explain(result);
    std::string text = std::to_string(given.cBuffers) + " x " + std::to_string(given.cbBuffer) + " bytes, aligned to " +
                       std::to_string(given.cbAlign) + ", prefix " + std::to_string(given.cbPrefix) +
                       (!lastOwn                     ? ""
                        : allocator.Get() == lastOwn ? ", of the row's last filter"
                                                     : ", of another filter");
    if (before)
        text += allocator == before ? ", the same as before" : ", not the one before: frames are copied";
    before = allocator;
    return text;
}

std::string NameOf(IBaseFilter* filter)
{
    FILTER_INFO info = {};
    if (FAILED(filter->QueryFilterInfo(&info)))
        return "?";
    if (info.pGraph)
        info.pGraph->Release();
    return "\"" + Utf8(info.achName) + "\"";
}

} // namespace

std::string DescribeRow(IBaseFilter* source, const IMemAllocator* lastOwn,
                        const std::function<std::string(IBaseFilter*)>& more)
{
    std::string text;
    ComPtr<IMemAllocator> before;
    for (ComPtr<IBaseFilter> filter = source; filter;) {
        const std::string own = more ? more(filter.Get()) : std::string();
        text += "  " + NameOf(filter.Get()) + (own.empty() ? "" : ": " + own) + "\n";
        ComPtr<IPin> output, input;
        AnyPin(*filter.Get(), PINDIR_OUTPUT, [&](IPin& pin) {
            output = &pin;
            return SUCCEEDED(pin.ConnectedTo(&input));
        });
        PIN_INFO from = {}, to = {};
        filter.Reset();
        if (!input || FAILED(output->QueryPinInfo(&from)))
            break;
        if (from.pFilter)
            from.pFilter->Release();
        if (FAILED(input->QueryPinInfo(&to)))
            break;
        filter.Attach(to.pFilter);
        text += "    from pin \"" + Utf8(from.achName) + "\" to pin \"" + Utf8(to.achName) + "\"\n";
        text += "      type: " + TypeText(output.Get()) + "\n";
        text += "      frames: " + AllocatorText(input.Get(), lastOwn, before) + "\n";
    }
    return text;
}

} // namespace vixahost::media
