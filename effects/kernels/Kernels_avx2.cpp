// The vector kernels for AVX2.
#include "effects/kernels/VectorKernels.h"

#include <cstring>
#include <immintrin.h>

#define VIXA_INLINE inline __attribute__((always_inline))
#define VIXA_INLINE_LAMBDA __attribute__((always_inline))

namespace vixa::kernels {

namespace {

struct Backend
{
    using Vector = __m256i;
    static constexpr std::size_t bytes = 32;
    static constexpr int registers = sizeof(void*) == 8 ? 16 : 8;

    static VIXA_INLINE Vector Load(const std::uint8_t* at)
    {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i_u*>(at));
    }
    static VIXA_INLINE void Store(std::uint8_t* at, Vector v)
    {
        _mm256_storeu_si256(reinterpret_cast<__m256i_u*>(at), v);
    }
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

    static VIXA_INLINE Vector Zero() { return _mm256_setzero_si256(); }
    static VIXA_INLINE Vector Pattern(std::uint32_t pixel) { return _mm256_set1_epi32(static_cast<int>(pixel)); }
    static VIXA_INLINE Vector Pattern64(std::uint32_t low, std::uint32_t high)
    {
        return _mm256_set1_epi64x(static_cast<long long>(std::uint64_t{high} << 32 | low));
    }
    static VIXA_INLINE Vector Set16(int value) { return _mm256_set1_epi16(static_cast<short>(value)); }

    static VIXA_INLINE Vector And(Vector a, Vector b) { return _mm256_and_si256(a, b); }
    static VIXA_INLINE Vector AndNot(Vector a, Vector b) { return _mm256_andnot_si256(a, b); }
    static VIXA_INLINE Vector Or(Vector a, Vector b) { return _mm256_or_si256(a, b); }
    static VIXA_INLINE Vector Xor(Vector a, Vector b) { return _mm256_xor_si256(a, b); }

    static VIXA_INLINE Vector AddI8(Vector a, Vector b) { return _mm256_add_epi8(a, b); }
    static VIXA_INLINE Vector AddSaturatedU8(Vector a, Vector b) { return _mm256_adds_epu8(a, b); }
    static VIXA_INLINE Vector SubtractSaturatedU8(Vector a, Vector b) { return _mm256_subs_epu8(a, b); }
    static VIXA_INLINE Vector SubtractSaturatedI8(Vector a, Vector b) { return _mm256_subs_epi8(a, b); }
    static VIXA_INLINE Vector MinU8(Vector a, Vector b) { return _mm256_min_epu8(a, b); }
    static VIXA_INLINE Vector AverageU8(Vector a, Vector b) { return _mm256_avg_epu8(a, b); }
    static VIXA_INLINE Vector UnpackLow8(Vector a, Vector b) { return _mm256_unpacklo_epi8(a, b); }
    static VIXA_INLINE Vector UnpackHigh8(Vector a, Vector b) { return _mm256_unpackhi_epi8(a, b); }
    static VIXA_INLINE Vector PackU8(Vector a, Vector b) { return _mm256_packus_epi16(a, b); }
    static VIXA_INLINE Vector PackI8(Vector a, Vector b) { return _mm256_packs_epi16(a, b); }

    static VIXA_INLINE Vector Add16(Vector a, Vector b) { return _mm256_add_epi16(a, b); }
    static VIXA_INLINE Vector Sub16(Vector a, Vector b) { return _mm256_sub_epi16(a, b); }
    static VIXA_INLINE Vector MultiplyHighU16(Vector a, Vector b) { return _mm256_mulhi_epu16(a, b); }
    static VIXA_INLINE Vector MultiplyLow16(Vector a, Vector b) { return _mm256_mullo_epi16(a, b); }
    static VIXA_INLINE Vector MultiplyHighI16(Vector a, Vector b) { return _mm256_mulhi_epi16(a, b); }
    // The lower and the upper bytes of `a` times one weight and those of `b` times the other, both -128 to 127.
    template <int weightA, int weightB>
    static VIXA_INLINE Vector WeighLow(Vector a, Vector b)
    {
        return _mm256_maddubs_epi16(UnpackLow8(a, b), Set16((weightA & 0xFF) | weightB * 256));
    }
    template <int weightA, int weightB>
    static VIXA_INLINE Vector WeighHigh(Vector a, Vector b)
    {
        return _mm256_maddubs_epi16(UnpackHigh8(a, b), Set16((weightA & 0xFF) | weightB * 256));
    }

    static VIXA_INLINE Vector Add32(Vector a, Vector b) { return _mm256_add_epi32(a, b); }
    template <int bits>
    static VIXA_INLINE Vector ShiftLeft32(Vector v)
    {
        return _mm256_slli_epi32(v, bits);
    }
    template <int bits>
    static VIXA_INLINE Vector ShiftRight32(Vector v)
    {
        return _mm256_srli_epi32(v, bits);
    }

    using Weights = Vector;
    static VIXA_INLINE Weights MakeWeights(int blue, int green, int red)
    {
        return _mm256_set1_epi32((blue & 0xFF) | (green & 0xFF) << 8 | (red & 0xFF) << 16);
    }
    static VIXA_INLINE Vector Product32(Vector pixels, Weights weights)
    {
        return _mm256_madd_epi16(_mm256_maddubs_epi16(pixels, weights), _mm256_set1_epi16(1));
    }
    // Below 0 where both are, or where both are 0.
    static VIXA_INLINE Vector BothBelowOrZero(Vector a, Vector b)
    {
        return AndNot(Xor(a, b), Add32(Or(a, b), Pattern(0xFFFFFFFFu)));
    }
    template <bool up>
    static VIXA_INLINE Vector ChangeWhere(Vector v, Vector change, Vector inside, Vector light, Vector tooLight)
    {
        const __m256 chosenHue =
            _mm256_blendv_ps(_mm256_setzero_ps(), _mm256_castsi256_ps(change), _mm256_castsi256_ps(inside));
        const Vector chosen = And(_mm256_castps_si256(chosenHue), _mm256_cmpgt_epi8(tooLight, light));
        return up ? AddSaturatedU8(v, chosen) : SubtractSaturatedU8(v, chosen);
    }
};

#include "effects/kernels/PointBodies.inl"

#include "effects/kernels/ConvolutionBodies.inl"

// The table in sixteen parts of 16 entries. A shuffle looks up the lower half of each byte in one part, and gives 0
// where the byte's highest bit is set: so the parts i and i + 8 are looked up together, and the other three bits choose
// between the eight results.
VIXA_INLINE auto Mapping(const std::uint8_t* table) noexcept
{
    return VIXA_STEP(v)
    {
        const Vector turned = B::Xor(v, B::Pattern(0x80808080u));
        const auto part = [&](std::size_t i) VIXA_INLINE_LAMBDA {
            return _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i_u*>(table + 16 * i)));
        };
        const auto one = [&](std::size_t i) VIXA_INLINE_LAMBDA {
            return B::Or(_mm256_shuffle_epi8(part(i), v), _mm256_shuffle_epi8(part(i + 8), turned));
        };
        // A choice looks at the highest bit of each byte.
        const Vector bit4 = _mm256_slli_epi16(v, 3), bit5 = _mm256_slli_epi16(v, 2), bit6 = _mm256_slli_epi16(v, 1);
        const auto ofTwo = [&](std::size_t i)
                               VIXA_INLINE_LAMBDA { return _mm256_blendv_epi8(one(i), one(i + 1), bit4); };
        const auto ofFour = [&](std::size_t i)
                                VIXA_INLINE_LAMBDA { return _mm256_blendv_epi8(ofTwo(i), ofTwo(i + 2), bit5); };
        const Vector result = _mm256_blendv_epi8(ofFour(0), ofFour(4), bit6);
        return _mm256_blendv_epi8(result, v, B::Pattern(0xFF000000u));
    };
}

void Gamma(std::uint8_t* frame, std::size_t pixels, const std::uint8_t* table) noexcept
{
    ForEachVector(frame, pixels * pixelBytes, Mapping(table));
}

#include "effects/kernels/PointRuns.inl"

} // namespace

const VectorKernels avx2Kernels = {Gamma, Multiply, Invert, FilterColor, Add, Convolve, RunPoints};

} // namespace vixa::kernels
