#include "module/EffectTable.h"

#include "dialogs/CDialogInvert.h"
#include "dialogs/CDialogMultiply.h"
#include "dialogs/CDialogNoPropreties.h"
#include "dialogs/CDialogSelectAddPixel.h"
#include "dialogs/CDialogSelectColor.h"
#include "dialogs/CDialogSelectGamma.h"
#include "dialogs/CDialogShiftEdges.h"
#include "effects/CAddPixel.h"
#include "effects/CConvCorrection.h"
#include "effects/CFilterColor.h"
#include "effects/CGammaCorrection.h"
#include "effects/CMultiplyPixel.h"
#include "effects/CPixelControl.h"
#include "resources/languages/StringIds.h"

#include <vixavideofx/ClassIds.h>

#include <algorithm>
#include <array>
#include <string_view>

using namespace vixavideofx;

namespace {

constexpr vixa::EffectGroup colourFilters = {3, IDS_GROUP_COLOR_FILTER};
constexpr vixa::EffectGroup edges = {4, IDS_GROUP_EDGES};
constexpr vixa::EffectGroup sharpness = {5, IDS_GROUP_SHARPNESS};

// Sort keys stand at the end of the range.
constexpr std::uint32_t FromEnd(std::uint32_t places)
{
    return 0x7FFFFFFF - places;
}

constexpr EffectRow rows[] = {
    {
        .classId = &CLSID_AddPixel,
        .name = L"Add pixel",
        .create = CAddPixel::CreateInstance,
        .alias = L"{E9523F94-F971-422A-9AD5-578D5AEA1969}",
        .record = {.group = colourFilters,
                   .sortKey = FromEnd(99),
                   .nameId = IDS_ADD_PIXEL,
                   .iconId = 339,
                   .defaults = descriptions::AddPixel.defaults,
                   .makePanel = vixa::MakePanel<CDialogSelectAddPixel>},
        .parameters = parameters::addPixel,
    },
    {
        .classId = &CLSID_FilterColor,
        .name = L"Filter color",
        .create = CFilterColor::CreateInstance,
        .alias = L"{8DA26896-133D-46DE-B6B4-43B0BEE29CFC}",
        .record = {.group = colourFilters,
                   .sortKey = FromEnd(93),
                   .nameId = IDS_FILTER_COLOR,
                   .iconId = 338,
                   .defaults = descriptions::FilterColor.defaults,
                   .makePanel = vixa::MakePanel<CDialogSelectColor>},
        .parameters = parameters::filterColor,
    },
    {
        .classId = &CLSID_InvertColor,
        .name = L"Invert color",
        .create = CPixelControl::CreateInstance,
        .alias = L"{C9918D84-ACB5-47A6-B24C-A4FD4131D485}",
        .record = {.group = colourFilters,
                   .sortKey = FromEnd(86),
                   .nameId = IDS_INVERT_COLOR,
                   .iconId = 344,
                   .defaults = descriptions::InvertColor.defaults,
                   .makePanel = vixa::MakePanel<CDialogInvert>},
        .parameters = parameters::invertColor,
    },
    {
        .classId = &CLSID_MultiplyPixel,
        .name = L"Multiply pixel",
        .create = CMultiplyPixel::CreateInstance,
        .alias = L"{C32282F0-86A3-444F-B709-CCD51A59D647}",
        .record = {.group = colourFilters,
                   .sortKey = FromEnd(98),
                   .nameId = IDS_MULTIPLY_PIXEL,
                   .iconId = 340,
                   .defaults = descriptions::MultiplyPixel.defaults,
                   .makePanel = vixa::MakePanel<CDialogMultiply>},
        .parameters = parameters::multiplyPixel,
    },
    {
        .classId = &CLSID_GammaCorrection,
        .name = L"Gamma correction",
        .create = CGammaCorrection::CreateInstance,
        .alias = L"{026C24CA-EB0A-4D82-B8F0-C1F398C3C1DF}",
        .record = {.group = colourFilters,
                   .sortKey = FromEnd(97),
                   .nameId = IDS_GAMMA_CORRECTION,
                   .iconId = 341,
                   .defaults = descriptions::GammaCorrection.defaults,
                   .makePanel = vixa::MakePanel<CDialogSelectGamma>},
        .parameters = parameters::gammaCorrection,
    },
    {
        .classId = &CLSID_DetectEdges,
        .name = L"Detect edges",
        .create = CConvCorrection::CreateInstance,
        .alias = L"{25AB171B-7AD5-4EA0-8727-9407A1CEFC5B}",
        .record = {.group = edges,
                   .sortKey = FromEnd(99),
                   .nameId = IDS_DETECT_EDGES,
                   .iconId = 335,
                   .defaults = descriptions::DetectEdges.defaults,
                   .makePanel = vixa::MakePanel<CDialogNoPropreties>},
    },
    {
        .classId = &CLSID_Emboss,
        .name = L"Emboss",
        .create = CConvCorrection::CreateInstance,
        .alias = L"{BB887A10-AEC5-4F42-AE26-2BBEE40111E1}",
        .record = {.group = edges,
                   .sortKey = FromEnd(97),
                   .nameId = IDS_EMBOSS,
                   .iconId = 333,
                   .defaults = descriptions::Emboss.defaults,
                   .makePanel = vixa::MakePanel<CDialogNoPropreties>},
    },
    {
        .classId = &CLSID_EnhanceDetails,
        .name = L"Enhance details",
        .create = CConvCorrection::CreateInstance,
        .alias = L"{608524BB-EF57-4D98-A0D9-F5BFA33D9B9F}",
        .record = {.group = sharpness,
                   .sortKey = FromEnd(99),
                   .nameId = IDS_ENHANCE_DETAILS,
                   .iconId = 343,
                   .defaults = descriptions::EnhanceDetails.defaults,
                   .makePanel = vixa::MakePanel<CDialogNoPropreties>},
    },
    {
        .classId = &CLSID_EnhanceEdges,
        .name = L"Enhance edges",
        .create = CConvCorrection::CreateInstance,
        .alias = L"{524CFA6F-0CF2-46E6-B432-16C6C877BCEA}",
        .record = {.group = edges,
                   .sortKey = FromEnd(99),
                   .nameId = IDS_ENHANCE_EDGES,
                   .iconId = 337,
                   .defaults = descriptions::EnhanceEdges.defaults,
                   .makePanel = vixa::MakePanel<CDialogNoPropreties>},
    },
    {
        .classId = &CLSID_EnhanceFocus,
        .name = L"Enhance focus",
        .create = CConvCorrection::CreateInstance,
        .alias = L"{8EADD68F-9807-4B75-A38A-024F0FDFD306}",
        .record = {.group = sharpness,
                   .sortKey = FromEnd(99),
                   .nameId = IDS_ENHANCE_FOCUS,
                   .iconId = 342,
                   .defaults = descriptions::EnhanceFocus.defaults,
                   .makePanel = vixa::MakePanel<CDialogNoPropreties>},
    },
    {
        .classId = &CLSID_LightEdges,
        .name = L"Light edges",
        .create = CConvCorrection::CreateInstance,
        .alias = L"{DEEC2D5C-B87A-41E8-AECC-942BEFB32E0B}",
        .record = {.group = edges,
                   .sortKey = FromEnd(99),
                   .nameId = IDS_LIGHT_EDGES,
                   .iconId = 336,
                   .defaults = descriptions::LightEdges.defaults,
                   .makePanel = vixa::MakePanel<CDialogNoPropreties>},
    },
    {
        .classId = &CLSID_ShiftEdges,
        .name = L"Shift edges",
        .create = CConvCorrection::CreateInstance,
        .alias = L"{5772EFE8-D5CF-4417-B6AC-4BC723FA785C}",
        .record = {.group = edges,
                   .sortKey = FromEnd(98),
                   .nameId = IDS_SHIFT_EDGES,
                   .iconId = 334,
                   .defaults = descriptions::ShiftEdges.defaults,
                   .makePanel = vixa::MakePanel<CDialogShiftEdges>},
        .parameters = parameters::shiftEdges,
    },
    {
        .classId = &CLSID_SoftenFilter,
        .name = L"Soften filter",
        .create = CConvCorrection::CreateInstance,
        .alias = L"{B01EBCAF-D816-4FD0-AB0A-0F2D7BE51A94}",
        .record = {.group = sharpness,
                   .sortKey = FromEnd(80),
                   .nameId = IDS_SOFTEN_FILTER,
                   .iconId = 332,
                   .defaults = descriptions::SoftenFilter.defaults,
                   .makePanel = vixa::MakePanel<CDialogNoPropreties>},
    },
};

constexpr std::size_t count = std::size(rows);

// What hosts read of a row's parameters is what the row says, and its defaults lie where they should, in their ranges.
constexpr bool Agrees(const EffectRow& row)
{
    const auto numbers = row.record.defaults.Numbers();
    return row.parameters.data() == ParametersOf(*row.classId).data() &&
           std::ranges::all_of(row.parameters, [&](const ParameterDescription& parameter) {
               const std::size_t place = parameter.offset / sizeof(std::int32_t);
               return place < numbers.size() && numbers[place] >= parameter.minimum &&
                      numbers[place] <= parameter.maximum;
           });
}
static_assert(std::ranges::all_of(rows, Agrees));
static_assert(count == std::size(effectParameters));

// No row has an init routine. None describes itself to the filter mapper either: the effects are the host's own, found
// through its categories, and must not turn up in a graph that is built automatically.
constexpr std::array<CFactoryTemplate, count> Templates()
{
    std::array<CFactoryTemplate, count> made{};
    std::ranges::transform(rows, made.begin(), [](const EffectRow& row) {
        return CFactoryTemplate{row.name, row.classId, row.create, nullptr, nullptr};
    });
    return made;
}

constexpr std::array<vixa::EffectAlias, count> Aliases()
{
    std::array<vixa::EffectAlias, count> made{};
    std::ranges::transform(rows, made.begin(), [](const EffectRow& row) {
        return vixa::EffectAlias{row.alias, row.classId};
    });
    std::ranges::sort(made, {}, [](const vixa::EffectAlias& entry) { return std::wstring_view(entry.alias); });
    return made;
}

constinit std::array<CFactoryTemplate, count> templates = Templates();
constexpr std::array<vixa::EffectAlias, count> aliases = Aliases();
static_assert(std::ranges::adjacent_find(aliases, {}, [](const vixa::EffectAlias& entry) {
                  return std::wstring_view(entry.alias);
              }) == aliases.end());

} // namespace

constinit const std::span<CFactoryTemplate> g_Templates = templates;

CFactoryTemplate* FindEffect(REFCLSID classId) noexcept
{
    for (CFactoryTemplate& row : templates)
        if (row.IsClassID(classId))
            return &row;
    return nullptr;
}

const vixa::EffectRecord* RecordOf(const CFactoryTemplate* effect) noexcept
{
    return effect ? &rows[effect - templates.data()].record : nullptr;
}

std::span<const vixa::EffectAlias> EffectAliases() noexcept
{
    return aliases;
}
