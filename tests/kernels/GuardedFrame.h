// A frame between two pages that fault on any access, placed against one of them.
#pragma once

#include "effects/kernels/Kernels.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace vixa::kernels::test {

class GuardedFrame
{
public:
    enum class Against
    {
        Front, // the first byte of the frame is the first behind the guard
        Back,  // the last byte of the frame is the last before the guard
    };

    explicit GuardedFrame(std::size_t capacity) : room_((capacity + pageBytes - 1) / pageBytes * pageBytes)
    {
        const std::size_t all = room_ + 2 * pageBytes;
#ifdef _WIN32
        block_ = static_cast<std::uint8_t*>(VirtualAlloc(nullptr, all, MEM_RESERVE, PAGE_NOACCESS));
        if (!block_ || !VirtualAlloc(block_ + pageBytes, room_, MEM_COMMIT, PAGE_READWRITE))
            std::abort();
#else
        void* block = mmap(nullptr, all, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (block == MAP_FAILED)
            std::abort();
        block_ = static_cast<std::uint8_t*>(block);
        if (mprotect(block_ + pageBytes, room_, PROT_READ | PROT_WRITE) != 0)
            std::abort();
#endif
    }

    ~GuardedFrame()
    {
#ifdef _WIN32
        VirtualFree(block_, 0, MEM_RELEASE);
#else
        munmap(block_, room_ + 2 * pageBytes);
#endif
    }

    GuardedFrame(const GuardedFrame&) = delete;
    GuardedFrame& operator=(const GuardedFrame&) = delete;

    // `bytes` at most the capacity; the contents are whatever the room last held.
    Frame Place(std::size_t bytes, Against against)
    {
        std::uint8_t* room = block_ + pageBytes;
        return {against == Against::Front ? room : room + room_ - bytes, bytes};
    }

    Frame Place(const std::vector<std::uint8_t>& contents, Against against)
    {
        const Frame frame = Place(contents.size(), against);
        if (!contents.empty())
            std::memcpy(frame.data(), contents.data(), contents.size());
        return frame;
    }

private:
    static constexpr std::size_t pageBytes = 65536; // the platforms' coarsest allocation step

    std::size_t room_;
    std::uint8_t* block_ = nullptr;
};

} // namespace vixa::kernels::test
