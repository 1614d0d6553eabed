// The data blocks that carry the effects' parameters: what a host stores in an IDataPropertySet. Every field is a
// little-endian signed 32-bit integer; a block is copied as bytes. Values outside the stated range are not refused by a
// filter: it saturates or ignores them as documented at the field. No Windows header is needed.
#pragma once

#include <cstdint>

namespace vixavideofx {

// PropertySetKind: which interface holds an effect's parameters. Every effect of this library is a DataBlock.
enum class PropertySetKind : std::uint32_t
{
    None = 0,
    DataBlock = 1,   // IDataPropertySet
    SingleValue = 2, // ISingleValuePropertySet
    SingleEnum = 3,  // ISingleEnumPropertySet
    HostKind4 = 4,
    HostKind5 = 5,
    HostKind6 = 6,
};

// "Gamma correction". Above 100 brightens, below darkens; a value of 0 or less counts as the exponent 0.01.
struct GammaBlock
{
    std::int32_t gamma; // hundredths, 45 to 220; 100 is the identity (default)
};

// "Multiply pixel".
struct MultiplyBlock
{
    std::int32_t factor; // percent, 0 to 200; 100 keeps the colours (default)
};

// "Invert color". A channel whose bit is set is inverted; with any bit set, the other channels become 0.
struct InvertBlock
{
    static constexpr std::int32_t Blue = 1, Green = 2, Red = 4;
    std::int32_t mask; // 0 to 7; 0 leaves the frame alone (default)
};

// "Filter color".
struct FilterColorBlock
{
    static constexpr std::int32_t Blue = 0, Green = 1, Red = 2;
    std::int32_t intensity; // -255 to 255: added to the chosen channel where the pixel's hue matches; default 0
    std::int32_t colour;    // Blue, Green or Red; default Blue. Any other value matches no pixel.
};

// "Add pixel".
struct AddBlock
{
    std::int32_t redDelta;   // -255 to 255, default 0
    std::int32_t greenDelta; // -255 to 255, default 0
    std::int32_t blueDelta;  // -255 to 255, default 0
    std::int32_t moveAll;    // state of the settings panel's "Move all sliders" box; the filter ignores it
};

// The eight convolution effects: which kernel the filter runs. The numbers are what a block holds.
enum class ConvolutionKind : std::int32_t
{
    DetectEdges = 1,
    Emboss = 2,
    EnhanceDetails = 3,
    EnhanceEdges = 4,
    EnhanceFocus = 5,
    LightEdges = 6,
    ShiftEdges = 7, // both directions
    Soften = 8,
    ShiftEdgesVertical = 9,
    ShiftEdgesHorizontal = 10,
};

struct ConvolutionBlock
{
    std::int32_t kind; // a ConvolutionKind; any other value keeps the kernel in force, without its divisor and offset
};

static_assert(sizeof(GammaBlock) == 4 && sizeof(MultiplyBlock) == 4 && sizeof(InvertBlock) == 4 &&
                  sizeof(FilterColorBlock) == 8 && sizeof(AddBlock) == 16 && sizeof(ConvolutionBlock) == 4,
              "a block is its fields and nothing else");

} // namespace vixavideofx
