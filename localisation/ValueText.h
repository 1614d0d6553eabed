// The text of a number, by a printf-style format that comes from a language file and is therefore not trusted.
#pragma once

#include <string>
#include <string_view>

namespace vixa {

// `format` is a printf format for one double: literal text, %% for a percent sign, and at most one conversion, which is
// %, flags, a width and a precision (beyond 4095 they count as 4095), an optional l, and one of a A e E f F g G. A
// format that asks for anything else, another kind of argument (%s, %d, %n, *) or a second one, gives an empty text, so
// that no other argument is ever read. A terminator inside `format` ends it, as in printf.
std::wstring FormatValue(std::wstring_view format, double value);

} // namespace vixa
