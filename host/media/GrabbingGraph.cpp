#include "host/media/GrabbingGraph.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/base/Verbose.h"
#include "host/media/AviHeader.h"
#include "host/media/FileOnDisk.h"
#include "host/media/ForeignClip.h"
#include "host/media/GraphText.h"
#include "host/media/Pins.h"

#include <evcode.h>
#include <strmif.h>
#include <uuids.h>

#include <array>
#include <utility>

namespace vixahost::media {

using Microsoft::WRL::ComPtr;

HeldType::~HeldType()
{
    CoTaskMemFree(pbFormat);
    if (pUnk)
        pUnk->Release();
}

namespace {

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

HRESULT GrabbingGraph::Grabbed::QueryInterface(REFIID riid, void** object)
{
    if (!object)
        return E_POINTER;
    const bool mine = IsEqualGUID(riid, IID_IUnknown) || IsEqualGUID(riid, IID_ISampleGrabberCB);
    *object = mine ? this : nullptr;
    return mine ? S_OK : E_NOINTERFACE;
}

HRESULT GrabbingGraph::Grabbed::SampleCB(double, IMediaSample* sample)
{
    if (!sample)
        return E_POINTER;
    if (!graph.stopping) {
        graph.taker(*sample);
        SetEvent(graph.given.get());
        WaitForSingleObject(graph.taken.get(), INFINITE);
    }
    return S_OK;
}

GrabbingGraph::GrabbingGraph(std::filesystem::path clip, const AM_MEDIA_TYPE& wanted,
                             std::function<void(IMediaSample&)> take)
    : path(std::move(clip)), taker(std::move(take)), given(CreateEventW(nullptr, FALSE, FALSE, nullptr)),
      taken(CreateEventW(nullptr, FALSE, FALSE, nullptr))
{
    if (!given || !taken)
        throw FailedJob("The system gives no event (" + ExplainError(GetLastError()) + ").");
    Build(wanted);
}

GrabbingGraph::~GrabbingGraph()
{
    Stop();
    if (grabber)
        grabber->SetCallback(nullptr, 0);
}

void GrabbingGraph::Build(const AM_MEDIA_TYPE& wanted)
{
    constexpr CLSID sampleGrabber = {0xC1F400A0, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};
    constexpr CLSID nullRenderer = {0xC1F400A4, 0x3F08, 0x11D3, {0x9F, 0x0B, 0x00, 0x60, 0x08, 0x03, 0x9E, 0x37}};
    ComPtr<IBaseFilter> source, end, nowhere;
    ComPtr<IMediaFilter> clock;
    const auto create = [](const CLSID& which, const auto& into) {
        return SUCCEEDED(CoCreateInstance(which, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(into)));
    };
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

void GrabbingGraph::Type(AM_MEDIA_TYPE& type) const
{
    if (FAILED(grabber->GetConnectedMediaType(&type)) || !type.pbFormat)
        throw FailedJob("The system's filter graph doesn't tell what it decodes of " + Show(path) + ".");
}

REFERENCE_TIME GrabbingGraph::Duration() const
{
    LONGLONG duration = 0;
    return seeking && SUCCEEDED(seeking->GetDuration(&duration)) && duration > 0 ? duration : 0;
}

// Whether a pin that leads nowhere offers some.
bool GrabbingGraph::LeavesSound() const
{
    ComPtr<IEnumFilters> filters;
    if (FAILED(graph->EnumFilters(&filters)))
        return false;
    bool sound = false;
    for (ComPtr<IBaseFilter> filter; filters->Next(1, filter.ReleaseAndGetAddressOf(), nullptr) == S_OK;)
        sound |= AnyPin(*filter.Get(), PINDIR_OUTPUT, [](IPin& pin) {
            ComPtr<IPin> peer;
            return FAILED(pin.ConnectedTo(&peer)) && OffersSound(pin);
        });
    return sound;
}

void GrabbingGraph::Stop() noexcept
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
    ended = false;
}

bool GrabbingGraph::RunFrom(REFERENCE_TIME time)
{
    Stop();
    LONGLONG start = time;
    // From its beginning a clip can always be read.
    if (seeking &&
        FAILED(seeking->SetPositions(&start, AM_SEEKING_AbsolutePositioning, nullptr, AM_SEEKING_NoPositioning)) &&
        time > 0)
        return false;
    if (const HRESULT result = control->Run(); FAILED(result))
        throw FailedJob("The system's decoder for " + Show(path) + " doesn't start: " + Explain(result) + ".");
    return true;
}

bool GrabbingGraph::HasEnded(const std::string& what)
{
    long code = 0;
    LONG_PTR first = 0, other = 0;
    while (SUCCEEDED(events->GetEvent(&code, &first, &other, 0))) {
        events->FreeEventParams(code, first, other);
        if (code == EC_ERRORABORT || code == EC_STREAM_ERROR_STOPPED)
            throw FailedJob(what + " of " + Show(path) + " can't be decoded; the clip is damaged.");
        ended |= code == EC_COMPLETE;
    }
    return ended;
}

bool GrabbingGraph::Wait(const std::string& what)
{
    OAEVENT told = 0;
    if (FAILED(events->GetEventHandle(&told)))
        throw FailedJob("The system's filter graph reports no events.");
    const std::array<HANDLE, 2> signs = {given.get(), reinterpret_cast<HANDLE>(told)};
    while (!ended) {
        const DWORD which = WaitForMultipleObjects(static_cast<DWORD>(signs.size()), signs.data(), FALSE, INFINITE);
        if (which == WAIT_OBJECT_0)
            return true;
        HasEnded(what);
    }
    return false;
}

void GrabbingGraph::GoOn() noexcept
{
    SetEvent(taken.get());
}

} // namespace vixahost::media
