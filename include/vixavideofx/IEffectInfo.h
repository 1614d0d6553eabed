// The catalogue: what a host can learn of an effect without creating its filter.
#pragma once

#include <vixavideofx/Compiler.h>

#include <unknwn.h>

VIXA_INTERFACE_ID(IEffectInfo, "194ADE67-AFBF-4A1F-9978-48B05CEFB083", 0x194ADE67, 0xAFBF, 0x4A1F, 0x99, 0x78, 0x48,
                  0xB0, 0x5C, 0xEF, 0xB0, 0x83);

// Reached with QueryInterface on an effect's class factory; answers QueryInterface(IID_IClassFactory) with that
// factory, or with a new one of the same effect when that is gone. Several requests lead to one object while it lives.
//
// Texts and pictures go by two calls: the first with a null buffer for the size, the second with a buffer of at least
// that size. Text lengths count characters with the terminator and are never read, so a text's buffer must be as long
// as the first call said; picture sizes count bytes, and are read as the buffer's capacity.
//
// Threads: any, but a panel from the thread that shows it; each thread may have panels. The last reference may be
// released on any thread, also inside a function of the host's that a call runs: the object lives until the call is
// over. The language is the whole library's: GetEffectName switches and answers in one step, and every text comes whole
// from one language. Where other threads switch meanwhile, a buffer for GetGroupName must hold every language's; 64
// characters do. Apartments: the classes are registered as "Both", so an object belongs to the apartment that made it.
// This interface and IEffectFilter have no marshaler and do not cross apartments: CoMarshalInterface fails for them.
// Within the rules above a thread may use the plain pointer.
//
// The numbers that are called the host's own are passed on as listed; the library gives them no meaning.
//
// Every operation answers S_OK, or E_INVALIDARG for a null pointer that it needs (ShowSettingsDialog: E_FAIL), or
// E_FAIL for what the effect does not have. E_OUTOFMEMORY is possible where texts and windows are made. QueryInterface
// answers E_POINTER without a place for the object.
struct IEffectInfo : IUnknown
{
    // A number of the host's own; 0 for every effect.
    virtual HRESULT STDMETHODCALLTYPE GetTypeCode(ULONG* code) = 0;

    // The group that the effect is listed in: 3 colour filters, 4 edges, 5 sharpness.
    virtual HRESULT STDMETHODCALLTYPE GetGroupId(ULONG* group) = 0;

    // The group's name in the library's current language. `buffer` or `length` may be null, not both. E_FAIL when the
    // language has no name for it. `ignored` is not looked at.
    virtual HRESULT STDMETHODCALLTYPE GetGroupName(ULONG ignored, WCHAR* buffer, ULONG* length) = 0;

    // A number of the host's own; 0 for every effect.
    virtual HRESULT STDMETHODCALLTYPE GetSubtypeCode(ULONG* code) = 0;

    // Switches the whole library, panels opened from now on included, to the low 16 bits of a Windows language
    // identifier, and gives the effect's name in it. A language without a file speaks English. `buffer` or `length` may
    // be null; when both are, nothing is switched. A name that the language lacks is empty: S_OK with a length of 1.
    virtual HRESULT STDMETHODCALLTYPE GetEffectName(ULONG language, WCHAR* buffer, ULONG* length) = 0;

    // The effect's icon, 36 x 34 pixels of 24 bits, as a packed bottom-up DIB of 3712 bytes. Without a buffer `*size`
    // receives the bytes; with one it holds the capacity and stays, and a buffer too small receives nothing (S_OK).
    // E_INVALIDARG without `size`.
    virtual HRESULT STDMETHODCALLTYPE GetIcon(BYTE* buffer, ULONG* size) = 0;

    // A second picture, by the same rules, with a number of the host's own; a buffer needs `value` as well. No effect
    // has one: E_FAIL.
    virtual HRESULT STDMETHODCALLTYPE GetSecondBitmap(BYTE* buffer, ULONG* size, ULONG* value) = 0;

    // Which property set the effect takes (vixavideofx::PropertySetKind): 1, a data block, for every effect.
    virtual HRESULT STDMETHODCALLTYPE GetPropertySetKind(ULONG* kind) = 0;

    // The description object of a parameter that is one number or one choice, with a reference that is the caller's.
    // Data blocks have none: S_OK and null.
    virtual HRESULT STDMETHODCALLTYPE GetPropertySetInfo(IUnknown** info) = 0;

    // Writes the effect's defaults into the host's property set (an IDataPropertySet) with one SetData; what that
    // answers is not passed on. The host then hands the set to its filter, and calls ShowSettingsDialog again if a
    // panel is open: until then the panel's controls are only in part where the defaults are ("Multiply pixel" goes to
    // 0 while the block holds 100, "Filter color" keeps its slider, "Shift edges" its boxes). The panel sends no
    // message.
    virtual HRESULT STDMETHODCALLTYPE SetDefaults(IUnknown* propertySet) = 0;

    // Opens the effect's settings panel as a hidden child window of `parent`, or takes the one that is open already,
    // and shows the property set's block in it; `*window` receives the panel, or null with E_FAIL when there can't be
    // one or the host destroys it meanwhile. An effect without settings has an empty panel. Every change (a drag when
    // it ends) is written to the set, and `parent` is sent `notifyMessage` with both parameters 0 (a reused panel keeps
    // its first message and parent). Neither the set nor the parent is owned: the set must outlive the panel or be
    // replaced by another call. The panel goes with its parent and may be destroyed before; released before its panel,
    // this object leaves it behind, hidden and without function.
    virtual HRESULT STDMETHODCALLTYPE ShowSettingsDialog(ULONG ignored, HWND parent, UINT notifyMessage,
                                                         IUnknown* propertySet, HWND* window) = 0;

    // A number of the host's own, by which it may order the effects of a group; effects may share one.
    virtual HRESULT STDMETHODCALLTYPE GetSortKey(ULONG* key) = 0;

    // 1.
    virtual HRESULT STDMETHODCALLTYPE GetVersion(ULONG* version) = 0;
};
