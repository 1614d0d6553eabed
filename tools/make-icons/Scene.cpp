#include "tools/make-icons/Scene.h"

#include <algorithm>
#include <cmath>

namespace vixa::icons {

namespace {

struct Colour
{
    double red, green, blue;
};

Colour Mix(const Colour& a, const Colour& b, double share)
{
    return {a.red + (b.red - a.red) * share, a.green + (b.green - a.green) * share, a.blue + (b.blue - a.blue) * share};
}

bool Inside(double x, double y, double left, double top, double right, double bottom)
{
    return x >= left && x < right && y >= top && y < bottom;
}

double Distance(double x, double y, double cx, double cy)
{
    return std::sqrt((x - cx) * (x - cx) + (y - cy) * (y - cy));
}

// The colour at a point in icon pixels, from the front to the back.
Colour ColourAt(double x, double y)
{
    // House: wall from 9 to 27, roof above it, a window in each half and a door in the middle.
    if (Inside(x, y, 11.5, 17.5, 15.5, 21.5) || Inside(x, y, 20.5, 17.5, 24.5, 21.5)) {
        const bool bar = std::fmod(x - 11.5 + 36.0, 9.0) > 1.5 && std::fmod(x - 11.5 + 36.0, 9.0) < 2.5;
        return bar ? Colour{235, 228, 210} : Colour{45, 60, 105};
    }
    if (Inside(x, y, 16.5, 20.0, 19.5, 27.0))
        return {120, 70, 35};
    if (Inside(x, y, 23.0, 6.0, 25.5, 12.0))
        return {140, 60, 50};
    if (Inside(x, y, 9.0, 15.0, 27.0, 27.0)) {
        // Faint bricks: every second course set off by half a brick.
        const double course = std::floor(y / 2.0);
        const bool joint = std::fmod(y, 2.0) < 1.0 || std::fmod(x + 2.0 * std::fmod(course, 2.0), 4.0) < 1.0;
        return joint ? Colour{222, 210, 186} : Colour{214, 198, 170};
    }
    const double slope = std::abs(x - 18.0) * 0.75;
    if (y >= 6.5 + slope && y < 15.5 && std::abs(x - 18.0) < 12.0)
        return std::fmod(y, 3.0) < 1.0 ? Colour{165, 30, 25} : Colour{215, 55, 45};
    // Hill, in stripes of mown grass.
    const double ridge = 22.5 + (x - 18.0) * (x - 18.0) * 0.012;
    if (y >= ridge) {
        const bool stripe = std::fmod(x * 0.7 + y * 1.3 + 100.0, 5.0) < 2.0;
        return stripe ? Colour{50, 120, 40} : Colour{85, 165, 60};
    }
    // Sun, with a cloud over on the left for balance.
    if (Distance(x, y, 31.0, 5.0) < 3.8)
        return {255, 215, 60};
    if (Distance(x, y, 4.5, 6.5) < 2.6 || Distance(x, y, 8.0, 5.5) < 3.0 || Distance(x, y, 11.0, 7.0) < 2.0)
        return {240, 244, 248};
    return Mix({60, 120, 215}, {150, 195, 240}, std::clamp(y / 24.0, 0.0, 1.0));
}

} // namespace

Picture PaintScene(int scale, int margin)
{
    constexpr int samples = 4; // in each direction
    Picture picture(iconWidth * scale + 2 * margin, iconHeight * scale + 2 * margin);
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            Colour sum = {0, 0, 0};
            for (int sy = 0; sy < samples; ++sy)
                for (int sx = 0; sx < samples; ++sx) {
                    const Colour c = ColourAt((x - margin + (sx + 0.5) / samples) / scale,
                                              (y - margin + (sy + 0.5) / samples) / scale);
                    sum = {sum.red + c.red, sum.green + c.green, sum.blue + c.blue};
                }
            const auto channel = [](double value) {
                return static_cast<std::uint8_t>(std::floor(value / (samples * samples) + 0.5));
            };
            std::uint8_t* const pixel = picture.At(x, y);
            pixel[0] = channel(sum.blue);
            pixel[1] = channel(sum.green);
            pixel[2] = channel(sum.red);
        }
    return picture;
}

} // namespace vixa::icons
