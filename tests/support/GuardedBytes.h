// Memory with an inaccessible page directly behind it, or directly before it: a byte too far ends the test program.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace test {

class GuardedBytes
{
public:
    enum class Guard
    {
        Before,
        Behind
    };

    GuardedBytes(std::size_t size, Guard guard) : length(size)
    {
        const std::size_t room = (size + page - 1) / page * page;
        base = static_cast<std::uint8_t*>(VirtualAlloc(nullptr, room + 2 * page, MEM_RESERVE, PAGE_NOACCESS));
        VirtualAlloc(base + page, room ? room : 1, MEM_COMMIT, PAGE_READWRITE);
        start = guard == Guard::Before ? base + page : base + page + room - size;
    }
    ~GuardedBytes() { VirtualFree(base, 0, MEM_RELEASE); }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    std::uint8_t* data() const { return start; }
    std::size_t size() const { return length; }
    std::span<std::uint8_t> Bytes() const { return {start, length}; }

private:
    static constexpr std::size_t page = 4096;
    std::uint8_t* base;
    std::uint8_t* start;
    std::size_t length;
};

} // namespace test
