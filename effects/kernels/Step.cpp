#include "effects/kernels/Step.h"

namespace vixa::kernels {

namespace {

// The effects that look at each pixel alone; a convolution looks at the picture.
struct RunOn
{
    const KernelSet& kernels;
    Frame bytes;

    void operator()(const GammaTable& table) const noexcept { kernels.gamma(bytes, table); }
    void operator()(const MultiplyParameters& parameters) const noexcept { kernels.multiply(bytes, parameters.factor); }
    void operator()(const InvertParameters& parameters) const noexcept { kernels.invert(bytes, parameters.mask); }
    void operator()(const FilterColorParameters& parameters) const noexcept { kernels.filterColor(bytes, parameters); }
    void operator()(const AddParameters& parameters) const noexcept { kernels.add(bytes, parameters); }
    void operator()(const PictureConvolution& picture) const noexcept
    {
        kernels.convolve(bytes, picture.width, picture.height, picture.parameters, picture.scratch);
    }
};

} // namespace

void RunStep(const Step& step) noexcept
{
    std::visit(RunOn{*step.kernels, step.frame}, step.parameters);
}

} // namespace vixa::kernels
