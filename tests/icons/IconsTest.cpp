// The icons in the repository: drawn by the effects, packed as the library promises, and to be told apart.
#include "tools/make-icons/Icons.h"
#include "bitmap/DibLayout.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <vector>

namespace vixa::icons {
namespace {

const std::filesystem::path root = VIXA_SOURCE_DIR;

std::vector<std::uint8_t> ContentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Mean difference of the colour bytes in the columns from `left` on, 0 to 255.
double Difference(const Picture& a, const Picture& b, int left = 0)
{
    long sum = 0;
    for (int y = 0; y < iconHeight; ++y)
        for (int x = left; x < iconWidth; ++x)
            for (int channel = 0; channel < 3; ++channel)
                sum += std::abs(a.At(x, y)[channel] - b.At(x, y)[channel]);
    return double(sum) / ((iconWidth - left) * iconHeight * 3);
}

TEST(Icons, FilesAreWhatTheirMakerDraws)
{
    for (const Icon& icon : AllIcons())
        EXPECT_EQ(ContentOf(root / "resources/bitmaps" / FileName(icon)), BitmapFile(DrawIcon(icon)))
            << icon.name << ": draw the icons again with the target 'icons' and look at docs/icons.png";
}

TEST(Icons, FilesArePlainPicturesOf3712Bytes)
{
    constexpr std::size_t fileHeader = 14;
    for (const Icon& icon : AllIcons()) {
        const auto file = ContentOf(root / "resources/bitmaps" / FileName(icon));
        ASSERT_EQ(file.size(), fileHeader + 3712) << icon.name;
        EXPECT_EQ(file[10], fileHeader + 40);
        const auto layout = bitmap::ParsePackedDib(std::as_bytes(std::span(file).subspan(fileHeader)));
        ASSERT_TRUE(layout) << icon.name;
        EXPECT_EQ(layout->width, iconWidth);
        EXPECT_EQ(layout->height, iconHeight);
        EXPECT_EQ(layout->bitCount, 24);
        EXPECT_EQ(layout->headerBytes, 40);
        EXPECT_EQ(layout->TotalBytes(), 3712);
    }
}

TEST(Icons, EffectsShowAndDiffer)
{
    for (const Icon& icon : AllIcons()) {
        Icon untouched = icon;
        untouched.apply = [](Picture&) {};
        const Picture picture = DrawIcon(icon), plain = DrawIcon(untouched);
        EXPECT_GT(Difference(picture, plain, icon.split), 8.0) << icon.name;
        for (int y = 0; y < iconHeight; ++y)
            for (int x = 0; x < icon.split; ++x)
                ASSERT_TRUE(std::equal(picture.At(x, y), picture.At(x, y) + 3, plain.At(x, y))) << icon.name;
        for (const Icon& other : AllIcons()) {
            if (other.id < icon.id) {
                EXPECT_GT(Difference(picture, DrawIcon(other)), 6.0) << icon.name << " and " << other.name;
            }
        }
    }
}

} // namespace
} // namespace vixa::icons
