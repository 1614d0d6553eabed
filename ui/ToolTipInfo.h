// What a dialog's tooltip says about one control.
#pragma once

#include <cstdint>

struct ToolTipInfo
{
    std::uint32_t controlId; // the dialog control the tooltip belongs to
    std::uint32_t textId;    // string resources of the context's module instance
    std::uint32_t titleId;
};
