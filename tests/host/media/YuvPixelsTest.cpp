// YUV frames against the formulas in double precision.
#include "host/media/AviFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vixahost::media {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Colour = std::array<double, 3>; // red, green, blue; or Y, U, V

constexpr YuvColours allColours[] = {{YuvMatrix::Bt601, YuvRange::Limited},
                                     {YuvMatrix::Bt601, YuvRange::Full},
                                     {YuvMatrix::Bt709, YuvRange::Limited},
                                     {YuvMatrix::Bt709, YuvRange::Full}};

struct Model
{
    explicit Model(const YuvColours& colours)
    {
        if (colours.matrix == YuvMatrix::Bt709) {
            kr = 0.2126;
            kb = 0.0722;
        }
        if (colours.range == YuvRange::Full) {
            black = 0;
            levels = chroma = 255;
        }
    }
    Colour Rgb(const Colour& yuv) const
    {
        const double y = (yuv[0] - black) * 255 / levels;
        const double red = y + 2 * (1 - kr) * (yuv[2] - 128) * 255 / chroma;
        const double blue = y + 2 * (1 - kb) * (yuv[1] - 128) * 255 / chroma;
        return {red, (y - kr * red - kb * blue) / (1 - kr - kb), blue};
    }
    Colour Yuv(const Colour& rgb) const
    {
        const double y = kr * rgb[0] + (1 - kr - kb) * rgb[1] + kb * rgb[2];
        return {y * levels / 255 + black, (rgb[2] - y) / (2 * (1 - kb)) * chroma / 255 + 128,
                (rgb[0] - y) / (2 * (1 - kr)) * chroma / 255 + 128};
    }

    double kr = 0.299, kb = 0.114, black = 16, levels = 219, chroma = 224;
};

bool Near(std::uint8_t byte, double exact, double most)
{
    return std::abs(byte - std::clamp(exact, 0.0, 255.0)) <= most;
}

TEST(YuvPixels, EveryColourIsTheNearest)
{
    for (const YuvColours& colours : allColours) {
        const Model model(colours);
        const YuvPixels pixels(YuvLayout::I444, colours, 256, 1);
        Bytes stored(768), frame(1024), back(768);
        for (int i = 0; i < 256; ++i)
            stored[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(i);
        std::size_t wrong = 0;
        for (int u = 0; u < 256; u += 3)
            for (int v = 0; v < 256; v += 3) {
                std::fill_n(stored.begin() + 256, 256, static_cast<std::uint8_t>(u));
                std::fill_n(stored.begin() + 512, 256, static_cast<std::uint8_t>(v));
                pixels.ToRgb(stored, frame);
                pixels.FromRgb(frame, back);
                for (std::size_t y = 0; y < 256; ++y) {
                    const Colour rgb = model.Rgb({double(y), double(u), double(v)});
                    const std::uint8_t* const got = &frame[y * 4];
                    const Colour yuv = model.Yuv({double(got[2]), double(got[1]), double(got[0])});
                    for (std::size_t channel = 0; channel < 3; ++channel) {
                        wrong += !Near(got[2 - channel], rgb[channel], 0.500002);
                        wrong += !Near(back[256 * channel + y], yuv[channel], 0.5004);
                    }
                    wrong += got[3] != 0;
                }
            }
        EXPECT_EQ(wrong, 0u) << ColoursText(colours);
    }
}

// A frame's samples, and the frame as each layout stores it, sample after sample.
struct Samples
{
    static std::uint8_t At(int plane, int x, int y)
    {
        return static_cast<std::uint8_t>(90 + x % 7 * 5 + y * 9 + plane * 17 + x * y % 3);
    }
    static Bytes Plane(int which, int columns, int rows)
    {
        Bytes bytes;
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < columns; ++x)
                bytes.push_back(At(which, x, y));
        return bytes;
    }
    static Bytes Woven(const Bytes& first, const Bytes& second)
    {
        Bytes bytes;
        for (std::size_t i = 0; i < first.size(); ++i)
            bytes.insert(bytes.end(), {first[i], second[i]});
        return bytes;
    }
    static Bytes Stored(YuvLayout layout, int width, int height)
    {
        const bool blocks = layout == YuvLayout::I420 || layout == YuvLayout::Yv12 || layout == YuvLayout::Nv12;
        const int columns = layout == YuvLayout::I444 ? width : (width + 1) / 2,
                  rows = blocks ? (height + 1) / 2 : height;
        const Bytes u = Plane(1, columns, rows), v = Plane(2, columns, rows);
        if (layout == YuvLayout::Yuy2 || layout == YuvLayout::Uyvy) {
            const Bytes light = Plane(0, columns * 2, height), chroma = Woven(u, v);
            return layout == YuvLayout::Yuy2 ? Woven(light, chroma) : Woven(chroma, light);
        }
        Bytes bytes = Plane(0, width, height);
        const auto append = [&](const Bytes& plane) { bytes.insert(bytes.end(), plane.begin(), plane.end()); };
        if (layout == YuvLayout::Nv12) {
            append(Woven(u, v));
        } else if (layout != YuvLayout::Grey) {
            append(layout == YuvLayout::Yv12 ? v : u);
            append(layout == YuvLayout::Yv12 ? u : v);
        }
        return bytes;
    }
};

// Whether the frame of these samples has the colours of the model. `columns` and `rows` share a chroma sample; 0: none.
bool HasColoursOfSamples(const Bytes& frame, const Model& model, int width, int height, int columns, int rows)
{
    bool right = true;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto chroma = [&](int plane) {
                return columns == 0 ? 128 : Samples::At(plane, x / columns, y / rows);
            };
            const Colour rgb = model.Rgb({double(Samples::At(0, x, y)), double(chroma(1)), double(chroma(2))});
            const std::size_t at = std::size_t((height - 1 - y) * width + x) * 4;
            for (std::size_t channel = 0; channel < 3; ++channel)
                right &= Near(frame[at + 2 - channel], rgb[channel], 0.500002);
        }
    return right;
}

TEST(YuvPixels, EveryLayoutIsReadAndWrittenBack)
{
    struct Row
    {
        YuvLayout layout;
        int columns, rows; // that share a chroma sample
        const char* code;  // in an AVI file
    };
    for (const Row& row :
         {Row{YuvLayout::Yuy2, 2, 1, "YUY2"}, Row{YuvLayout::Uyvy, 2, 1, "UYVY"}, Row{YuvLayout::I420, 2, 2, "I420"},
          Row{YuvLayout::Yv12, 2, 2, "YV12"}, Row{YuvLayout::Nv12, 2, 2, "NV12"}, Row{YuvLayout::I422, 2, 1, nullptr},
          Row{YuvLayout::I444, 1, 1, nullptr}, Row{YuvLayout::Grey, 0, 0, nullptr}})
        for (const auto& [width, height] : {std::pair{1, 1}, {6, 4}, {7, 5}, {129, 3}}) {
            SCOPED_TRACE(testing::Message() << int(row.layout) << ", " << width << " x " << height);
            const Bytes stored = Samples::Stored(row.layout, width, height);
            ASSERT_EQ(YuvBytes(row.layout, width, height), stored.size());
            const YuvPixels pixels(row.layout, allColours[3], width, height);
            Bytes frame(std::size_t(width) * std::size_t(height) * 4), back = stored;
            pixels.ToRgb(stored, frame);
            EXPECT_TRUE(HasColoursOfSamples(frame, Model(allColours[3]), width, height, row.columns, row.rows));
            // In the full range nothing is lost but rounding.
            pixels.FromRgb(frame, back);
            for (std::size_t i = 0; i < stored.size(); ++i)
                EXPECT_LE(std::abs(back[i] - stored[i]), 1) << "byte " << i;
            if (row.code) {
                Bytes format(40, 0);
                format[0] = 40;
                format[4] = static_cast<std::uint8_t>(width);
                format[8] = static_cast<std::uint8_t>(height);
                std::memcpy(&format[16], row.code, 4);
                EXPECT_EQ(LayoutOfFormat(format).yuv, row.layout);
                EXPECT_EQ(LayoutOfFormat(format).bytes, stored.size());
            }
        }
}

TEST(YuvPixels, ColoursFollowTheSizeUnlessChosen)
{
    EXPECT_EQ(ColoursFor({}, 1279, 576), allColours[0]);
    EXPECT_EQ(ColoursFor({}, 1280, 576), allColours[2]);
    EXPECT_EQ(ColoursFor({}, 1279, 577), allColours[2]);
    EXPECT_EQ(ColoursFor({YuvMatrix::Bt601, YuvRange::Full}, 1920, 1080), allColours[1]);
    EXPECT_EQ(YuvBytes(YuvLayout::I420, 0x08000001, 0x20), std::nullopt);
}

} // namespace
} // namespace vixahost::media
