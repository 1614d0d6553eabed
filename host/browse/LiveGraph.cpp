#include "host/browse/LiveGraph.h"

#include "host/base/HostError.h"
#include "host/effects/DataPropertySet.h"
#include "host/media/Room.h"

#include <vixavideofx/IEffectFilter.h>

#include <algorithm>
#include <new>
#include <span>

namespace vixahost::browse {

// What the owner's thread and the graph's streaming thread share.
struct LiveGraph::Exchange
{
    Exchange(const media::FrameFormat& frames, const media::Bands& cut, std::function<void()> notify)
        : format(frames), bands(cut), onResult(std::move(notify))
    {
    }

    // The bytes of some rows of a frame.
    template <typename Bytes>
    auto Rows(Bytes& frame, int begin, int end) const
    {
        const std::size_t row = static_cast<std::size_t>(format.width) * 4;
        return std::span(frame).subspan(static_cast<std::size_t>(begin) * row,
                                        static_cast<std::size_t>(end - begin) * row);
    }

    media::FrameFormat format;
    media::Bands bands;
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
    media::FrameFormat Format() const override
    {
        media::FrameFormat piece = exchange.format;
        piece.height = exchange.bands.Rows();
        return piece;
    }
    int FramesAPicture() const override { return exchange.bands.Count(); }
    bool Read(std::span<std::uint8_t> frame) override
    {
        if (band == 0) {
            std::unique_lock hold(exchange.lock);
            exchange.changed.wait(hold, [&] { return exchange.waiting || exchange.ending; });
            if (exchange.ending)
                return false;
            source = exchange.underWay = std::move(exchange.waiting);
            exchange.waiting.reset();
        }
        const int first = exchange.bands.At(band).first;
        std::ranges::copy(exchange.Rows(*source, first, first + exchange.bands.Rows()), frame.begin());
        band = (band + 1) % exchange.bands.Count();
        if (band == 0)
            source.reset();
        return true;
    }

private:
    Exchange& exchange;
    SharedFrame source; // of the bands that are being read
    int band = 0;
};

class LiveGraph::Writer : public media::FrameWriter
{
public:
    explicit Writer(Exchange& shared) : exchange(shared) {}
    void Write(std::span<const std::uint8_t> frame) override
    {
        if (band == 0)
            MakeBuffer();
        const media::Bands::Band now = exchange.bands.At(band);
        if (buffer) {
            const auto rows = exchange.Rows(frame, now.keepBegin - now.first, now.keepEnd - now.first);
            std::ranges::copy(rows, exchange.Rows(*buffer, now.keepBegin, now.keepEnd).begin());
        }
        band = (band + 1) % exchange.bands.Count();
        if (band != 0)
            return;
        {
            const std::lock_guard hold(exchange.lock);
            exchange.latest.before = std::move(exchange.underWay);
            exchange.latest.after = std::move(buffer);
            exchange.latest.failure = failure;
            ++exchange.latest.number;
            exchange.underWay.reset();
        }
        buffer.reset();
        exchange.onResult();
    }

private:
    // None when there is no memory: the frame then passes without a result.
    void MakeBuffer()
    {
        failure.clear();
        try {
            const std::lock_guard hold(exchange.lock);
            buffer = exchange.FreeBuffer();
        } catch (const std::bad_alloc&) {
            failure = media::NoRoomFor(exchange.format.width, exchange.format.height).what();
            failure += " Saving needs less.";
        }
    }

    Exchange& exchange;
    std::shared_ptr<FrameBytes> buffer; // of the bands that are being written
    std::string failure;
    int band = 0;
};

LiveGraph::LiveGraph(const effects::EffectLibrary& library, const media::FrameFormat& format,
                     const effects::EffectStack& stack, REFERENCE_TIME duration, std::function<void()> onResult,
                     std::size_t mostBandBytes)
    : exchange(std::make_shared<Exchange>(
          format, media::Bands(format.width, format.height, effects::ReachOf(stack), mostBandBytes),
          std::move(onResult)))
{
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

bool LiveGraph::Failed() const
{
    try {
        if (failure.empty())
            graph->HasEnded([this] { End(); });
    } catch (const std::exception& fault) {
        failure = std::string(fault.what()) +
                  " Take a step off the stack, or open a smaller picture; saving may still succeed.";
    }
    return !failure.empty();
}

LiveResult LiveGraph::Latest() const
{
    const bool failed = Failed();
    const std::lock_guard hold(exchange->lock);
    LiveResult result = exchange->latest;
    result.milliseconds = graph->LatestMilliseconds();
    if (failed) {
        result.failure = failure;
        ++result.number;
    }
    return result;
}

bool LiveGraph::Busy() const
{
    if (Failed())
        return false;
    const std::lock_guard hold(exchange->lock);
    return exchange->waiting || exchange->underWay;
}

// The reader waits for no more frames.
void LiveGraph::End() const
{
    {
        const std::lock_guard hold(exchange->lock);
        exchange->ending = true;
    }
    exchange->changed.notify_one();
}

double LiveGraph::EndAndMedian()
{
    End();
    graph->Stop();
    return graph->MedianMilliseconds();
}

} // namespace vixahost::browse
