// What the other headers say differently to different compilers. All of them need C++14, Effects.h and
// EffectParameters.h C++20; VixaVideoFX.h and ClassIds.h can be read by C as well.
#pragma once

#include <guiddef.h>

// A constant of a header: one for the whole program where the language has inline variables, else one a source file.
#ifdef __cpp_inline_variables
#define VIXA_CONSTANT inline constexpr
#else
#define VIXA_CONSTANT constexpr
#endif

// VIXA_INTERFACE_ID declares the interface `type` with its identifier: as a constant IID_type, and for __uuidof where
// the compiler has that. `text` and the numbers say the same identifier; compilers differ in which they take.
#if defined(_MSC_VER)
#define VIXA_ATTACH_ID(type, text, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8) struct __declspec(uuid(text)) type;
#elif defined(__CRT_UUID_DECL)
#define VIXA_ATTACH_ID(type, text, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)                                          \
    struct type;                                                                                                       \
    __CRT_UUID_DECL(type, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)
#else
#define VIXA_ATTACH_ID(type, text, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8) struct type;
#endif
#define VIXA_INTERFACE_ID(type, text, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)                                       \
    VIXA_ATTACH_ID(type, text, l, w1, w2, b1, b2, b3, b4, b5, b6, b7, b8)                                              \
    VIXA_CONSTANT IID IID_##type = {l, w1, w2, {b1, b2, b3, b4, b5, b6, b7, b8}}
