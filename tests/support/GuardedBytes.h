// Memory between two pages that fault on any access: a byte too far ends the test program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace test {

class GuardedBytes
{
public:
    // Which end of the bytes lies directly at its inaccessible page.
    enum class Guard
    {
        Before,
        Behind
    };

    explicit GuardedBytes(std::size_t size, Guard guard = Guard::Behind) : room((size + page - 1) / page * page)
    {
#ifdef _WIN32
        base = static_cast<std::uint8_t*>(VirtualAlloc(nullptr, room + 2 * page, MEM_RESERVE, PAGE_NOACCESS));
        if (!base || (room && !VirtualAlloc(base + page, room, MEM_COMMIT, PAGE_READWRITE)))
            std::abort();
#else
        void* const block = mmap(nullptr, room + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (block == MAP_FAILED)
            std::abort();
        base = static_cast<std::uint8_t*>(block);
        if (room && mprotect(base + page, room, PROT_READ | PROT_WRITE) != 0)
            std::abort();
#endif
        Place(size, guard);
    }
    explicit GuardedBytes(std::span<const std::byte> content) : GuardedBytes(content.size())
    {
        if (!content.empty())
            std::memcpy(data(), content.data(), content.size());
    }
    ~GuardedBytes()
    {
#ifdef _WIN32
        VirtualFree(base, 0, MEM_RELEASE);
#else
        munmap(base, room + 2 * page);
#endif
    }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    // Makes the bytes `size` long, at most as many as at first, and moves them to one end; what they hold is not kept.
    std::span<std::uint8_t> Place(std::size_t size, Guard guard)
    {
        std::uint8_t* const start = base + page;
        return bytes = {guard == Guard::Before ? start : start + room - size, size};
    }

    std::uint8_t* data() const
    {
        return bytes.data();
    }
    std::size_t size() const
    {
        return bytes.size();
    }
    std::span<std::uint8_t> Bytes() const
    {
        return bytes;
    }

private:
    static constexpr std::size_t page = 4096;

    std::size_t room;
    std::uint8_t* base = nullptr;
    std::span<std::uint8_t> bytes;
};

} // namespace test
