// The catalogue's records: what a host is told of each effect, in one table.
#pragma once

#include "dialogs/EffectPanel.h"

#include <windows.h>

#include <vixavideofx/DataBlocks.h>

#include <cstdint>
#include <span>

namespace vixa {

struct EffectRecord
{
    const CLSID* clsid;
    std::uint32_t typeCode;
    std::uint32_t groupId; // 3 colour filters, 4 edges, 5 sharpness
    std::uint32_t groupNameId;
    std::uint32_t subtypeCode;
    std::uint32_t sortKey;
    std::uint32_t nameId;
    std::uint32_t iconId; // a bitmap of 36 x 34 pixels, 24 bits each
    std::uint32_t secondBitmapId;
    std::uint32_t secondBitmapValue;
    vixavideofx::PropertySetKind parameterKind;
    PanelMaker makePanel; // several effects share a panel class
};

// In the catalogue's order, which is not that of the factory templates.
std::span<const EffectRecord> EffectRecords() noexcept;

// The record of a class identifier, or null.
const EffectRecord* FindRecord(REFCLSID clsid) noexcept;

// The default data block of an effect, as 32-bit integers; empty for an unknown class identifier.
std::span<const std::int32_t> DefaultBlockOf(REFCLSID clsid) noexcept;

} // namespace vixa
