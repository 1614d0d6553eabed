// Description objects: from these a host builds its own control for a parameter of kind SingleValue or SingleEnum.
#pragma once

#include <unknwn.h>

inline constexpr IID IID_ISingleValuePropertySetInfo = {
    0x333C3010, 0xD31F, 0x4861, {0xB1, 0xA6, 0x3F, 0x06, 0x6F, 0x7E, 0xCB, 0xAB}};
inline constexpr IID IID_ISingleEnumPropertySetInfo = {
    0x0C36C773, 0x38DF, 0x49C8, {0xA5, 0x35, 0xA0, 0xB0, 0xB1, 0xB6, 0x01, 0xDA}};

// Texts are answered in the library's current language only: any other `language` gives E_FAIL and writes nothing.
// Texts and pictures go by two calls, the first with a null buffer for the size; a text's `*length` is never read on
// entry.
struct ISingleValuePropertySetInfo : IUnknown
{
    // Any of the three may be null; all null: E_INVALIDARG.
    virtual HRESULT STDMETHODCALLTYPE GetRange(double* minimum, double* maximum, double* step) = 0;
    // The text of a value; `*length` becomes 0 for a parameter whose values have no text.
    virtual HRESULT STDMETHODCALLTYPE FormatValue(LANGID language, double value, WCHAR* text, ULONG* length) = 0;
    // The parameter's picture as a packed DIB; a buffer without a size, or neither: E_INVALIDARG; no picture: E_FAIL.
    virtual HRESULT STDMETHODCALLTYPE GetImage(BYTE* buffer, ULONG* size) = 0;
    // The parameter's name; both pointers null: E_INVALIDARG.
    virtual HRESULT STDMETHODCALLTYPE GetName(LANGID language, WCHAR* text, ULONG* length) = 0;
};

struct ISingleEnumPropertySetInfo : IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetCount(ULONG* count) = 0;
    // The name of choice `index`; negative or not below the count: E_INVALIDARG.
    virtual HRESULT STDMETHODCALLTYPE GetItemName(LANGID language, long index, WCHAR* text, ULONG* length) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetImage(BYTE* buffer, ULONG* size) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetName(LANGID language, WCHAR* text, ULONG* length) = 0;
};

#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(ISingleValuePropertySetInfo, 0x333C3010, 0xD31F, 0x4861, 0xB1, 0xA6, 0x3F, 0x06, 0x6F, 0x7E, 0xCB, 0xAB)
__CRT_UUID_DECL(ISingleEnumPropertySetInfo, 0x0C36C773, 0x38DF, 0x49C8, 0xA5, 0x35, 0xA0, 0xB0, 0xB1, 0xB6, 0x01, 0xDA)
#endif
