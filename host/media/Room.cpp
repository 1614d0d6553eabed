#include "host/media/Room.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace vixahost::media {

namespace {

// Whether two pieces of so many bytes are to be had at once. Only tried: not every system tells what of its address
// space is free.
bool TwoPieces(SIZE_T bytes)
{
    void* const first = VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS);
    void* const second = first ? VirtualAlloc(nullptr, bytes, MEM_RESERVE, PAGE_NOACCESS) : nullptr;
    for (void* const piece : {first, second})
        if (piece)
            VirtualFree(piece, 0, MEM_RELEASE);
    return second != nullptr;
}

// The most bytes of which two pieces are to be had, to a MiB.
std::uint64_t LargestPair()
{
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof status;
    GlobalMemoryStatusEx(&status);
    std::uint64_t fits = 0, fails = std::min<std::uint64_t>(status.ullAvailPhys / 2, PTRDIFF_MAX) >> 20;
    while (fails - fits > 1 && fails > 0) {
        const std::uint64_t middle = (fits + fails) / 2;
        (TwoPieces(static_cast<SIZE_T>(middle << 20)) ? fits : fails) = middle;
    }
    return fits << 20;
}

} // namespace

FailedJob NoRoomFor(const std::string& what)
{
    const std::uint64_t pixels = LargestPair() / 4;
    const auto side = static_cast<std::uint64_t>(std::sqrt(static_cast<double>(pixels))) / 100 * 100;
    const std::string size = std::to_string(side);
    return FailedJob("Not enough memory for " + what + "; the largest here is about " + size + " x " + size + ".");
}

FailedJob NoRoomFor(int width, int height)
{
    return NoRoomFor("a picture of " + std::to_string(width) + " x " + std::to_string(height) + " pixels");
}

} // namespace vixahost::media
