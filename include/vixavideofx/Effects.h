// What the effects are to any host: the names, places, ranges and meaning of their parameters, what each starts with
// and what it does. The settings panels keep to the same ranges, the catalogue to the same defaults. Needs C++20, for
// std::span, and no Windows header: the effects run elsewhere too.
#pragma once

#include <vixavideofx/DataBlocks.h>

#include <cstddef>
#include <span>

namespace vixavideofx {

struct ParameterChoice
{
    const char* name;
    std::int32_t value;
};

struct ParameterDescription
{
    const char* name;
    std::size_t offset;   // bytes from the start of the effect's data block
    std::int32_t minimum; // both ends included
    std::int32_t maximum;
    std::span<const ParameterChoice> choices; // names for single values; the only values allowed when `closed`
    bool closed;
    const char* meaning; // one English phrase with the unit
};

namespace parameters {

inline constexpr ParameterChoice colourChoices[] = {
    {"blue", FilterColorBlock::Blue}, {"green", FilterColorBlock::Green}, {"red", FilterColorBlock::Red}};
inline constexpr ParameterChoice maskChoices[] = {
    {"none", 0}, {"blue", InvertBlock::Blue}, {"green", InvertBlock::Green}, {"red", InvertBlock::Red}, {"all", 7}};
inline constexpr ParameterChoice directionChoices[] = {
    {"both", static_cast<std::int32_t>(ConvolutionKind::ShiftEdges)},
    {"vertical", static_cast<std::int32_t>(ConvolutionKind::ShiftEdgesVertical)},
    {"horizontal", static_cast<std::int32_t>(ConvolutionKind::ShiftEdgesHorizontal)}};

inline constexpr ParameterDescription addPixel[] = {
    {"red", offsetof(AddBlock, redDelta), -255, 255, {}, false, "added to red"},
    {"green", offsetof(AddBlock, greenDelta), -255, 255, {}, false, "added to green"},
    {"blue", offsetof(AddBlock, blueDelta), -255, 255, {}, false, "added to blue"}};
inline constexpr ParameterDescription filterColor[] = {
    {"intensity",
     offsetof(FilterColorBlock, intensity),
     -255,
     255,
     {},
     false,
     "added to the colour where the hue matches"},
    {"colour", offsetof(FilterColorBlock, colour), 0, 2, colourChoices, true, "the hue that is matched"}};
inline constexpr ParameterDescription invertColor[] = {
    {"mask", offsetof(InvertBlock, mask), 0, 7, maskChoices, false, "channels to invert: blue 1 + green 2 + red 4"}};
inline constexpr ParameterDescription multiplyPixel[] = {
    {"factor", offsetof(MultiplyBlock, factor), 0, 200, {}, false, "percent"}};
inline constexpr ParameterDescription gammaCorrection[] = {
    {"gamma", offsetof(GammaBlock, gamma), 45, 220, {}, false, "hundredths, 100 changes nothing"}};
inline constexpr ParameterDescription shiftEdges[] = {
    {"direction", offsetof(ConvolutionBlock, kind), 7, 10, directionChoices, true, "where the edges move"}};

inline constexpr std::span<const ParameterDescription> none;

} // namespace parameters

template <typename DataBlock>
struct EffectDescription
{
    using Block = DataBlock;
    Block defaults;      // what IEffectInfo::SetDefaults gives
    const char* meaning; // one English phrase
};

// Each effect by the name that its class identifier has.
namespace descriptions {

constexpr EffectDescription<ConvolutionBlock> Convolution(ConvolutionKind kind, const char* meaning)
{
    return {{static_cast<std::int32_t>(kind)}, meaning};
}

inline constexpr EffectDescription<AddBlock> AddPixel = {{.redDelta = 0, .greenDelta = 0, .blueDelta = 0, .moveAll = 0},
                                                         "adds to red, green and blue"};
inline constexpr EffectDescription<FilterColorBlock> FilterColor = {
    {.intensity = 0, .colour = FilterColorBlock::Blue}, "raises or lowers one colour where the hue matches it"};
inline constexpr EffectDescription<InvertBlock> InvertColor = {{.mask = 0},
                                                               "inverts channels and clears those that are not chosen"};
inline constexpr EffectDescription<MultiplyBlock> MultiplyPixel = {{.factor = 100}, "scales red, green and blue"};
inline constexpr EffectDescription<GammaBlock> GammaCorrection = {{.gamma = 100},
                                                                  "puts red, green and blue through a power curve"};
inline constexpr auto DetectEdges = Convolution(ConvolutionKind::DetectEdges, "edges, bright on black");
inline constexpr auto Emboss = Convolution(ConvolutionKind::Emboss, "a grey relief");
inline constexpr auto EnhanceDetails = Convolution(ConvolutionKind::EnhanceDetails, "sharpens gently");
inline constexpr auto EnhanceEdges = Convolution(ConvolutionKind::EnhanceEdges, "sharpens strongly");
inline constexpr auto EnhanceFocus = Convolution(ConvolutionKind::EnhanceFocus, "sharpens along the diagonals");
inline constexpr auto LightEdges = Convolution(ConvolutionKind::LightEdges, "thin edges, bright on black");
inline constexpr auto ShiftEdges =
    Convolution(ConvolutionKind::ShiftEdges, "the difference to a neighbouring pixel, as a grey relief");
inline constexpr auto SoftenFilter = Convolution(ConvolutionKind::Soften, "averages each pixel with its neighbours");

} // namespace descriptions

} // namespace vixavideofx
