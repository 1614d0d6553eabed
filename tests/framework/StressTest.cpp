// What happens at the same time as streaming: state changes, flushes, questions and quality messages from other
// threads.
#include "tests/framework/TestFilters.h"

#include <gtest/gtest.h>

#include <thread>

using namespace test;

namespace {

constexpr DWORD duration = 1000; // milliseconds of each run

TEST(Stress, StatesChangeWhileSamplesCome)
{
    for (const auto mode : {Allocator::Shared, Allocator::ReadOnly}) {
        Chain chain;
        chain.source->pin.offer.allocator = mode;
        chain.source->pin.StreamByItself();
        chain.sink->record.keepsContent = false;
        ASSERT_EQ(S_OK, chain.Connect());
        const ULONGLONG end = GetTickCount64() + duration;
        int rounds = 0;
        for (; GetTickCount64() < end; ++rounds) {
            ASSERT_HRESULT_SUCCEEDED(chain.graph->Run());
            if (rounds % 2)
                Sleep(1);
            if (rounds % 3) {
                ASSERT_HRESULT_SUCCEEDED(chain.graph->Pause());
            }
            ASSERT_HRESULT_SUCCEEDED(chain.graph->Stop());
            ASSERT_FALSE(chain.probe->streaming);
            const int before = chain.sink->record.samples;
            Sleep(0);
            ASSERT_EQ(before, chain.sink->record.samples) << "a frame after the stop";
        }
        EXPECT_GT(rounds, 10);
        EXPECT_GT(chain.sink->record.samples, 0);
        // A frame that was in the filter when the sink had stopped already is refused there.
        EXPECT_LE(chain.sink->record.samples, chain.probe->transforms);
        EXPECT_GE(chain.sink->record.samples + rounds, chain.probe->transforms);
    }
}

TEST(Stress, FilterAloneStopsWithEveryBufferOut)
{
    // Tells when somebody is about to wait for a buffer.
    struct Telling : CMemAllocator
    {
        explicit Telling(CAMEvent& whom) : CMemAllocator(nullptr, nullptr, nullptr), asked(whom) {}
        HRESULT STDMETHODCALLTYPE GetBuffer(IMediaSample** sample, REFERENCE_TIME* start, REFERENCE_TIME* end,
                                            DWORD flags) noexcept override
        {
            if (!(flags & AM_GBF_NOWAIT))
                asked.Set();
            return CMemAllocator::GetBuffer(sample, start, end, flags);
        }
        CAMEvent& asked;
    };
    CAMEvent asked;
    Chain chain;
    chain.source->pin.offer.allocator = Allocator::ReadOnly;
    chain.sink->pin.offers = new Telling(asked);
    ASSERT_EQ(S_OK, chain.Connect());
    ASSERT_HRESULT_SUCCEEDED(chain.graph->Run());
    // Somebody downstream keeps all buffers, and the next frame waits for one under the receive lock.
    std::vector<ComPtr<IMediaSample>> kept(3);
    for (auto& sample : kept)
        ASSERT_EQ(S_OK, chain.sink->pin.PeekAllocator()->GetBuffer(&sample, nullptr, nullptr, AM_GBF_NOWAIT));
    const ComPtr<IMediaSample> sample = chain.Sample();
    HRESULT result = S_OK;
    std::thread pusher([&] { result = chain.source->pin.Deliver(sample.Get()); });
    EXPECT_TRUE(asked.Wait(5000));
    EXPECT_EQ(S_OK, chain.probe->Stop());
    pusher.join();
    EXPECT_EQ(E_UNEXPECTED, result);
    kept.clear();
}

TEST(Stress, QuestionsFromEveryThread)
{
    Chain chain;
    chain.source->pin.StreamByItself();
    chain.sink->record.keepsContent = false;
    ASSERT_EQ(S_OK, chain.Connect());
    const auto loop = [](auto action) {
        return std::jthread([action](const std::stop_token& stop) {
            while (!stop.stop_requested())
                action();
        });
    };
    CTransInPlaceInputPin& in = chain.probe->In();
    CTransInPlaceOutputPin& out = chain.probe->Out();
    const std::jthread threads[] = {
        loop([&] {
            in.BeginFlush();
            in.EndFlush();
            Sleep(1);
        }),
        loop([&] {
            out.Notify(chain.sink.Get(), {Famine, 900, 10, 0});
            in.QueryAccept(&chain.source->pin.types.front());
            CMediaType type;
            EXPECT_EQ(S_OK, out.ConnectionMediaType(&type));
            EXPECT_EQ(sizeof(VIDEOINFOHEADER), type.FormatLength());
            ComPtr<IPin> peer;
            EXPECT_EQ(S_OK, in.ConnectedTo(&peer));
        }),
        loop([&] {
            ComPtr<IEnumPins> pins;
            EXPECT_EQ(S_OK, chain.probe->EnumPins(&pins));
            ComPtr<IPin> pin;
            while (pins->Next(1, pin.ReleaseAndGetAddressOf(), nullptr) == S_OK)
                EXPECT_NE(nullptr, pin.Get());
        }),
    };
    const ULONGLONG end = GetTickCount64() + duration;
    // On a busy machine it may take longer until a frame gets through between two stops.
    while (GetTickCount64() < end || chain.probe->transforms == 0) {
        ASSERT_HRESULT_SUCCEEDED(chain.graph->Run());
        Sleep(2);
        ASSERT_HRESULT_SUCCEEDED(chain.graph->Stop());
    }
}

} // namespace
