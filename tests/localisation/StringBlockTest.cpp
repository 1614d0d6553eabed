#include "localisation/StringBlock.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace {

std::vector<std::byte> BytesOf(std::initializer_list<unsigned> units)
{
    std::vector<std::byte> bytes;
    for (const unsigned unit : units) {
        bytes.push_back(static_cast<std::byte>(unit & 0xFF));
        bytes.push_back(static_cast<std::byte>(unit >> 8));
    }
    bytes.shrink_to_fit();
    return bytes;
}

TEST(StringBlock, IdentifiersFallIntoBlocksOfSixteen)
{
    EXPECT_EQ(vixa::StringBlockId(15), 1u);
    EXPECT_EQ(vixa::StringBlockId(16), 2u);
    EXPECT_EQ(vixa::StringBlockId(542), 34u);
    EXPECT_EQ(vixa::IndexInStringBlock(542), 14u);
}

TEST(StringBlock, FindsAStringBehindOthers)
{
    const auto block = BytesOf({2, 'a', 'b', 0, 3, 0x0416, 0xD83D, 0xDE00, 0, 1, 'z'});
    EXPECT_EQ(vixa::StringOfBlock(block, 0), L"ab");
    EXPECT_EQ(vixa::StringOfBlock(block, 1), L"");
    const std::wstring third = vixa::StringOfBlock(block, 2);
    ASSERT_EQ(third.size(), 3u);
    EXPECT_EQ(third[0], 0x0416);
    EXPECT_EQ(third[1], 0xD83D);
    EXPECT_EQ(vixa::StringOfBlock(block, 4), L"z");
    EXPECT_EQ(vixa::StringOfBlock(block, 5), L"") << "the block ends before";
}

// The address sanitizer watches the block's exact end.
TEST(StringBlock, LyingLengthsEndAtTheBlock)
{
    EXPECT_EQ(vixa::StringOfBlock({}, 0), L"");
    EXPECT_EQ(vixa::StringOfBlock(BytesOf({3, 'a', 'b'}), 0), L"");
    EXPECT_EQ(vixa::StringOfBlock(BytesOf({0xFFFF, 'a', 'b'}), 0), L"");
    EXPECT_EQ(vixa::StringOfBlock(BytesOf({0xFFFF, 'a', 'b'}), 7), L"");
    EXPECT_EQ(vixa::StringOfBlock(BytesOf({1, 'a', 9, 'b'}), 1), L"");
    auto odd = BytesOf({1, 'a', 1, 'b'});
    odd.pop_back();
    odd.shrink_to_fit();
    EXPECT_EQ(vixa::StringOfBlock(odd, 0), L"a");
    EXPECT_EQ(vixa::StringOfBlock(odd, 1), L"");
    EXPECT_EQ(vixa::StringOfBlock(std::span(odd).first(1), 0), L"");
}

} // namespace
