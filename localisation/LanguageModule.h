// Loads a language file as data: its resources can be looked up, none of its code runs.
#pragma once

#include "framework/Handles.h"

#include <string>

namespace vixa {

// The module serves FindResource, LoadResource and LoadString. A bare file name is searched in the usual order of
// libraries. Null, without an error box and with nothing left open, when there is no such file or it isn't a whole PE
// module. Throws std::bad_alloc.
UniqueModule LoadLanguageModule(const std::wstring& path);

} // namespace vixa
