// Texts for the rooms above: from the attached module, and out to a host by two calls.
#pragma once

#include "localisation/ModuleBase.h"

#include <string>
#include <string_view>

namespace vixa {

// The attached module whose texts and pictures the library serves; null outside Attach and Detach.
ModuleBase* TextModule() noexcept;

// String `id` in the current language; empty when it is missing. Throws std::bad_alloc.
std::wstring LoadResString(UINT id);

// The same in `language`, to which every module switches first; no other thread's switch comes between.
std::wstring LoadResStringIn(LANGID language, UINT id);

// The two-call text protocol: with `buffer`, copies the text and a terminator into it (it must hold text.size() + 1
// characters; `*length` is never read); with `length`, stores text.size() + 1 there.
void HandOutText(std::wstring_view text, WCHAR* buffer, ULONG* length) noexcept;

} // namespace vixa
