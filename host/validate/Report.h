// The lines in which a child process tells what its checks found. The library under test lives in that process and can
// write to whatever the process has open; so each line is numbered and signed with a key that parent and child agree on
// before the library is loaded, and a line that is not signed is somebody else's.
#pragma once

#include "host/validate/Check.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace vixahost::validate {

using ReportKey = std::array<std::uint64_t, 2>;

// A new one from the system's random numbers.
ReportKey RandomKey();

// What the child is told on its standard input, at most that long: the key's two numbers and the handle of the pipe for
// its report, hexadecimal.
constexpr std::size_t maxOrders = 64;

// SipHash-2-4 of the text. Two texts of one length have the same signature only by chance.
std::uint64_t Signature(const ReportKey& key, std::string_view text) noexcept;

// What a line says.
struct Statement
{
    enum class Kind
    {
        Begins,  // a check
        Ends,    // a check
        Over,    // all checks have run and the library is unloaded
        Crashes, // the process
    };
    Kind kind = Kind::Over;
    int check = 0;                   // of its group, from 0
    Status status = Status::Success; // of the check that ends
    std::string reason;              // for a finding and a crash; at most maxReason characters, cleaned
};

// A line is never longer, its end included; longer reasons are cut.
constexpr std::size_t maxLine = 4096;
constexpr std::size_t maxReason = 1000;

// The child's side: puts its line number `number` into `line` and answers it with its end. Needs no memory, because the
// process may be about to crash.
std::string_view WriteLine(char (&line)[maxLine], const ReportKey& key, unsigned long number, Statement::Kind kind,
                           int check = 0, Status status = Status::Success, const char* reason = "") noexcept;

// The parent's side: takes bytes as they come.
class ReportReader
{
public:
    explicit ReportReader(const ReportKey& childsKey) : key(childsKey) {}

    // At most maxLine bytes are kept that make no line yet.
    void Take(std::string_view bytes) { pending += bytes; }

    enum class Found
    {
        Nothing, // no whole line
        Line,    // one of the child's, the next one in order
        Foreign, // a line that the child did not write here; nothing behind it can be trusted
    };
    // The statement, or an excerpt of the foreign line as its reason.
    Found Next(Statement& statement);

private:
    const ReportKey key;
    unsigned long number = 0;
    std::string pending;
};

} // namespace vixahost::validate
