// How long the effects take for each frame: from the source's handing it out to the sink's getting it.
#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <vector>

namespace vixahost::graph {

// Used by the streaming thread while the graph runs, read when it has stopped; Latest at any time. Keeps the first
// `room` pictures' times, so that a long clip allocates nothing.
class PassTimer
{
public:
    // A picture that goes through in several frames takes the sum of their times.
    explicit PassTimer(int framesAPicture = 1, std::size_t room = 256) : frames(framesAPicture)
    {
        passes.reserve(room);
    }

    void Begin() noexcept { begin = Clock::now(); }
    void End()
    {
        spent += std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
        if (++frame < frames)
            return;
        latest = spent;
        if (passes.size() < passes.capacity())
            passes.push_back(spent);
        frame = 0;
        spent = 0;
    }

    // The last picture's, in milliseconds; 0 when none has passed.
    double Latest() const noexcept { return latest; }

    // Milliseconds; 0 when no frame has passed.
    double Median() const
    {
        if (passes.empty())
            return 0;
        std::vector<double> sorted = passes;
        const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
        std::nth_element(sorted.begin(), middle, sorted.end());
        return *middle;
    }

private:
    using Clock = std::chrono::steady_clock;

    int frames, frame = 0;
    double spent = 0;
    std::atomic<double> latest = 0;
    Clock::time_point begin = {};
    std::vector<double> passes;
};

} // namespace vixahost::graph
