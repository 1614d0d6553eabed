#include "bench/Cases.h"

namespace vixa::bench {

namespace {

using namespace kernels;

Case FilterColorCase(const char* name, std::int32_t colour)
{
    return {name,
            [colour](const KernelSet& set, Frame frame, Size, Frame) {
                set.filterColor(frame, {40, colour, true});
            },
            {40, colour}};
}

Case ConvolutionCase(const char* name, std::int32_t kind)
{
    ConvolutionParameters parameters;
    parameters.SetKind(kind);
    return {name,
            [parameters](const KernelSet& set, Frame frame, Size size, Frame scratch) {
                set.convolve(frame, size.width, size.height, parameters, scratch);
            },
            {kind},
            kind};
}

std::vector<Case> MakeCases()
{
    const GammaTable table = MakeGammaTable(160);
    return {
        {"Add pixel",
         [](const KernelSet& set, Frame frame, Size, Frame) {
             set.add(frame, {50, -30, 20});
         },
         {50, -30, 20, 0}},
        {"Invert color", [](const KernelSet& set, Frame frame, Size, Frame) { set.invert(frame, 7); }, {7}},
        {"Multiply pixel", [](const KernelSet& set, Frame frame, Size, Frame) { set.multiply(frame, 150); }, {150}},
        {"Gamma correction",
         [table](const KernelSet& set, Frame frame, Size, Frame) { set.gamma(frame, table); },
         {160}},
        FilterColorCase("Filter color, blue", 0),
        FilterColorCase("Filter color, green", 1),
        FilterColorCase("Filter color, red", 2),
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

const std::vector<Case>& Cases()
{
    static const std::vector<Case> cases = MakeCases();
    return cases;
}

} // namespace vixa::bench
