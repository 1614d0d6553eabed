// What the configuration lookup asks of the system. PlatformWindows.cpp answers in the library; PlatformPosix.cpp lets
// the lookup be tested under the sanitizers and fuzzed.
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace vixa::sxs {

// The capacity in characters, terminator included, of the buffers that hold the host program's path and its manifest's.
inline constexpr std::uint32_t pathCapacity = 32767;

// A text in UTF-8 as UTF-16 (natively: in the system's wide characters); empty for an empty text. A text that isn't
// UTF-8 throws CVixaSXSError with the system's error and AREA_TEXT.
std::wstring WideFromUtf8(const std::string& text);

// The system's message for an error number in the user's language, without line breaks, cut to fit and terminated;
// empty when the system has none.
void SystemMessage(std::int32_t code, std::span<char> message) noexcept;

// Writes the full path of the running program, as GetModuleFileNameW does: the number of characters without the
// terminator, the capacity when the path did not fit, 0 on failure, with the system's error in `error`.
std::uint32_t ProgramPath(wchar_t* buffer, std::uint32_t capacity, std::int32_t& error) noexcept;

// The bytes of a file, `limit` of them at most. False when the file is missing, unreadable, not a plain file, or
// longer.
bool ReadWholeFile(const std::wstring& path, std::size_t limit, std::string& bytes);

} // namespace vixa::sxs
