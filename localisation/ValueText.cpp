#include "localisation/ValueText.h"

#include <algorithm>
#include <cwchar>
#include <optional>

namespace vixa {

namespace {

// What every printf can produce in one conversion; wider and more precise is not asked of it.
constexpr std::size_t mostPlaces = 4095;
// The largest double has 309 digits before the point; sign, point, the places behind it and the exponent fit.
constexpr std::size_t longestNumber = mostPlaces + 512;

std::wstring_view TakeWhile(std::wstring_view& text, std::wstring_view characters)
{
    const std::wstring_view taken = text.substr(0, std::min(text.find_first_not_of(characters), text.size()));
    text.remove_prefix(taken.size());
    return taken;
}

// A width or a precision, at most mostPlaces; empty when there is none.
std::wstring TakePlaces(std::wstring_view& text)
{
    const std::wstring_view digits = TakeWhile(text, L"0123456789");
    if (digits.empty())
        return {};
    std::size_t places = 0;
    for (const wchar_t digit : digits)
        places = std::min(places * 10 + static_cast<std::size_t>(digit - L'0'), mostPlaces);
    return std::to_wstring(places);
}

// Takes the conversion after a percent sign off `text`; none when it isn't one of a double.
std::optional<std::wstring> TakeConversion(std::wstring_view& text)
{
    std::wstring conversion = L"%";
    conversion += TakeWhile(text, L"-+ #0");
    conversion += TakePlaces(text);
    if (text.starts_with(L'.')) {
        text.remove_prefix(1);
        conversion += L'.' + TakePlaces(text);
    }
    if (text.starts_with(L'l'))
        text.remove_prefix(1);
    if (text.empty() || std::wstring_view(L"aAeEfFgG").find(text.front()) == std::wstring_view::npos)
        return std::nullopt;
    conversion += text.front();
    text.remove_prefix(1);
    return conversion;
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
        const auto conversion = TakeConversion(format);
        if (!conversion || converted)
            return {};
        text += FormatNumber(*conversion, value);
        converted = true;
    }
    return text;
}

} // namespace vixa
