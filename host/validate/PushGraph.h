// One effect in the system's filter graph, between a source from which the checks push samples by hand and a sink that
// keeps a record.
#pragma once

#include "framework/DirectShow.h"
#include "host/validate/Props.h"
#include "host/validate/Subject.h"

#include <dvdmedia.h>

#include <memory>
#include <vector>

namespace vixahost::validate {

// A video type of 32-bit pixels with either of the two header formats.
CMediaType VideoType(LONG width, LONG height, bool secondHeader = false);

class HandSource;
class RecordingSink;

class PushGraph
{
public:
    enum class Allocator
    {
        Shared,
        ReadOnly // the source insists on its own and lets nobody write to it
    };

    // Connects and runs. Fails the check when the effect refuses.
    PushGraph(IBaseFilter* effect, const CMediaType& type, Allocator allocator = Allocator::Shared);
    ~PushGraph();
    PushGraph(const PushGraph&) = delete;
    PushGraph& operator=(const PushGraph&) = delete;

    // Hands a sample to the effect as the filter before it does.
    HRESULT Send(IMediaSample* sample) { return memory->Receive(sample); }
    HRESULT Send(std::span<std::uint8_t> frame);
    // What a frame comes out as; the bytes beyond it are watched. Fails the check when it isn't delivered.
    std::vector<std::uint8_t> Through(std::vector<std::uint8_t> frame);
    IPin* Input() const noexcept { return input.Get(); }

    // The record of the sink.
    struct Record
    {
        int samples = 0, endsOfStream = 0, flushBegins = 0, flushEnds = 0, segments = 0;
        IMediaSample* last = nullptr; // its address
        const BYTE* bytes = nullptr;
        std::vector<std::uint8_t> content;
        REFERENCE_TIME start = -1, end = -1;
    };
    const Record& Seen() const noexcept;

private:
    ComPtr<IGraphBuilder> graph;
    ComPtr<IMediaControl> control;
    ComPtr<IBaseFilter> filter;
    ComPtr<HandSource> source;
    ComPtr<RecordingSink> sink;
    ComPtr<IPin> input;
    ComPtr<IMemInputPin> memory;
};

// An output pin that offers one type, for connections outside a graph too.
ComPtr<IBaseFilter> MakeSource(const CMediaType& type);
ComPtr<IPin> OnlyPin(IBaseFilter* filter);

} // namespace vixahost::validate
