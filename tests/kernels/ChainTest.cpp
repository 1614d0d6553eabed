// A chain gives the bytes of its steps one after the other, whatever the steps, sizes and bands.
#include "host/fixtures/GuardedMemory.h"
#include "tests/kernels/ChainRecipe.h"
#include "tests/kernels/Helpers.h"

#include <gtest/gtest.h>

namespace vixa::kernels::test {
namespace {

TEST(Chain, EqualsItsStepsOneByOne)
{
    using Guard = ::vixahost::fixtures::GuardedMemory::Guard;
    ::vixahost::fixtures::GuardedMemory guarded(1 << 16);
    for (std::uint32_t seed = 0; seed < 20000; ++seed) {
        ChainOfRecipe chain(RandomBytes(64 + seed % 100, seed));
        const Frame together = guarded.Place(chain.Size(), seed % 2 ? Guard::Before : Guard::Behind);
        chain.Together(together);
        ASSERT_TRUE(std::ranges::equal(together, chain.OneByOne())) << "seed " << seed;
    }
}

// What a band leaves unfinished must reach the next step when the frame ends, also when the chain is used again.
TEST(Chain, CanBeUsedForFrameAfterFrame)
{
    const KernelSet& kernels = KernelsOf(Level::Avx512);
    Chain chain;
    for (const std::int32_t height : {40, 7, 40}) {
        const Bytes before = RandomBytes(std::size_t{33} * 4 * static_cast<std::size_t>(height), 5);
        Bytes expected = before, actual = before;
        Bytes first(ConvolutionScratchBytes(33)), second(first);
        const auto steps = [&](Bytes& frame) {
            return std::array<Step, 3>{
                {{&kernels, frame, PictureConvolution{33, height, ParametersOfKind(8), first}},
                 {&kernels, frame, AddParameters{10, -20, 30}},
                 {&kernels, frame, PictureConvolution{33, height, ParametersOfKind(7), second}}}};
        };
        for (const Step& step : steps(expected))
            RunStep(step);
        for (const Step& step : steps(actual))
            chain.Add(step);
        chain.Run(300);
        EXPECT_EQ(actual, expected) << height;
    }
}

} // namespace
} // namespace vixa::kernels::test
