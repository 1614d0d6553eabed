// What the settings panels have in common: their texts, their data blocks, and which slider messages count.
#pragma once

#include "parameters/BlockReader.h"

#include <vixavideofx/PropertySets.h>

#include <windows.h>

#include <optional>
#include <string>

namespace vixa {

// A text of the library's own string resources, at most 254 characters; empty when it is missing.
std::wstring OwnText(HINSTANCE library, UINT id);

// A text in the current language, or the library's own when the language file lacks it.
std::wstring PanelText(HINSTANCE library, UINT id);

// A trackbar position as its value text shows it.
std::wstring PositionText(int position);

// The dialog around the control that WM_INITDIALOG names.
inline HWND DialogOf(WPARAM focusControl)
{
    return GetParent(reinterpret_cast<HWND>(focusControl));
}

// Widens the panel's labels and check boxes whose texts are too long for the template's sizes, as far as the panel and
// the controls beside them leave room. Texts that fit stay as they are.
void WidenToTexts(HWND dialog);

inline bool IsFrom(LPARAM lParam, HWND control)
{
    return control && reinterpret_cast<HWND>(lParam) == control;
}

// Whether a trackbar's message settles a value. While the thumb is dragged only the shown number follows; the drag ends
// with a message of its own.
bool SettlesValue(WPARAM scrollRequest);

// The block of a property set: none when there is no set, when reading fails or gives nothing. What a short read leaves
// out is 0.
template <typename Block>
std::optional<Block> TryReadBlock(IUnknown* params) noexcept
{
    if (!params)
        return std::nullopt;
    const auto read = ReadBlock(*static_cast<IDataPropertySet*>(params), Block{});
    return read.HasData() ? std::optional(read.block) : std::nullopt;
}

template <typename Block>
void WriteBlock(IUnknown* params, const Block& block)
{
    if (params)
        static_cast<IDataPropertySet*>(params)->SetData(&block, sizeof block);
}

} // namespace vixa
