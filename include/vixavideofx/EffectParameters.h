// What the parameters of an effect are called, where they lie in its data block and which values they take: enough for
// a host to offer them by name. The settings panels keep to the same ranges. Needs C++20, for std::span; the other
// headers of this folder need C++14.
#pragma once

#include <vixavideofx/ClassIds.h>
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

struct EffectParameters
{
    GUID effect;
    std::span<const ParameterDescription> parameters;
};

// Every effect of the library.
#define VIXA_PARAMETERS_OF(name, description, ...) {CLSID_##name, parameters::description},
inline constexpr EffectParameters effectParameters[] = {VIXA_EFFECTS(VIXA_PARAMETERS_OF)};
#undef VIXA_PARAMETERS_OF

// Whether two identifiers are the same, also in constant expressions.
constexpr bool SameId(const GUID& a, const GUID& b)
{
    for (int i = 0; i < 8; ++i)
        if (a.Data4[i] != b.Data4[i])
            return false;
    return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3;
}

// The parameters of one effect; empty for an effect without settings and for an unknown class identifier.
constexpr std::span<const ParameterDescription> ParametersOf(const GUID& effect)
{
    for (const EffectParameters& row : effectParameters)
        if (SameId(row.effect, effect))
            return row.parameters;
    return {};
}

} // namespace vixavideofx
