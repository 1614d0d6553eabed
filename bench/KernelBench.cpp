// vixa_bench: the kernels at every level, natively beside other libraries, as multiples of one pass over the frame's
// memory.
#include "bench/Cases.h"
#include "bench/Peers.h"
#include "bench/Report.h"
#include "bench/Series.h"

#include <cstdio>
#include <exception>

using namespace vixa;
using namespace vixa::bench;

namespace {

std::vector<Peer> PeersFor(Size size)
{
    std::vector<Peer> all;
    for (const auto list : {OpenCvPeers, LibyuvPeers, FfmpegPeers}) {
        for (Peer& peer : list(size))
            all.push_back(std::move(peer));
    }
    return all;
}

void MeasureSize(Size size, const Options& options, Report& report)
{
    TestFrame frame(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * 4);
    std::vector<std::uint8_t> scratch(kernels::ConvolutionScratchBytes(size.width));
    const std::vector<Peer> peers = PeersFor(size);

    std::vector<std::string> columns;
    for (int level = 0; level <= static_cast<int>(kernels::HighestLevel()); ++level)
        columns.emplace_back(kernels::NameOf(static_cast<kernels::Level>(level)));

    std::vector<Row> rows;
    for (const Case& measured : Cases()) {
        if (measured.effect.find(options.only) == std::string::npos)
            continue;
        std::vector<Candidate> candidates;
        for (int level = 0; level <= static_cast<int>(kernels::HighestLevel()); ++level) {
            const kernels::KernelSet& set = kernels::KernelsOf(static_cast<kernels::Level>(level));
            candidates.push_back(
                {columns[static_cast<std::size_t>(level)],
                 [&measured, &set, &scratch, size](kernels::Frame bytes) { measured.run(set, bytes, size, scratch); }});
        }
        for (const Peer& peer : peers) {
            if (peer.effect == measured.effect)
                candidates.push_back(peer.candidate);
        }
        rows.push_back({measured.effect, Measure(frame, candidates, options.seconds)});
    }
    report.Add(size, columns, rows);
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
