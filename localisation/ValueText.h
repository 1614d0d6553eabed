// The text of a number, by a printf-style format that comes from a language file and is therefore not trusted.
#pragma once

#include <string>
#include <string_view>

namespace vixa {

// `format` is literal text around exactly one conversion of a double: %, flags, a width and a precision of at most two
// digits each, an optional l, and one of a A e E f F g G; %% is a percent sign. Any other format gives an empty text,
// so that no other argument is ever read. A terminator inside `format` ends it, as in printf.
std::wstring FormatValue(std::wstring_view format, double value);

} // namespace vixa
