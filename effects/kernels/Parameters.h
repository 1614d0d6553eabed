// What the pixel kernels are told: one small value per effect. Plain data, copied freely, no ownership.
#pragma once

#include <array>
#include <cstdint>

namespace vixa::kernels {

// Gamma correction: what each value of a blue, green or red byte becomes.
struct GammaTable
{
    std::array<std::uint8_t, 256> entries;
};

// The power curve for `gamma` in hundredths: entry i is 255 (i/255)^(100/gamma), rounded; the exponent is 0.01 for a
// gamma of 0 or below. Entries 0 and 255 stay 0 and 255. 254 power evaluations: build it when the parameter changes.
GammaTable MakeGammaTable(std::int32_t gamma) noexcept;

// Add pixel: signed offsets. A magnitude above 255 acts as 255.
struct AddParameters
{
    std::int32_t red = 0;
    std::int32_t green = 0;
    std::int32_t blue = 0;
};

// Filter color: the channel of the colour is raised or lowered by `intensity`, a magnitude (above 255 it acts as 255),
// in pixels whose hue lies in the range of the colour.
struct FilterColorParameters
{
    std::int32_t intensity = 0;
    std::int32_t colour = 2; // 0 blue, 1 green, 2 red; no pixel matches any other value
    bool brighten = true;
};

using Coefficients = std::array<std::int32_t, 9>;

// What one kind of convolution does. K0 K1 K2 weigh the row at the lowest address, K6 K7 K8 the one at the highest; in
// each row the first coefficient weighs the leftmost pixel, and the result belongs to the middle one.
struct ConvolutionKernel
{
    Coefficients coefficients;
    bool divides; // by the sum of the coefficients, truncating toward zero
    bool offsets; // adds 128 before the value is clamped to 0 ... 255
};

inline constexpr std::int32_t firstKind = 1;
inline constexpr std::int32_t lastKind = 10;

inline constexpr std::array<ConvolutionKernel, 10> convolutionKernels = {{
    // Row y         Row y + 1      Row y + 2       divides offsets
    {{-1, -1, -1, /**/ -1, +8, -1, /**/ -1, -1, -1}, false, false}, //  1 Detect edges
    {{-1, -1, +0, /**/ -1, +0, +1, /**/ +0, +1, +1}, false, true},  //  2 Emboss
    {{+0, -1, +0, /**/ -1, +9, -1, /**/ +0, -1, +0}, true, false},  //  3 Enhance details
    {{-1, -1, -1, /**/ -1, +9, -1, /**/ -1, -1, -1}, false, false}, //  4 Enhance edges
    {{-1, +0, -1, /**/ +0, +7, +0, /**/ -1, +0, -1}, true, false},  //  5 Enhance focus
    {{+0, +1, +0, /**/ +1, -4, +1, /**/ +0, +1, +0}, false, false}, //  6 Light edges
    {{-1, +0, +0, /**/ +0, +1, +0, /**/ +0, +0, +0}, false, true},  //  7 Shift edges, both directions
    {{11, 11, 11, /**/ 11, 11, 11, /**/ 11, 11, 11}, true, false},  //  8 Soften filter
    {{+0, -1, +0, /**/ +0, +1, +0, /**/ +0, +0, +0}, false, true},  //  9 Shift edges, vertical only
    {{+0, +0, +0, /**/ -1, +1, +0, /**/ +0, +0, +0}, false, true},  // 10 Shift edges, horizontal only
}};

// The row of the table for a kind of 1 to 10; null for any other value.
const ConvolutionKernel* KernelOf(std::int32_t kind) noexcept;

// A convolution's state. The kernel in force and the kind are kept apart because a kind outside 1 to 10 is remembered
// but leaves the kernel as it was; such a kind neither divides nor offsets.
struct ConvolutionParameters
{
    std::int32_t kind = 0;
    Coefficients coefficients{};
    bool hasKernel = false; // no kernel yet: frames pass unchanged

    // Stores the kind; 1 to 10 also replaces the kernel.
    void SetKind(std::int32_t newKind) noexcept;
};

} // namespace vixa::kernels
