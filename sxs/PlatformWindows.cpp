#include "sxs/Platform.h"

#include "framework/Handles.h"
#include "sxs/CVixaSXSError.h"

#include <windows.h>

#include <algorithm>

namespace vixa::sxs {

std::wstring WideFromUtf8(const std::string& text)
{
    if (text.empty())
        return {};
    // Without the flag the system would replace bad sequences silently, and a damaged name would name something else.
    const auto convert = [&](wchar_t* out, int capacity) {
        const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(),
                                               static_cast<int>(text.size()), out, capacity);
        if (length <= 0)
            throw CVixaSXSError(static_cast<std::int32_t>(GetLastError()), AREA_TEXT);
        return length;
    };
    std::wstring wide(static_cast<std::size_t>(convert(nullptr, 0)), L'\0');
    convert(wide.data(), static_cast<int>(wide.size()));
    return wide;
}

void SystemMessage(std::int32_t code, std::span<char> message) noexcept
{
    wchar_t wide[1024];
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, static_cast<DWORD>(code),
                       MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), wide, static_cast<DWORD>(std::size(wide)), nullptr);
    // A message ends with a line break; one inside it becomes a space.
    wchar_t* end = wide + length;
    while (end != wide && (end[-1] == L'\r' || end[-1] == L'\n'))
        --end;
    wchar_t* out = wide;
    for (const wchar_t* in = wide; in != end; ++in) {
        if (*in == L'\r' && in + 1 != end && in[1] == L'\n')
            continue;
        *out++ = (*in == L'\r' || *in == L'\n') ? L' ' : *in;
    }

    std::size_t used = 0;
    for (const wchar_t* in = wide; in != out;) {
        // Whole characters only, so that cutting leaves none half.
        const int units = (IS_HIGH_SURROGATE(*in) && in + 1 != out) ? 2 : 1;
        char bytes[8];
        const int count = WideCharToMultiByte(CP_ACP, 0, in, units, bytes, sizeof bytes, nullptr, nullptr);
        if (count <= 0 || used + static_cast<std::size_t>(count) >= message.size())
            break;
        std::copy_n(bytes, count, message.begin() + static_cast<std::ptrdiff_t>(used));
        used += static_cast<std::size_t>(count);
        in += units;
    }
    message[used] = '\0';
}

std::uint32_t ProgramPath(wchar_t* buffer, std::uint32_t capacity, std::int32_t& error) noexcept
{
    const DWORD length = GetModuleFileNameW(nullptr, buffer, capacity);
    error = length == 0 ? static_cast<std::int32_t>(GetLastError()) : 0;
    return length;
}

bool ReadWholeFile(const std::wstring& path, std::size_t limit, std::string& bytes)
{
    const UniqueFile file =
        Opened(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                           OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file)
        return false;
    // A pipe or a console could keep the reader waiting.
    LARGE_INTEGER size;
    if (GetFileType(file.get()) != FILE_TYPE_DISK || !GetFileSizeEx(file.get(), &size) ||
        static_cast<ULONGLONG>(size.QuadPart) > limit)
        return false;
    bytes.resize(static_cast<std::size_t>(size.QuadPart));
    DWORD read = 0;
    if (!ReadFile(file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr))
        return false;
    bytes.resize(read);
    return true;
}

} // namespace vixa::sxs
