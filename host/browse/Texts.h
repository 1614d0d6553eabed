// The window's own texts in the language that is chosen.
#pragma once

#include "host/browse/texts/TextIds.h"

#include <windows.h>

#include <initializer_list>
#include <string>

namespace vixahost::browse {

// Reads the program's string tables (host/browse/texts). One thread.
class Texts
{
public:
    explicit Texts(LANGID chosen = 0x0409) noexcept : language(chosen) {}
    void SetLanguage(LANGID chosen) noexcept { language = chosen; }
    LANGID Language() const noexcept { return language; }

    // The text of an IDT_ number; English where the language has none, and empty for a number without a text.
    std::wstring operator()(UINT id) const;
    // The same with %1, %2... replaced by the given words.
    std::wstring operator()(UINT id, std::initializer_list<std::wstring> words) const;

    // As it stands in the table of exactly this language; empty when it doesn't.
    static std::wstring Find(UINT id, LANGID language);

private:
    LANGID language;
};

} // namespace vixahost::browse
