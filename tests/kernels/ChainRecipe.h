// Chains made of bytes, for tests with random bytes and for fuzzing alike.
#pragma once

#include "effects/kernels/Chain.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

namespace vixa::kernels::test {

// Takes a recipe apart; behind its end everything is 0.
class Recipe
{
public:
    explicit Recipe(std::span<const std::uint8_t> bytes) : left(bytes) {}

    int Next(int count) // 0 to count - 1
    {
        if (left.empty())
            return 0;
        const int value = left.front() % count;
        left = left.subspan(1);
        return value;
    }
    std::int32_t Number() // mostly near the range that parameters have
    {
        const std::int32_t value = Next(256) - 128, factor = Next(4);
        return factor == 3 ? value * 0x1000000 : value * (factor + 1);
    }
    std::span<const std::uint8_t> Rest() const { return left; }

private:
    std::span<const std::uint8_t> left;
};

// A frame and up to six effects over it, run as a chain and one after the other.
class ChainOfRecipe
{
public:
    explicit ChainOfRecipe(std::span<const std::uint8_t> bytes)
    {
        Recipe recipe(bytes);
        width = 1 + recipe.Next(200) / (1 + recipe.Next(9));
        height = 1 + recipe.Next(24);
        const auto picture = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
        frame.resize(picture + static_cast<std::size_t>(recipe.Next(40)));
        bandBytes = static_cast<std::size_t>(recipe.Next(256)) * static_cast<std::size_t>(1 + recipe.Next(20));
        const int count = 1 + recipe.Next(6);
        for (int i = 0; i < count; ++i)
            steps.push_back(StepOf(recipe));
        std::uint32_t noise = 1;
        const auto rest = recipe.Rest();
        for (std::size_t at = 0; at < frame.size(); ++at) {
            noise = noise * 1664525 + 1013904223;
            frame[at] = at < rest.size() ? rest[at] : static_cast<std::uint8_t>(noise >> 24);
        }
    }

    std::vector<std::uint8_t> OneByOne()
    {
        auto bytes = frame;
        for (const Step& step : StepsOver(bytes))
            RunStep(step);
        return bytes;
    }

    // Over `room`, which is as large as the frame.
    void Together(Frame room)
    {
        std::ranges::copy(frame, room.begin());
        Chain chain;
        for (const Step& step : StepsOver(room))
            chain.Add(step);
        chain.Run(bandBytes);
    }

    std::size_t Size() const { return frame.size(); }

private:
    Step StepOf(Recipe& recipe)
    {
        constexpr Level levels[] = {Level::Avx512, Level::Avx2, Level::Sse2, Level::Scalar};
        Step step{&KernelsOf(levels[recipe.Next(4)]), {}, {}};
        switch (recipe.Next(8)) {
        case 0:
            step.parameters = MakeGammaTable(recipe.Number());
            break;
        case 1:
            step.parameters = MultiplyParameters{recipe.Number()};
            break;
        case 2:
            step.parameters = InvertParameters{recipe.Next(8)};
            break;
        case 3:
            step.parameters = FilterColorParameters{recipe.Number(), recipe.Next(4), recipe.Next(2) != 0};
            break;
        case 4:
            step.parameters = AddParameters{recipe.Number(), recipe.Number(), recipe.Number()};
            break;
        default: {
            PictureConvolution convolution{width, recipe.Next(2) ? height : -height, {}, {}};
            // Now and then another size than the frame's, no kernel, a kernel that outlived its kind.
            if (recipe.Next(16) == 0)
                convolution.width = recipe.Next(256) - 2;
            convolution.parameters.SetKind(recipe.Next(11));
            if (recipe.Next(16) == 0)
                convolution.parameters.SetKind(11);
            scratch.emplace_back(ConvolutionScratchBytes(convolution.width), std::uint8_t{0x77});
            convolution.scratch = scratch.back();
            step.parameters = convolution;
        }
        }
        shorter.push_back(recipe.Next(8) == 0 ? static_cast<std::size_t>(recipe.Next(256)) : 0);
        return step;
    }

    std::vector<Step> StepsOver(Frame bytes) const
    {
        auto all = steps;
        for (std::size_t i = 0; i < all.size(); ++i)
            all[i].frame = bytes.first(bytes.size() - std::min(shorter[i], bytes.size()));
        return all;
    }

    std::int32_t width = 0, height = 0;
    std::size_t bandBytes = 0;
    std::vector<std::uint8_t> frame;
    std::deque<std::vector<std::uint8_t>> scratch; // stays where it is when it grows
    std::vector<Step> steps;
    std::vector<std::size_t> shorter; // bytes at the end that a step isn't given
};

} // namespace vixa::kernels::test
