#include "sxs/Platform.h"

#include "sxs/CVixaSXSError.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>

namespace vixa::sxs {

namespace {

// A character's bytes by its first one; 0 when none starts with it.
std::size_t LengthOf(unsigned char lead) noexcept
{
    if (lead < 0x80)
        return 1;
    if (lead < 0xC2 || lead > 0xF4)
        return 0;
    return lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

// The first character, which is taken off the text.
std::uint32_t TakeCharacter(std::string_view& text)
{
    const auto fail = [] { throw CVixaSXSError(1113, AREA_TEXT); }; // no mapping exists for a character
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = LengthOf(lead);
    if (length == 0 || text.size() < length)
        fail();
    std::uint32_t point = length == 1 ? lead : lead & (0x7Fu >> length);
    for (const char part : text.substr(1, length - 1)) {
        const auto next = static_cast<unsigned char>(part);
        if ((next & 0xC0) != 0x80)
            fail();
        point = point << 6 | (next & 0x3Fu);
    }
    static constexpr std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    if (point < least[length] || point > 0x10FFFF || (point >= 0xD800 && point < 0xE000))
        fail();
    text.remove_prefix(length);
    return point;
}

} // namespace

std::wstring WideFromUtf8(const std::string& text)
{
    std::wstring wide;
    for (std::string_view rest = text; !rest.empty();)
        wide.push_back(static_cast<wchar_t>(TakeCharacter(rest)));
    return wide;
}

void SystemMessage(std::int32_t code, std::span<char> message) noexcept
{
    message[0] = '\0';
    try {
        const std::string text = std::system_category().message(code);
        const std::size_t length = std::min(text.size(), message.size() - 1);
        std::copy_n(text.begin(), length, message.begin());
        message[length] = '\0';
    } catch (const std::exception&) {
        message[0] = '\0'; // no message is what the caller gets when memory is short
    }
}

std::uint32_t ProgramPath(wchar_t* buffer, std::uint32_t capacity, std::int32_t& error) noexcept
{
    char bytes[4096];
    const ssize_t length = readlink("/proc/self/exe", bytes, sizeof bytes);
    if (length <= 0) {
        error = errno;
        return 0;
    }
    const std::uint32_t count = std::min(static_cast<std::uint32_t>(length), capacity - 1);
    std::copy_n(reinterpret_cast<const unsigned char*>(bytes), count, buffer);
    buffer[count] = L'\0';
    return static_cast<std::uint32_t>(length) < capacity ? count : capacity;
}

bool ReadWholeFile(const std::wstring& path, std::size_t limit, std::string& bytes)
{
    // Paths came in byte by byte (above) and go out the same way.
    const std::filesystem::path file(std::string(path.begin(), path.end()));
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(file, ignored) || std::filesystem::file_size(file, ignored) > limit)
        return false;
    std::ifstream stream(file, std::ios::binary);
    bytes.resize(limit);
    stream.read(bytes.data(), static_cast<std::streamsize>(limit));
    bytes.resize(static_cast<std::size_t>(stream.gcount()));
    return stream.eof() || !stream.fail();
}

} // namespace vixa::sxs
