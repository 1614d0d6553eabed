// The face of every effect filter that is this library's own: how a host hands over parameters.
#pragma once

#include <vixavideofx/Compiler.h>

#include <strmif.h>
#include <unknwn.h>

VIXA_INTERFACE_ID(IEffectFilter, "A67B871C-0AD5-4088-8975-DC797B6B42D8", 0xA67B871C, 0x0AD5, 0x4088, 0x89, 0x75, 0xDC,
                  0x79, 0x7B, 0x6B, 0x42, 0xD8);

// Reached with QueryInterface on the filter. Both operations may be called from any thread, also while the graph runs.
struct IEffectFilter : IUnknown
{
    // Copies the parameters out of the host's property set; the next frame uses them. No frame sees half of a change.
    // Every effect here takes an IDataPropertySet; it is not asked, so hand over no other object. No reference is kept.
    // S_OK also for a null property set (nothing changes) and whatever the set's GetData answers: bytes that a short or
    // failing GetData doesn't write keep their values (a convolution that gets none keeps its kernel, without its
    // divisor and offset).
    virtual HRESULT STDMETHODCALLTYPE SetPropertySet(IUnknown* propertySet) = 0;

    // Stores the effect's total length, in units of 100 ns; any value is taken. S_OK.
    virtual HRESULT STDMETHODCALLTYPE SetDuration(REFERENCE_TIME duration) = 0;
};
