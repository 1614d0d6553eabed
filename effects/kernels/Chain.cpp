#include "effects/kernels/Chain.h"

#include <algorithm>
#include <limits>

namespace vixa::kernels {

namespace {

// A pair of pixels, which is what some effects work on.
constexpr std::size_t unitBytes = 8;

} // namespace

// Works on what is ready, all bytes up to there, and returns how far the frame is finished then. After the last call
// that is everything that was ready.
std::size_t Chain::Advance(Link& link, std::size_t ready, bool last) noexcept
{
    const Step& step = link.step;
    if (const auto* picture = std::get_if<PictureConvolution>(&step.parameters)) {
        if (picture->width < 1)
            return ready;
        const std::size_t rowBytes = 4 * static_cast<std::size_t>(picture->width);
        const std::size_t readyRows = last ? std::numeric_limits<std::size_t>::max() : ready / rowBytes;
        link.rows = step.kernels->convolveRows(step.frame, picture->width, picture->height, picture->parameters,
                                               picture->scratch, link.rows, readyRows);
        return last ? ready : link.rows * rowBytes;
    }
    const std::size_t end = std::min(last ? ready : ready / unitBytes * unitBytes, step.frame.size());
    if (end > link.done) {
        RunStep({step.kernels, step.frame.subspan(link.done, end - link.done), step.parameters});
        link.done = end;
    }
    return end == step.frame.size() ? ready : end;
}

void Chain::Run(std::size_t bandBytes) noexcept
{
    std::size_t total = 0;
    for (const Link& link : links)
        total = std::max(total, link.step.frame.size());
    if (links.size() == 1) {
        RunStep(links.front().step);
        total = 0;
    }
    const std::size_t band = std::max(bandBytes, unitBytes);
    for (std::size_t start = 0; start < total;) {
        start += std::min(band, total - start);
        const bool last = start == total;
        std::size_t ready = start;
        for (Link& link : links)
            ready = Advance(link, ready, last);
    }
    links.clear();
}

} // namespace vixa::kernels
