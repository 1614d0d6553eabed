#include "parameters/BlockReader.h"

#include "host/fixtures/RecordedSet.h"
#include "tests/support/DebugText.h"

#include <gtest/gtest.h>

#include <csetjmp>
#include <cstring>
#include <stdexcept>

using namespace test;
using namespace vixahost::fixtures;
using vixa::ReadBlock;

namespace {

constexpr std::size_t roomBytes = 65536;

struct Pair
{
    std::int32_t first, second;
    bool operator==(const Pair&) const = default;
};

// Every stretch of address space in which anything could be had.
class FullAddressSpace
{
public:
    FullAddressSpace()
    {
        taken.reserve(1 << 16);
        for (std::size_t size = std::size_t{1} << 30; size >= 65536; size /= 2)
            while (void* const stretch = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS))
                taken.push_back(stretch);
    }
    ~FullAddressSpace()
    {
        for (void* stretch : taken)
            VirtualFree(stretch, 0, MEM_RELEASE);
    }
    FullAddressSpace(const FullAddressSpace&) = delete;
    FullAddressSpace& operator=(const FullAddressSpace&) = delete;

private:
    std::vector<void*> taken;
};

bool IsAccessible(const void* address)
{
    MEMORY_BASIC_INFORMATION memory{};
    VirtualQuery(address, &memory, sizeof memory);
    return memory.State == MEM_COMMIT && memory.Protect != PAGE_NOACCESS;
}

TEST(BlockReader, TheRoomEndsInAnInaccessiblePageAlsoWithinAnotherRead)
{
    RecordedSet set;
    std::vector<void*> rooms;
    set.answer = [&](void* room, int*) {
        EXPECT_FALSE(IsAccessible(static_cast<char*>(room) + roomBytes));
        std::memset(room, 0x11, roomBytes);
        rooms.push_back(room);
        if (rooms.size() < 3)
            ReadBlock(set, Pair{});
        static_cast<Pair*>(room)->second = static_cast<std::int32_t>(rooms.size());
        return S_OK;
    };
    EXPECT_EQ(ReadBlock(set, Pair{}).block, (Pair{0x11111111, 3}));
    ASSERT_EQ(rooms.size(), 3u);
    EXPECT_FALSE(IsAccessible(rooms[1])) << "what overlapping reads took is given back";
}

TEST(BlockReader, OnlyWhatGetDataGaveIsLaidOver)
{
    // The set writes the first number and answers; meanwhile both numbers have become others.
    const auto laidOver = [](HRESULT result, int size, std::int32_t written) {
        RecordedSet set;
        set.answer = [&](void* room, int* reported) {
            static_cast<Pair*>(room)->first = written;
            *reported = size;
            return result;
        };
        Pair current{5, 6};
        ReadBlock(set, Pair{1, 2}).LayOver(current);
        return current;
    };
    EXPECT_EQ(laidOver(S_OK, 4, 9), (Pair{9, 6}));
    EXPECT_EQ(laidOver(S_OK, 4, 1), (Pair{1, 6})) << "given, though it was there before";
    EXPECT_EQ(laidOver(S_OK, INT_MAX, 9), (Pair{9, 2})) << "the set says that it gave both";
    EXPECT_EQ(laidOver(S_OK, -1, 9), (Pair{9, 6}));
    EXPECT_EQ(laidOver(E_FAIL, 8, 9), (Pair{9, 6})) << "what a failing read changed counts";
    EXPECT_EQ(laidOver(E_FAIL, 8, 1), (Pair{5, 6}));
}

TEST(BlockReader, NeedsNoFreeAddressSpace)
{
    if constexpr (sizeof(void*) == 8)
        GTEST_SKIP() << "the lists of what is taken of a 64-bit address space would fill the machine's memory";
    RecordedSet set{1, 2}, nested{3, 4};
    HRESULT inner = S_OK;
    set.answer = [&](void* room, int* size) {
        inner = ReadBlock(nested, Pair{}).answer.result;
        *static_cast<Pair*>(room) = {1, 2};
        *size = sizeof(Pair);
        return S_OK;
    };
    const DebugText debugText;
    vixa::BlockRead<Pair> read{};
    {
        const FullAddressSpace full;
        read = ReadBlock(set, Pair{});
    }
    EXPECT_TRUE(read.HasData());
    EXPECT_EQ(read.block, (Pair{1, 2}));
    EXPECT_EQ(inner, E_OUTOFMEMORY) << "a read within another one needs room of its own";
    EXPECT_EQ(nested.reads, 0);
    EXPECT_NE(DebugText::last.find("property set"), std::string::npos);
}

TEST(BlockReader, AnExceptionOfTheHostEndsHere)
{
    RecordedSet set{7, 8};
    void* room = nullptr;
    set.answer = [&](void* buffer, int* size) -> HRESULT {
        room = buffer;
        *size = sizeof(Pair);
        throw std::runtime_error("the host's");
    };
    Pair current{5, 6};
    const auto failed = ReadBlock(set, Pair{1, 2});
    failed.LayOver(current);
    EXPECT_EQ(failed.answer.result, E_UNEXPECTED);
    EXPECT_EQ(current, (Pair{5, 6}));
    const auto expectTheSameRoom = [&] {
        set.answer = [&](void* buffer, int*) {
            EXPECT_EQ(buffer, room) << "the library's own room is free again";
            return S_OK;
        };
        ReadBlock(set, Pair{});
    };
    expectTheSameRoom();
#ifndef _WIN64
    // An exception that this compiler knows nothing of unwinds the stack like a jump.
    static jmp_buf caught;
    for (static int round = 0; round < 2; ++round) {
        set.answer = [](void*, int*) -> HRESULT { longjmp(caught, 1); };
        if (setjmp(caught) == 0)
            ReadBlock(set, Pair{});
    }
    expectTheSameRoom();
#endif
}

} // namespace
