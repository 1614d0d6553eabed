// Samples on their way from one thread to another.
#pragma once

#include "framework/Platform.h"

#include <strmif.h>

#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace vixahost::graph {

// How many wait is bounded by their allocator. Any thread.
class SampleQueue
{
public:
    // False when nobody takes any more.
    bool Put(IMediaSample* sample)
    {
        const std::lock_guard guard(lock);
        if (closed)
            return false;
        samples.emplace_back(sample);
        changed.notify_one();
        return true;
    }

    // No more will come, for this reason; not S_OK.
    void End(HRESULT reason)
    {
        const std::lock_guard guard(lock);
        end = reason;
        changed.notify_one();
    }

    // S_OK with the next one; when none is left, and none will come, the reason.
    HRESULT Take(ComPtr<IMediaSample>& sample)
    {
        std::unique_lock guard(lock);
        changed.wait(guard, [this] { return !samples.empty() || end != S_OK; });
        if (samples.empty())
            return end;
        sample = std::move(samples.front());
        samples.pop_front();
        return S_OK;
    }

    // Lets go of what is in it, and takes no more.
    void Close()
    {
        std::deque<ComPtr<IMediaSample>> rest; // goes when nothing is locked: their allocator may be waited for
        const std::lock_guard guard(lock);
        closed = true;
        end = S_FALSE;
        rest.swap(samples);
        changed.notify_one();
    }

private:
    std::mutex lock;
    std::condition_variable changed;
    std::deque<ComPtr<IMediaSample>> samples;
    HRESULT end = S_OK;
    bool closed = false;
};

} // namespace vixahost::graph
