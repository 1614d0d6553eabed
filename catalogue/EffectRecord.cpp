#include "catalogue/EffectRecord.h"

#include "dialogs/CDialogInvert.h"
#include "dialogs/CDialogMultiply.h"
#include "dialogs/CDialogNoPropreties.h"
#include "dialogs/CDialogSelectAddPixel.h"
#include "dialogs/CDialogSelectColor.h"
#include "dialogs/CDialogSelectGamma.h"
#include "dialogs/CDialogShiftEdges.h"
#include "resources/StringIds.h"

#include <vixavideofx/ClassIds.h>

#include <array>

namespace vixa {

using namespace vixavideofx;

namespace {

constexpr std::uint32_t colourFilters = 3, edges = 4, sharpness = 5;

// Hosts list a group by rising key; the keys stand at the end of the range, behind a host's own effects.
constexpr std::uint32_t KeyFromEnd(std::uint32_t places)
{
    return 0x7FFFFFFF - places;
}

constexpr EffectRecord ColourFilter(const CLSID& clsid, std::uint32_t sortKey, std::uint32_t name, std::uint32_t icon,
                                    PanelMaker panel)
{
    return {&clsid, 0, colourFilters, IDS_GROUP_COLOR_FILTER, 0, sortKey, name, icon, 0, 0, PropertySetKind::DataBlock,
            panel};
}

constexpr EffectRecord Edges(const CLSID& clsid, std::uint32_t sortKey, std::uint32_t name, std::uint32_t icon,
                             PanelMaker panel = MakePanel<CDialogNoPropreties>)
{
    return {&clsid, 0, edges, IDS_GROUP_EDGES, 0, sortKey, name, icon, 0, 0, PropertySetKind::DataBlock, panel};
}

constexpr EffectRecord Sharpness(const CLSID& clsid, std::uint32_t sortKey, std::uint32_t name, std::uint32_t icon)
{
    return {&clsid,
            0,
            sharpness,
            IDS_GROUP_SHARPNESS,
            0,
            sortKey,
            name,
            icon,
            0,
            0,
            PropertySetKind::DataBlock,
            MakePanel<CDialogNoPropreties>};
}

constexpr std::array<EffectRecord, 13> records = {{
    ColourFilter(CLSID_AddPixel, KeyFromEnd(99), IDS_ADD_PIXEL, 339, MakePanel<CDialogSelectAddPixel>),
    ColourFilter(CLSID_MultiplyPixel, KeyFromEnd(98), IDS_MULTIPLY_PIXEL, 340, MakePanel<CDialogMultiply>),
    ColourFilter(CLSID_GammaCorrection, KeyFromEnd(97), IDS_GAMMA_CORRECTION, 341, MakePanel<CDialogSelectGamma>),
    ColourFilter(CLSID_FilterColor, KeyFromEnd(93), IDS_FILTER_COLOR, 338, MakePanel<CDialogSelectColor>),
    ColourFilter(CLSID_InvertColor, KeyFromEnd(86), IDS_INVERT_COLOR, 344, MakePanel<CDialogInvert>),
    Edges(CLSID_EnhanceEdges, KeyFromEnd(99), IDS_ENHANCE_EDGES, 337),
    Edges(CLSID_LightEdges, KeyFromEnd(99), IDS_LIGHT_EDGES, 336),
    Edges(CLSID_DetectEdges, KeyFromEnd(99), IDS_DETECT_EDGES, 335),
    Edges(CLSID_ShiftEdges, KeyFromEnd(98), IDS_SHIFT_EDGES, 334, MakePanel<CDialogShiftEdges>),
    Edges(CLSID_Emboss, KeyFromEnd(97), IDS_EMBOSS, 333),
    Sharpness(CLSID_EnhanceDetails, KeyFromEnd(99), IDS_ENHANCE_DETAILS, 343),
    Sharpness(CLSID_EnhanceFocus, KeyFromEnd(99), IDS_ENHANCE_FOCUS, 342),
    Sharpness(CLSID_SoftenFilter, KeyFromEnd(80), IDS_SOFTEN_FILTER, 332),
}};

struct DefaultBlock
{
    const CLSID* clsid;
    std::array<std::int32_t, 4> values;
    std::size_t count;
};

constexpr DefaultBlock Kind(const CLSID& clsid, ConvolutionKind kind)
{
    return {&clsid, {static_cast<std::int32_t>(kind)}, 1};
}

constexpr std::array<DefaultBlock, 13> defaultBlocks = {{
    {&CLSID_FilterColor, {0, FilterColorBlock::Blue}, 2},
    {&CLSID_AddPixel, {0, 0, 0, 0}, 4},
    {&CLSID_InvertColor, {0}, 1},
    {&CLSID_MultiplyPixel, {100}, 1},
    {&CLSID_GammaCorrection, {100}, 1},
    Kind(CLSID_DetectEdges, ConvolutionKind::DetectEdges),
    Kind(CLSID_Emboss, ConvolutionKind::Emboss),
    Kind(CLSID_EnhanceDetails, ConvolutionKind::EnhanceDetails),
    Kind(CLSID_EnhanceEdges, ConvolutionKind::EnhanceEdges),
    Kind(CLSID_EnhanceFocus, ConvolutionKind::EnhanceFocus),
    Kind(CLSID_LightEdges, ConvolutionKind::LightEdges),
    Kind(CLSID_ShiftEdges, ConvolutionKind::ShiftEdges),
    Kind(CLSID_SoftenFilter, ConvolutionKind::Soften),
}};

} // namespace

std::span<const EffectRecord> EffectRecords() noexcept
{
    return records;
}

const EffectRecord* FindRecord(REFCLSID clsid) noexcept
{
    for (const auto& record : records)
        if (*record.clsid == clsid)
            return &record;
    return nullptr;
}

std::span<const std::int32_t> DefaultBlockOf(REFCLSID clsid) noexcept
{
    for (const auto& block : defaultBlocks)
        if (*block.clsid == clsid)
            return std::span(block.values).first(block.count);
    return {};
}

} // namespace vixa
