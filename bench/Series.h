// Interleaved measurement: every run of a candidate has a limit pass of its own right before it, over the same frame.
#pragma once

#include "effects/kernels/Kernels.h"

#include <functional>
#include <string>
#include <vector>

namespace vixa::bench {

struct Candidate
{
    std::string name;
    std::function<void(kernels::Frame)> run;
};

struct Timing
{
    std::string name;
    double seconds; // the fastest run
    double ratio;   // fastest run / fastest limit pass of the whole series
    double median;  // of the runs' ratios to their own limit passes
    int runs;
};

// A frame of noise at a page's start, kept beside a copy that it is filled from before each run: what one candidate
// leaves behind never reaches the next.
class TestFrame
{
public:
    explicit TestFrame(std::size_t bytes);

    void Restore() noexcept;
    kernels::Frame Bytes() noexcept { return frame; }

private:
    std::vector<std::uint8_t> original, room;
    kernels::Frame frame;
};

// Runs the candidates in turns until each has had `seconds` of its own (limit passes included) and at least three runs;
// one that takes longer than that for a single run is run once.
std::vector<Timing> Measure(TestFrame& frame, const std::vector<Candidate>& candidates, double seconds);

} // namespace vixa::bench
