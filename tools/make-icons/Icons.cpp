#include "tools/make-icons/Icons.h"

#include "effects/kernels/Kernels.h"

#include <algorithm>
#include <array>

namespace vixa::icons {

namespace {

using namespace vixa::kernels;

const KernelSet& Kernels()
{
    return KernelsOf(Level::Scalar);
}

template <std::int32_t kind>
void Convolve(Picture& picture)
{
    ConvolutionParameters parameters;
    parameters.SetKind(kind);
    std::vector<std::uint8_t> scratch(ConvolutionScratchBytes(picture.width));
    Kernels().convolve(picture.bytes, picture.width, picture.height, parameters, scratch);
}

void Add(Picture& picture)
{
    Kernels().add(picture.bytes, {.red = 90, .green = 20, .blue = -60});
}

void Multiply(Picture& picture)
{
    Kernels().multiply(picture.bytes, 45);
}

void Gamma(Picture& picture)
{
    Kernels().gamma(picture.bytes, MakeGammaTable(260));
}

void FilterColor(Picture& picture)
{
    Kernels().filterColor(picture.bytes, {.intensity = 255, .colour = 2, .brighten = false});
}

void Invert(Picture& picture)
{
    Kernels().invert(picture.bytes, 7);
}

constexpr std::array<Icon, 13> all = {{
    {332, "Soften filter", Convolve<8>, 3, 1, 14, 0},
    {333, "Emboss", Convolve<2>, 1, 2, 0, 0},
    {334, "Shift edges", Convolve<7>, 1, 1, 14, 0},
    {335, "Detect edges", Convolve<1>, 1, 1, 0, 0},
    {336, "Light edges", Convolve<6>, 1, 1, 14, 0},
    {337, "Enhance edges", Convolve<4>, 1, 1, 14, 0},
    {338, "Filter color", FilterColor, 1, 1, 14, 0},
    {339, "Add pixel", Add, 1, 1, 14, 0},
    {340, "Multiply pixel", Multiply, 1, 1, 14, 0},
    {341, "Gamma correction", Gamma, 1, 1, 14, 0},
    {342, "Enhance focus", Convolve<5>, 4, 2, 16, 6},
    {343, "Enhance details", Convolve<3>, 2, 1, 14, 0},
    {344, "Invert color", Invert, 1, 1, 14, 0},
}};

// The picture without its margin, each icon pixel the mean of scale × scale pixels.
Picture Reduced(const Picture& picture, int scale, int margin)
{
    Picture icon(iconWidth, iconHeight);
    const int count = scale * scale;
    for (int y = 0; y < iconHeight; ++y)
        for (int x = 0; x < iconWidth; ++x)
            for (int channel = 0; channel < 3; ++channel) {
                int sum = count / 2;
                for (int sy = 0; sy < scale; ++sy)
                    for (int sx = 0; sx < scale; ++sx)
                        sum += picture.At(margin + x * scale + sx, margin + y * scale + sy)[channel];
                icon.At(x, y)[channel] = static_cast<std::uint8_t>(sum / count);
            }
    return icon;
}

void Put32(std::vector<std::uint8_t>& bytes, std::uint32_t value)
{
    for (int shift = 0; shift < 32; shift += 8)
        bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

void Put16(std::vector<std::uint8_t>& bytes, std::uint32_t value)
{
    bytes.push_back(static_cast<std::uint8_t>(value));
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
}

} // namespace

std::span<const Icon> AllIcons()
{
    return all;
}

Picture DrawIcon(const Icon& icon)
{
    const int margin = icon.softened + icon.passes; // each pass of a convolution blackens one more ring of pixels
    Picture scene = PaintScene(icon.scale, margin);
    for (int pass = 0; pass < icon.softened; ++pass)
        Convolve<8>(scene);
    const Picture before = Reduced(scene, icon.scale, margin);
    for (int pass = 0; pass < icon.passes; ++pass)
        icon.apply(scene);
    Picture result = Reduced(scene, icon.scale, margin);
    for (int y = 0; y < iconHeight; ++y)
        for (int x = 0; x < icon.split; ++x)
            std::copy_n(before.At(x, y), 4, result.At(x, y));
    return result;
}

std::vector<std::uint8_t> BitmapFile(const Picture& picture)
{
    constexpr std::uint32_t fileHeader = 14, header = 40;
    const auto width = static_cast<std::uint32_t>(picture.width), height = static_cast<std::uint32_t>(picture.height);
    const std::uint32_t stride = (width * 3 + 3) / 4 * 4;
    const std::uint32_t total = fileHeader + header + stride * height;
    std::vector<std::uint8_t> bytes = {'B', 'M'};
    bytes.reserve(total);
    Put32(bytes, total);
    Put32(bytes, 0);
    Put32(bytes, fileHeader + header);
    Put32(bytes, header);
    Put32(bytes, width);
    Put32(bytes, height);
    Put16(bytes, 1);  // planes
    Put16(bytes, 24); // bits per pixel
    for (int rest = 0; rest < 6; ++rest)
        Put32(bytes, 0);
    for (int y = picture.height - 1; y >= 0; --y) {
        for (int x = 0; x < picture.width; ++x)
            bytes.insert(bytes.end(), picture.At(x, y), picture.At(x, y) + 3);
        bytes.resize((bytes.size() - fileHeader - header + 3) / 4 * 4 + fileHeader + header);
    }
    return bytes;
}

std::string FileName(const Icon& icon)
{
    std::string name = icon.name;
    for (char& letter : name)
        letter = letter == ' ' ? '-' : letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    return std::to_string(icon.id) + "-" + name + ".bmp";
}

} // namespace vixa::icons
