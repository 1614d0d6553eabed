// How the browser's controls look.
#pragma once

#include "host/base/Handles.h"

#include <string>

namespace vixahost::browse {

// The same font for a language's texts. A script whose letters are shaped is shaped within one font, so where the font
// lacks them another one that has them is asked for by its character set.
LOGFONTW FontFor(LOGFONTW font, LANGID language);

// How controls are drawn: the system's message font and its scale.
class Style
{
public:
    explicit Style(LANGID language = 0x0409);

    void Swap(Style& other) noexcept;

    HFONT Font() const noexcept { return font.get(); }
    // Whether that is another font than the system's, which doesn't have the language's letters.
    bool ReplacesSystemFont() const noexcept { return replaces; }
    // Pixels for a length given at 96 dots per inch.
    int Scale(int length) const noexcept { return MulDiv(length, dpi, 96); }
    int LineHeight() const noexcept { return lineHeight; } // pixels of one line of text
    int Width(const std::wstring& text) const;             // pixels of a text in one line
    // A text for so many pixels; what is too long lacks the middle of a path in it, or its own end.
    std::wstring Shortened(std::wstring text, int width) const;

private:
    UniqueFont font;
    int dpi = 96;
    int lineHeight = 16;
    bool replaces = false;
};

// Whether the system's colours are light letters on a dark ground.
bool DarkColours();

// The system's visual style is made for light colours. Under dark ones the window's controls are drawn without it, in
// the colours themselves.
void FollowColours(HWND window);

// For windows that are walked through (EnumChildWindows and its like): the text is written in this HFONT, the caller's.
BOOL CALLBACK GiveFont(HWND window, LPARAM font);

// A control of a system class, in the style's font. Throws FailedJob.
HWND CreateControl(const wchar_t* className, const wchar_t* text, DWORD style, HWND parent, int id, const Style& look,
                   DWORD exStyle = 0);

} // namespace vixahost::browse
