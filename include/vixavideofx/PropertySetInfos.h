// Description objects: from these a host builds its own control for a parameter of kind SingleValue or SingleEnum. Any
// thread may use them, texts by the rules of IEffectInfo.
#pragma once

#include <vixavideofx/Compiler.h>

#include <unknwn.h>

VIXA_INTERFACE_ID(ISingleValuePropertySetInfo, "333C3010-D31F-4861-B1A6-3F066F7ECBAB", 0x333C3010, 0xD31F, 0x4861, 0xB1,
                  0xA6, 0x3F, 0x06, 0x6F, 0x7E, 0xCB, 0xAB);
VIXA_INTERFACE_ID(ISingleEnumPropertySetInfo, "0C36C773-38DF-49C8-A535-A0B0B1B601DA", 0x0C36C773, 0x38DF, 0x49C8, 0xA5,
                  0x35, 0xA0, 0xB0, 0xB1, 0xB6, 0x01, 0xDA);

// Texts are answered in the library's current language only: any other `language` gives E_FAIL and writes nothing; no
// place for the answer gives E_INVALIDARG, short memory E_OUTOFMEMORY. Texts and pictures go by two calls, the first
// with a null buffer for the size. A text's `*length` is never read on entry. A picture's `*size` is the buffer's
// capacity: what does not fit is not copied (S_OK).
struct ISingleValuePropertySetInfo : IUnknown
{
    // Any of the three may be null; all null: E_INVALIDARG.
    virtual HRESULT STDMETHODCALLTYPE GetRange(double* minimum, double* maximum, double* step) = 0;
    // The text of a value; `*length` becomes 0 for a parameter whose values have no text.
    virtual HRESULT STDMETHODCALLTYPE FormatValue(LANGID language, double value, WCHAR* text, ULONG* length) = 0;
    // The parameter's picture as a packed DIB; a buffer without a size, or neither: E_INVALIDARG; no picture: E_FAIL.
    virtual HRESULT STDMETHODCALLTYPE GetImage(BYTE* buffer, ULONG* size) = 0;
    // The parameter's name; a missing one is empty: a length of 1.
    virtual HRESULT STDMETHODCALLTYPE GetName(LANGID language, WCHAR* text, ULONG* length) = 0;
};

struct ISingleEnumPropertySetInfo : IUnknown
{
    // E_INVALIDARG without `count`.
    virtual HRESULT STDMETHODCALLTYPE GetCount(ULONG* count) = 0;
    // The name of choice `index`, counted from 0; no such choice: E_INVALIDARG.
    virtual HRESULT STDMETHODCALLTYPE GetItemName(LANGID language, long index, WCHAR* text, ULONG* length) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetImage(BYTE* buffer, ULONG* size) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetName(LANGID language, WCHAR* text, ULONG* length) = 0;
};
