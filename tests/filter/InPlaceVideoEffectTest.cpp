#include "filter/InPlaceVideoEffect.h"

#include "host/fixtures/PushGraph.h"
#include "tests/support/ComTest.h"

using namespace vixahost::fixtures;

namespace {

// A bare effect: it marks what passes, and shows what the base recorded.
class Probe final : public InPlaceVideoEffect
{
public:
    Probe() : InPlaceVideoEffect(nullptr, CLSID_NULL, &created) {}
    using InPlaceVideoEffect::duration, InPlaceVideoEffect::height, InPlaceVideoEffect::pixelAspect,
        InPlaceVideoEffect::stride, InPlaceVideoEffect::width;

    HRESULT Transform(IMediaSample*) override
    {
        ++frames;
        return answer;
    }
    void OnFormatChanged() override { ++formats; }
    HRESULT StartStreaming() override { return starts; }

    HRESULT created = S_OK;
    HRESULT starts = S_OK;
    HRESULT answer = S_OK;
    int frames = 0;
    int formats = 0;
};

class InPlace : public test::ComTest
{
protected:
    void TearDown() override
    {
        EXPECT_EQ(CBaseObject::ObjectsActive(), 0) << "an object of the test's own framework is still alive";
    }
};

TEST_F(InPlace, JudgesNothingInATypesHeader)
{
    ComPtr<Probe> probe = new Probe;
    auto strange = VideoType(INT_MIN, 0);
    reinterpret_cast<VIDEOINFOHEADER*>(strange.pbFormat)->bmiHeader.biBitCount = 3;
    reinterpret_cast<VIDEOINFOHEADER*>(strange.pbFormat)->bmiHeader.biCompression = BI_JPEG;
    EXPECT_EQ(probe->CheckInputType(&strange), S_OK);
    EXPECT_EQ(probe->CheckInputType(nullptr), VFW_E_TYPE_NOT_ACCEPTED);
}

TEST_F(InPlace, RecordsTheGeometryWhenBothPinsAreConnected)
{
    ComPtr<Probe> probe = new Probe;
    EXPECT_EQ(probe->width, 0);
    EXPECT_EQ(probe->pixelAspect, 0.0);
    EXPECT_EQ(probe->duration, 50'000'000);
    {
        PushGraph graph(probe.Get(), VideoType(720, 576));
        EXPECT_EQ(probe->width, 720);
        EXPECT_EQ(probe->height, 576);
        EXPECT_EQ(probe->stride, 2880);
        EXPECT_EQ(probe->pixelAspect, 1.0);
        EXPECT_GE(probe->formats, 1);
        graph.Control()->Stop();
        graph.Manager()->Disconnect(graph.Output());
        EXPECT_EQ(probe->width, 720) << "a broken connection leaves the geometry";
        const int formats = probe->formats;
        graph.Manager()->Disconnect(graph.Upstream());
        graph.Manager()->Disconnect(graph.Input());
        ASSERT_EQ(graph.Manager()->ConnectDirect(graph.Upstream(), graph.Input(), nullptr), S_OK);
        EXPECT_EQ(probe->formats, formats) << "one pin alone records nothing";
    }
    {
        PushGraph graph(probe.Get(), VideoType2(720, 576, 4, 3));
        EXPECT_DOUBLE_EQ(probe->pixelAspect, 4.0 * 576 / (3.0 * 720));
    }
    {
        PushGraph graph(probe.Get(), VideoType2(720, -576, 4, 3));
        EXPECT_DOUBLE_EQ(probe->pixelAspect, -4.0 * 576 / (3.0 * 720));
        EXPECT_EQ(probe->height, -576);
    }
    {
        PushGraph graph(probe.Get(), VideoType2(0, 0, 0, 0)); // 0 / 0 is not a number, and not a crash
        EXPECT_NE(probe->pixelAspect, probe->pixelAspect);
    }
    {
        PushGraph graph(probe.Get(), VideoType(0x60000000, 1));
        EXPECT_EQ(probe->width, 0x60000000);
    }
}

TEST_F(InPlace, OneThatDoesNotStartIsRefusedAndLetsGo)
{
    const ComPtr<Probe> probe = new Probe;
    probe->starts = E_ABORT;
    EXPECT_THROW(PushGraph(probe.Get(), VideoType(4, 4)), Refusal);
}

TEST_F(InPlace, DroppedAndFailedFrames)
{
    ComPtr<Probe> probe = new Probe;
    PushGraph graph(probe.Get(), VideoType(4, 4));
    std::vector<std::uint8_t> frame(64);
    ComPtr<IMediaEvent> events;
    graph.Manager()->QueryInterface(IID_IMediaEvent, reinterpret_cast<void**>(events.GetAddressOf()));
    const auto qualityChanges = [&] {
        int count = 0;
        long code = 0;
        LONG_PTR first = 0, second = 0;
        while (events->GetEvent(&code, &first, &second, 50) == S_OK) {
            count += code == EC_QUALITY_CHANGE;
            events->FreeEventParams(code, first, second);
        }
        return count;
    };

    probe->answer = S_FALSE;
    EXPECT_EQ(graph.Send(frame), S_OK);
    EXPECT_EQ(graph.Send(frame), S_OK);
    EXPECT_EQ(graph.Seen().samples, 0);
    EXPECT_EQ(qualityChanges(), 1);

    probe->answer = E_ABORT;
    EXPECT_EQ(graph.Send(frame), E_ABORT);
    EXPECT_EQ(graph.Seen().samples, 0);
    probe->answer = S_OK;
    EXPECT_EQ(graph.Send(frame), S_OK);
    EXPECT_EQ(graph.Seen().samples, 1);
    EXPECT_EQ(probe->frames, 4);
}

} // namespace
