// The data blocks that carry the effects' parameters: what a host stores in an IDataPropertySet. Every field is a
// little-endian signed 32-bit integer; a block is copied as bytes. The ranges are those that the settings panels offer,
// the defaults those of IEffectInfo::SetDefaults. A filter refuses no value; the fields say what becomes of others. No
// Windows header is needed.
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

// "Gamma correction": red, green and blue through a power curve. Above 100 brightens, below darkens; of 0 or less, all
// but black becomes almost white.
struct GammaBlock
{
    std::int32_t gamma; // hundredths, 45 to 220; 100 is the identity (default)
};

// "Multiply pixel": red, green and blue times the factor, at most 255. Clears the fourth byte.
struct MultiplyBlock
{
    std::int32_t factor; // percent, 0 to 200; 100 keeps the colours (default); a negative one makes all but 0 255
};

// "Invert color", in pairs of pixels: a single last one stays. A channel whose bit is set is inverted; with any bit
// set, the other channels and the fourth byte become 0.
struct InvertBlock
{
    static constexpr std::int32_t Blue = 1, Green = 2, Red = 4;
    std::int32_t mask; // 0 to 7; 0 leaves the frame alone (default)
};

// "Filter color". Changes pixels of middle lightness whose hue lies around the chosen colour; a grey one counts as
// blue.
struct FilterColorBlock
{
    static constexpr std::int32_t Blue = 0, Green = 1, Red = 2;
    std::int32_t intensity; // -255 to 255, added to that colour's channel, which stays within 0 and 255; default 0
    std::int32_t colour;    // Blue, Green or Red; default Blue. Any other value matches no pixel.
};

// "Add pixel", in pairs of pixels: a single last one stays. Each channel stays within 0 and 255.
struct AddBlock
{
    std::int32_t redDelta;   // -255 to 255, default 0
    std::int32_t greenDelta; // -255 to 255, default 0
    std::int32_t blueDelta;  // -255 to 255, default 0
    std::int32_t moveAll;    // state of the settings panel's "Move all sliders" box; the filter ignores it
};

// The eight convolution effects: which kernel the filter runs. The numbers are what a block holds; each effect's
// default is the one of its name. The outermost pixels of a frame become 0.
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
    // A ConvolutionKind; any other value keeps the kernel in force, without its divisor and offset. Before its first
    // one a filter changes nothing.
    std::int32_t kind;
};

static_assert(sizeof(GammaBlock) == 4 && sizeof(MultiplyBlock) == 4 && sizeof(InvertBlock) == 4 &&
                  sizeof(FilterColorBlock) == 8 && sizeof(AddBlock) == 16 && sizeof(ConvolutionBlock) == 4,
              "a block is its fields and nothing else");

} // namespace vixavideofx
