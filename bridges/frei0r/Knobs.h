// An effect's parameters as frei0r has them: numbers from 0 to 1 for a range or a list of choices, and switches where a
// host would show check boxes: the channels of "Invert color" and the directions of "Shift edges".
#pragma once

#include <vixavideofx/Effects.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>

namespace vixa::frei0r {

using vixavideofx::ParameterChoice;
using vixavideofx::ParameterDescription;

// A text that is put together by the compiler.
class Text
{
public:
    constexpr Text& operator<<(std::string_view more)
    {
        for (const char character : more)
            characters[length++] = character;
        return *this;
    }
    constexpr Text& operator<<(std::int32_t number)
    {
        if (number < 0)
            return *this << "-" << -number;
        if (number >= 10)
            *this << number / 10;
        characters[length++] = static_cast<char>('0' + number % 10);
        return *this;
    }
    constexpr const char* CString() const { return characters.data(); }

private:
    std::array<char, 160> characters{};
    std::size_t length = 0;
};

struct Knob
{
    const char* name = nullptr;
    bool isSwitch = false;
    double initial = 0;
    const ParameterDescription* parameter = nullptr;
    std::int32_t value = 0; // a switch's: the choice that it stands for
    Text explanation;
};

// What a host sends beyond 0 and 1 counts as the nearer end, and what is no number as 0.
inline double Bounded(double value) noexcept
{
    return value > 0 ? std::min(value, 1.0) : 0.0;
}
inline bool IsOn(double value) noexcept
{
    return value >= 0.5;
}

// The knobs of the effect with that start block, and the block that their values stand for.
template <typename Block, Block defaults>
class Knobs
{
    using Numbers = std::array<std::int32_t, sizeof(Block) / sizeof(std::int32_t)>;
    static constexpr bool invertsChannels = std::is_same_v<Block, vixavideofx::InvertBlock>;
    static constexpr bool choosesKernel = std::is_same_v<Block, vixavideofx::ConvolutionBlock>;
    static constexpr std::size_t mostKnobs = 4;

public:
    constexpr explicit Knobs(std::span<const ParameterDescription> parameters)
    {
        for (const ParameterDescription& parameter : parameters) {
            if constexpr (invertsChannels || choosesKernel) {
                for (const ParameterChoice& choice : parameter.choices)
                    if (IsSwitch(choice))
                        knobs[count++] = SwitchOf(parameter, choice);
            } else
                knobs[count++] = ScaleOf(parameter);
        }
    }

    constexpr std::size_t size() const { return count; }
    constexpr const Knob& operator[](std::size_t index) const { return knobs[index]; }

    // `values` holds one number a knob.
    Block BlockOf(const std::array<double, mostKnobs>& values) const noexcept
    {
        auto numbers = std::bit_cast<Numbers>(defaults);
        std::int32_t on = 0, chosen = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const ParameterDescription& parameter = *knobs[i].parameter;
            std::int32_t& number = numbers[parameter.offset / sizeof(std::int32_t)];
            if (!knobs[i].isSwitch)
                number = static_cast<std::int32_t>(
                    std::lround(parameter.minimum + Bounded(values[i]) * (parameter.maximum - parameter.minimum)));
            else if (IsOn(values[i])) {
                ++on;
                chosen |= knobs[i].value;
            }
        }
        if constexpr (invertsChannels)
            numbers[0] = chosen;
        // There is no kernel without a direction; as in the panel that means both.
        if (choosesKernel && on == 1)
            numbers[0] = chosen;
        return std::bit_cast<Block>(numbers);
    }

    using Values = std::array<double, mostKnobs>;

private:
    static constexpr bool IsSwitch(const ParameterChoice& choice)
    {
        if constexpr (invertsChannels)
            return std::has_single_bit(static_cast<std::uint32_t>(choice.value));
        else
            return choice.value != std::bit_cast<Numbers>(defaults)[0];
    }

    static constexpr Knob SwitchOf(const ParameterDescription& parameter, const ParameterChoice& choice)
    {
        Knob knob = {choice.name, true, choosesKernel ? 1.0 : 0.0, &parameter, choice.value, {}};
        if (choosesKernel)
            knob.explanation << parameter.meaning << "; neither direction counts as both";
        else
            knob.explanation << "whether " << choice.name
                             << " is inverted; with any channel inverted, the others are 0";
        return knob;
    }

    static constexpr Knob ScaleOf(const ParameterDescription& parameter)
    {
        const std::int32_t initial = std::bit_cast<Numbers>(defaults)[parameter.offset / sizeof(std::int32_t)];
        const std::int32_t range = parameter.maximum - parameter.minimum;
        Knob knob = {parameter.name, false, double(initial - parameter.minimum) / range, &parameter, 0, {}};
        knob.explanation << parameter.meaning;
        if (!parameter.closed)
            knob.explanation << "; 0 to 1 is " << parameter.minimum << " to " << parameter.maximum;
        else
            for (const ParameterChoice& choice : parameter.choices) {
                const std::int32_t tenths = 10 * (choice.value - parameter.minimum) / range;
                knob.explanation << (&choice == parameter.choices.data() ? ": " : ", ") << tenths / 10 << "."
                                 << tenths % 10 << " " << choice.name;
            }
        return knob;
    }

    std::array<Knob, mostKnobs> knobs{};
    std::size_t count = 0;
};

} // namespace vixa::frei0r
