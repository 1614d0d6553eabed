// make-icons ROOT: writes the icons into ROOT/resources/bitmaps and their contact sheet to ROOT/docs/icons.png.
// make-icons --scene FILE: writes the scene as no effect has touched it, a bitmap file of an icon's size.
#include "tools/make-icons/Icons.h"

#include <png.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string_view>

using namespace vixa::icons;

namespace {

bool Write(const std::filesystem::path& path, const std::vector<std::uint8_t>& bytes)
{
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file.good();
}

// Every pixel of `from` as a square of `zoom` pixels.
void Place(const Picture& from, int zoom, Picture& sheet, int left, int top)
{
    for (int y = 0; y < from.height * zoom; ++y)
        for (int x = 0; x < from.width * zoom; ++x)
            std::copy_n(from.At(x / zoom, y / zoom), 3, sheet.At(left + x, top + y));
}

// Five in a row, in the order of their ids: each enlarged, and below all of them at their real size, on white and on
// grey.
Picture ContactSheet()
{
    constexpr int columns = 5, zoom = 4, gap = 12;
    constexpr int cellWidth = iconWidth * zoom + gap, cellHeight = iconHeight * zoom + gap;
    const int count = static_cast<int>(AllIcons().size()), rows = (count + columns - 1) / columns;
    const int small = iconWidth + gap;
    Picture sheet(gap + columns * cellWidth, gap + rows * cellHeight + 2 * (iconHeight + 2 * gap));
    std::fill(sheet.bytes.begin(), sheet.bytes.end(), std::uint8_t{255});
    const int greyTop = sheet.height - iconHeight - 2 * gap;
    for (int y = greyTop; y < sheet.height; ++y)
        for (int x = 0; x < sheet.width; ++x)
            std::fill_n(sheet.At(x, y), 3, std::uint8_t{96});
    for (int i = 0; i < count; ++i) {
        const Picture icon = DrawIcon(AllIcons()[static_cast<std::size_t>(i)]);
        Place(icon, zoom, sheet, gap + i % columns * cellWidth, gap + i / columns * cellHeight);
        Place(icon, 1, sheet, gap + i * small, greyTop - iconHeight - gap);
        Place(icon, 1, sheet, gap + i * small, greyTop + gap);
    }
    return sheet;
}

bool WritePng(const std::filesystem::path& path, const Picture& picture)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_BGR;
    std::vector<std::uint8_t> rows;
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            rows.insert(rows.end(), picture.At(x, y), picture.At(x, y) + 3);
    return png_image_write_to_file(&image, path.c_str(), 0, rows.data(), 0, nullptr) != 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::string_view(argv[1]) == "--scene") {
        const Icon untouched = {.id = 0, .name = "", .apply = [](Picture&) {}, .passes = 1, .scale = 1};
        return Write(argv[2], BitmapFile(DrawIcon(untouched))) ? 0 : 1;
    }
    if (argc != 2) {
        std::fputs("usage: make-icons ROOT | --scene FILE\n", stderr);
        return 2;
    }
    const std::filesystem::path root = argv[1];
    std::filesystem::create_directories(root / "resources/bitmaps");
    for (const Icon& icon : AllIcons())
        if (!Write(root / "resources/bitmaps" / FileName(icon), BitmapFile(DrawIcon(icon)))) {
            std::fprintf(stderr, "%s cannot be written\n", FileName(icon).c_str());
            return 1;
        }
    if (!WritePng(root / "docs/icons.png", ContactSheet())) {
        std::fputs("docs/icons.png cannot be written\n", stderr);
        return 1;
    }
    return 0;
}
