// The window's menu in the language that is chosen.
#pragma once

#include "host/browse/Texts.h"
#include "host/effects/Languages.h"

#include <filesystem>
#include <vector>

namespace vixahost::browse {

// `text` with an ampersand before the letter that chooses it, one that isn't in `used` yet, which gets it. Scripts that
// keyboards don't type letter by letter get a Latin letter of the English text in brackets behind.
std::wstring WithAccessKey(std::wstring text, const std::wstring& english, std::wstring& used);

struct MenuContent
{
    std::vector<std::filesystem::path> recent;
    std::vector<std::wstring> presets; // names: what ships, then the user's own
    std::size_t shipped = 0;           // how many of them ship
    std::vector<effects::Language> languages;
};

// The caller owns the menu until it belongs to a window. Throws std::bad_alloc.
HMENU MakeMenu(const Texts& texts, const MenuContent& content);

} // namespace vixahost::browse
