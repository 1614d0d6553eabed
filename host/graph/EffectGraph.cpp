#include "host/graph/EffectGraph.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/base/Verbose.h"
#include "host/effects/DataPropertySet.h"
#include "host/media/DibSize.h"
#include "host/media/GraphText.h"
#include "host/media/Pins.h"
#include "host/media/Room.h"

#include <vixavideofx/IEffectChaining.h>
#include <vixavideofx/IEffectFilter.h>
#include <vixavideofx/IInstructionCeiling.h>

#include <algorithm>
#include <iterator>

namespace vixahost::graph {

using media::FindPin;

namespace {

// One that is read, one in the effects, one that is written, and one for whoever is late.
constexpr long buffersAhead = 4;

void Require(HRESULT result, const std::string& what)
{
    if (FAILED(result))
        throw FailedJob(what + ": " + Explain(result) + ".");
}

// An effect's instruction set, and whether it makes frames together with its neighbours.
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

} // namespace

EffectGraph::EffectGraph(const effects::EffectLibrary& library, const effects::EffectStack& stack,
                         media::FrameReader& reader, media::FrameWriter& writer, REFERENCE_TIME duration, Pace pace)
    : timer(reader.FramesAPicture()), taker(writer, reader.Format(), timer, pace == Pace::Overlapping),
      format(reader.Format())
{
    if (!media::DibBytes(format.width, format.height, 32))
        throw media::NoRoomFor(format.width, format.height);
    constexpr const char* noGraph = "The system's filter graph can't be had";
    Require(CoCreateInstance(CLSID_FilterGraph, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&graph)), noGraph);
    Require(graph.As(&control), noGraph);
    Require(graph->QueryInterface(IID_IMediaEvent, &events), noGraph);
    source = FrameSource::Create(reader, timer, pace == Pace::Overlapping ? buffersAhead : 1);
    sink = FrameSink::Create(taker);
    ComPtr<IMemInputPin> sinkMemory;
    if (verbose && SUCCEEDED(FindPin(*sink.Get(), PINDIR_INPUT).As(&sinkMemory)))
        sinkMemory->GetAllocator(&sinkAllocator);

    Add(source.Get(), "Source");
    IBaseFilter* last = source.Get();
    for (const effects::EffectStep& step : stack) {
        const ComPtr<IBaseFilter> filter = library.CreateFilter(step.classId, step.name);
        ComPtr<IEffectFilter> effect;
        Require(filter.As(&effect), "\"" + step.name + "\" takes no parameters from a host");
        effects.push_back(filter);
        Require(effect->SetPropertySet(effects::DataPropertySet::Create(step.block).Get()), "Parameters were refused");
        Require(effect->SetDuration(duration), "The length was refused");
        Add(filter.Get(), step.name);
        Connect(last, filter.Get(), step.name);
        last = filter.Get();
    }
    Add(sink.Get(), "Sink");
    Connect(last, sink.Get(), "Sink");

    // Without a clock nobody waits for a frame's time.
    ComPtr<IMediaFilter> asFilter;
    Require(graph.As(&asFilter), noGraph);
    Require(asFilter->SetSyncSource(nullptr), "The graph's clock can't be switched off");
}

EffectGraph::~EffectGraph()
{
    Stop();
}

void EffectGraph::Add(IBaseFilter* filter, const std::string& name)
{
    Require(graph->AddFilter(filter, Wide(name).c_str()), "The graph refuses \"" + name + "\"");
}

void EffectGraph::Connect(IBaseFilter* from, IBaseFilter* to, const std::string& name)
{
    const ComPtr<IPin> output = FindPin(*from, PINDIR_OUTPUT), input = FindPin(*to, PINDIR_INPUT);
    Require(output && input ? graph->ConnectDirect(output.Get(), input.Get(), nullptr) : VFW_E_NOT_FOUND,
            "\"" + name + "\" can't be connected");
}

void EffectGraph::Start()
{
    if (verbose)
        Complain("The filter graph:\n" + media::DescribeRow(source.Get(), sinkAllocator.Get(), EffectText));
    if (const HRESULT result = control->Run(); FAILED(result))
        Fail(result);
}

void EffectGraph::Stop() const noexcept
{
    StopRow(source.Get(), effects, sink.Get(), control.Get());
}

void StopRow(IBaseFilter* source, std::span<const ComPtr<IBaseFilter>> effects, IBaseFilter* sink,
             IMediaControl* graph) noexcept
{
    if (sink)
        sink->Stop();
    std::for_each(effects.rbegin(), effects.rend(), [](const auto& effect) { effect->Stop(); });
    if (source)
        source->Stop();
    if (graph)
        graph->Stop();
}

void EffectGraph::Run(const std::function<void(std::int64_t)>& onProgress, const std::function<bool()>& stopped)
{
    Start();
    WaitForEnd(onProgress, stopped);
    Stop();
    if (const auto failure = taker.Failure()) // of the last frames, behind which nothing came
        std::rethrow_exception(failure);
    if (onProgress)
        onProgress(taker.FramesWritten());
}

void EffectGraph::WaitForEnd(const std::function<void(std::int64_t)>& onProgress, const std::function<bool()>& stopped)
{
    OAEVENT handle = 0;
    Require(events->GetEventHandle(&handle), "The graph reports no events");
    for (;;) {
        if (stopped()) {
            Stop();
            throw StoppedJob();
        }
        WaitForSingleObject(reinterpret_cast<HANDLE>(handle), 100);
        if (HasEnded())
            return;
        if (onProgress)
            onProgress(taker.FramesWritten());
    }
}

bool EffectGraph::HasEnded(const std::function<void()>& wake)
{
    long code = 0;
    LONG_PTR first = 0, second = 0;
    while (SUCCEEDED(events->GetEvent(&code, &first, &second, 0))) {
        const auto result = static_cast<HRESULT>(first);
        events->FreeEventParams(code, first, second);
        if (code == EC_COMPLETE)
            return true;
        if (code == EC_ERRORABORT || code == EC_USERABORT) {
            if (wake)
                wake();
            Fail(result);
        }
    }
    return false;
}

void EffectGraph::Fail(HRESULT result)
{
    Stop();
    if (source->Failure())
        std::rethrow_exception(source->Failure());
    if (const auto failure = taker.Failure())
        std::rethrow_exception(failure);
    if (result == E_OUTOFMEMORY)
        throw media::NoRoomFor(format.width, format.height);
    throw FailedJob("The filter graph failed: " + Explain(result) + ".");
}

} // namespace vixahost::graph
