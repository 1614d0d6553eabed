// Every level gives the scalar form's bytes, whatever the sizes, contents, addresses and parameters.
#include "host/fixtures/GuardedMemory.h"
#include "tests/kernels/Helpers.h"

#include <vixavideofx/DataBlocks.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <sstream>
#include <string>

namespace vixa::kernels::test {
namespace {

using Guard = ::vixahost::fixtures::GuardedMemory::Guard;

// The first byte in which two frames differ and the pixels around it, before and after; empty when they are equal.
std::string Difference(const Bytes& before, Frame expected, Frame actual, std::size_t width)
{
    const auto [wrong, right] = std::mismatch(actual.begin(), actual.end(), expected.begin());
    if (wrong == actual.end())
        return {};
    const auto at = static_cast<std::size_t>(wrong - actual.begin());
    std::ostringstream text;
    text << "byte " << at % 4 << " of pixel " << at / 4 % width << ", " << at / 4 / width << ": expected "
         << int{*right} << ", got " << int{*wrong} << "\nbefore (blue green red fourth):\n";
    const auto x = static_cast<std::ptrdiff_t>(at / 4 % width), y = static_cast<std::ptrdiff_t>(at / 4 / width);
    for (std::ptrdiff_t row = y - 1; row <= y + 1; ++row) {
        for (std::ptrdiff_t column = x - 1; column <= x + 1; ++column) {
            const std::ptrdiff_t pixel = 4 * (row * static_cast<std::ptrdiff_t>(width) + column);
            for (std::ptrdiff_t byte = pixel; byte < pixel + 4; ++byte) {
                if (column >= 0 && column < static_cast<std::ptrdiff_t>(width) && byte >= 0 &&
                    byte < static_cast<std::ptrdiff_t>(before.size()))
                    text << int{before[static_cast<std::size_t>(byte)]} << ' ';
                else
                    text << "- ";
            }
            text << (column <= x ? "| " : "\n");
        }
    }
    return text.str();
}

// Noise of several kinds: any bytes, only extremes, only neighbours of the extremes and the middle, smooth.
Bytes Contents(std::size_t size, std::uint32_t seed)
{
    Bytes bytes = RandomBytes(size, seed);
    switch (seed % 4) {
    case 1:
        for (auto& byte : bytes)
            byte = byte & 1 ? 255 : 0;
        break;
    case 2:
        for (auto& byte : bytes)
            byte = static_cast<std::uint8_t>((byte & 0xC1) - (byte >> 1 & 1));
        break;
    case 3:
        for (std::size_t at = 0; at < size; ++at)
            bytes[at] = static_cast<std::uint8_t>(at / 7 + (bytes[at] & 3));
        break;
    default:
        break;
    }
    return bytes;
}

class Levels : public testing::Test
{
protected:
    // Runs one kernel in the scalar form and at every vector level of this machine, the latter between guard pages, at
    // both of them.
    template <typename Run>
    [[nodiscard]] testing::AssertionResult SameAsScalar(const Bytes& before, std::size_t width, const Run& run)
    {
        Bytes expected = before;
        run(KernelsOf(Level::Scalar), Frame(expected));
        for (const Level level : AvailableLevels()) {
            if (level == Level::Scalar)
                continue;
            for (const Guard side : {Guard::Before, Guard::Behind}) {
                const Frame actual = guarded.Place(before.size(), side);
                std::ranges::copy(before, actual.begin());
                run(KernelsOf(level), actual);
                const std::string difference = Difference(before, expected, actual, width);
                if (!difference.empty())
                    return testing::AssertionFailure() << "at " << NameOf(level) << ": " << difference;
            }
        }
        return testing::AssertionSuccess();
    }

    ::vixahost::fixtures::GuardedMemory guarded{std::size_t{17} << 20};
};

// Where a level is missing, its forms go untested: let the log say so.
class Machine : public testing::TestWithParam<Level>
{
};

INSTANTIATE_TEST_SUITE_P(Levels, Machine, testing::Values(Level::Sse2, Level::Avx2, Level::Avx512),
                         [](const auto& tested) {
                             std::string name = NameOf(tested.param);
                             std::erase(name, '-');
                             return name;
                         });

TEST_P(Machine, Runs)
{
    if (GetParam() > HighestLevel())
        GTEST_SKIP() << "this machine has no " << NameOf(GetParam());
    EXPECT_NE(&KernelsOf(GetParam()), &KernelsOf(Level::Scalar));
}

TEST_F(Levels, ConvolveEverySizeAsTheScalarFormDoes)
{
    std::uint32_t seed = 0;
    ::vixahost::fixtures::GuardedMemory rows(ConvolutionScratchBytes(4096)); // ends at a page that nobody may touch
    const auto check = [&](std::int32_t width, std::int32_t height, std::int32_t kind) {
        ++seed;
        const std::size_t picture = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
        const Bytes before =
            Contents(picture + seed % 5, seed); // bytes behind the picture, and unaligned starts with them
        const ConvolutionParameters parameters = ParametersOfKind(kind);
        return SameAsScalar(before, static_cast<std::size_t>(width),
                            [&](const KernelSet& kernels, Frame frame) {
                                const Frame scratch = rows.Place(ConvolutionScratchBytes(width), Guard::Behind);
                                std::fill(scratch.begin(), scratch.end(), static_cast<std::uint8_t>(seed));
                                kernels.convolve(frame, width, seed % 2 ? height : -height, parameters, scratch);
                            })
               << "kind " << kind << ", " << width << " x " << height << ", seed " << seed;
    };
    for (std::int32_t width = 1; width <= 300; ++width) {
        // Every width with every kind on a low picture, and with every third kind on a tall one.
        for (std::int32_t kind = firstKind; kind <= lastKind; ++kind) {
            ASSERT_TRUE(check(width, 3 + (width + kind) % 4, kind));
            if ((width + kind) % 3 == 0) {
                ASSERT_TRUE(check(width, 1 + width * 7 % 40, kind));
            }
        }
    }
    for (const std::int32_t width : {511, 512, 513, 1023, 1025, 2047, 2050}) {
        for (std::int32_t kind = firstKind; kind <= lastKind; ++kind)
            ASSERT_TRUE(check(width, 3 + (width + kind) % 6, kind));
    }
}

TEST_F(Levels, ConvolveWithAKernelThatOutlivedItsKind)
{
    for (std::int32_t kind = firstKind; kind <= lastKind; ++kind) {
        ConvolutionParameters parameters = ParametersOfKind(kind);
        parameters.SetKind(11);
        EXPECT_TRUE(
            SameAsScalar(Contents(std::size_t{37} * 9 * 4, 4), 37,
                         [&](const KernelSet& kernels, Frame frame) { Convolve(kernels, frame, 37, 9, parameters); }))
            << "kernel of kind " << kind;
    }
}

// Frames beyond 16 MiB are walked in another way.
TEST_F(Levels, ShiftTheEdgesOfALargeFrame)
{
    using vixavideofx::ConvolutionKind;
    constexpr std::int32_t width = 2203, height = 1999;
    const Bytes before = Contents(std::size_t{width} * height * 4, 4);
    for (const ConvolutionKind kind :
         {ConvolutionKind::ShiftEdges, ConvolutionKind::ShiftEdgesVertical, ConvolutionKind::ShiftEdgesHorizontal}) {
        const ConvolutionParameters parameters = ParametersOfKind(static_cast<std::int32_t>(kind));
        EXPECT_TRUE(SameAsScalar(
            before, width,
            [&](const KernelSet& kernels, Frame frame) { Convolve(kernels, frame, width, height, parameters); }))
            << "kernel of kind " << static_cast<std::int32_t>(kind);
    }
}

// All 2^24 colours; the fourth byte goes through its values along the way.
TEST_F(Levels, FilterEveryColour)
{
    constexpr std::size_t blockPixels = 1 << 16;
    Bytes before(blockPixels * 4);
    for (std::uint32_t red = 0; red < 256; ++red) {
        for (std::size_t i = 0; i < blockPixels; ++i) {
            const auto pixel = static_cast<std::uint32_t>(i * 0x3B << 24 | red << 16 | i);
            std::memcpy(before.data() + i * 4, &pixel, 4);
        }
        for (std::int32_t colour = 0; colour <= 2; ++colour) {
            for (const bool brighten : {false, true}) {
                ASSERT_TRUE(SameAsScalar(before, blockPixels,
                                         [&](const KernelSet& kernels, Frame frame) {
                                             kernels.filterColor(frame, {97, colour, brighten});
                                         }))
                    << "red " << red << ", colour " << colour << ", brighten " << brighten;
            }
        }
    }
}

// Each channel goes through all its values, together with different ones of the others.
Bytes EveryValue(std::size_t tail)
{
    Bytes bytes(std::size_t{256} * 4 + tail);
    for (std::size_t at = 0; at < bytes.size(); ++at)
        bytes[at] = static_cast<std::uint8_t>(at / 4 * (2 * (at % 4) + 1) + 31 * (at % 4));
    return bytes;
}

TEST_F(Levels, PointEffectsForEveryParameter)
{
    std::vector<std::int32_t> values = {INT_MIN, INT_MIN + 1, -65536, -257,    256,     257,         12799,  12800,
                                        12801,   65535,       65536,  1 << 23, 1 << 24, INT_MAX - 1, INT_MAX};
    for (std::int32_t value = -256; value <= 255; ++value)
        values.push_back(value);

    for (const std::int32_t value : values) {
        const Bytes before = EveryValue(static_cast<std::size_t>(value & 15));
        const auto same = [&](const auto& run) { return SameAsScalar(before, 256, run) << "parameter " << value; };
        using Set = const KernelSet&;
        ASSERT_TRUE(same([&](Set kernels, Frame frame) { kernels.gamma(frame, MakeGammaTable(value)); }));
        ASSERT_TRUE(same([&](Set kernels, Frame frame) { kernels.multiply(frame, value); }));
        ASSERT_TRUE(same([&](Set kernels, Frame frame) { kernels.invert(frame, value); }));
        ASSERT_TRUE(same([&](Set kernels, Frame frame) { kernels.add(frame, {value, -(value / 2), value / 3 + 7}); }));
        ASSERT_TRUE(same([&](Set kernels, Frame frame) { kernels.add(frame, {value / 3 + 7, value, -(value / 2)}); }));
        ASSERT_TRUE(same([&](Set kernels, Frame frame) { kernels.add(frame, {-(value / 2), value / 3, value}); }));
        for (std::int32_t colour = -1; colour <= 3; ++colour) {
            ASSERT_TRUE(same([&](Set kernels, Frame frame) {
                kernels.filterColor(frame, {value, colour, (value & 1) != 0});
            }));
        }
    }
}

TEST_F(Levels, PointEffectsOfEveryLength)
{
    for (std::size_t size = 0; size <= 700; ++size) {
        const Bytes before = Contents(size, static_cast<std::uint32_t>(size));
        const auto same = [&](const auto& run) { return SameAsScalar(before, size + 1, run) << "bytes " << size; };
        using Set = const KernelSet&;
        ASSERT_TRUE(same([&](Set kernels, Frame frame) { kernels.gamma(frame, MakeGammaTable(60)); }));
        ASSERT_TRUE(same([&](Set kernels, Frame frame) { kernels.multiply(frame, 130); }));
        ASSERT_TRUE(same([&](Set kernels, Frame frame) { kernels.invert(frame, 5); }));
        ASSERT_TRUE(same([&](Set kernels, Frame frame) { kernels.add(frame, {-9, 100, 30}); }));
        ASSERT_TRUE(same([&](Set kernels, Frame frame) { kernels.filterColor(frame, {80, 0, true}); }));
    }
}

TEST(LevelChoice, NeverExceedsTheMachine)
{
    EXPECT_EQ(&KernelsOf(Level::Avx512), &KernelsOf(HighestLevel()));
}

} // namespace
} // namespace vixa::kernels::test
