#include "host/graph/GraphText.h"

#include "host/base/ResultCode.h"
#include "host/base/Text.h"

#include <vixavideofx/IEffectChaining.h>
#include <vixavideofx/IInstructionCeiling.h>

#include <dvdmedia.h>

#include <array>
#include <cstdlib>
#include <iterator>

namespace vixahost::graph {

namespace {

std::string NameOf(const GUID& id)
{
    struct Name
    {
        const GUID* id;
        const char* name;
    };
    static const Name names[] = {
        {&MEDIATYPE_Video, "MEDIATYPE_Video"},       {&MEDIASUBTYPE_RGB32, "MEDIASUBTYPE_RGB32"},
        {&MEDIASUBTYPE_RGB24, "MEDIASUBTYPE_RGB24"}, {&FORMAT_VideoInfo, "FORMAT_VideoInfo"},
        {&FORMAT_VideoInfo2, "FORMAT_VideoInfo2"},
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
    HRESULT result = input->QueryInterface(IID_PPV_ARGS(&memory));
    if (SUCCEEDED(result))
        result = memory->GetAllocator(&allocator);
    if (SUCCEEDED(result))
        result = allocator->GetProperties(&given);
    if (FAILED(result))
        return Explain(result);
    std::string text = std::to_string(given.cBuffers) + " x " + std::to_string(given.cbBuffer) + " bytes, aligned to " +
                       std::to_string(given.cbAlign) + ", prefix " + std::to_string(given.cbPrefix) +
                       (allocator.Get() == lastOwn ? ", of the row's last filter" : ", of another filter");
    if (before)
        text += allocator == before ? ", the same as before" : ", not the one before: frames are copied";
    before = allocator;
    return text;
}

std::string EffectText(IBaseFilter* filter)
{
    static constexpr const char* levels[] = {"plain", "SSE2", "AVX2", "AVX-512"};
    std::string text;
    ComPtr<IInstructionCeiling> ceiling;
    ULONG level = 0;
    if (SUCCEEDED(filter->QueryInterface(IID_IInstructionCeiling, reinterpret_cast<void**>(ceiling.GetAddressOf()))) &&
        SUCCEEDED(ceiling->GetLevel(&level)))
        text = level < std::size(levels) ? levels[level] : "level " + std::to_string(level);
    ComPtr<IEffectChaining> chaining;
    BOOL together = FALSE;
    if (SUCCEEDED(filter->QueryInterface(IID_IEffectChaining, reinterpret_cast<void**>(chaining.GetAddressOf()))) &&
        SUCCEEDED(chaining->GetChaining(&together)))
        text += std::string(text.empty() ? "" : ", ") + (together ? "together with" : "apart from") + " its neighbours";
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

ComPtr<IPin> FindPin(IBaseFilter* filter, PIN_DIRECTION wanted)
{
    ComPtr<IEnumPins> pins;
    if (FAILED(filter->EnumPins(&pins)))
        return nullptr;
    for (ComPtr<IPin> pin; pins->Next(1, pin.ReleaseAndGetAddressOf(), nullptr) == S_OK;) {
        PIN_DIRECTION direction = PINDIR_INPUT;
        if (SUCCEEDED(pin->QueryDirection(&direction)) && direction == wanted)
            return pin;
    }
    return nullptr;
}

std::string DescribeRow(IBaseFilter* source, const IMemAllocator* lastOwn)
{
    std::string text = "The filter graph:\n";
    ComPtr<IMemAllocator> before;
    for (ComPtr<IBaseFilter> filter = source; filter;) {
        const std::string own = EffectText(filter.Get());
        text += "  " + NameOf(filter.Get()) + (own.empty() ? "" : ": " + own) + "\n";
        const ComPtr<IPin> output = FindPin(filter.Get(), PINDIR_OUTPUT);
        ComPtr<IPin> input;
        PIN_INFO from = {}, to = {};
        filter.Reset();
        if (!output || FAILED(output->ConnectedTo(&input)) || FAILED(output->QueryPinInfo(&from)))
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

} // namespace vixahost::graph
