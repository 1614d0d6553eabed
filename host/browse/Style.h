// How the browser's controls look.
#pragma once

#include "host/base/Handles.h"

namespace vixahost::browse {

// How controls are drawn: the system's message font and its scale.
class Style
{
public:
    Style();

    void Swap(Style& other) noexcept;

    HFONT Font() const noexcept { return font.get(); }
    // Pixels for a length given at 96 dots per inch.
    int Scale(int length) const noexcept { return MulDiv(length, dpi, 96); }
    int LineHeight() const noexcept { return lineHeight; } // pixels of one line of text

private:
    UniqueFont font;
    int dpi = 96;
    int lineHeight = 16;
};

// A control of a system class, in the style's font. Throws FailedJob.
HWND CreateControl(const wchar_t* className, const wchar_t* text, DWORD style, HWND parent, int id, const Style& look,
                   DWORD exStyle = 0);

} // namespace vixahost::browse
