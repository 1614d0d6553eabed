// For hosts and tests that compare: which of the processor's instruction sets an effect may use.
#pragma once

#include <vixavideofx/Compiler.h>

#include <unknwn.h>

VIXA_INTERFACE_ID(IInstructionCeiling, "8E0C4C2B-5B7F-4D0A-9C0B-3AF16D52E794", 0x8E0C4C2B, 0x5B7F, 0x4D0A, 0x9C, 0x0B,
                  0x3A, 0xF1, 0x6D, 0x52, 0xE7, 0x94);

// Reached with QueryInterface on an effect filter. Every instruction set gives the same bytes; without a ceiling each
// effect uses the best that processor and system allow. Any thread, also while the graph runs; the next frame follows.
struct IInstructionCeiling : IUnknown
{
    enum Level : ULONG
    {
        Plain = 0, // the definition of every effect
        Sse2 = 1,
        Avx2 = 2,
        Avx512 = 3,
    };

    // Uses no more than `level` from the next frame on. E_INVALIDARG above Avx512.
    virtual HRESULT STDMETHODCALLTYPE SetCeiling(ULONG level) = 0;

    // The level that frames run at now: the ceiling, or what the machine has if that is less. E_POINTER without
    // `level`.
    virtual HRESULT STDMETHODCALLTYPE GetLevel(ULONG* level) = 0;
};
