#include "effects/kernels/Chain.h"

#include "effects/kernels/Plan.h"

#include <algorithm>
#include <limits>

namespace vixa::kernels {

namespace {

// A pair of pixels, which is what some effects work on.
constexpr std::size_t unitBytes = 8;

} // namespace

void Chain::Add(const Step& step)
{
    points.reserve(links.size() + 1);
    links.push_back({step, false, 0, 0});
    points.push_back({});
}

// How many links from there on can go over the frame in one pass.
std::size_t Chain::PointsFrom(std::size_t first) const noexcept
{
    std::size_t end = first;
    while (end < links.size() && links[end].planned && links[end].step.kernels == links[first].step.kernels &&
           links[end].done == links[first].done)
        ++end;
    return end - first;
}

// Takes so many links as far together as all of them have whole pairs of pixels that are ready.
void Chain::AdvancePoints(std::size_t first, std::size_t count, std::size_t ready) noexcept
{
    const std::span<Link> run(&links[first], count);
    std::size_t end = ready;
    for (const Link& link : run)
        end = std::min(end, link.step.frame.size());
    end -= end % unitBytes;
    const Link& head = run.front();
    if (end <= head.done)
        return;
    const Frame part = head.step.frame.subspan(head.done, end - head.done);
    head.step.kernels->points(part, part.data(), {&points[first], count}, false);
    for (Link& link : run)
        link.done = end;
}

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
    if (links.size() == 1)
        RunStep(links.front().step);
    else
        RunBands(bandBytes);
    links.clear();
    points.clear();
}

void Chain::RunBands(std::size_t bandBytes) noexcept
{
    std::size_t total = 0;
    for (const Link& link : links)
        total = std::max(total, link.step.frame.size());
    for (std::size_t at = 0; at < links.size(); ++at)
        links[at].planned = links[at].step.kernels->points && PlanPoint(links[at].step.parameters, points[at]);
    // What goes in one pass needs no bands.
    const std::size_t band = PointsFrom(0) == links.size() ? total : std::max(bandBytes, unitBytes);
    for (std::size_t start = 0; start < total;) {
        start += std::min(band, total - start);
        const bool last = start == total;
        std::size_t ready = start;
        for (std::size_t at = 0; at < links.size();) {
            const std::size_t count = PointsFrom(at);
            if (count > 1)
                AdvancePoints(at, count, ready);
            for (const std::size_t end = at + std::max<std::size_t>(count, 1); at < end; ++at)
                ready = Advance(links[at], ready, last);
        }
    }
}

} // namespace vixa::kernels
