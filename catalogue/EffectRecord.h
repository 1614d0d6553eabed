// The catalogue's record: what a host is told of one effect.
#pragma once

#include "catalogue/SingleEnumPropertySetInfo.h"
#include "catalogue/SingleValuePropertySetInfo.h"
#include "dialogs/EffectPanel.h"

#include <windows.h>

#include <vixavideofx/DataBlocks.h>

#include <array>
#include <bit>
#include <cstdint>
#include <span>

namespace vixa {

// Where an effect is listed.
struct EffectGroup
{
    std::uint32_t id;
    std::uint32_t nameId; // string
};

// The bytes of a default data block of up to four numbers; none is no default.
class DefaultBlock
{
public:
    constexpr DefaultBlock() = default;

    template <typename Block>
    constexpr DefaultBlock(const Block& block) : count(sizeof block / sizeof(std::int32_t))
    {
        static_assert(sizeof block <= sizeof values && sizeof block % sizeof(std::int32_t) == 0);
        const auto numbers = std::bit_cast<std::array<std::int32_t, sizeof block / sizeof(std::int32_t)>>(block);
        for (std::size_t i = 0; i < count; ++i)
            values[i] = numbers[i];
    }

    constexpr std::span<const std::int32_t> Numbers() const noexcept { return std::span(values).first(count); }

private:
    std::array<std::int32_t, 4> values{};
    std::size_t count = 0;
};

struct EffectRecord
{
    std::uint32_t typeCode = 0; // this and the subtype are numbers of the host's own
    std::uint32_t subtypeCode = 0;
    EffectGroup group;
    std::uint32_t sortKey; // an ordering key that hosts read; the ordering is theirs
    std::uint32_t nameId;  // string
    std::uint32_t iconId;  // a bitmap of 36 x 34 pixels, 24 bits each
    std::uint32_t secondBitmapId = 0;
    std::uint32_t secondBitmapValue = 0;

    // What holds the parameters, and what is known of them: the defaults of a data block, or the description of a
    // single value or a single choice. Without it the effect has no defaults and no description.
    vixavideofx::PropertySetKind parameterKind = vixavideofx::PropertySetKind::DataBlock;
    DefaultBlock defaults{};
    const ValueDescription* value = nullptr;
    const EnumDescription* choice = nullptr;

    PanelMaker makePanel = nullptr; // several effects share a panel class; null: the effect has no panel
};

} // namespace vixa
