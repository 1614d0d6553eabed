#include "host/media/GraphDecoder.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/base/Verbose.h"
#include "host/media/AviHeader.h"
#include "host/media/DibSize.h"
#include "host/media/FileOnDisk.h"
#include "host/media/GraphText.h"
#include "host/media/Pins.h"
#include "host/media/Room.h"

#include <amvideo.h>
#include <evcode.h>
#include <strmif.h>
#include <uuids.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace vixahost::media {

using Microsoft::WRL::ComPtr;

namespace {

constexpr REFERENCE_TIME second = 10'000'000;
// Frames up to so many ahead are reached by decoding those between; further ones by a jump of the splitter.
constexpr std::int64_t decodedOnTheWay = 50;

// Owns what a media type points at.
struct HeldType : AM_MEDIA_TYPE
{
    HeldType() : AM_MEDIA_TYPE() {}
    HeldType(const HeldType&) = delete;
    HeldType& operator=(const HeldType&) = delete;
    ~HeldType()
    {
        CoTaskMemFree(pbFormat);
        if (pUnk)
            pUnk->Release();
    }
};

bool OffersSound(IPin& pin)
{
    ComPtr<IEnumMediaTypes> types;
    AM_MEDIA_TYPE* type = nullptr;
    if (FAILED(pin.EnumMediaTypes(&types)) || types->Next(1, &type, nullptr) != S_OK)
        return false;
    HeldType held;
    static_cast<AM_MEDIA_TYPE&>(held) = *type;
    CoTaskMemFree(type);
    return IsEqualGUID(held.majortype, MEDIATYPE_Audio) != FALSE;
}

std::string Undecoded(const std::filesystem::path& clip)
{
    FileOnDisk bytes(clip);
    return "This system has no decoder for " + Show(clip) + " (" + std::string(ForeignClip(bytes)) + "). " +
           WaysOutFor(clip);
}

} // namespace

FrameFormat RateOfInterval(REFERENCE_TIME interval) noexcept
{
    // Files tell it rounded; what it was before stands among the usual ones.
    constexpr std::array<std::uint32_t, 2> scales = {1, 1001};
    for (const std::uint32_t scale : scales) {
        const std::int64_t step = scale == 1 ? 1 : 1000;
        const std::int64_t rate =
            interval > 0 ? (scale * second + interval * step / 2) / (interval * step) * step : std::int64_t{0};
        if (rate > 0 && rate <= 1'000'000 && std::abs(scale * second / rate - interval) <= 1)
            return {0, 0, static_cast<std::uint32_t>(rate), scale};
    }
    if (interval <= 0 || interval > 60 * second)
        return {0, 0, 30, 1};
    return {0, 0, static_cast<std::uint32_t>(second), static_cast<std::uint32_t>(interval)};
}

HRESULT GraphDecoder::Grabbed::QueryInterface(REFIID riid, void** object)
{
    if (!object)
        return E_POINTER;
    const bool mine = IsEqualGUID(riid, IID_IUnknown) || IsEqualGUID(riid, IID_ISampleGrabberCB);
    *object = mine ? this : nullptr;
    return mine ? S_OK : E_NOINTERFACE;
}

HRESULT GraphDecoder::Grabbed::SampleCB(double, IMediaSample* sample)
{
    return sample ? decoder.Take(*sample) : E_POINTER;
}

GraphDecoder::GraphDecoder(std::filesystem::path clip, const std::optional<FrameFormat>& known)
    : path(std::move(clip)), given(CreateEventW(nullptr, FALSE, FALSE, nullptr)),
      taken(CreateEventW(nullptr, FALSE, FALSE, nullptr))
{
    if (!given || !taken)
        throw FailedJob("The system gives no event (" + ExplainError(GetLastError()) + ").");
    Build();
    TakeFormat(known);
    TakeSound();
    next.pixels.resize(facts.format.FrameBytes());
    shown.pixels.resize(facts.format.FrameBytes());
}

GraphDecoder::~GraphDecoder()
{
    Stop();
    if (grabber)
        grabber->SetCallback(nullptr, 0);
}

void GraphDecoder::Build()
{
    constexpr CLSID sampleGrabber = {0xC1F400A0, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};
    constexpr CLSID nullRenderer = {0xC1F400A4, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};
    ComPtr<IBaseFilter> source, end, nowhere;
    ComPtr<IMediaFilter> clock;
    const auto create = [](const CLSID& which, const auto& into) {
        return SUCCEEDED(CoCreateInstance(which, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(into)));
    };
    AM_MEDIA_TYPE wanted = {};
    wanted.majortype = MEDIATYPE_Video;
    wanted.subtype = MEDIASUBTYPE_RGB32;
    wanted.formattype = FORMAT_VideoInfo;
    if (!create(CLSID_FilterGraph, graph.GetAddressOf()) || !create(sampleGrabber, end.GetAddressOf()) ||
        !create(nullRenderer, nowhere.GetAddressOf()) || FAILED(end.As(&grabber)) || FAILED(graph.As(&control)) ||
        FAILED(graph->QueryInterface(IID_IMediaEvent, &events)) || FAILED(graph.As(&clock)) ||
        FAILED(grabber->SetMediaType(&wanted)) || FAILED(grabber->SetCallback(&grabbed, 0)) ||
        FAILED(graph->AddFilter(end.Get(), L"Frames")) || FAILED(graph->AddFilter(nowhere.Get(), L"Nowhere")))
        throw FailedJob("The system's filter graph can't be had.");
    if (FAILED(graph->AddSourceFilter(path.c_str(), L"Clip", &source)))
        throw NoDecoder(Undecoded(path));
    const ComPtr<IPin> input = FindPin(*end.Get(), PINDIR_INPUT);
    // The graph finds the splitter and the decoder.
    if (!input || !AnyPin(*source.Get(), PINDIR_OUTPUT,
                          [&](IPin& output) { return SUCCEEDED(graph->Connect(&output, input.Get())); }))
        throw NoDecoder(Undecoded(path));
    ComPtr<IPin> upstream;
    const ComPtr<IPin> output = FindPin(*end.Get(), PINDIR_OUTPUT), last = FindPin(*nowhere.Get(), PINDIR_INPUT);
    if (!output || !last || FAILED(graph->ConnectDirect(output.Get(), last.Get(), nullptr)) ||
        FAILED(clock->SetSyncSource(nullptr)) || FAILED(input->ConnectedTo(&upstream)))
        throw FailedJob("The system's filter graph takes no frames of " + Show(path) + ".");
    upstream.As(&seeking); // without it frames come in their order only
    if (verbose)
        Complain("The decoding graph:\n" + DescribeRow(source.Get()));
}

void GraphDecoder::TakeFormat(const std::optional<FrameFormat>& known)
{
    HeldType type;
    if (FAILED(grabber->GetConnectedMediaType(&type)) || type.cbFormat < sizeof(VIDEOINFOHEADER) || !type.pbFormat)
        throw FailedJob("The system's filter graph doesn't tell the frames of " + Show(path) + ".");
    VIDEOINFOHEADER header = {};
    std::memcpy(&header, type.pbFormat, sizeof header);
    topDown = header.bmiHeader.biHeight < 0;
    const int width = header.bmiHeader.biWidth, height = std::abs(header.bmiHeader.biHeight);
    if (!DibBytes(width, height, 32))
        throw NoRoomFor(width, height);
    if (known && (known->width != width || known->height != height))
        throw FailedJob(Show(path) + " is damaged: its header tells another size than its frames have.");
    facts.format = known ? *known : RateOfInterval(header.AvgTimePerFrame);
    facts.format.width = width;
    facts.format.height = height;
    LONGLONG duration = 0;
    if (seeking && SUCCEEDED(seeking->GetDuration(&duration)) && duration > 0)
        facts.frames = std::max<std::int64_t>(
            std::llround(static_cast<double>(duration) / 1e7 * facts.format.rate / facts.format.scale), 1);
}

// Whether a pin that leads nowhere offers some.
void GraphDecoder::TakeSound()
{
    ComPtr<IEnumFilters> filters;
    if (FAILED(graph->EnumFilters(&filters)))
        return;
    for (ComPtr<IBaseFilter> filter; filters->Next(1, filter.ReleaseAndGetAddressOf(), nullptr) == S_OK;)
        facts.sound |= AnyPin(*filter.Get(), PINDIR_OUTPUT, [](IPin& pin) {
            ComPtr<IPin> peer;
            return FAILED(pin.ConnectedTo(&peer)) && OffersSound(pin);
        });
}

void GraphDecoder::Stop() noexcept
{
    stopping = true;
    SetEvent(taken.get());
    if (control)
        control->Stop();
    stopping = false;
    ResetEvent(taken.get());
    ResetEvent(given.get());
    // What was told of the run before.
    long code = 0;
    LONG_PTR first = 0, other = 0;
    while (events && SUCCEEDED(events->GetEvent(&code, &first, &other, 0)))
        events->FreeEventParams(code, first, other);
    running = hasNext = hasShown = ended = false;
}

void GraphDecoder::RunFrom(std::int64_t index)
{
    Stop();
    origin = facts.format.TimeOf(index);
    LONGLONG start = origin;
    // From its beginning a clip can always be read.
    if (seeking &&
        FAILED(seeking->SetPositions(&start, AM_SEEKING_AbsolutePositioning, nullptr, AM_SEEKING_NoPositioning)) &&
        index > 0)
        throw FailedJob("The system's decoder can't go to frame " + std::to_string(index) + " of " + Show(path) + ".");
    shownIndex = index;
    running = true;
    if (const HRESULT result = control->Run(); FAILED(result))
        throw FailedJob("The system's decoder for " + Show(path) + " doesn't start: " + Explain(result) + ".");
}

HRESULT GraphDecoder::Take(IMediaSample& sample) noexcept
{
    if (stopping)
        return S_OK;
    BYTE* bytes = nullptr;
    REFERENCE_TIME begin = 0, end = 0;
    const std::size_t size = next.pixels.size(), row = static_cast<std::size_t>(facts.format.width) * 4;
    wrongFrame = FAILED(sample.GetPointer(&bytes)) || sample.GetActualDataLength() < 0 ||
                 static_cast<std::size_t>(sample.GetActualDataLength()) < size;
    if (!wrongFrame) {
        if (FAILED(sample.GetTime(&begin, &end)))
            begin = hasShown ? shown.time - origin + second * facts.format.scale / facts.format.rate : 0;
        next.time = origin + begin;
        if (!topDown)
            std::memcpy(next.pixels.data(), bytes, size);
        else
            for (std::size_t at = 0; at < size; at += row)
                std::memcpy(next.pixels.data() + (size - row - at), bytes + at, row);
        // Not every decoder writes the byte that has no colour.
        for (std::size_t at = 3; at < size; at += 4)
            next.pixels[at] = 0;
    }
    SetEvent(given.get());
    WaitForSingleObject(taken.get(), INFINITE);
    return S_OK;
}

bool GraphDecoder::HasEnded(std::int64_t index)
{
    long code = 0;
    LONG_PTR first = 0, other = 0;
    while (SUCCEEDED(events->GetEvent(&code, &first, &other, 0))) {
        events->FreeEventParams(code, first, other);
        if (code == EC_ERRORABORT || code == EC_STREAM_ERROR_STOPPED)
            throw FailedJob("Frame " + std::to_string(index) + " of " + Show(path) +
                            " can't be decoded; the clip is damaged.");
        ended |= code == EC_COMPLETE;
    }
    return ended;
}

// False at the stream's end.
bool GraphDecoder::WaitForFrame(std::int64_t index)
{
    OAEVENT told = 0;
    if (FAILED(events->GetEventHandle(&told)))
        throw FailedJob("The system's filter graph reports no events.");
    const std::array<HANDLE, 2> signs = {given.get(), reinterpret_cast<HANDLE>(told)};
    for (;;) {
        const DWORD which = WaitForMultipleObjects(static_cast<DWORD>(signs.size()), signs.data(), FALSE, INFINITE);
        if (which == WAIT_OBJECT_0)
            break;
        if (HasEnded(index))
            return false;
    }
    if (wrongFrame)
        throw FailedJob("Frame " + std::to_string(index) + " of " + Show(path) +
                        " has another size than the others; convert the clip first: " + ConversionOf(path));
    return true;
}

bool GraphDecoder::Decode(std::int64_t index, std::span<std::uint8_t> frame)
{
    if (!running || index < shownIndex || index > shownIndex + decodedOnTheWay)
        RunFrom(index);
    shownIndex = index;
    const REFERENCE_TIME half = second * facts.format.scale / facts.format.rate / 2;
    const REFERENCE_TIME latest = facts.format.TimeOf(index) + half;
    for (;;) {
        if (!hasNext && !ended)
            hasNext = WaitForFrame(index);
        if (!hasNext || (hasShown && next.time > latest))
            break;
        std::swap(shown, next);
        hasShown = true;
        hasNext = false;
        SetEvent(taken.get());
    }
    if (!hasShown || (ended && shown.time + 2 * half < latest))
        return false;
    std::memcpy(frame.data(), shown.pixels.data(), frame.size());
    return true;
}

} // namespace vixahost::media
