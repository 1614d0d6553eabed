#include "host/browse/LiveGraph.h"

#include "host/base/HostError.h"
#include "host/effects/DataPropertySet.h"

#include <vixavideofx/IEffectFilter.h>

#include <cstring>

namespace vixahost::browse {

// What the owner's thread and the graph's streaming thread share.
struct LiveGraph::Exchange
{
    media::FrameFormat format;
    std::function<void()> onResult;

    mutable std::mutex lock;
    std::condition_variable changed;
    SharedFrame waiting;  // to be sent
    SharedFrame underWay; // sent, not yet come out
    bool ending = false;
    LiveResult latest;

    // The buffers that results are written into; one that nobody looks at any more is used again.
    std::vector<std::shared_ptr<FrameBytes>> pool;

    std::shared_ptr<FrameBytes> FreeBuffer()
    {
        for (const auto& buffer : pool)
            if (buffer.use_count() == 1)
                return buffer;
        pool.push_back(std::make_shared<FrameBytes>(format.FrameBytes()));
        return pool.back();
    }
};

class LiveGraph::Reader : public media::FrameReader
{
public:
    explicit Reader(Exchange& shared) : exchange(shared) {}
    media::FrameFormat Format() const override { return exchange.format; }
    bool Read(std::span<std::uint8_t> frame) override
    {
        SharedFrame next;
        {
            std::unique_lock hold(exchange.lock);
            exchange.changed.wait(hold, [&] { return exchange.waiting || exchange.ending; });
            if (exchange.ending)
                return false;
            next = exchange.underWay = std::move(exchange.waiting);
            exchange.waiting.reset();
        }
        std::memcpy(frame.data(), next->data(), frame.size());
        return true;
    }

private:
    Exchange& exchange;
};

class LiveGraph::Writer : public media::FrameWriter
{
public:
    explicit Writer(Exchange& shared) : exchange(shared) {}
    void Write(std::span<const std::uint8_t> frame) override
    {
        std::shared_ptr<FrameBytes> buffer;
        {
            const std::lock_guard hold(exchange.lock);
            buffer = exchange.FreeBuffer();
        }
        std::memcpy(buffer->data(), frame.data(), frame.size());
        {
            const std::lock_guard hold(exchange.lock);
            exchange.latest.before = std::move(exchange.underWay);
            exchange.latest.after = std::move(buffer);
            ++exchange.latest.number;
            exchange.underWay.reset();
        }
        exchange.onResult();
    }

private:
    Exchange& exchange;
};

LiveGraph::LiveGraph(const effects::EffectLibrary& library, const media::FrameFormat& format,
                     const effects::EffectStack& stack, REFERENCE_TIME duration, std::function<void()> onResult)
    : exchange(std::make_shared<Exchange>())
{
    exchange->format = format;
    exchange->onResult = std::move(onResult);
    reader = std::make_unique<Reader>(*exchange);
    writer = std::make_unique<Writer>(*exchange);
    graph = std::make_unique<graph::EffectGraph>(library, stack, *reader, *writer, duration);
    graph->Start();
}

LiveGraph::~LiveGraph()
{
    EndAndMedian();
}

void LiveGraph::SetBlock(std::size_t step, std::span<const std::int32_t> block)
{
    ComPtr<IEffectFilter> effect;
    HRESULT result = graph->Filter(step)->QueryInterface(IID_IEffectFilter, &effect);
    if (SUCCEEDED(result))
        result = effect->SetPropertySet(effects::DataPropertySet::Create(block).Get());
    if (FAILED(result))
        throw FailedJob("An effect refused its parameters.");
}

void LiveGraph::Push(SharedFrame frame)
{
    if (!frame || frame->size() != exchange->format.FrameBytes())
        throw FailedJob("A frame has another size than the others.");
    {
        const std::lock_guard hold(exchange->lock);
        exchange->waiting = std::move(frame);
    }
    exchange->changed.notify_one();
}

LiveResult LiveGraph::Latest() const
{
    const std::lock_guard hold(exchange->lock);
    return exchange->latest;
}

bool LiveGraph::Busy() const
{
    const std::lock_guard hold(exchange->lock);
    return exchange->waiting || exchange->underWay;
}

double LiveGraph::EndAndMedian()
{
    {
        const std::lock_guard hold(exchange->lock);
        exchange->ending = true;
    }
    exchange->changed.notify_one();
    graph->Stop();
    return graph->MedianMilliseconds();
}

} // namespace vixahost::browse
