// For hosts and tests that compare: whether an effect works on its frames together with its neighbours.
#pragma once

#include <vixavideofx/Compiler.h>

#include <unknwn.h>

VIXA_INTERFACE_ID(IEffectChaining, "5D8A1E46-0C3B-4F52-8B7E-94D26A10C3F7", 0x5D8A1E46, 0x0C3B, 0x4F52, 0x8B, 0x7E, 0x94,
                  0xD2, 0x6A, 0x10, 0xC3, 0xF7);

// Reached with QueryInterface on an effect filter. Effects that are connected to each other directly and share their
// samples make a frame together, while parts of it are in the processor's cache; that is faster and gives the same
// bytes. A filter for which it is switched off works alone, when the frame comes by. Any thread, also while the graph
// runs; the next frame follows.
struct IEffectChaining : IUnknown
{
    // TRUE, at the start: together. S_OK.
    virtual HRESULT STDMETHODCALLTYPE SetChaining(BOOL together) = 0;

    // E_POINTER without `together`.
    virtual HRESULT STDMETHODCALLTYPE GetChaining(BOOL* together) = 0;
};
