#include "localisation/ValueText.h"

#include <cwchar>

namespace vixa {

namespace {

// The largest double has 309 digits before the point; sign, point, a width or a precision of 99 and the exponent fit.
constexpr std::size_t longestNumber = 512;

std::wstring_view TakeWhile(std::wstring_view& text, std::wstring_view characters, std::size_t most)
{
    const std::size_t end = text.substr(0, most).find_first_not_of(characters);
    const std::wstring_view taken = text.substr(0, end == std::wstring_view::npos ? most : end);
    text.remove_prefix(taken.size());
    return taken;
}

// Takes the conversion after a percent sign off `text`; empty when it isn't one of a double.
std::wstring TakeConversion(std::wstring_view& text)
{
    constexpr std::wstring_view digits = L"0123456789";
    std::wstring conversion = L"%";
    conversion += TakeWhile(text, L"-+ #0", 5);
    conversion += TakeWhile(text, digits, 2);
    if (text.starts_with(L'.')) {
        conversion += TakeWhile(text, L".", 1);
        conversion += TakeWhile(text, digits, 2);
    }
    TakeWhile(text, L"l", 1);
    const std::wstring_view kind = TakeWhile(text, L"aAeEfFgG", 1);
    if (kind.empty())
        return {};
    return conversion += kind;
}

std::wstring FormatNumber(const std::wstring& conversion, double value)
{
    wchar_t number[longestNumber];
    const int length = std::swprintf(number, longestNumber, conversion.c_str(), value);
    return length < 0 ? std::wstring() : std::wstring(number, static_cast<std::size_t>(length));
}

} // namespace

std::wstring FormatValue(std::wstring_view format, double value)
{
    format = format.substr(0, format.find(L'\0'));
    std::wstring text;
    bool converted = false;
    while (!format.empty()) {
        const std::size_t percent = format.find(L'%');
        text += format.substr(0, percent);
        if (percent == std::wstring_view::npos)
            break;
        format.remove_prefix(percent + 1);
        if (format.starts_with(L'%')) {
            text += L'%';
            format.remove_prefix(1);
            continue;
        }
        const std::wstring conversion = TakeConversion(format);
        if (conversion.empty() || converted)
            return {};
        text += FormatNumber(conversion, value);
        converted = true;
    }
    return converted ? text : std::wstring();
}

} // namespace vixa
