// The bodies of the point effects, written once over the level's Backend. Included inside an anonymous namespace by
// each level's source, so that nothing here has linkage: the compiler may never hand one level's code to another.
//
// Backend: the type Vector, its size `bytes`, and the operations B::... used below; lanes are 8, 16 or 32 bits wide as
// their names say.

using Vector = Backend::Vector;
using B = Backend;

constexpr std::size_t pixelBytes = 4;

// Replaces each vector of the first `bytes` bytes by step(vector); the last one may be a part of a vector.
template <typename Step>
VIXA_INLINE void ForEachVector(std::uint8_t* frame, std::size_t bytes, const Step& step) noexcept
{
    std::size_t at = 0;
    for (; at + B::bytes <= bytes; at += B::bytes)
        B::Store(frame + at, step(B::Load(frame + at)));
    if (at < bytes)
        B::StorePart(frame + at, step(B::LoadPart(frame + at, bytes - at)), bytes - at);
}

// What an effect does to a vector. The functions that are made here are used for one effect alone and in runs of them.
#define VIXA_STEP(v) [=](Vector v) VIXA_INLINE_LAMBDA

VIXA_INLINE auto Multiplying(std::uint32_t multiplier) noexcept
{
    // A byte in the upper half of a word times the multiplier has byte x multiplier / 256 in the upper half of the
    // product. The fourth byte's multiplier is 0.
    const Vector factors = B::Pattern64((multiplier << 16) | multiplier, multiplier);
    const Vector zero = B::Zero();
    return VIXA_STEP(v)
    {
        const Vector low = B::MultiplyHighU16(B::UnpackLow8(zero, v), factors);
        const Vector high = B::MultiplyHighU16(B::UnpackHigh8(zero, v), factors);
        return B::PackU8(low, high);
    };
}

VIXA_INLINE auto Inverting(std::uint32_t pattern) noexcept
{
    const Vector ones = B::Pattern(pattern);
    return VIXA_STEP(v)
    {
        return B::SubtractSaturatedU8(ones, v);
    };
}

VIXA_INLINE auto Adding(std::uint32_t add, std::uint32_t subtract) noexcept
{
    const Vector up = B::Pattern(add), down = B::Pattern(subtract);
    return VIXA_STEP(v)
    {
        return B::SubtractSaturatedU8(B::AddSaturatedU8(v, up), down);
    };
}

void Multiply(std::uint8_t* frame, std::size_t pixels, std::uint32_t multiplier) noexcept
{
    ForEachVector(frame, pixels * pixelBytes, Multiplying(multiplier));
}

void Invert(std::uint8_t* frame, std::size_t pixels, std::uint32_t pattern) noexcept
{
    ForEachVector(frame, pixels * pixelBytes, Inverting(pattern));
}

void Add(std::uint8_t* frame, std::size_t pixels, std::uint32_t add, std::uint32_t subtract) noexcept
{
    ForEachVector(frame, pixels * pixelBytes, Adding(add, subtract));
}

// The hue range of a colour is a wedge of the colour cube between two planes through the grey axis. With the hue's
// definition multiplied out, a pixel lies inside when both integer products of (blue, green, red) with these normals
// are below 0: backward hues are bounded by the first, forward hues by the second (the other product is then below 0
// anyway). Each plane's weights sum to 0, so both products are 0 for grey alone, which counts as blue.
struct Wedge
{
    int first[3]; // weights of blue, green and red
    int second[3];
};
constexpr Wedge wedges[] = {
    {{-31, 42, -11}, {-25, -17, 42}}, // blue: 42 (G - R) < 31 (B - R), 42 (R - G) < 25 (B - G)
    {{-4, -3, 7}, {21, -13, -8}},     // green: 42 (R - B) < 18 (G - B), 42 (B - R) < 26 (G - R)
    {{21, -8, -13}, {-3, 7, -4}},     // red: 42 (B - G) < 26 (R - G), 42 (G - B) < 24 (R - B)
};

// Lightness from 60 to 200, given in the byte of the colour (the largest of the three there, when the hue matches).
template <int colour>
VIXA_INLINE Vector LightnessOf(Vector v) noexcept
{
    // The other two channels, moved to the colour's byte.
    Vector one, other;
    if constexpr (colour == 0) {
        one = B::template ShiftRight32<8>(v);
        other = B::template ShiftRight32<16>(v);
    } else if constexpr (colour == 1) {
        one = B::template ShiftLeft32<8>(v);
        other = B::template ShiftRight32<8>(v);
    } else {
        one = B::template ShiftLeft32<8>(v);
        other = B::template ShiftLeft32<16>(v);
    }
    // (sum x 255 + 255) / 510 is (sum + 1) / 2: the rounding average.
    return B::AverageU8(v, B::MinU8(one, other));
}

template <int colour, bool brighten>
VIXA_INLINE auto Filtering(std::uint32_t magnitude) noexcept
{
    constexpr Wedge wedge = wedges[colour];
    const auto first = B::MakeWeights(wedge.first[0], wedge.first[1], wedge.first[2]);
    const auto second = B::MakeWeights(wedge.second[0], wedge.second[1], wedge.second[2]);
    const Vector change = B::Pattern(magnitude << (8 * colour));
    // 60 moved to the lowest signed byte, so that one comparison finds both ends of 60 to 200.
    const Vector fromDarkest = B::Pattern(0x01010101u * (256 - 128 - 60));
    const Vector tooLight = B::Pattern(0x01010101u * (201 - 128 - 60));
    return VIXA_STEP(v)
    {
        const Vector d1 = B::Product32(v, first), d2 = B::Product32(v, second);
        const Vector inside = colour == 0 ? B::BothBelowOrZero(d1, d2) : B::And(d1, d2); // the sign says
        const Vector light = B::AddI8(LightnessOf<colour>(v), fromDarkest);
        return B::template ChangeWhere<brighten>(v, change, inside, light, tooLight);
    };
}

// Calls use(step) with the step that filters the colour.
template <typename Use>
VIXA_INLINE void WithFiltering(int colour, std::uint32_t magnitude, bool brighten, const Use& use) noexcept
{
    if (colour == 0)
        brighten ? use(Filtering<0, true>(magnitude)) : use(Filtering<0, false>(magnitude));
    else if (colour == 1)
        brighten ? use(Filtering<1, true>(magnitude)) : use(Filtering<1, false>(magnitude));
    else
        brighten ? use(Filtering<2, true>(magnitude)) : use(Filtering<2, false>(magnitude));
}

void FilterColor(std::uint8_t* frame, std::size_t pixels, int colour, std::uint32_t magnitude, bool brighten) noexcept
{
    WithFiltering(colour, magnitude, brighten,
                  [&](const auto& step) VIXA_INLINE_LAMBDA { ForEachVector(frame, pixels * pixelBytes, step); });
}
