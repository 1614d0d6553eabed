#include "bridges/frei0r/Bands.h"

#include "effects/kernels/Plan.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace vixa::frei0r {

namespace {

// A band's rows are read, worked on and written while they lie in the caches. An even number of them holds whole pairs
// of pixels whatever the width, which is what some effects count in.
constexpr std::size_t bandBytes = std::size_t{128} * 1024;

std::size_t BandRows(PictureSize size) noexcept
{
    const std::size_t rows = std::max<std::size_t>(bandBytes / (4 * size.width), 2) / 2 * 2;
    return std::min(rows, size.height);
}

void CopyPixels(std::uint32_t* to, const std::uint32_t* from, std::size_t pixels) noexcept
{
    std::memmove(to, from, 4 * pixels);
}

// The row `y` rows above the lowest one.
template <typename Pixel>
Pixel* RowFromBelow(Pixel* picture, PictureSize size, std::size_t y) noexcept
{
    return picture + (size.height - 1 - y) * size.width;
}

void WriteRow(std::uint32_t* out, const std::uint32_t* colours, const std::uint32_t* alpha, std::size_t pixels) noexcept
{
    for (std::size_t x = 0; x < pixels; ++x)
        out[x] = (colours[x] & 0x00FFFFFFu) | (alpha[x] & 0xFF000000u);
}

// Effects that look at each pixel alone go from one picture to the other at once. False where that can't be done; then
// nothing is written.
bool RenderPixels(const kernels::StepParameters& effect, const kernels::KernelSet& kernels, const std::uint32_t* in,
                  std::uint32_t* out, std::size_t pixels) noexcept
{
    kernels::PointStep point;
    // (some leave the last one of an odd number alone, which the rows' order decides)
    if (pixels % 2 != 0 || !kernels.points || !kernels::PlanPoint(effect, point))
        return false;
    kernels.points({reinterpret_cast<const std::uint8_t*>(in), 4 * pixels}, reinterpret_cast<std::uint8_t*>(out),
                   {&point, 1}, true);
    return true;
}

} // namespace

void Render(kernels::StepParameters effect, const std::uint32_t* in, std::uint32_t* out, PictureSize size) noexcept
{
    const kernels::KernelSet& kernels = kernels::KernelsOf(kernels::HighestLevel());
    if (RenderPixels(effect, kernels, in, out, size.width * size.height))
        return;
    auto* const convolution = std::get_if<kernels::PictureConvolution>(&effect);
    // A convolution looks one row further. Both rows around a band's end are kept as they were, because in one buffer
    // the picture is overwritten behind the band.
    const std::size_t margin = convolution ? 1 : 0;
    const std::size_t bandRows = BandRows(size);
    const std::size_t bandPixels = (bandRows + 2 * margin) * size.width, keptPixels = 2 * margin * size.width;
    const std::size_t scratchBytes =
        convolution ? kernels::ConvolutionScratchBytes(static_cast<std::int32_t>(size.width)) : 0;

    const std::unique_ptr<std::uint32_t, decltype(&std::free)> memory(
        static_cast<std::uint32_t*>(std::malloc(4 * (bandPixels + keptPixels) + scratchBytes)), &std::free);
    if (!memory)
        return CopyPixels(out, in, size.width * size.height);
    std::uint32_t* const band = memory.get();
    std::uint32_t* const kept = band + bandPixels;
    std::size_t held = 0; // rows of the band that are there from the one before
    for (std::size_t start = 0, end = 0; start < size.height; start = end) {
        end = std::min(start + bandRows, size.height);
        const std::size_t first = start - std::min(start, margin), last = std::min(end + margin, size.height);
        CopyPixels(band, kept, held * size.width);
        for (std::size_t y = first + held; y < last; ++y)
            CopyPixels(band + (y - first) * size.width, RowFromBelow(in, size, y), size.width);
        held = 2 * margin;
        if (end < size.height)
            CopyPixels(kept, band + (last - first - held) * size.width, held * size.width);

        const kernels::Frame frame(reinterpret_cast<std::uint8_t*>(band), 4 * (last - first) * size.width);
        if (convolution) {
            convolution->width = static_cast<std::int32_t>(size.width);
            convolution->height = static_cast<std::int32_t>(last - first);
            convolution->scratch = {reinterpret_cast<std::uint8_t*>(kept + keptPixels), scratchBytes};
        }
        kernels::RunStep({&kernels, frame, effect});
        for (std::size_t y = start; y < end; ++y)
            WriteRow(RowFromBelow(out, size, y), band + (y - first) * size.width, RowFromBelow(in, size, y),
                     size.width);
    }
}

} // namespace vixa::frei0r
