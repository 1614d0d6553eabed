#include "bench/LimitPass.h"

#include <immintrin.h>

namespace vixa::bench {

namespace {

#define VIXA_LIMIT_PASS(NAME, TARGET, VECTOR)                                                                          \
    __attribute__((target(TARGET))) void NAME(std::uint8_t* at, std::size_t bytes)                                     \
    {                                                                                                                  \
        using Vector = std::uint32_t __attribute__((vector_size(VECTOR), aligned(1), may_alias));                      \
        for (; bytes >= (VECTOR); bytes -= (VECTOR), at += (VECTOR))                                                   \
            *reinterpret_cast<Vector*>(at) ^= 0x01020408u;                                                             \
        for (; bytes > 0; --bytes)                                                                                     \
            *at++ ^= 1;                                                                                                \
    }

VIXA_LIMIT_PASS(Pass128, "sse2", 16)
VIXA_LIMIT_PASS(Pass256, "avx2", 32)
VIXA_LIMIT_PASS(Pass512, "avx512f,prefer-vector-width=512", 64)

} // namespace

void LimitPass(kernels::Frame frame) noexcept
{
    if (kernels::HighestLevel() == kernels::Level::Avx512)
        Pass512(frame.data(), frame.size());
    else if (kernels::HighestLevel() == kernels::Level::Avx2)
        Pass256(frame.data(), frame.size());
    else
        Pass128(frame.data(), frame.size());
}

} // namespace vixa::bench
