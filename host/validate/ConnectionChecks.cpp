// Group "connections": what an effect agrees on with its neighbours, and how it holds to that when they change.
#include "host/fixtures/GuardedMemory.h"
#include "host/fixtures/PushGraph.h"
#include "host/fixtures/RecordedSet.h"
#include "host/validate/Contract.h"
#include "host/validate/Subject.h"

#include <vixavideofx/ClassIds.h>

namespace vixahost::validate {

namespace {

using namespace vixavideofx;
using Allocator = fixtures::PushGraph::Allocator;

// "Add pixel", which adds 10 to every colour.
ComPtr<IBaseFilter> TenBrighter(Subject& library)
{
    auto filter = library.Filter(CLSID_AddPixel);
    fixtures::RecordedSet set{10, 10, 10, 0};
    RequireResult(Parameters(filter.Get())->SetPropertySet(&set), S_OK, "SetPropertySet");
    return filter;
}

const CMediaType type = fixtures::VideoType(8, 8);

// Sends a frame, and says whether it arrived in its own memory. A copy leaves the original alone.
bool ArrivesInPlace(fixtures::PushGraph& graph, const fixtures::Record& seen)
{
    std::vector<std::uint8_t> frame(8 * 8 * 4, 100);
    fixtures::HandSample sample(frame);
    const int before = seen.samples;
    RequireResult(graph.Send(&sample), S_OK, "Receive");
    RequireNumber(seen.samples, before + 1, "samples delivered");
    RequireNumber(seen.content.at(0), 110, "the first byte of what arrives");
    const bool inPlace = seen.last == &sample;
    RequireNumber(frame[0], inPlace ? 110 : 100, "the first byte of what was sent");
    return inPlace;
}

ComPtr<IMemAllocator> OwnAllocator(IPin* sink)
{
    ComPtr<IMemInputPin> memory;
    ComPtr<IMemAllocator> allocator;
    sink->QueryInterface(IID_IMemInputPin, &memory);
    memory->GetAllocator(&allocator);
    return allocator;
}

void Separate(const fixtures::PushGraph& graph, IPin* one, IPin* other)
{
    graph.Control()->Stop();
    for (IPin* const pin : {one, other})
        graph.Manager()->Disconnect(pin);
}

// A sink that takes the place of a graph's own one.
struct OtherSink
{
    void TakeOver(fixtures::PushGraph& graph) const
    {
        Separate(graph, graph.Output(), graph.Downstream());
        graph.Manager()->AddFilter(sink.Get(), L"another sink");
        RequireResult(graph.Manager()->ConnectDirect(graph.Output(), sink->GetPin(0), nullptr), S_OK,
                      "the connection to another sink");
        ComPtr<IPin> upstream;
        RequireResult(graph.Input()->ConnectedTo(&upstream), S_OK, "the input's ConnectedTo after that");
        graph.Run();
    }

    fixtures::Record record;
    ComPtr<graph::FrameSink> sink = graph::FrameSink::Create(record);
    ComPtr<IMemAllocator> own = OwnAllocator(sink->GetPin(0));
};

void SinksAllocator(Subject& library)
{
    const OtherSink sink; // one whose allocator was looked at before it agreed on any
    fixtures::PushGraph graph(TenBrighter(library).Get(), type);
    Require(ArrivesInPlace(graph, graph.Seen()), "frames are copied although both sides agree");
    sink.TakeOver(graph);
    Require(sink.record.allocator == sink.own.Get(),
            "the sink's allocator was not proposed upstream when the output was connected");
    Require(ArrivesInPlace(graph, sink.record), "frames are copied although both sides agree again");
}

void SourcesAllocator(Subject& library)
{
    fixtures::PushGraph graph(TenBrighter(library).Get(), type, Allocator::Own);
    Require(ArrivesInPlace(graph, graph.Seen()), "frames are copied although the sink takes the source's allocator");
}

void AnotherSink(Subject& library)
{
    OtherSink second;
    fixtures::PushGraph graph(TenBrighter(library).Get(), type);
    second.record.insistsOn = second.own.Get();
    second.TakeOver(graph);
    RequireNumber(second.record.refusals, 0, "foreign allocators that the second sink was handed");
    Require(ArrivesInPlace(graph, second.record), "frames to the second sink are copied");
}

void ReadOnlyAllocator(Subject& library)
{
    fixtures::PushGraph graph(TenBrighter(library).Get(), type, Allocator::SharedReadOnly);
    Require(!ArrivesInPlace(graph, graph.Seen()), "a read-only sample was handed on");
    // The sink keeps its allocator, which is the source's now.
    Separate(graph, graph.Output(), graph.Downstream());
    RequireResult(graph.Manager()->ConnectDirect(graph.Output(), graph.Downstream(), nullptr), S_OK,
                  "connecting the sink again");
    graph.Run();
    Require(!ArrivesInPlace(graph, graph.Seen()), "a read-only sample was handed on when the sink had come back");
}

// Frames that only upstream may write to, in memory where a write ends the process.
void ProtectedMemory(Subject& library)
{
    for (const Promise& effect : Promises())
        for (const Allocator allocator : {Allocator::ReadOnly, Allocator::SharedReadOnly}) {
            const auto filter = library.Filter(*effect.classId);
            fixtures::RecordedSet set(effect.working);
            RequireResult(Parameters(filter.Get())->SetPropertySet(&set), S_OK, "SetPropertySet");
            fixtures::PushGraph graph(filter.Get(), type, allocator);
            const fixtures::GuardedMemory memory(8 * 8 * 4);
            DWORD before = 0;
            VirtualProtect(memory.data(), memory.size(), PAGE_READONLY, &before);
            fixtures::HandSample sample(memory.Bytes());
            RequireResult(graph.Send(&sample), S_OK, std::string(effect.name) + ": Receive of a read-only sample");
            RequireNumber(graph.Seen().samples, 1, std::string(effect.name) + ": samples delivered");
        }
}

// The input is connected to another source, whose frames have another size, while the output stays as it is.
void InputAgain(Subject& library)
{
    const CMediaType other = fixtures::VideoType(16, 3);
    const auto source = graph::FrameSource::Create(other);
    fixtures::PushGraph graph(TenBrighter(library).Get(), type);
    Separate(graph, graph.Upstream(), graph.Input());
    graph.Manager()->AddFilter(source.Get(), L"another source");
    RequireResult(graph.Manager()->ConnectDirect(source->GetPin(0), graph.Input(), nullptr), S_OK,
                  "the connection to another source");
    CMediaType out;
    RequireResult(graph.Output()->ConnectionMediaType(&out), S_OK, "the output's ConnectionMediaType after that");
    Require(out == other, "the output's type is not the new source's");
    graph.Run();
    RequireNumber(graph.Through(std::vector<std::uint8_t>(16 * 3 * 4, 100)).back(), 100, "the last byte of a frame");
    RequireNumber(graph.Seen().content.at(16 * 3 * 4 - 2), 110, "the last red byte of a frame from another source");
    graph.Control()->Stop();
    graph.Manager()->RemoveFilter(source.Get());
}

void BothInsist(Subject& library)
{
    OtherSink second;
    fixtures::PushGraph graph(TenBrighter(library).Get(), type, Allocator::Own);
    second.record.insistsOn = second.own.Get();
    second.TakeOver(graph);
    for (int i = 0; i < 8; ++i) // more than there are buffers
        Require(!ArrivesInPlace(graph, second.record), "a sample of the source's went to a sink that refuses it");
}

void WhileRunning(Subject& library)
{
    OtherSink second;
    second.sink->GetPin(0)->SetReconnectWhenActive(true); // it would take any
    fixtures::PushGraph graph(TenBrighter(library).Get(), type);
    second.TakeOver(graph);
    ComPtr<IMemAllocator> another;
    RequireResult(CoCreateInstance(CLSID_MemoryAllocator, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&another)), S_OK,
                  "the system's memory allocator");
    RequireResult(graph.Memory()->NotifyAllocator(another.Get(), FALSE), VFW_E_NOT_STOPPED,
                  "NotifyAllocator in a running graph");
    Require(ArrivesInPlace(graph, second.record), "the refused allocator is in use");
}

void Rings(Subject& library)
{
    const auto second = library.Filter(CLSID_Emboss);
    const fixtures::PushGraph graph(TenBrighter(library).Get(), type);
    ComPtr<IPin> secondInput, secondOutput;
    second->FindPin(L"In", &secondInput);
    second->FindPin(L"Out", &secondOutput);
    graph.Manager()->AddFilter(second.Get(), L"second");
    Separate(graph, graph.Output(), graph.Downstream());
    Separate(graph, graph.Upstream(), graph.Input());
    RequireResult(graph.Input()->ReceiveConnection(graph.Output(), &type), VFW_E_CIRCULAR_GRAPH,
                  "a filter's connection to itself");
    // The second's output isn't told of its connection, so that the first's would close the ring.
    RequireResult(graph.Input()->ReceiveConnection(secondOutput.Get(), &type), S_OK, "ReceiveConnection");
    RequireResult(graph.Output()->Connect(secondInput.Get(), &type), VFW_E_CIRCULAR_GRAPH,
                  "the connection that closes a ring of two filters");
    graph.Input()->Disconnect();
    graph.Manager()->RemoveFilter(second.Get());
}

void Questions(Subject& library)
{
    fixtures::PushGraph graph(TenBrighter(library).Get(), type);
    int asked = 0;
    graph.Seen().accepts = [&](const CMediaType& same) {
        return ++asked < 1000 && graph.Input()->QueryAccept(&same) == S_OK;
    };
    RequireResult(graph.Input()->QueryAccept(&type), S_OK, "QueryAccept with a sink that asks back");
    Require(asked < 1000, "a question that a neighbour asks back has no end");
    graph.Seen().accepts = nullptr;
}

constexpr Check connectionChecks[] = {
    {"connections", "sinks-allocator", "The sink's allocator is proposed upstream, and frames are not copied.",
     SinksAllocator},
    {"connections", "sources-allocator", "A source's own allocator is used on both sides when the sink takes it.",
     SourcesAllocator},
    {"connections", "another-sink", "A second sink's allocator is used, and never the first one's.", AnotherSink},
    {"connections", "read-only-allocator", "Samples that only upstream may write to are copied.", ReadOnlyAllocator},
    {"connections", "both-insist", "A source and a sink that both insist on their allocators are connected by copies.",
     BothInsist},
    {"connections", "protected-memory", "Frames of a read-only source may lie in memory that can't be written to.",
     ProtectedMemory},
    {"connections", "input-again", "The input can be connected to another source while the output stays.", InputAgain},
    {"connections", "while-running", "Another allocator is refused in a running graph.", WhileRunning},
    {"connections", "rings", "Connections that lead back to the filter fail with VFW_E_CIRCULAR_GRAPH.", Rings},
    {"connections", "questions", "A question that a neighbour asks back comes to an end.", Questions},
};

} // namespace

std::span<const Check> ConnectionChecks()
{
    return connectionChecks;
}

} // namespace vixahost::validate
