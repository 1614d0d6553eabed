// The convolutions against numbers worked out by hand and properties of their kernels, at every level that the machine
// has.
#include "host/fixtures/GuardedMemory.h"
#include "tests/kernels/Helpers.h"

#include <gtest/gtest.h>

#include <climits>

namespace vixa::kernels::test {
namespace {

class Convolution : public testing::TestWithParam<Level>
{
protected:
    const KernelSet& kernels = KernelsOf(GetParam());

    // The middle pixel's byte `channel` of a 3 x 3 picture that holds `values` there and noise in the other bytes.
    int MiddleOf(const std::array<int, 9>& values, const ConvolutionParameters& parameters, std::size_t channel)
    {
        Bytes frame = RandomBytes(36, 1);
        for (std::size_t i = 0; i < 9; ++i)
            frame[4 * i + channel] = static_cast<std::uint8_t>(values[i]);
        Convolve(kernels, frame, 3, 3, parameters);
        return frame[16 + channel];
    }

    void ExpectMiddle(const std::array<int, 9>& values, std::int32_t kind, int expected)
    {
        for (std::size_t channel = 0; channel < 4; ++channel)
            EXPECT_EQ(MiddleOf(values, ParametersOfKind(kind), channel), expected)
                << "kind " << kind << ", byte " << channel;
    }
};

INSTANTIATE_TEST_SUITE_P(Levels, Convolution, testing::ValuesIn(AvailableLevels()),
                         [](const auto& tested) { return "Level" + std::to_string(static_cast<int>(tested.param)); });

TEST(ConvolutionParameters, KeepTheKernelOfAKindOutsideTheTable)
{
    ConvolutionParameters parameters;
    for (const std::int32_t kind : {0, 11, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(KernelOf(kind), nullptr);
        parameters.SetKind(kind);
        EXPECT_EQ(parameters.kind, kind);
        EXPECT_FALSE(parameters.hasKernel);
    }
    parameters.SetKind(5);
    EXPECT_TRUE(parameters.hasKernel);
    EXPECT_EQ(parameters.coefficients, (Coefficients{-1, 0, -1, 0, 7, 0, -1, 0, -1}));
    parameters.SetKind(11);
    EXPECT_EQ(parameters.kind, 11);
    EXPECT_EQ(parameters.coefficients, KernelOf(5)->coefficients);
}

TEST_P(Convolution, GivesTheWorkedNumbers)
{
    ExpectMiddle({0, 1, 2, 3, 4, 5, 6, 7, 8}, 8, 4);            // 11 x 36 / 99
    ExpectMiddle({9, 50, 9, 50, 100, 50, 9, 50, 9}, 3, 140);    // (900 - 200) / 5
    ExpectMiddle({10, 20, 30, 40, 50, 60, 70, 80, 90}, 1, 0);   // 400 - 400
    ExpectMiddle({10, 20, 30, 40, 60, 60, 70, 80, 90}, 1, 80);  // 480 - 400
    ExpectMiddle({10, 20, 30, 40, 60, 60, 70, 80, 90}, 4, 140); // 540 - 400
    ExpectMiddle({10, 20, 30, 40, 50, 60, 70, 80, 90}, 2, 255); // 60 + 80 + 90 - 10 - 20 - 40 + 128
    ExpectMiddle({10, 20, 30, 40, 50, 60, 17, 18, 19}, 2, 155); // 60 + 18 + 19 - 70 + 128
    ExpectMiddle({200, 200, 9, 200, 9, 10, 9, 10, 10}, 2, 0);   // 30 - 600 + 128
    ExpectMiddle({10, 9, 20, 9, 60, 9, 30, 9, 40}, 5, 106);     // (420 - 100) / 3 = 106.7
    ExpectMiddle({255, 9, 255, 9, 0, 9, 255, 9, 255}, 5, 0);    // below 0
    ExpectMiddle({9, 100, 9, 110, 90, 120, 9, 130, 9}, 6, 100); // 460 - 360
    ExpectMiddle({30, 200, 90, 220, 50, 9, 9, 9, 9}, 7, 148);   // 50 - 30 + 128
    ExpectMiddle({30, 200, 90, 220, 50, 9, 9, 9, 9}, 9, 0);     // 50 - 200 + 128 = -22
    ExpectMiddle({30, 200, 90, 220, 50, 9, 9, 9, 9}, 10, 0);    // 50 - 220 + 128 = -42
    ExpectMiddle({0, 0, 90, 0, 250, 9, 9, 9, 9}, 9, 255);       // the offset comes before the clamp
    ExpectMiddle({0, 0, 90, 100, 250, 9, 9, 9, 9}, 10, 255);    // 278
    ExpectMiddle({250, 0, 90, 100, 125, 9, 9, 9, 9}, 7, 3);     // -125 + 128
}

TEST_P(Convolution, AKindOutsideTheTableUsesTheKernelAlone)
{
    ConvolutionParameters parameters = ParametersOfKind(8);
    parameters.SetKind(11);
    EXPECT_EQ(MiddleOf({0, 1, 2, 3, 4, 5, 0, 0, 0}, parameters, 0), 165); // 11 x 15, not divided
    parameters = ParametersOfKind(9);
    parameters.SetKind(0);
    EXPECT_EQ(MiddleOf({0, 30, 0, 0, 50, 0, 0, 0, 0}, parameters, 2), 20); // no offset
    parameters = ParametersOfKind(3);
    parameters.SetKind(-7);
    EXPECT_EQ(MiddleOf({0, 10, 0, 10, 20, 10, 0, 10, 0}, parameters, 3), 140); // 180 - 40
}

TEST_P(Convolution, UniformFramesShowTheSumOfTheKernel)
{
    constexpr int width = 21, height = 5;
    for (std::int32_t kind = firstKind; kind <= lastKind; ++kind) {
        for (const int value : {0, 1, 77, 254, 255}) {
            Bytes frame(std::size_t{width} * height * 4, static_cast<std::uint8_t>(value));
            Convolve(kernels, frame, width, height, ParametersOfKind(kind));
            const ConvolutionKernel& kernel = *KernelOf(kind);
            const int expected = kernel.offsets ? 128 : kind == 1 || kind == 6 ? 0 : value;
            for (std::size_t at = 0; at < frame.size(); ++at) {
                const std::size_t x = at / 4 % width, y = at / 4 / width;
                const bool border = x == 0 || y == 0 || x == width - 1 || y == height - 1;
                ASSERT_EQ(frame[at], border ? 0 : expected) << "kind " << kind << " at " << x << ", " << y;
            }
        }
    }
}

TEST_P(Convolution, SmallPicturesBecomeBlack)
{
    for (const auto& [width, height] : {std::pair{1, 1}, {2, 2}, {2, 9}, {9, 2}, {3, 2}, {2, 3}, {1, 40}, {40, 1}}) {
        Bytes frame(static_cast<std::size_t>(width * height * 4) + 5, 0x5A);
        Convolve(kernels, frame, width, height, ParametersOfKind(4));
        Bytes expected(frame.size(), 0);
        std::fill(expected.end() - 5, expected.end(), std::uint8_t{0x5A}); // behind the picture
        EXPECT_EQ(frame, expected) << width << " x " << height;
    }
}

TEST_P(Convolution, ANegativeHeightIsTheSamePicture)
{
    Bytes bottomUp = RandomBytes(std::size_t{20} * 9 * 4, 3), topDown = bottomUp;
    Convolve(kernels, bottomUp, 20, 9, ParametersOfKind(2));
    Convolve(kernels, topDown, 20, -9, ParametersOfKind(2));
    EXPECT_EQ(bottomUp, topDown);
}

TEST_P(Convolution, WhatDoesNotFitIsLeftAlone)
{
    const Bytes original = RandomBytes(std::size_t{4} * 5 * 6, 5);
    const ::vixahost::fixtures::GuardedMemory guarded(original.size());
    const auto unchanged = [&](std::int32_t width, std::int32_t height, const ConvolutionParameters& parameters,
                               std::size_t scratchBytes) {
        const Frame frame = guarded.Bytes();
        std::ranges::copy(original, frame.begin());
        Bytes scratch(scratchBytes);
        kernels.convolve(frame, width, height, parameters, scratch);
        return std::equal(frame.begin(), frame.end(), original.begin());
    };
    constexpr std::size_t enough = 1 << 16;
    const ConvolutionParameters parameters = ParametersOfKind(1);
    EXPECT_FALSE(unchanged(5, 6, parameters, enough));
    EXPECT_TRUE(unchanged(5, 6, ConvolutionParameters{}, enough)) << "no kernel yet";
    EXPECT_TRUE(unchanged(5, 6, parameters, ConvolutionScratchBytes(5) - 1));
    // 65536 x 65536 and 2^30 x 4 are 0 in 32 bits, and so are four times the others.
    for (const std::int32_t width : {6, 65536, 1 << 30, INT_MAX}) {
        for (const std::int32_t height : {6, -6, 4, 65536, 1 << 30, INT_MIN, INT_MIN + 1, INT_MAX}) {
            if (width == 6 && height == 4)
                continue; // fits
            EXPECT_TRUE(unchanged(width, height, parameters, enough)) << width << " x " << height;
        }
    }
    for (const std::int32_t nothing : {0, -1, -5, INT_MIN})
        EXPECT_TRUE(unchanged(nothing, 6, parameters, enough)) << nothing;
    EXPECT_TRUE(unchanged(5, 0, parameters, enough));
    EXPECT_EQ(ConvolutionScratchBytes(0), 0u);
    EXPECT_EQ(ConvolutionScratchBytes(INT_MIN), 0u);
    EXPECT_GT(ConvolutionScratchBytes(INT_MAX), std::size_t{INT_MAX});
}

} // namespace
} // namespace vixa::kernels::test
