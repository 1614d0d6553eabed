// The vector kernels for SSE2.
#include "effects/kernels/VectorKernels.h"

#include <cstring>
#include <emmintrin.h>

#define VIXA_INLINE inline __attribute__((always_inline))
#define VIXA_INLINE_LAMBDA __attribute__((always_inline))

namespace vixa::kernels {

namespace {

struct Backend
{
    using Vector = __m128i;
    static constexpr std::size_t bytes = 16;
    static constexpr int registers = sizeof(void*) == 8 ? 16 : 8;

    static VIXA_INLINE Vector Load(const std::uint8_t* at)
    {
        return _mm_loadu_si128(reinterpret_cast<const __m128i_u*>(at));
    }
    static VIXA_INLINE void Store(std::uint8_t* at, Vector v) { _mm_storeu_si128(reinterpret_cast<__m128i_u*>(at), v); }
    static VIXA_INLINE Vector LoadPart(const std::uint8_t* at, std::size_t count)
    {
        std::uint8_t buffer[bytes] = {};
        std::memcpy(buffer, at, count);
        return Load(buffer);
    }
    static VIXA_INLINE void StorePart(std::uint8_t* at, Vector v, std::size_t count)
    {
        std::uint8_t buffer[bytes];
        Store(buffer, v);
        std::memcpy(at, buffer, count);
    }

    static VIXA_INLINE Vector Zero() { return _mm_setzero_si128(); }
    static VIXA_INLINE Vector Pattern(std::uint32_t pixel) { return _mm_set1_epi32(static_cast<int>(pixel)); }
    static VIXA_INLINE Vector Pattern64(std::uint32_t low, std::uint32_t high)
    {
        return _mm_set1_epi64x(static_cast<long long>(std::uint64_t{high} << 32 | low));
    }
    static VIXA_INLINE Vector Set16(int value) { return _mm_set1_epi16(static_cast<short>(value)); }

    static VIXA_INLINE Vector And(Vector a, Vector b) { return _mm_and_si128(a, b); }
    static VIXA_INLINE Vector AndNot(Vector a, Vector b) { return _mm_andnot_si128(a, b); }
    static VIXA_INLINE Vector Or(Vector a, Vector b) { return _mm_or_si128(a, b); }
    static VIXA_INLINE Vector Xor(Vector a, Vector b) { return _mm_xor_si128(a, b); }

    static VIXA_INLINE Vector AddI8(Vector a, Vector b) { return _mm_add_epi8(a, b); }
    static VIXA_INLINE Vector AddSaturatedU8(Vector a, Vector b) { return _mm_adds_epu8(a, b); }
    static VIXA_INLINE Vector SubtractSaturatedU8(Vector a, Vector b) { return _mm_subs_epu8(a, b); }
    static VIXA_INLINE Vector SubtractSaturatedI8(Vector a, Vector b) { return _mm_subs_epi8(a, b); }
    static VIXA_INLINE Vector MinU8(Vector a, Vector b) { return _mm_min_epu8(a, b); }
    static VIXA_INLINE Vector AverageU8(Vector a, Vector b) { return _mm_avg_epu8(a, b); }
    static VIXA_INLINE Vector UnpackLow8(Vector a, Vector b) { return _mm_unpacklo_epi8(a, b); }
    static VIXA_INLINE Vector UnpackHigh8(Vector a, Vector b) { return _mm_unpackhi_epi8(a, b); }
    static VIXA_INLINE Vector PackU8(Vector a, Vector b) { return _mm_packus_epi16(a, b); }
    static VIXA_INLINE Vector PackI8(Vector a, Vector b) { return _mm_packs_epi16(a, b); }

    static VIXA_INLINE Vector Add16(Vector a, Vector b) { return _mm_add_epi16(a, b); }
    static VIXA_INLINE Vector Sub16(Vector a, Vector b) { return _mm_sub_epi16(a, b); }
    static VIXA_INLINE Vector MultiplyHighU16(Vector a, Vector b) { return _mm_mulhi_epu16(a, b); }
    static VIXA_INLINE Vector MultiplyLow16(Vector a, Vector b) { return _mm_mullo_epi16(a, b); }
    static VIXA_INLINE Vector MultiplyHighI16(Vector a, Vector b) { return _mm_mulhi_epi16(a, b); }
    static VIXA_INLINE Vector Even(Vector v) { return _mm_and_si128(v, _mm_set1_epi16(0xFF)); }
    static VIXA_INLINE Vector Odd(Vector v) { return _mm_srli_epi16(v, 8); }
    template <int factor>
    static VIXA_INLINE Vector Times16(Vector v)
    {
        return factor == 1 ? v : MultiplyLow16(v, Set16(factor));
    }
    // The lower and the upper bytes of `a` times one weight and those of `b` times the other, both -128 to 127.
    template <int weightA, int weightB>
    static VIXA_INLINE Vector WeighLow(Vector a, Vector b)
    {
        return Add16(Times16<weightA>(UnpackLow8(a, Zero())), Times16<weightB>(UnpackLow8(b, Zero())));
    }
    template <int weightA, int weightB>
    static VIXA_INLINE Vector WeighHigh(Vector a, Vector b)
    {
        return Add16(Times16<weightA>(UnpackHigh8(a, Zero())), Times16<weightB>(UnpackHigh8(b, Zero())));
    }

    static VIXA_INLINE Vector Add32(Vector a, Vector b) { return _mm_add_epi32(a, b); }
    template <int bits>
    static VIXA_INLINE Vector ShiftLeft32(Vector v)
    {
        return _mm_slli_epi32(v, bits);
    }
    template <int bits>
    static VIXA_INLINE Vector ShiftRight32(Vector v)
    {
        return _mm_srli_epi32(v, bits);
    }

    struct Weights
    {
        Vector even, odd; // of blue and red, of green and nothing
    };
    static VIXA_INLINE Weights MakeWeights(int blue, int green, int red)
    {
        return {_mm_set1_epi32((blue & 0xFFFF) | red * 65536), _mm_set1_epi32(green & 0xFFFF)};
    }
    static VIXA_INLINE Vector Product32(Vector pixels, const Weights& weights)
    {
        return Add32(_mm_madd_epi16(Even(pixels), weights.even), _mm_madd_epi16(Odd(pixels), weights.odd));
    }
    // Below 0 where both are, or where both are 0.
    static VIXA_INLINE Vector BothBelowOrZero(Vector a, Vector b)
    {
        return AndNot(Xor(a, b), Add32(Or(a, b), Pattern(0xFFFFFFFFu)));
    }
    template <bool up>
    static VIXA_INLINE Vector ChangeWhere(Vector v, Vector change, Vector inside, Vector light, Vector tooLight)
    {
        const Vector where = And(_mm_srai_epi32(inside, 31), _mm_cmpgt_epi8(tooLight, light));
        const Vector chosen = And(where, change);
        return up ? AddSaturatedU8(v, chosen) : SubtractSaturatedU8(v, chosen);
    }
};

#include "effects/kernels/PointBodies.inl"

#include "effects/kernels/ConvolutionBodies.inl"

// One table per channel whose entries stand where they belong in the pixel, so that three look-ups and three "or"s make
// a pixel.
void Gamma(std::uint8_t* frame, std::size_t pixels, const std::uint8_t* table) noexcept
{
    std::uint32_t blue[256], green[256], red[256];
    for (std::size_t i = 0; i < 256; ++i) {
        blue[i] = table[i];
        green[i] = std::uint32_t{table[i]} << 8;
        red[i] = std::uint32_t{table[i]} << 16;
    }
    for (std::uint8_t* const end = frame + pixels * pixelBytes; frame != end; frame += pixelBytes) {
        std::uint32_t pixel;
        std::memcpy(&pixel, frame, pixelBytes);
        pixel = (pixel & 0xFF000000u) | blue[pixel & 0xFF] | green[pixel >> 8 & 0xFF] | red[pixel >> 16 & 0xFF];
        std::memcpy(frame, &pixel, pixelBytes);
    }
}

} // namespace

const VectorKernels sse2Kernels = {Gamma, Multiply, Invert, FilterColor, Add, Convolve, nullptr};

} // namespace vixa::kernels
