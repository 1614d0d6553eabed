// Several effects over one frame in one go: each works on as much of the frame as the one before it has finished, band
// by band, so that a band stays in the cache while all of them run over it. The bytes are those of one effect after
// the other.
#pragma once

#include "effects/kernels/Step.h"
#include "effects/kernels/VectorKernels.h"

#include <cstddef>
#include <vector>

namespace vixa::kernels {

// The steps of one frame, in order. Their spans begin at the same byte; they may differ in length. Used by one thread
// at a time.
class Chain
{
public:
    // Small enough for the smallest second-level caches; larger ones were no faster.
    static constexpr std::size_t usualBand = std::size_t{128} * 1024;

    // Throws std::bad_alloc; then the chain is as before.
    void Add(const Step& step);

    // Runs all steps over bands of about so many bytes (at least 8; more where a row needs it) and forgets them; the
    // room for as many is kept.
    void Run(std::size_t bandBytes = usualBand) noexcept;

private:
    struct Link
    {
        Step step;
        bool planned;     // `points` has it for this frame
        std::size_t done; // bytes that the step has finished
        std::size_t rows; // rows, in a convolution
    };

    void RunBands(std::size_t bandBytes) noexcept;
    std::size_t PointsFrom(std::size_t first) const noexcept;
    void AdvancePoints(std::size_t first, std::size_t count, std::size_t ready) noexcept;
    static std::size_t Advance(Link& link, std::size_t ready, bool last) noexcept;

    std::vector<Link> links;
    std::vector<PointStep> points; // one for each link
};

} // namespace vixa::kernels
