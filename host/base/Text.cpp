#include "host/base/Text.h"

#include <algorithm>
#include <cstdio>

namespace vixahost {

namespace {

void Write(HANDLE output, std::string_view utf8)
{
    DWORD written = 0;
    if (IsTerminal(output)) {
        // The console of an old system takes some 26,000 at once, and nothing of more.
        constexpr std::size_t most = 8000;
        const std::wstring wide = Wide(utf8);
        for (std::wstring_view rest = wide; !rest.empty(); rest.remove_prefix(written)) {
            std::size_t size = std::min(rest.size(), most);
            if (size < rest.size() && IS_HIGH_SURROGATE(rest[size - 1]))
                --size;
            if (!WriteConsoleW(output, rest.data(), static_cast<DWORD>(size), &written, nullptr) || written == 0)
                return;
        }
        return;
    }
    while (!utf8.empty() && WriteFile(output, utf8.data(), static_cast<DWORD>(utf8.size()), &written, nullptr) &&
           written > 0)
        utf8.remove_prefix(written);
}

} // namespace

std::string Utf8(std::wstring_view text)
{
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, result.data(), size, nullptr, nullptr);
    return result;
}

std::wstring Wide(std::string_view utf8)
{
    const int length = static_cast<int>(utf8.size());
    const int size = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, nullptr, 0);
    std::wstring result(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), length, result.data(), size);
    return result;
}

std::string Show(const std::filesystem::path& path)
{
    return Utf8(path.native());
}

std::string LowerCase(std::string_view text)
{
    std::string result(text);
    for (char& letter : result)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    return result;
}

std::string Excerpt(std::string_view utf8, std::size_t limit)
{
    const auto moves = [](wchar_t letter) {
        return letter < 0x20 || (letter >= 0x7F && letter < 0xA0) || (letter >= 0x200B && letter <= 0x200F) ||
               (letter >= 0x2028 && letter <= 0x202E) || (letter >= 0x2060 && letter <= 0x206F) || letter == 0xFEFF;
    };
    // No character takes more than four bytes; what is behind one that is cut in two is cut off below.
    std::wstring text = Wide(utf8.substr(0, (limit + 1) * 4));
    const bool cut = text.size() > limit;
    if (cut)
        text.resize(limit > 0 && IS_HIGH_SURROGATE(text[limit - 1]) ? limit - 1 : limit);
    for (wchar_t& letter : text)
        if (letter == L'\t' || letter == L'\n' || letter == L'\r')
            letter = L' ';
        else if (moves(letter))
            letter = 0xFFFD;
    return Utf8(text) + (cut ? "..." : "");
}

bool IsTerminal(HANDLE output) noexcept
{
    DWORD mode = 0;
    return GetFileType(output) == FILE_TYPE_CHAR && GetConsoleMode(output, &mode) != FALSE;
}

void Say(std::string_view utf8)
{
    Write(GetStdHandle(STD_OUTPUT_HANDLE), utf8);
}

void Complain(std::string_view utf8)
{
    Write(GetStdHandle(STD_ERROR_HANDLE), utf8);
}

} // namespace vixahost
