// What the settings panels have in common: their texts, the room these need, and which slider messages count.
#pragma once

#include <windows.h>

#include <string>

namespace vixa {

// A text of the library's own string resources, at most 254 characters; empty when it is missing.
std::wstring OwnText(HINSTANCE library, UINT id);

// A text in the current language, or the library's own when the language file lacks it.
std::wstring PanelText(HINSTANCE library, UINT id);

// A trackbar position as its value text shows it.
std::wstring PositionText(int position);

// Grows the panel's texts and check boxes to the right and its trackbars downwards where the template's sizes are too
// small for what they hold now, as far as the panel and the controls beside or below leave room. What fits stays as it
// is.
void FitControls(HWND dialog);

inline bool IsFrom(LPARAM lParam, HWND control)
{
    return control && reinterpret_cast<HWND>(lParam) == control;
}

// Whether a trackbar's message settles a value. While the thumb is dragged only the shown number follows; the drag ends
// with a message of its own.
bool SettlesValue(WPARAM scrollRequest);

} // namespace vixa
