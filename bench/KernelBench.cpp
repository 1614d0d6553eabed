// vixa_bench: the kernels at every level, natively beside other libraries, as multiples of one pass over the frame's
// memory; and stacks of effects, one after the other and in one go.
#include "bench/Cases.h"
#include "bench/Peers.h"
#include "bench/Report.h"
#include "bench/Series.h"
#include "effects/kernels/Chain.h"

#include <algorithm>
#include <cstdio>
#include <exception>

using namespace vixa;
using namespace vixa::bench;

namespace {

// The kernels' candidates and those of the other libraries for the same.
Row MeasureWith(const std::vector<Peer>& peers, TestFrame& frame, const std::string& name,
                std::vector<Candidate> candidates, double seconds)
{
    for (const Peer& peer : peers) {
        if (peer.work == name)
            candidates.push_back(peer.candidate);
    }
    return {name, Measure(frame, candidates, seconds)};
}

void MeasureSize(Size size, const Options& options, Report& report)
{
    TestFrame frame(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 4);
    const std::size_t scratchBytes = kernels::ConvolutionScratchBytes(size.width);
    const std::vector<Peer> peers = PeersFor(size);

    std::vector<std::string> levels, ways;
    for (int level = 0; level <= static_cast<int>(kernels::HighestLevel()); ++level)
        levels.emplace_back(kernels::NameOf(static_cast<kernels::Level>(level)));
    const auto set = [](std::size_t level) -> const kernels::KernelSet& {
        return kernels::KernelsOf(static_cast<kernels::Level>(level));
    };

    std::vector<Row> effects;
    std::vector<std::uint8_t> scratch(scratchBytes);
    for (const Case& measured : Cases()) {
        if (!options.Wants(measured.effect))
            continue;
        std::vector<Candidate> candidates;
        for (std::size_t level = 0; level < levels.size(); ++level)
            candidates.push_back({levels[level], [&, level](kernels::Frame bytes) {
                                      RunStep(measured.StepFor(set(level), bytes, size, scratch));
                                  }});
        effects.push_back(MeasureWith(peers, frame, measured.effect, std::move(candidates), options.seconds));
    }
    report.Add(size, levels, effects);

    // One effect after the other over the whole frame, and all of them over one band after the other.
    std::vector<Row> rows;
    for (const Stack& stack : Stacks()) {
        if (!options.Wants(stack.name))
            continue;
        std::vector<std::vector<std::uint8_t>> rooms(stack.effects.size(), std::vector<std::uint8_t>(scratchBytes));
        kernels::Chain chain;
        const auto step = [&](std::size_t level, kernels::Frame bytes, std::size_t at) {
            return CaseNamed(stack.effects[at]).StepFor(set(level), bytes, size, rooms[at]);
        };
        std::vector<Candidate> candidates;
        ways.clear();
        for (std::size_t level = std::min<std::size_t>(2, levels.size() - 1); level < levels.size(); ++level) {
            ways.push_back(levels[level] + " alone");
            candidates.push_back({ways.back(), [&, level](kernels::Frame bytes) {
                                      for (std::size_t at = 0; at < stack.effects.size(); ++at)
                                          RunStep(step(level, bytes, at));
                                  }});
            ways.push_back(levels[level] + " chain");
            candidates.push_back({ways.back(), [&, level](kernels::Frame bytes) {
                                      for (std::size_t at = 0; at < stack.effects.size(); ++at)
                                          chain.Add(step(level, bytes, at));
                                      chain.Run();
                                  }});
        }
        rows.push_back(MeasureWith(peers, frame, stack.name, std::move(candidates), options.seconds));
    }
    report.Add(size, ways, rows);
}

} // namespace

int main(int count, char** words)
{
    try {
        const Options options = ReadOptions(count, words);
        Report report(sizeof(void*) == 8 ? "Kernels, 64-bit" : "Kernels, 32-bit", options.json);
        for (const Size size : options.sizes)
            MeasureSize(size, options, report);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "vixa_bench: %s\n", error.what());
        return 2;
    }
}
