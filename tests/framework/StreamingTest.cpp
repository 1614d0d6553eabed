#include "tests/framework/TestFilters.h"

#include <gtest/gtest.h>

#include <array>

using namespace test;

namespace {

class Streaming : public testing::Test
{
protected:
    void Start()
    {
        ASSERT_EQ(S_OK, chain.Connect());
        ASSERT_HRESULT_SUCCEEDED(chain.graph->Run());
    }
    HRESULT Push(BYTE first = 0) { return chain.source->pin.Deliver(chain.Sample(first).Get()); }

    Chain chain;
    SinkPin& sink = chain.sink->pin;
    vixahost::fixtures::Record& seen = chain.sink->record;
    CTransInPlaceInputPin& in = chain.probe->In();
    CTransInPlaceOutputPin& out = chain.probe->Out();
};

TEST_F(Streaming, ReceiveInWrongStates)
{
    Held<CMemAllocator> allocator(nullptr, nullptr, nullptr);
    ALLOCATOR_PROPERTIES properties = {1, 128, 1, 0};
    allocator->SetProperties(&properties, &properties);
    allocator->Commit();
    ComPtr<IMediaSample> sample;
    ASSERT_EQ(S_OK, allocator->GetBuffer(&sample, nullptr, nullptr, 0));

    EXPECT_EQ(VFW_E_NOT_CONNECTED, in.Receive(sample.Get()));
    EXPECT_EQ(VFW_E_NOT_CONNECTED, in.EndOfStream());
    EXPECT_EQ(VFW_E_NOT_CONNECTED, in.BeginFlush());
    EXPECT_EQ(VFW_E_NOT_CONNECTED, in.EndFlush());
    EXPECT_EQ(VFW_E_NOT_CONNECTED, in.NewSegment(0, 1, 1.0));
    ASSERT_EQ(S_OK, chain.graph->Connect(chain.source->pin, in));
    EXPECT_EQ(VFW_E_NOT_CONNECTED, in.Receive(sample.Get())) << "nowhere to pass it on";
    ASSERT_EQ(S_OK, chain.graph->Connect(out, sink));
    EXPECT_EQ(VFW_E_WRONG_STATE, in.Receive(sample.Get()));
    EXPECT_EQ(VFW_E_WRONG_STATE, in.EndOfStream());
    EXPECT_EQ(0, seen.endsOfStream);
    EXPECT_EQ(E_POINTER, in.Receive(nullptr));

    ASSERT_HRESULT_SUCCEEDED(chain.graph->Pause());
    EXPECT_EQ(S_OK, in.Receive(sample.Get())) << "a paused filter streams";
    ASSERT_HRESULT_SUCCEEDED(chain.graph->Stop());
    EXPECT_EQ(VFW_E_WRONG_STATE, in.Receive(sample.Get()));
    EXPECT_EQ(1, seen.samples);
    sample.Reset();
    EXPECT_EQ(0u, allocator.Release());
}

TEST_F(Streaming, ResultsOfTransformAndOfDelivery)
{
    Start();
    chain.graph->CountEvents(EC_QUALITY_CHANGE);
    chain.probe->transform = [](IMediaSample*) { return S_FALSE; };
    EXPECT_EQ(S_OK, Push());
    EXPECT_EQ(S_OK, Push());
    EXPECT_EQ(0, seen.samples) << "skipped";
    EXPECT_EQ(1, chain.graph->CountEvents(EC_QUALITY_CHANGE)) << "once from pause to run";
    chain.graph->Pause();
    chain.graph->Run();
    EXPECT_EQ(S_OK, Push());
    EXPECT_EQ(1, chain.graph->CountEvents(EC_QUALITY_CHANGE));

    chain.probe->transform = [](IMediaSample*) { return VFW_E_UNSUPPORTED_VIDEO; };
    EXPECT_EQ(VFW_E_UNSUPPORTED_VIDEO, Push());
    chain.probe->transform = [](IMediaSample*) -> HRESULT { throw std::bad_alloc(); };
    EXPECT_EQ(E_OUTOFMEMORY, Push());
    chain.probe->transform = [](IMediaSample*) -> HRESULT { throw 1; };
    EXPECT_EQ(E_UNEXPECTED, Push());
    EXPECT_EQ(0, seen.samples);
    chain.probe->transform = nullptr;
    seen.answer = S_FALSE;
    EXPECT_EQ(S_FALSE, Push()) << "downstream's answer goes up";
    EXPECT_EQ(1, seen.samples);
}

TEST_F(Streaming, OtherStreamsPassUntouched)
{
    Start();
    const ComPtr<IMediaSample> sample = chain.Sample(9);
    ComPtr<IMediaSample2> sample2;
    ASSERT_EQ(S_OK, sample.As(&sample2));
    AM_SAMPLE2_PROPERTIES properties = {};
    sample2->GetProperties(sizeof properties, reinterpret_cast<BYTE*>(&properties));
    properties.dwStreamId = AM_STREAM_CONTROL;
    ASSERT_EQ(S_OK, sample2->SetProperties(sizeof properties, reinterpret_cast<BYTE*>(&properties)));
    EXPECT_EQ(S_OK, chain.source->pin.Deliver(sample.Get()));
    EXPECT_EQ(0, chain.probe->transforms);
    EXPECT_EQ(1, seen.samples);
    EXPECT_EQ(sample.Get(), seen.last);
    EXPECT_EQ(9, seen.content.at(0));
}

TEST_F(Streaming, SeveralSamplesAtOnce)
{
    Start();
    const ComPtr<IMediaSample> a = chain.Sample(), b = chain.Sample(), c = chain.Sample();
    std::array<IMediaSample*, 3> samples = {a.Get(), b.Get(), c.Get()};
    LONG processed = 9;
    EXPECT_EQ(S_OK, in.ReceiveMultiple(samples.data(), 3, &processed));
    EXPECT_EQ(3, processed);
    int calls = 0;
    chain.probe->transform = [&](IMediaSample*) { return ++calls == 2 ? E_FAIL : S_OK; };
    EXPECT_EQ(E_FAIL, in.ReceiveMultiple(samples.data(), 3, &processed));
    EXPECT_EQ(1, processed);
    EXPECT_EQ(S_OK, in.ReceiveMultiple(samples.data(), 0, &processed));
    EXPECT_EQ(0, processed);
    EXPECT_EQ(E_POINTER, in.ReceiveMultiple(nullptr, 3, &processed));
    EXPECT_EQ(E_POINTER, in.ReceiveMultiple(samples.data(), 3, nullptr));

    EXPECT_EQ(S_FALSE, in.ReceiveCanBlock());
    sink.canBlock = S_OK;
    EXPECT_EQ(S_OK, in.ReceiveCanBlock());
}

TEST_F(Streaming, FlushEndAndSegmentGoDownstream)
{
    Start();
    EXPECT_EQ(S_OK, in.NewSegment(10, 20, 2.0));
    EXPECT_EQ(1, seen.segments);
    EXPECT_EQ(10, sink.CurrentStartTime());
    EXPECT_EQ(20, sink.CurrentStopTime());
    EXPECT_EQ(2.0, sink.CurrentRate());
    EXPECT_EQ(20, in.CurrentStopTime());

    const ComPtr<IMediaSample> sample = chain.Sample();
    EXPECT_EQ(S_OK, in.BeginFlush());
    EXPECT_EQ(1, seen.flushBegins);
    EXPECT_TRUE(sink.IsFlushing());
    EXPECT_EQ(S_FALSE, in.Receive(sample.Get()));
    EXPECT_EQ(S_FALSE, in.EndOfStream());
    EXPECT_EQ(0, seen.endsOfStream) << "the end of a stream that is flushed is not passed on";
    EXPECT_EQ(0, seen.samples);
    EXPECT_EQ(S_OK, in.EndFlush());
    EXPECT_EQ(1, seen.flushEnds);
    EXPECT_EQ(S_OK, in.Receive(sample.Get()));
    EXPECT_EQ(S_OK, in.EndOfStream());
    EXPECT_EQ(1, seen.endsOfStream);

    // A flush that a stop cuts short does not last into the next start.
    EXPECT_EQ(S_OK, in.BeginFlush());
    chain.graph->Stop();
    ASSERT_HRESULT_SUCCEEDED(chain.graph->Run());
    EXPECT_EQ(S_OK, in.Receive(sample.Get()));
}

TEST_F(Streaming, SampleWithATypeThatIsTaken)
{
    chain.source->pin.offer.bufferBytes = 4096;
    Start();
    chain.probe->typesSet.clear();
    CMediaType wide = VideoType(16, 8);
    ComPtr<IMediaSample> sample = chain.Sample(1);
    sample->SetMediaType(&wide);
    chain.source->pin.types.push_back(wide);
    ASSERT_EQ(S_OK, chain.source->pin.Deliver(sample.Get()));
    EXPECT_TRUE(in.CurrentMediaType() == wide);
    EXPECT_TRUE(out.CurrentMediaType() == wide);
    EXPECT_TRUE(sink.CurrentMediaType() == wide);
    const std::vector<std::pair<PIN_DIRECTION, LONG>> expected = {{PINDIR_INPUT, 16}, {PINDIR_OUTPUT, 16}};
    EXPECT_EQ(expected, chain.probe->typesSet);
    EXPECT_TRUE(seen.properties.dwSampleFlags & AM_SAMPLE_TYPECHANGED) << "it passes on with its type";

    // The next one, of the same buffer, carries nothing of it.
    sample.Reset();
    ASSERT_EQ(S_OK, Push());
    EXPECT_FALSE(seen.properties.dwSampleFlags & AM_SAMPLE_TYPECHANGED);
    EXPECT_TRUE(in.CurrentMediaType() == wide);
}

TEST_F(Streaming, SampleWithATypeThatIsRefused)
{
    Start();
    chain.graph->CountEvents(EC_ERRORABORT);
    CMediaType other = VideoType(8, 4, MEDIASUBTYPE_RGB24);
    const ComPtr<IMediaSample> sample = chain.Sample();
    sample->SetMediaType(&other);
    EXPECT_EQ(VFW_E_INVALIDMEDIATYPE, chain.source->pin.Deliver(sample.Get()));
    EXPECT_EQ(1, seen.endsOfStream) << "the stream is over";
    EXPECT_EQ(0, seen.samples);
    sample->SetMediaType(nullptr);
    EXPECT_EQ(VFW_E_RUNTIME_ERROR, chain.source->pin.Deliver(sample.Get()));
    EXPECT_EQ(VFW_E_RUNTIME_ERROR, in.EndOfStream());
    EXPECT_EQ(1, seen.endsOfStream);
    LONG_PTR reason = 0;
    EXPECT_EQ(1, chain.graph->CountEvents(EC_ERRORABORT, &reason));
    EXPECT_EQ(static_cast<LONG_PTR>(VFW_E_TYPE_NOT_ACCEPTED), reason);

    chain.graph->Stop();
    ASSERT_HRESULT_SUCCEEDED(chain.graph->Run());
    EXPECT_EQ(S_OK, Push()) << "a stop ends the error";
    // Downstream's refusal counts as much as the filter's own.
    seen.accepts = [](const CMediaType&) { return false; };
    CMediaType wide = VideoType(4, 4);
    sample->SetMediaType(&wide);
    EXPECT_EQ(VFW_E_INVALIDMEDIATYPE, chain.source->pin.Deliver(sample.Get()));
    EXPECT_EQ(2, seen.endsOfStream);
}

TEST_F(Streaming, CopyingFilterKeepsItsOutputType)
{
    chain.source->pin.offer.allocator = Allocator::ReadOnly;
    chain.source->pin.types.push_back(VideoType(4, 4));
    Start();
    EXPECT_EQ(S_OK, out.QueryAccept(&chain.source->pin.types.front()));
    EXPECT_EQ(S_FALSE, out.QueryAccept(&chain.source->pin.types[1]));
    EXPECT_EQ(S_OK, in.QueryAccept(&chain.source->pin.types[1]));
    const ComPtr<IMediaSample> sample = chain.Sample();
    sample->SetMediaType(&chain.source->pin.types[1]);
    EXPECT_EQ(S_OK, chain.source->pin.Deliver(sample.Get()));
    EXPECT_TRUE(sink.CurrentMediaType() == chain.source->pin.types[1]) << "the copy carries the type";
    chain.graph->Stop();
    EXPECT_EQ(S_OK, out.QueryAccept(&chain.source->pin.types[1]));
}

TEST_F(Streaming, QualityMessagesGoUpstream)
{
    struct QualitySink : IQualityControl
    {
        int count = 0;
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) noexcept override { return E_NOINTERFACE; }
        ULONG STDMETHODCALLTYPE AddRef() noexcept override { return 2; }
        ULONG STDMETHODCALLTYPE Release() noexcept override { return 1; }
        HRESULT STDMETHODCALLTYPE Notify(IBaseFilter*, Quality) override
        {
            if (++count > 1)
                throw count;
            return S_OK;
        }
        HRESULT STDMETHODCALLTYPE SetSink(IQualityControl*) noexcept override { return E_NOTIMPL; }
    } manager;

    const Quality late = {Famine, 500, 1000, 0};
    EXPECT_EQ(VFW_E_NOT_FOUND, out.Notify(chain.sink.Get(), late));
    Start();
    ComPtr<IQualityControl> control;
    ASSERT_EQ(S_OK, out.QueryInterface(IID_IQualityControl, reinterpret_cast<void**>(control.GetAddressOf())));
    EXPECT_EQ(S_OK, control->Notify(chain.sink.Get(), late));
    EXPECT_EQ(1, chain.source->pin.qualityMessages);
    chain.probe->qualityResult = S_OK;
    EXPECT_EQ(S_OK, control->Notify(chain.sink.Get(), late));
    EXPECT_EQ(1, chain.source->pin.qualityMessages) << "the filter dealt with it";
    chain.probe->qualityResult = S_FALSE;
    EXPECT_EQ(S_OK, in.SetSink(&manager));
    EXPECT_EQ(S_OK, control->Notify(chain.sink.Get(), late));
    EXPECT_EQ(E_UNEXPECTED, control->Notify(chain.sink.Get(), late)) << "it threw";
    EXPECT_EQ(2, manager.count);
    EXPECT_EQ(1, chain.source->pin.qualityMessages);
    EXPECT_EQ(S_OK, in.SetSink(nullptr));
    EXPECT_EQ(E_NOTIMPL, in.Notify(chain.sink.Get(), late)) << "an input is not where a sink complains";
}

TEST_F(Streaming, StatesAndClock)
{
    Probe& probe = *chain.probe;
    FILTER_STATE state = State_Running;
    EXPECT_EQ(E_POINTER, probe.GetState(0, nullptr));
    EXPECT_EQ(S_OK, probe.GetState(0, &state));
    EXPECT_EQ(State_Stopped, state);
    ASSERT_EQ(S_OK, chain.Connect());

    probe.startResult = VFW_E_NO_AUDIO_HARDWARE;
    EXPECT_EQ(VFW_E_NO_AUDIO_HARDWARE, probe.Pause());
    EXPECT_EQ(VFW_E_NO_AUDIO_HARDWARE, probe.Run(0));
    EXPECT_EQ(State_Stopped, probe.State());
    probe.startResult = S_OK;
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(S_OK, probe.Run(0)) << "straight from the stopped state";
        EXPECT_TRUE(probe.streaming);
        EXPECT_EQ(State_Running, probe.State());
        EXPECT_EQ(S_OK, probe.Pause());
        EXPECT_EQ(S_OK, probe.Pause());
        EXPECT_EQ(S_OK, probe.GetState(0, &state));
        EXPECT_EQ(State_Paused, state);
        EXPECT_EQ(S_OK, probe.Stop());
        EXPECT_EQ(S_OK, probe.Stop());
        EXPECT_FALSE(probe.streaming);
    }
    chain.source->pin.activeResult = E_ACCESSDENIED;
    EXPECT_EQ(E_ACCESSDENIED, chain.source->Pause());
    EXPECT_EQ(State_Stopped, chain.source->State());

    CRefTime time;
    EXPECT_EQ(VFW_E_NO_CLOCK, probe.StreamTime(time));
    ComPtr<IReferenceClock> clock, back;
    ASSERT_EQ(S_OK, CoCreateInstance(CLSID_SystemClock, nullptr, CLSCTX_INPROC_SERVER, IID_IReferenceClock,
                                     reinterpret_cast<void**>(clock.GetAddressOf())));
    EXPECT_EQ(E_POINTER, probe.GetSyncSource(nullptr));
    EXPECT_EQ(S_OK, probe.SetSyncSource(clock.Get()));
    EXPECT_EQ(S_OK, probe.GetSyncSource(&back));
    EXPECT_EQ(clock.Get(), back.Get());
    REFERENCE_TIME now = 0;
    clock->GetTime(&now);
    EXPECT_EQ(S_OK, probe.Run(now - 10 * UNITS));
    EXPECT_EQ(S_OK, probe.StreamTime(time));
    EXPECT_GE(time, 10 * UNITS);
    EXPECT_LT(time, 20 * UNITS);
    EXPECT_EQ(S_OK, probe.Stop());
    EXPECT_EQ(S_OK, probe.SetSyncSource(nullptr));
}

TEST_F(Streaming, FilterInTheGraph)
{
    Probe& probe = *chain.probe;
    EXPECT_EQ(E_POINTER, probe.QueryFilterInfo(nullptr));
    EXPECT_EQ(E_POINTER, probe.QueryVendorInfo(nullptr));
    FILTER_INFO info = {};
    EXPECT_EQ(S_OK, probe.QueryFilterInfo(&info));
    EXPECT_STREQ(L"probe", info.achName);
    ASSERT_NE(nullptr, info.pGraph);
    info.pGraph->Release();
    EXPECT_EQ(S_FALSE, probe.Register());
    EXPECT_EQ(S_FALSE, probe.Unregister());

    // Paused without a source, the sink is told that nothing will come.
    ASSERT_EQ(S_OK, chain.Connect());
    chain.source->pin.Disconnect();
    in.Disconnect();
    EXPECT_EQ(S_OK, chain.sink->Pause());
    EXPECT_EQ(S_OK, probe.Pause());
    EXPECT_EQ(1, seen.endsOfStream);
    EXPECT_EQ(S_OK, probe.Stop());
    EXPECT_EQ(S_OK, chain.sink->Stop());
    const std::wstring longName(200, L'x');
    EXPECT_EQ(S_OK, probe.JoinFilterGraph(nullptr, longName.c_str()));
    EXPECT_EQ(S_OK, probe.QueryFilterInfo(&info));
    EXPECT_EQ(127u, std::wstring(info.achName).size());
    EXPECT_EQ(nullptr, info.pGraph);
}

} // namespace
