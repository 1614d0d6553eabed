#include "tests/framework/TestFilters.h"

#include <gtest/gtest.h>

using namespace test;

namespace {

TEST(Connection, RefusalsCarryTheirReason)
{
    Chain chain;
    SourcePin& from = chain.source->pin;
    CTransInPlaceInputPin& in = chain.probe->In();
    CTransInPlaceOutputPin& out = chain.probe->Out();
    const CMediaType rgb24 = VideoType(8, 4, MEDIASUBTYPE_RGB24);

    EXPECT_EQ(E_POINTER, from.Connect(nullptr, nullptr));
    EXPECT_EQ(E_POINTER, in.ReceiveConnection(nullptr, &from.types.front()));
    EXPECT_EQ(E_POINTER, in.ReceiveConnection(&from, nullptr));
    EXPECT_EQ(VFW_E_INVALID_DIRECTION, from.Connect(&out, &from.types.front()));
    EXPECT_EQ(VFW_E_INVALID_DIRECTION, in.ReceiveConnection(&chain.sink->pin, &from.types.front()));
    EXPECT_EQ(VFW_E_TYPE_NOT_ACCEPTED, in.ReceiveConnection(&from, &rgb24));
    EXPECT_EQ(VFW_E_TYPE_NOT_ACCEPTED, from.Connect(&in, &rgb24)) << "not one of the source's own";
    EXPECT_EQ(E_UNEXPECTED, out.Connect(&chain.sink->pin, &from.types.front())) << "there is no type to send yet";
    from.types = {rgb24};
    EXPECT_EQ(VFW_E_NO_ACCEPTABLE_TYPES, from.Connect(&in, nullptr));
    from.types.clear();
    EXPECT_EQ(VFW_E_NO_ACCEPTABLE_TYPES, from.Connect(&in, nullptr));
    from.types = {VideoType(8, 4)};

    IPin* peer = &from;
    AM_MEDIA_TYPE type = VideoType(1, 1);
    EXPECT_EQ(VFW_E_NOT_CONNECTED, in.ConnectedTo(&peer));
    EXPECT_EQ(nullptr, peer);
    FreeMediaType(type);
    EXPECT_EQ(VFW_E_NOT_CONNECTED, in.ConnectionMediaType(&type));
    EXPECT_EQ(0u, type.cbFormat);
    EXPECT_EQ(S_FALSE, in.Disconnect());
    EXPECT_EQ(E_POINTER, in.ConnectedTo(nullptr));
    EXPECT_EQ(E_POINTER, in.ConnectionMediaType(nullptr));
    EXPECT_EQ(E_POINTER, in.QueryPinInfo(nullptr));
    EXPECT_EQ(E_POINTER, in.QueryDirection(nullptr));
    EXPECT_EQ(E_POINTER, in.QueryId(nullptr));
    EXPECT_EQ(E_POINTER, in.QueryAccept(nullptr));
    ULONG count = 2;
    EXPECT_EQ(E_NOTIMPL, in.QueryInternalConnections(nullptr, &count));
    EXPECT_EQ(E_UNEXPECTED, out.EndOfStream());
    EXPECT_EQ(E_UNEXPECTED, out.BeginFlush());
    EXPECT_EQ(E_UNEXPECTED, out.EndFlush());

    ASSERT_EQ(S_OK, chain.Connect());
    EXPECT_EQ(VFW_E_ALREADY_CONNECTED, from.Connect(&in, nullptr));
    EXPECT_EQ(VFW_E_ALREADY_CONNECTED, in.ReceiveConnection(&from, &from.types.front()));
    EXPECT_EQ(S_OK, in.QueryAccept(&from.types.front()));
    EXPECT_EQ(S_FALSE, in.QueryAccept(&rgb24));
    EXPECT_EQ(S_FALSE, out.QueryAccept(&rgb24));
    EXPECT_EQ(S_OK, in.ConnectedTo(&peer));
    EXPECT_EQ(static_cast<IPin*>(&from), peer);
    peer->Release();
    EXPECT_EQ(S_OK, out.ConnectionMediaType(&type));
    EXPECT_TRUE(CMediaType(type) == from.types[0]);
    FreeMediaType(type);

    ASSERT_HRESULT_SUCCEEDED(chain.graph->Pause());
    EXPECT_EQ(VFW_E_NOT_STOPPED, in.Disconnect());
    ASSERT_HRESULT_SUCCEEDED(chain.graph->Stop());
    EXPECT_EQ(S_OK, chain.Disconnect());
    ASSERT_EQ(S_OK, chain.probe->Pause());
    EXPECT_EQ(VFW_E_NOT_STOPPED, in.ReceiveConnection(&from, &from.types.front()));
    EXPECT_EQ(VFW_E_NOT_STOPPED, out.Connect(&chain.sink->pin, nullptr));
    EXPECT_EQ(S_OK, chain.probe->Stop());
}

TEST(Connection, NeedsAGraphAndATransport)
{
    Held<Source> source;
    Held<Probe> probe;
    EXPECT_EQ(VFW_E_NOT_IN_GRAPH, source->pin.Connect(&probe->In(), nullptr));
    EXPECT_FALSE(source->pin.IsConnected());
    EXPECT_FALSE(probe->In().IsConnected());
    ASSERT_EQ(1u, probe->completed.size());
    EXPECT_EQ(PINDIR_INPUT, probe->completed[0].first);

    // A pin that takes connections but no samples.
    struct Deaf : SinkPin
    {
        using SinkPin::SinkPin;
        HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept override
        {
            return IsEqualIID(riid, IID_IMemInputPin) ? E_NOINTERFACE : SinkPin::NonDelegatingQueryInterface(riid, ppv);
        }
    };
    {
        Held<Sink> sink;
        {
            Deaf deaf(*sink);
            EXPECT_EQ(VFW_E_NO_TRANSPORT, source->pin.Connect(&deaf, nullptr));
        }
        EXPECT_EQ(0u, sink.Release());
    }
    EXPECT_EQ(0u, probe.Release());
    EXPECT_EQ(0u, source.Release());
    EXPECT_EQ(0, CBaseObject::ObjectsActive());
}

TEST(Connection, TriesThePeersTypesThenItsOwn)
{
    Chain chain;
    SourcePin& from = chain.source->pin;
    from.types = {VideoType(8, 4, MEDIASUBTYPE_RGB24), VideoType(8, 4), VideoType(16, 4)};

    // The types in the middle of the list that fit a partial one.
    CMediaType partial(&MEDIATYPE_Video);
    partial.SetSubtype(&MEDIASUBTYPE_RGB32);
    ASSERT_EQ(S_OK, from.Connect(&chain.probe->In(), &partial));
    EXPECT_TRUE(from.CurrentMediaType() == from.types[1]);

    // The sink's own preference comes before that of the output, and the input has to follow.
    chain.sink->pin.types = {VideoType(16, 4)};
    ASSERT_EQ(S_OK, chain.probe->Out().Connect(&chain.sink->pin, nullptr));
    EXPECT_TRUE(chain.probe->Out().CurrentMediaType() == from.types[2]);
    EXPECT_TRUE(chain.probe->In().CurrentMediaType() == from.types[2]) << "reconnected through the graph";
    EXPECT_TRUE(from.CurrentMediaType() == from.types[2]);
    EXPECT_FALSE(chain.probe->UsingDifferentAllocators());

    // And the other way round: the sink stays, the input comes back with another type.
    chain.sink->pin.types.clear();
    ASSERT_EQ(S_OK, from.Disconnect());
    ASSERT_EQ(S_OK, chain.probe->In().Disconnect());
    ASSERT_EQ(S_OK, from.Connect(&chain.probe->In(), &from.types[1]));
    EXPECT_TRUE(chain.probe->Out().CurrentMediaType() == from.types[1]);
    EXPECT_TRUE(chain.sink->pin.CurrentMediaType() == from.types[1]);
}

TEST(Connection, FailedAttemptsLeaveNothingBehind)
{
    Chain chain;
    chain.sink->pin.completeResult = VFW_E_NO_CLOCK;
    ASSERT_EQ(S_OK, chain.graph->Connect(chain.source->pin, chain.probe->In()));
    EXPECT_EQ(VFW_E_NO_CLOCK, chain.probe->Out().Connect(&chain.sink->pin, nullptr))
        << "the first reason that says more";
    EXPECT_FALSE(chain.probe->Out().IsConnected());
    EXPECT_FALSE(chain.sink->pin.IsConnected());
    EXPECT_EQ(nullptr, chain.probe->Out().ConnectedIMemInputPin());
    chain.sink->pin.completeResult = S_OK;
    chain.sink->record.accepts = [](const CMediaType&) { return false; };
    EXPECT_EQ(VFW_E_NO_ACCEPTABLE_TYPES, chain.probe->Out().Connect(&chain.sink->pin, nullptr));
    chain.sink->record.accepts = [](const CMediaType&) -> bool { throw std::bad_alloc(); };
    EXPECT_EQ(E_OUTOFMEMORY, chain.probe->Out().Connect(&chain.sink->pin, nullptr));
    chain.sink->record.accepts = nullptr;
    ComPtr<IMemAllocator> another;
    ASSERT_EQ(S_OK, CreateMemoryAllocator(&another));
    chain.sink->record.insistsOn = another.Get();
    EXPECT_HRESULT_FAILED(chain.probe->Out().Connect(&chain.sink->pin, nullptr));
    EXPECT_FALSE(chain.sink->pin.IsConnected());
    chain.sink->record.insistsOn = nullptr;
    EXPECT_EQ(S_OK, chain.probe->Out().Connect(&chain.sink->pin, nullptr));
}

TEST(Connection, RingsAreRefused)
{
    Held<Probe> second;
    {
        Chain chain;
        ASSERT_HRESULT_SUCCEEDED(chain.graph->Add(second.Get()));
        const CMediaType& type = chain.source->pin.types[0];
        CTransInPlaceInputPin& in = chain.probe->In();
        EXPECT_EQ(VFW_E_CIRCULAR_GRAPH, in.ReceiveConnection(&chain.probe->Out(), &type));
        // The second's output is not told of its connection, so the first's closes the ring.
        ASSERT_EQ(S_OK, in.ReceiveConnection(&second->Out(), &type));
        EXPECT_EQ(VFW_E_CIRCULAR_GRAPH, chain.probe->Out().Connect(&second->In(), &type));
        EXPECT_EQ(S_OK, in.Disconnect());
        chain.graph.reset();
        EXPECT_EQ(0u, second.Release());
    }
}

// Neighbours that turn every question round and ask back.
TEST(Connection, QuestionsComeToAnEnd)
{
    Chain chain;
    ASSERT_EQ(S_OK, chain.Connect());
    CTransInPlaceInputPin& in = chain.probe->In();
    CTransInPlaceOutputPin& out = chain.probe->Out();
    chain.source->pin.whenAsked = [&](const CMediaType& type) { EXPECT_EQ(S_OK, in.QueryAccept(&type)); };
    chain.sink->record.accepts = [&](const CMediaType& type) { return out.QueryAccept(&type) == S_OK; };
    EXPECT_EQ(S_OK, in.QueryAccept(&chain.source->pin.types.front()));
    EXPECT_EQ(S_OK, out.QueryAccept(&chain.source->pin.types.front()));
    chain.source->pin.whenAsked = nullptr;
}

// A type whose sizes lie is copied as far as it can be: a block that is claimed and missing counts as none.
TEST(Connection, HostileTypesAreRefused)
{
    Chain chain;
    AM_MEDIA_TYPE lying = {};
    lying.majortype = MEDIATYPE_Video;
    lying.subtype = MEDIASUBTYPE_RGB32;
    lying.formattype = FORMAT_VideoInfo;
    lying.cbFormat = sizeof(VIDEOINFOHEADER);
    EXPECT_EQ(S_FALSE, chain.probe->In().QueryAccept(&lying));
    EXPECT_EQ(VFW_E_TYPE_NOT_ACCEPTED, chain.probe->In().ReceiveConnection(&chain.source->pin, &lying));
    lying.cbFormat = 0xFFFFFFFF;
    EXPECT_EQ(S_FALSE, chain.probe->In().QueryAccept(&lying));
}

} // namespace
