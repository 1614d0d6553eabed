#include "host/media/SampleScene.h"

#include "host/media/Canvas.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vixahost::media {

namespace {

constexpr double pi = std::numbers::pi;

std::uint8_t Byte(double unit)
{
    return static_cast<std::uint8_t>(std::lround(std::clamp(unit, 0.0, 1.0) * 255));
}

Colour ColourOf(const Rgb& rgb)
{
    return {Byte(rgb.red), Byte(rgb.green), Byte(rgb.blue)};
}

struct Area
{
    int left, top, columns, rows;
};

// White, yellow, cyan, green, magenta, red, blue, black.
void DrawColourBars(Canvas& canvas, const Area& area)
{
    for (int bar = 0; bar < 8; ++bar) {
        const int left = area.left + bar * area.columns / 8, right = area.left + (bar + 1) * area.columns / 8;
        const int bits = 7 - bar; // green is worth most, then red, then blue: the bars fall in brightness
        const Colour colour = {Byte(bits & 2 ? 1 : 0), Byte(bits & 4 ? 1 : 0), Byte(bits & 1 ? 1 : 0)};
        canvas.FillRectangle(left, area.top, right - left, area.rows, colour);
    }
}

// Grey, red, green and blue from dark to full, and a grey staircase.
void DrawRamps(Canvas& canvas, const Area& area)
{
    const int band = area.rows / 5;
    for (int x = 0; x < area.columns; ++x) {
        const double at = double(x) / (area.columns - 1);
        const Rgb rows[] = {{at, at, at}, {at, 0, 0}, {0, at, 0}, {0, 0, at}, {}};
        const double stair = std::floor(at * 16) / 15;
        for (int row = 0; row < 5; ++row)
            canvas.FillRectangle(area.left + x, area.top + row * band, 1, band,
                                 ColourOf(row == 4 ? Rgb{stair, stair, stair} : rows[row]));
    }
}

// Every hue around, every saturation outwards, on mid grey, with a soft edge.
void DrawHueWheel(Canvas& canvas, const Area& area)
{
    const double radius = std::min(area.columns, area.rows) * 0.47;
    const double centreX = area.columns / 2.0, centreY = area.rows / 2.0;
    for (int y = 0; y < area.rows; ++y) {
        for (int x = 0; x < area.columns; ++x) {
            const double dx = x + 0.5 - centreX, dy = centreY - y - 0.5;
            const double distance = std::hypot(dx, dy);
            const Rgb wheel = FromHue(std::atan2(dy, dx) / (2 * pi), std::min(distance / radius, 1.0), 0.9);
            const double cover = std::clamp(radius - distance + 0.5, 0.0, 1.0);
            const auto blend = [&](double inside) { return inside * cover + 0.5 * (1 - cover); };
            canvas.SetPixel(area.left + x, area.top + y,
                            ColourOf({blend(wheel.red), blend(wheel.green), blend(wheel.blue)}));
        }
    }
}

// A shaded ball over a graded ground, as a photograph has it: nothing but smooth transitions.
void DrawBall(Canvas& canvas, const Area& area, double hue)
{
    const double radius = std::min(area.columns, area.rows) * 0.4;
    const double centreX = area.columns / 2.0, centreY = area.rows * 0.48;
    for (int y = 0; y < area.rows; ++y) {
        for (int x = 0; x < area.columns; ++x) {
            const double dx = (x + 0.5 - centreX) / radius, dy = (y + 0.5 - centreY) / radius;
            const double ground = 0.75 - 0.4 * y / area.rows;
            const double shadow = std::exp(-4 * (std::pow((dx - 0.25) / 1.2, 2) + std::pow((dy - 0.9) / 0.45, 2)));
            Rgb colour = {ground * (1 - 0.6 * shadow), ground * (1 - 0.6 * shadow),
                          (ground + 0.1) * (1 - 0.5 * shadow)};
            const double square = dx * dx + dy * dy;
            if (square < 1) {
                // The surface towards the viewer, lit from the upper left.
                const double dz = std::sqrt(1 - square);
                const double light = std::max(0.0, -0.5 * dx - 0.6 * dy + 0.62 * dz);
                const double glint = std::pow(light, 30) * 0.8;
                const Rgb paint = FromHue(hue, 0.8, 0.15 + 0.85 * light);
                colour = {paint.red + glint, paint.green + glint, paint.blue + glint};
            }
            canvas.SetPixel(area.left + x, area.top + y, ColourOf(colour));
        }
    }
}

void DrawText(Canvas& canvas, const Area& area)
{
    const int half = area.rows * 5 / 8;
    canvas.FillRectangle(area.left, area.top, area.columns, half, {250, 250, 245});
    canvas.FillRectangle(area.left, area.top + half, area.columns, area.rows - half, {24, 32, 72});
    struct Line
    {
        int top;
        const char* text;
        TextStyle style;
    };
    const Line lines[] = {{3, "VixaVideoFX", {28, true, {20, 20, 20}}},
                          {37, "Effects for 32-bit video", {14, false, {150, 20, 30}}},
                          {56, "abcdefghijklm 0123456789", {11, false, {60, 60, 60}}},
                          {half + 1, "Light on dark", {20, true, {255, 220, 90}}},
                          {half + 27, "The small print, 11 pixels high", {11, false, {200, 220, 255}}}};
    for (const Line& line : lines)
        canvas.DrawLine(area.left + 8, area.top + line.top, area.columns - 10, line.text, line.style);
}

// Rings that grow finer outwards, up to the finest that pixels can show at the corners.
void DrawRings(Canvas& canvas, const Area& area)
{
    const double size = std::max(area.columns, area.rows);
    for (int y = 0; y < area.rows; ++y) {
        for (int x = 0; x < area.columns; ++x) {
            const double dx = x - area.columns / 2.0, dy = y - area.rows / 2.0;
            const double wave = 0.5 + 0.5 * std::cos(pi * (dx * dx + dy * dy) / (size * 1.4));
            canvas.SetPixel(area.left + x, area.top + y, ColourOf({wave, wave, wave}));
        }
    }
}

// Stripes and chequers of one, two and four pixels, and single bright points on black.
void DrawFineDetail(Canvas& canvas, const Area& area)
{
    const int cell = area.columns / 4;
    for (int y = 0; y < area.rows; ++y) {
        for (int x = 0; x < area.columns; ++x) {
            const int size = 1 << std::min(x / cell, 2);
            const int row = y * 3 / area.rows;
            bool bright = false;
            if (x >= 3 * cell)
                bright = x % 12 == 6 && y % 12 == 6;
            else if (row == 0)
                bright = x / size % 2 == 0;
            else if (row == 1)
                bright = y / size % 2 == 0;
            else
                bright = (x / size + y / size) % 2 == 0;
            canvas.SetPixel(area.left + x, area.top + y, bright ? Colour{235, 235, 235} : Colour{20, 20, 20});
        }
    }
}

} // namespace

Rgb FromHue(double hue, double saturation, double value)
{
    // Each channel is a trapezium over the hue circle, a third of a turn after the one before.
    const auto channel = [&](double shift) {
        const double turn = (hue + shift) - std::floor(hue + shift);
        const double weight = std::clamp(std::abs(turn * 6 - 3) - 1, 0.0, 1.0);
        return value * (1 - saturation * (1 - weight));
    };
    return {channel(0), channel(2.0 / 3), channel(1.0 / 3)};
}

Picture DrawSampleScene()
{
    Canvas canvas(640, 480);
    DrawColourBars(canvas, {0, 0, 640, 80});
    DrawRamps(canvas, {0, 80, 640, 80});
    DrawHueWheel(canvas, {0, 160, 200, 200});
    DrawBall(canvas, {200, 160, 120, 200}, 0.03);
    DrawBall(canvas, {320, 160, 120, 200}, 0.58);
    DrawText(canvas, {0, 360, 440, 120});
    DrawRings(canvas, {440, 160, 200, 200});
    DrawFineDetail(canvas, {440, 360, 200, 120});
    return canvas.ToPicture();
}

} // namespace vixahost::media
