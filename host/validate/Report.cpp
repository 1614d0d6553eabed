#include "host/validate/Report.h"

#include "host/base/Text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <random>

namespace vixahost::validate {

ReportKey RandomKey()
{
    std::random_device random;
    const auto number = [&random] { return std::uint64_t{random()} << 32 | random(); };
    return {number(), number()};
}

std::uint64_t Signature(const ReportKey& key, std::string_view text) noexcept
{
    std::uint64_t a = key[0] ^ 0x736F6D6570736575, b = key[1] ^ 0x646F72616E646F6D, c = key[0] ^ 0x6C7967656E657261,
                  d = key[1] ^ 0x7465646279746573;
    const auto mix = [&](int rounds) {
        while (rounds-- > 0) {
            a += b;
            c += d;
            b = std::rotl(b, 13) ^ a;
            d = std::rotl(d, 16) ^ c;
            a = std::rotl(a, 32) + d;
            c += b;
            d = std::rotl(d, 21) ^ a;
            b = std::rotl(b, 17) ^ c;
            c = std::rotl(c, 32);
        }
    };
    for (const std::uint64_t size = text.size();; text.remove_prefix(8)) {
        std::uint64_t word = text.size() < 8 ? size << 56 : 0;
        for (std::size_t i = 0; i < 8 && i < text.size(); ++i)
            word |= std::uint64_t{static_cast<unsigned char>(text[i])} << (8 * i);
        d ^= word;
        mix(2);
        a ^= word;
        if (text.size() < 8)
            break;
    }
    c ^= 0xFF;
    mix(4);
    return a ^ b ^ c ^ d;
}

namespace {

constexpr int signatureLength = 16;

// Takes what stands before the next blank off the text.
std::string_view Word(std::string_view& text)
{
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    return word;
}

bool ReadNumber(std::string_view& text, int base, auto& number)
{
    const std::string_view word = Word(text);
    const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), number, base);
    return fault == std::errc() && end == word.data() + word.size();
}

bool Understand(std::string_view said, unsigned long number, Statement& statement)
{
    unsigned long itsNumber = 0;
    int kind = 0, status = 0;
    if (!ReadNumber(said, 10, itsNumber) || itsNumber != number || !ReadNumber(said, 10, kind) ||
        !ReadNumber(said, 10, statement.check) || !ReadNumber(said, 10, status))
        return false;
    statement.kind = static_cast<Statement::Kind>(kind);
    statement.status = static_cast<Status>(status);
    statement.reason = Excerpt(said, maxReason);
    // That a check crashed is for the parent to say.
    return kind >= 0 && kind <= static_cast<int>(Statement::Kind::Crashes) && status >= 0 &&
           status <= static_cast<int>(Status::Failed);
}

} // namespace

std::string_view WriteLine(char (&line)[maxLine], const ReportKey& key, unsigned long number, Statement::Kind kind,
                           int check, Status status, const char* reason) noexcept
{
    char* const said = line + signatureLength + 1;
    const std::size_t room = maxLine - signatureLength - 2;
    std::snprintf(said, room, "%lu %d %d %d %s", number, static_cast<int>(kind), check, static_cast<int>(status),
                  reason);
    for (char* at = said; *at; ++at)
        if (*at == '\n')
            *at = ' ';
    const std::size_t length = std::strlen(said);
    std::snprintf(line, signatureLength + 1, "%016" PRIx64, Signature(key, {said, length}));
    line[signatureLength] = ' ';
    said[length] = '\n';
    return {line, signatureLength + 1 + length + 1};
}

ReportReader::Found ReportReader::Next(Statement& statement)
{
    const std::size_t end = pending.find('\n');
    if (end == std::string::npos && pending.size() < maxLine)
        return Found::Nothing;
    const std::string line = pending.substr(0, end);
    pending.erase(0, end == std::string::npos ? end : end + 1);
    std::string_view said = line;
    std::uint64_t signature = 0;
    statement = {};
    if (line.size() < maxLine && ReadNumber(said, 16, signature) && signature == Signature(key, said) &&
        Understand(said, number, statement)) {
        ++number;
        return Found::Line;
    }
    statement.reason = Excerpt(line);
    return Found::Foreign;
}

} // namespace vixahost::validate
