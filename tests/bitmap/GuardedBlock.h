// A block whose last byte is the last one before a page that faults on any access, and, for a block of whole pages,
// whose first byte is the first behind such a page.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <span>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace vixa::bitmap::test {

class GuardedBlock
{
public:
    explicit GuardedBlock(std::size_t size_) : size(size_), room((size_ + page - 1) / page * page)
    {
#ifdef _WIN32
        base = static_cast<std::byte*>(VirtualAlloc(nullptr, room + 2 * page, MEM_RESERVE, PAGE_NOACCESS));
        if (!base || (room && !VirtualAlloc(base + page, room, MEM_COMMIT, PAGE_READWRITE)))
            std::abort();
#else
        void* const block = mmap(nullptr, room + 2 * page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (block == MAP_FAILED)
            std::abort();
        base = static_cast<std::byte*>(block);
        if (room && mprotect(base + page, room, PROT_READ | PROT_WRITE) != 0)
            std::abort();
#endif
    }
    explicit GuardedBlock(std::span<const std::byte> content) : GuardedBlock(content.size())
    {
        if (!content.empty())
            std::memcpy(data(), content.data(), content.size());
    }
    ~GuardedBlock()
    {
#ifdef _WIN32
        VirtualFree(base, 0, MEM_RELEASE);
#else
        munmap(base, room + 2 * page);
#endif
    }
    GuardedBlock(const GuardedBlock&) = delete;
    GuardedBlock& operator=(const GuardedBlock&) = delete;

    std::byte* data() const
    {
        return base + page + room - size;
    }
    std::span<std::byte> Bytes() const
    {
        return {data(), size};
    }

private:
    static constexpr std::size_t page = 4096;
    std::size_t size;
    std::size_t room;
    std::byte* base;
};

} // namespace vixa::bitmap::test
