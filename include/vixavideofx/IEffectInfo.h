// The catalogue: what a host can learn of an effect without creating its filter.
#pragma once

#include <unknwn.h>

inline constexpr IID IID_IEffectInfo = {0x194ADE67, 0xAFBF, 0x4A1F, {0x99, 0x78, 0x48, 0xB0, 0x5C, 0xEF, 0xB0, 0x83}};

// Reached with QueryInterface on an effect's class factory, and answers QueryInterface(IID_IClassFactory) with that
// factory.
//
// Texts and pictures go by two calls: the first with a null buffer answers the size (texts: characters with the
// terminator; pictures: bytes of a packed DIB), the second takes a buffer of at least that size.
struct IEffectInfo : IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetTypeCode(ULONG* code) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetGroupId(ULONG* group) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetGroupName(ULONG ignored, WCHAR* buffer, ULONG* length) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSubtypeCode(ULONG* code) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetEffectName(ULONG language, WCHAR* buffer, ULONG* length) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetIcon(BYTE* buffer, ULONG* size) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSecondBitmap(BYTE* buffer, ULONG* size, ULONG* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPropertySetKind(ULONG* kind) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetPropertySetInfo(IUnknown** info) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetDefaults(IUnknown* propertySet) = 0;
    virtual HRESULT STDMETHODCALLTYPE ShowSettingsDialog(ULONG ignored, HWND parent, UINT notifyMessage,
                                                         IUnknown* propertySet, HWND* window) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetSortKey(ULONG* key) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetVersion(ULONG* version) = 0;
};

#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(IEffectInfo, 0x194ADE67, 0xAFBF, 0x4A1F, 0x99, 0x78, 0x48, 0xB0, 0x5C, 0xEF, 0xB0, 0x83)
#endif
