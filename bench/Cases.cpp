#include "bench/Cases.h"

#include <algorithm>
#include <stdexcept>

namespace vixa::bench {

namespace {

using namespace kernels;

Case ConvolutionCase(const char* name, std::int32_t kind)
{
    PictureConvolution convolution = {};
    convolution.parameters.SetKind(kind);
    return {name, convolution, {kind}, kind};
}

std::vector<Case> MakeCases()
{
    return {
        {"Add pixel", AddParameters{50, -30, 20}, {50, -30, 20, 0}},
        {"Invert color", InvertParameters{7}, {7}},
        {"Multiply pixel", MultiplyParameters{150}, {150}},
        {"Gamma correction", MakeGammaTable(160), {160}},
        {"Filter color, blue", FilterColorParameters{40, 0, true}, {40, 0}},
        {"Filter color, green", FilterColorParameters{40, 1, true}, {40, 1}},
        {"Filter color, red", FilterColorParameters{40, 2, true}, {40, 2}},
        ConvolutionCase("Detect edges", 1),
        ConvolutionCase("Emboss", 2),
        ConvolutionCase("Enhance details", 3),
        ConvolutionCase("Enhance edges", 4),
        ConvolutionCase("Enhance focus", 5),
        ConvolutionCase("Light edges", 6),
        ConvolutionCase("Shift edges, both", 7),
        ConvolutionCase("Shift edges, vertical", 9),
        ConvolutionCase("Shift edges, horizontal", 10),
        ConvolutionCase("Soften filter", 8),
    };
}

} // namespace

Step Case::StepFor(const KernelSet& set, Frame frame, Size size, Frame scratch) const
{
    Step step = {&set, frame, parameters};
    if (auto* convolution = std::get_if<PictureConvolution>(&step.parameters)) {
        convolution->width = size.width;
        convolution->height = size.height;
        convolution->scratch = scratch;
    }
    return step;
}

const std::vector<Case>& Cases()
{
    static const std::vector<Case> cases = MakeCases();
    return cases;
}

const std::vector<Stack>& Stacks()
{
    static const std::vector<Stack> stacks = {
        {"Five point effects",
         {"Add pixel", "Invert color", "Multiply pixel", "Gamma correction", "Filter color, blue"}},
        {"Mixed", {"Add pixel", "Soften filter", "Gamma correction", "Enhance focus", "Invert color"}},
        {"Three full kernels", {"Enhance details", "Soften filter", "Emboss"}},
    };
    return stacks;
}

const Case& CaseNamed(const std::string& effect)
{
    const auto found = std::ranges::find(Cases(), effect, &Case::effect);
    if (found == Cases().end())
        throw std::invalid_argument("no case " + effect);
    return *found;
}

} // namespace vixa::bench
