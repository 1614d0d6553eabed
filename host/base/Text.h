// Text between the host (UTF-8), the platform (UTF-16) and the user's terminal.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>
#include <string_view>

namespace vixahost {

// Unpaired surrogates and malformed UTF-8 become U+FFFD.
std::string Utf8(std::wstring_view text);
std::wstring Wide(std::string_view utf8);

// A path as the user wrote it, for messages.
std::string Show(const std::filesystem::path& path);

// Lower-case ASCII letters; other bytes stay.
std::string LowerCase(std::string_view text);

// Foreign text for a message: at most `limit` characters with "..." in place of the rest, without anything that moves a
// cursor or turns the reading direction. Line breaks and tabs become blanks.
std::string Excerpt(std::string_view utf8, std::size_t limit = 60);

// True when the handle is a terminal (a console), not a file, pipe or device.
bool IsTerminal(HANDLE output) noexcept;

// Writes to standard output or standard error: UTF-16 to a terminal, UTF-8 elsewhere. The text goes out at once.
void Say(std::string_view utf8);
void Complain(std::string_view utf8);

} // namespace vixahost
