// The vector kernels for AVX-512 with F, BW, VL, VBMI and VNNI.
#include "effects/kernels/VectorKernels.h"

#include <cstring>
#include <immintrin.h>

#define VIXA_INLINE inline __attribute__((always_inline))
#define VIXA_INLINE_LAMBDA __attribute__((always_inline))

namespace vixa::kernels {

namespace {

struct Backend
{
    using Vector = __m512i;
    static constexpr std::size_t bytes = 64;
    static constexpr int registers = sizeof(void*) == 8 ? 32 : 8;

    static VIXA_INLINE Vector Load(const std::uint8_t* at) { return _mm512_loadu_si512(at); }
    static VIXA_INLINE void Store(std::uint8_t* at, Vector v) { _mm512_storeu_si512(at, v); }
    static VIXA_INLINE __mmask64 First(std::size_t count) { return ~__mmask64{0} >> (bytes - count); }
    static VIXA_INLINE Vector LoadPart(const std::uint8_t* at, std::size_t count)
    {
        return _mm512_maskz_loadu_epi8(First(count), at);
    }
    static VIXA_INLINE void StorePart(std::uint8_t* at, Vector v, std::size_t count)
    {
        _mm512_mask_storeu_epi8(at, First(count), v);
    }

    static VIXA_INLINE Vector Zero() { return _mm512_setzero_si512(); }
    static VIXA_INLINE Vector Pattern(std::uint32_t pixel) { return _mm512_set1_epi32(static_cast<int>(pixel)); }
    static VIXA_INLINE Vector Pattern64(std::uint32_t low, std::uint32_t high)
    {
        return _mm512_set1_epi64(static_cast<long long>(std::uint64_t{high} << 32 | low));
    }
    static VIXA_INLINE Vector Set16(int value) { return _mm512_set1_epi16(static_cast<short>(value)); }

    static VIXA_INLINE Vector And(Vector a, Vector b) { return _mm512_and_si512(a, b); }
    static VIXA_INLINE Vector AndNot(Vector a, Vector b) { return _mm512_andnot_si512(a, b); }
    static VIXA_INLINE Vector Or(Vector a, Vector b) { return _mm512_or_si512(a, b); }
    static VIXA_INLINE Vector Xor(Vector a, Vector b) { return _mm512_xor_si512(a, b); }

    static VIXA_INLINE Vector AddI8(Vector a, Vector b) { return _mm512_add_epi8(a, b); }
    static VIXA_INLINE Vector AddSaturatedU8(Vector a, Vector b) { return _mm512_adds_epu8(a, b); }
    static VIXA_INLINE Vector SubtractSaturatedU8(Vector a, Vector b) { return _mm512_subs_epu8(a, b); }
    static VIXA_INLINE Vector SubtractSaturatedI8(Vector a, Vector b) { return _mm512_subs_epi8(a, b); }
    static VIXA_INLINE Vector MinU8(Vector a, Vector b) { return _mm512_min_epu8(a, b); }
    static VIXA_INLINE Vector AverageU8(Vector a, Vector b) { return _mm512_avg_epu8(a, b); }
    static VIXA_INLINE Vector UnpackLow8(Vector a, Vector b) { return _mm512_unpacklo_epi8(a, b); }
    static VIXA_INLINE Vector UnpackHigh8(Vector a, Vector b) { return _mm512_unpackhi_epi8(a, b); }
    static VIXA_INLINE Vector PackU8(Vector a, Vector b) { return _mm512_packus_epi16(a, b); }
    static VIXA_INLINE Vector PackI8(Vector a, Vector b) { return _mm512_packs_epi16(a, b); }

    static VIXA_INLINE Vector Add16(Vector a, Vector b) { return _mm512_add_epi16(a, b); }
    static VIXA_INLINE Vector Sub16(Vector a, Vector b) { return _mm512_sub_epi16(a, b); }
    static VIXA_INLINE Vector MultiplyHighU16(Vector a, Vector b) { return _mm512_mulhi_epu16(a, b); }
    static VIXA_INLINE Vector MultiplyLow16(Vector a, Vector b) { return _mm512_mullo_epi16(a, b); }
    static VIXA_INLINE Vector MultiplyHighI16(Vector a, Vector b) { return _mm512_mulhi_epi16(a, b); }
    // The lower and the upper bytes of `a` times one weight and those of `b` times the other, both -128 to 127.
    template <int weightA, int weightB>
    static VIXA_INLINE Vector WeighLow(Vector a, Vector b)
    {
        return _mm512_maddubs_epi16(UnpackLow8(a, b), Set16((weightA & 0xFF) | weightB * 256));
    }
    template <int weightA, int weightB>
    static VIXA_INLINE Vector WeighHigh(Vector a, Vector b)
    {
        return _mm512_maddubs_epi16(UnpackHigh8(a, b), Set16((weightA & 0xFF) | weightB * 256));
    }

    static VIXA_INLINE Vector Add32(Vector a, Vector b) { return _mm512_add_epi32(a, b); }
    template <int bits>
    static VIXA_INLINE Vector ShiftLeft32(Vector v)
    {
        return _mm512_slli_epi32(v, bits);
    }
    template <int bits>
    static VIXA_INLINE Vector ShiftRight32(Vector v)
    {
        return _mm512_srli_epi32(v, bits);
    }

    using Weights = Vector;
    static VIXA_INLINE Weights MakeWeights(int blue, int green, int red)
    {
        return _mm512_set1_epi32((blue & 0xFF) | (green & 0xFF) << 8 | (red & 0xFF) << 16);
    }
    static VIXA_INLINE Vector Product32(Vector pixels, Weights weights)
    {
        return _mm512_dpbusd_epi32(Zero(), pixels, weights);
    }
    // Below 0 where both are, or where both are 0.
    static VIXA_INLINE Vector BothBelowOrZero(Vector a, Vector b)
    {
        // bit 31 of ~(a ^ b) & ((a | b) - 1)
        return _mm512_ternarylogic_epi32(a, b, Add32(Or(a, b), Pattern(0xFFFFFFFFu)), 0x82);
    }
    template <bool up>
    static VIXA_INLINE Vector ChangeWhere(Vector v, Vector change, Vector inside, Vector light, Vector tooLight)
    {
        const Vector chosen = _mm512_and_si512(_mm512_srai_epi32(inside, 31), change);
        const __mmask64 where = _mm512_cmplt_epi8_mask(light, tooLight);
        return up ? _mm512_mask_adds_epu8(v, where, v, chosen) : _mm512_mask_subs_epu8(v, where, v, chosen);
    }
};

#include "effects/kernels/PointBodies.inl"

#include "effects/kernels/ConvolutionBodies.inl"

VIXA_INLINE auto Mapping(const std::uint8_t* table) noexcept
{
    const Vector t0 = B::Load(table), t1 = B::Load(table + 64), t2 = B::Load(table + 128), t3 = B::Load(table + 192);
    constexpr __mmask64 colours = 0x7777777777777777u;
    // Arithmetic on 64-bit masks would go through general registers in 32-bit code, so the fourth bytes are left out of
    // the mask before it is made.
    const Vector upperHalf = B::Pattern(0x00808080u);
    return VIXA_STEP(v)
    {
        const Vector low = _mm512_mask2_permutex2var_epi8(t0, v, colours, t1);
        const __mmask64 upper = _mm512_test_epi8_mask(v, upperHalf);
        return _mm512_mask_blend_epi8(upper, low, _mm512_permutex2var_epi8(t2, v, t3));
    };
}

void Gamma(std::uint8_t* frame, std::size_t pixels, const std::uint8_t* table) noexcept
{
    ForEachVector(frame, pixels * pixelBytes, Mapping(table));
}

#include "effects/kernels/PointRuns.inl"

} // namespace

const VectorKernels avx512Kernels = {Gamma, Multiply, Invert, FilterColor, Add, Convolve, RunPoints};

} // namespace vixa::kernels
