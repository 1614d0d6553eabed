#include "host/EffectTable.h"

#include "host/HostError.h"
#include "host/NearestNames.h"
#include "host/Text.h"

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/DataBlocks.h>

namespace vixa::host {

using namespace vixavideofx;

namespace {

constexpr std::int32_t zeros[4] = {0, 0, 0, 0};
constexpr std::int32_t hundred[] = {100};
constexpr std::int32_t kinds[] = {1, 2, 3, 4, 5, 6, 7, 8};

constexpr std::span<const std::int32_t> Kind(ConvolutionKind kind)
{
    return std::span(kinds).subspan(static_cast<std::size_t>(kind) - 1, 1);
}

constexpr EffectEntry table[] = {
    {"Add pixel", &CLSID_AddPixel, std::span(zeros).first<4>()},
    {"Filter color", &CLSID_FilterColor, std::span(zeros).first<2>()},
    {"Invert color", &CLSID_InvertColor, std::span(zeros).first<1>()},
    {"Multiply pixel", &CLSID_MultiplyPixel, hundred},
    {"Gamma correction", &CLSID_GammaCorrection, hundred},
    {"Detect edges", &CLSID_DetectEdges, Kind(ConvolutionKind::DetectEdges)},
    {"Emboss", &CLSID_Emboss, Kind(ConvolutionKind::Emboss)},
    {"Enhance details", &CLSID_EnhanceDetails, Kind(ConvolutionKind::EnhanceDetails)},
    {"Enhance edges", &CLSID_EnhanceEdges, Kind(ConvolutionKind::EnhanceEdges)},
    {"Enhance focus", &CLSID_EnhanceFocus, Kind(ConvolutionKind::EnhanceFocus)},
    {"Light edges", &CLSID_LightEdges, Kind(ConvolutionKind::LightEdges)},
    {"Shift edges", &CLSID_ShiftEdges, Kind(ConvolutionKind::ShiftEdges)},
    {"Soften filter", &CLSID_SoftenFilter, Kind(ConvolutionKind::Soften)},
};

} // namespace

std::span<const EffectEntry> Effects()
{
    return table;
}

const EffectEntry& FindEffect(std::string_view name)
{
    const std::string wanted = LowerCase(name);
    std::vector<std::string> names;
    for (const EffectEntry& effect : table) {
        if (LowerCase(effect.name) == wanted)
            return effect;
        names.emplace_back(effect.name);
    }
    throw WrongWords("There is no effect \"" + std::string(name) + "\"; did you mean " +
                     Alternatives(NearestNames(name, names)) + "? `vixahost effects` lists all.");
}

std::string FileStem(const EffectEntry& effect)
{
    std::string stem = LowerCase(effect.name);
    for (char& letter : stem)
        if (letter == ' ')
            letter = '-';
    return stem;
}

} // namespace vixa::host
