#include "filter/InPlaceVideoEffect.h"

#include "host/fixtures/PushGraph.h"
#include "tests/support/Library.h"

using namespace test;
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

    HRESULT created = S_OK;
    HRESULT answer = S_OK;
    int frames = 0;
    int formats = 0;
};

class InPlace : public LibraryTest
{
protected:
    static void SetUpTestSuite() { CoInitializeEx(nullptr, COINIT_MULTITHREADED); }
    static void TearDownTestSuite() { CoUninitialize(); }
    void TearDown() override
    {
        LibraryTest::TearDown();
        EXPECT_EQ(CBaseObject::ObjectsActive(), 0) << "an object of the test's own framework is still alive";
    }
};

TEST_F(InPlace, AcceptsTheTwoFormatsOnly)
{
    ComPtr<Probe> probe = new Probe;
    const auto check = [&](const CMediaType& type) { return probe->CheckInputType(&type); };
    EXPECT_EQ(check(VideoType(4, 4)), S_OK);
    EXPECT_EQ(check(VideoType2(4, 4, 4, 3)), S_OK);
    EXPECT_EQ(check(VideoType(4, 4, MEDIASUBTYPE_RGB24)), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(check(VideoType(4, 4, MEDIASUBTYPE_YUY2)), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(check(CMediaType()), VFW_E_TYPE_NOT_ACCEPTED);
    EXPECT_EQ(probe->CheckInputType(nullptr), VFW_E_TYPE_NOT_ACCEPTED);

    auto audio = VideoType(4, 4);
    audio.SetType(&MEDIATYPE_Audio);
    EXPECT_EQ(check(audio), VFW_E_TYPE_NOT_ACCEPTED);
    auto other = VideoType(4, 4);
    other.SetFormatType(&FORMAT_MPEGVideo);
    EXPECT_EQ(check(other), VFW_E_TYPE_NOT_ACCEPTED);

    // The format block must hold the header that it names; nothing in the header is judged.
    auto shorter = VideoType(4, 4);
    shorter.cbFormat = sizeof(VIDEOINFOHEADER) - 1;
    EXPECT_EQ(check(shorter), VFW_E_TYPE_NOT_ACCEPTED);
    shorter.cbFormat = 0;
    EXPECT_EQ(check(shorter), VFW_E_TYPE_NOT_ACCEPTED);
    auto misnamed = VideoType(4, 4);
    misnamed.SetFormatType(&FORMAT_VideoInfo2);
    EXPECT_EQ(check(misnamed), VFW_E_TYPE_NOT_ACCEPTED) << "the longer header in the shorter block";
    auto strange = VideoType(INT_MIN, 0);
    reinterpret_cast<VIDEOINFOHEADER*>(strange.pbFormat)->bmiHeader.biBitCount = 3;
    reinterpret_cast<VIDEOINFOHEADER*>(strange.pbFormat)->bmiHeader.biCompression = BI_JPEG;
    EXPECT_EQ(check(strange), S_OK);
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

TEST_F(InPlace, InterfacesOfEveryEffect)
{
    for (const auto& effect : effects) {
        const auto filter = library.Create(effect.clsid);
        ComPtr<IEffectFilter> parameters;
        ASSERT_EQ(filter.As(&parameters), S_OK) << effect.name;
        ComPtr<IUnknown> one, other;
        filter.As(&one);
        parameters.As(&other);
        EXPECT_EQ(one.Get(), other.Get()) << "two faces, one object";
        ComPtr<IBaseFilter> back;
        EXPECT_EQ(parameters.As(&back), S_OK);
        EXPECT_EQ(back.Get(), filter.Get());
        EXPECT_EQ(filter->QueryInterface(IID_IEffectFilter, nullptr), E_POINTER);
        for (const IID& iid : {IID_IMediaFilter, IID_IPersist, IID_IAMovieSetup}) {
            ComPtr<IUnknown> face;
            EXPECT_EQ(filter->QueryInterface(iid, reinterpret_cast<void**>(face.GetAddressOf())), S_OK);
        }
        void* none = &library;
        EXPECT_EQ(filter->QueryInterface(IID_IMediaSeeking, &none), E_NOINTERFACE);
        EXPECT_EQ(none, nullptr);

        EXPECT_EQ(parameters->SetPropertySet(nullptr), S_OK);
        for (const REFERENCE_TIME duration : {REFERENCE_TIME{0}, REFERENCE_TIME{-1}, REFERENCE_TIME{1} << 62})
            EXPECT_EQ(parameters->SetDuration(duration), S_OK);
        EXPECT_EQ(filter->AddRef() - 1, filter->Release());
    }
}

TEST_F(InPlace, AggregatesIntoAnOuterObject)
{
    struct Outer final : IUnknown
    {
        STDMETHODIMP QueryInterface(REFIID riid, void** object) noexcept override
        {
            ++queries;
            if (riid != IID_IUnknown)
                return inner->QueryInterface(riid, object);
            *object = static_cast<IUnknown*>(this);
            AddRef();
            return S_OK;
        }
        STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++references; }
        STDMETHODIMP_(ULONG) Release() noexcept override { return --references; }
        ComPtr<IUnknown> inner;
        ULONG references = 1;
        int queries = 0;
    } outer;

    const auto factory = library.Factory(vixavideofx::CLSID_Emboss);
    ASSERT_EQ(factory->CreateInstance(&outer, IID_IUnknown, reinterpret_cast<void**>(outer.inner.GetAddressOf())),
              S_OK);
    EXPECT_EQ(outer.references, 1u) << "the inner object holds no reference to the outer";
    ComPtr<IEffectFilter> face;
    ASSERT_EQ(outer.inner.As(&face), S_OK);
    EXPECT_EQ(outer.references, 2u) << "faces count on the outer object";
    ComPtr<IUnknown> identity;
    face.As(&identity);
    EXPECT_EQ(identity.Get(), &outer);
    identity.Reset();
    face.Reset();
    EXPECT_EQ(outer.references, 1u);
    EXPECT_EQ(outer.inner.Detach()->Release(), 0u);
}

TEST_F(InPlace, PinsOfEveryEffect)
{
    for (const auto& effect : effects) {
        const auto filter = library.Create(effect.clsid);
        ComPtr<IPin> input, output, none;
        ASSERT_EQ(filter->FindPin(L"In", &input), S_OK);
        ASSERT_EQ(filter->FindPin(L"Out", &output), S_OK);
        EXPECT_EQ(filter->FindPin(L"Input", &none), VFW_E_NOT_FOUND);
        PIN_INFO info{};
        input->QueryPinInfo(&info);
        EXPECT_STREQ(info.achName, L"Input");
        EXPECT_EQ(info.dir, PINDIR_INPUT);
        info.pFilter->Release();
        output->QueryPinInfo(&info);
        EXPECT_STREQ(info.achName, L"Output");
        EXPECT_EQ(info.dir, PINDIR_OUTPUT);
        info.pFilter->Release();
        EXPECT_EQ(input->QueryAccept(&static_cast<const AM_MEDIA_TYPE&>(VideoType(4, 4))), S_OK);
        EXPECT_EQ(input->QueryAccept(&static_cast<const AM_MEDIA_TYPE&>(VideoType(4, 4, MEDIASUBTYPE_RGB24))), S_FALSE);

        // Outside a graph a connection is refused.
        const auto source = vixahost::graph::FrameSource::Create(VideoType(4, 4));
        EXPECT_EQ(source->GetPin(0)->Connect(input.Get(), nullptr), VFW_E_NOT_IN_GRAPH) << effect.name;
        EXPECT_EQ(input->ConnectedTo(&none), VFW_E_NOT_CONNECTED);
    }
}

} // namespace
