#include "bench/AllocationCount.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> count = 0;
std::atomic<std::size_t> smallest = static_cast<std::size_t>(-1);

} // namespace

void* operator new(std::size_t size)
{
    if (size >= smallest)
        ++count;
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace vixahost::bench {

void CountAllocationsFrom(std::size_t bytes) noexcept
{
    smallest = bytes;
    count = 0;
}

std::size_t LargeAllocations() noexcept
{
    return count;
}

} // namespace vixahost::bench
