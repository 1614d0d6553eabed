// Linked into a copy of the library, this breaks one thing in it: the fault that VIXA_FAULT_... names. It takes effect
// when the module's static objects are made, by exchanging entries of virtual tables; the library's sources stay as
// they are. Never part of a product.
#include "effects/CAddPixel.h"

#include <vixavideofx/IEffectInfo.h>
#include <vixavideofx/PropertySets.h>

#include <windows.h>

#include <strmif.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>

// The functions below stand in for member functions and are called as these are.
#pragma GCC diagnostic ignored "-Wattributes"

#ifdef _WIN64
#define SYMBOL(name) name
#else
#define SYMBOL(name) "_" name
#endif

// Tables and operations of the library by their symbols. A table's first two entries aren't operations.
extern "C" {
extern void* infoTable[] __asm__(SYMBOL("_ZTVN23VixaVideoFXClassFactory10EffectInfoE"));
extern void* factoryTable[] __asm__(SYMBOL("_ZTV23VixaVideoFXClassFactory"));
extern void* convolutionTable[] __asm__(SYMBOL("_ZTV15CConvCorrection"));
extern void* invertPanelTable[] __asm__(SYMBOL("_ZTV13CDialogInvert"));
extern void* addTable[] __asm__(SYMBOL("_ZTV9CAddPixel"));
HRESULT __thiscall KernelTransform(void* self,
                                   IMediaSample* sample) __asm__(SYMBOL("_ZN12KernelEffect9TransformEP12IMediaSample"));
void __thiscall PanelDestroyed(void* self) __asm__(SYMBOL("_ZN8CBaseWnd9OnDestroyEv"));
}

namespace {

void Put(void** entry, void* function)
{
    DWORD before = 0;
    VirtualProtect(entry, sizeof *entry, PAGE_READWRITE, &before);
    *entry = function;
    VirtualProtect(entry, sizeof *entry, before, &before);
}

// The first entry that is `wanted`; a class's tables lie in a row, so a bounded search is enough.
[[maybe_unused]] void** Find(void** table, void* wanted)
{
    for (int i = 0; i < 200; ++i)
        if (table[i] == wanted)
            return &table[i];
    std::abort(); // the library has changed, and this fault with it
}

[[maybe_unused]] void Exchange(void** table, void* from, void* to)
{
    Put(Find(table, from), to);
}

// SetPropertySet in the table by which CAddPixel serves IEffectFilter: the fourth operation. That table begins with how
// far back the object begins.
[[maybe_unused]] void** SetPropertySetEntry()
{
    auto* const object = reinterpret_cast<CAddPixel*>(0x10000);
    const auto back =
        reinterpret_cast<INT_PTR>(object) - reinterpret_cast<INT_PTR>(static_cast<IEffectFilter*>(object));
    return Find(addTable, reinterpret_cast<void*>(back)) + 2 + 3;
}

// An operation of the catalogue object by its place in the interface.
[[maybe_unused]] void** Slot(int slot)
{
    return &infoTable[2 + slot];
}

template <typename Function>
[[maybe_unused]] Function* Old(void* entry)
{
    return reinterpret_cast<Function*>(entry);
}

enum : int
{
    GetTypeCode = 3,
    GetGroupId = 4,
    GetEffectName = 7,
    GetIcon = 8,
    SetDefaults = 12,
    ShowSettingsDialog = 13,
    GetVersion = 15,
};

[[maybe_unused]] void* old = nullptr;

#if defined(VIXA_FAULT_SLOTS)

void Break()
{
    void* const first = *Slot(GetTypeCode);
    Put(Slot(GetTypeCode), *Slot(GetGroupId));
    Put(Slot(GetGroupId), first);
}

#elif defined(VIXA_FAULT_LEAK)

using Query = HRESULT STDMETHODCALLTYPE(IUnknown*, REFIID, void**);
HRESULT STDMETHODCALLTYPE LeakingQuery(IUnknown* self, REFIID riid, void** object)
{
    const HRESULT result = Old<Query>(old)(self, riid, object);
    if (SUCCEEDED(result) && riid == IID_IEffectInfo)
        static_cast<IUnknown*>(*object)->AddRef();
    return result;
}
void Break()
{
    old = factoryTable[2];
    Put(&factoryTable[2], reinterpret_cast<void*>(LeakingQuery));
}

#elif defined(VIXA_FAULT_ICON)

using Icon = HRESULT STDMETHODCALLTYPE(IUnknown*, BYTE*, ULONG*);
HRESULT STDMETHODCALLTYPE LongIcon(IUnknown* self, BYTE* buffer, ULONG* size)
{
    const HRESULT result = Old<Icon>(old)(self, buffer, size);
    if (!buffer && size)
        *size += 2; // a bitmap file's header would be added so
    return result;
}
void Break()
{
    old = *Slot(GetIcon);
    Put(Slot(GetIcon), reinterpret_cast<void*>(LongIcon));
}

#elif defined(VIXA_FAULT_BORDER)

HRESULT __thiscall Bordered(void* self, IMediaSample* sample)
{
    const HRESULT result = KernelTransform(self, sample);
    BYTE* bytes = nullptr;
    if (SUCCEEDED(sample->GetPointer(&bytes)) && bytes && sample->GetActualDataLength() >= 8)
        bytes[4] = 1;
    return result;
}
void Break()
{
    Exchange(convolutionTable, reinterpret_cast<void*>(KernelTransform), reinterpret_cast<void*>(Bordered));
}

#elif defined(VIXA_FAULT_OVERRUN)

HRESULT __thiscall Overrun(void* self, IMediaSample* sample)
{
    const HRESULT result = KernelTransform(self, sample);
    BYTE* bytes = nullptr;
    if (SUCCEEDED(sample->GetPointer(&bytes)) && bytes)
        bytes[sample->GetSize()] = 0;
    return result;
}
void Break()
{
    Exchange(addTable, reinterpret_cast<void*>(KernelTransform), reinterpret_cast<void*>(Overrun));
}

#elif defined(VIXA_FAULT_TIMES)

HRESULT __thiscall Retimed(void* self, IMediaSample* sample)
{
    REFERENCE_TIME start = 0, end = 1;
    sample->SetTime(&start, &end);
    return KernelTransform(self, sample);
}
void Break()
{
    Exchange(addTable, reinterpret_cast<void*>(KernelTransform), reinterpret_cast<void*>(Retimed));
}

#elif defined(VIXA_FAULT_NULL)

using Setting = HRESULT STDMETHODCALLTYPE(void*, IUnknown*);
HRESULT STDMETHODCALLTYPE Trusting(void* self, IUnknown* set)
{
    set->AddRef();
    set->Release();
    return Old<Setting>(old)(self, set);
}
void Break()
{
    old = *SetPropertySetEntry();
    Put(SetPropertySetEntry(), reinterpret_cast<void*>(Trusting));
}

#elif defined(VIXA_FAULT_HANG)

using Setting = HRESULT STDMETHODCALLTYPE(void*, IUnknown*);
HRESULT STDMETHODCALLTYPE Patient(void* self, IUnknown* set)
{
    alignas(8) char block[1 << 17];
    int size = 0;
    while (set && FAILED(static_cast<IDataPropertySet*>(set)->GetData(block, &size)))
        Sleep(1);
    return Old<Setting>(old)(self, set);
}
void Break()
{
    old = *SetPropertySetEntry();
    Put(SetPropertySetEntry(), reinterpret_cast<void*>(Patient));
}

#elif defined(VIXA_FAULT_DEFAULT)

using Defaults = HRESULT STDMETHODCALLTYPE(IUnknown*, IUnknown*);
HRESULT STDMETHODCALLTYPE ShiftedDefaults(IUnknown* self, IUnknown* set)
{
    const HRESULT result = Old<Defaults>(old)(self, set);
    std::int32_t block[4] = {};
    int size = 0;
    auto* const data = static_cast<IDataPropertySet*>(set);
    if (SUCCEEDED(result) && SUCCEEDED(data->GetData(block, &size)) && size == 4 && block[0] == 2) {
        block[0] = 3; // "Emboss" gets the kind of "Enhance details"
        data->SetData(block, size);
    }
    return result;
}
void Break()
{
    old = *Slot(SetDefaults);
    Put(Slot(SetDefaults), reinterpret_cast<void*>(ShiftedDefaults));
}

#elif defined(VIXA_FAULT_SILENT)

using Dialog = HRESULT STDMETHODCALLTYPE(IUnknown*, ULONG, HWND, UINT, IUnknown*, HWND*);
HRESULT STDMETHODCALLTYPE SilentDialog(IUnknown* self, ULONG ignored, HWND parent, UINT, IUnknown* set, HWND* window)
{
    return Old<Dialog>(old)(self, ignored, parent, 0, set, window);
}
void Break()
{
    old = *Slot(ShowSettingsDialog);
    Put(Slot(ShowSettingsDialog), reinterpret_cast<void*>(SilentDialog));
}

#elif defined(VIXA_FAULT_DESTROY)

// Inside a window procedure, where the system may swallow it.
void __thiscall Faulting(void* self)
{
    PanelDestroyed(self);
    static volatile int* nowhere = nullptr;
    *nowhere = 0; // cppcheck-suppress nullPointer // the fault
}
void Break()
{
    Exchange(invertPanelTable, reinterpret_cast<void*>(PanelDestroyed), reinterpret_cast<void*>(Faulting));
}

#elif defined(VIXA_FAULT_LANGUAGE)

using Name = HRESULT STDMETHODCALLTYPE(IUnknown*, ULONG, WCHAR*, ULONG*);
HRESULT STDMETHODCALLTYPE SwappedName(IUnknown* self, ULONG language, WCHAR* text, ULONG* length)
{
    return Old<Name>(old)(self, language == 0x0407 ? 0x040C : language, text, length); // French for German
}
void Break()
{
    old = *Slot(GetEffectName);
    Put(Slot(GetEffectName), reinterpret_cast<void*>(SwappedName));
}

#elif defined(VIXA_FAULT_TEXT_END)

using Name = HRESULT STDMETHODCALLTYPE(IUnknown*, ULONG, WCHAR*, ULONG*);
HRESULT STDMETHODCALLTYPE Unterminated(IUnknown* self, ULONG language, WCHAR* text, ULONG* length)
{
    const HRESULT result = Old<Name>(old)(self, language, text, length);
    if (length && *length > 0 && language == 0x040D)
        --*length; // in a language without a file, the terminator is written and not counted
    return result;
}
void Break()
{
    old = *Slot(GetEffectName);
    Put(Slot(GetEffectName), reinterpret_cast<void*>(Unterminated));
}

#elif defined(VIXA_FAULT_FLOOD) || defined(VIXA_FAULT_STATUS)

// To whoever listens: the library looks for the report of the checks among the open handles.
void Say(const char* text)
{
    for (UINT_PTR handle = 4; handle < 4096; handle += 4)
        if (DWORD written = 0; GetFileType(reinterpret_cast<HANDLE>(handle)) == FILE_TYPE_PIPE)
            WriteFile(reinterpret_cast<HANDLE>(handle), text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
}
HRESULT STDMETHODCALLTYPE TellingVersion(IUnknown*, ULONG* version)
{
#if defined(VIXA_FAULT_FLOOD)
    char line[5000];
    std::memset(line, '!', sizeof line - 1);
    for (line[sizeof line - 1] = '\0';;)
        Say(line); // it has no end
#endif
    Say("0123456789abcdef 9 1 4 7 all is well\n");
    *version = 1;
    return S_OK;
}
void Break()
{
    Put(Slot(GetVersion), reinterpret_cast<void*>(TellingVersion));
}

#elif defined(VIXA_FAULT_REPEAT) || defined(VIXA_FAULT_FORGE)

// Between the host and its report: each line is written twice, or a failure becomes a success.
using Writing = BOOL WINAPI(HANDLE, const void*, DWORD, DWORD*, OVERLAPPED*);
BOOL WINAPI Meddling(HANDLE file, const void* data, DWORD size, DWORD* written, OVERLAPPED* overlapped)
{
    char line[4096] = {};
    std::memcpy(line, data, size < sizeof line ? size : sizeof line - 1);
#if defined(VIXA_FAULT_FORGE)
    if (char* const failure = std::strstr(line, " 1 4 3 "))
        failure[5] = '0';
#else
    Old<Writing>(old)(file, line, size, written, overlapped);
#endif
    return Old<Writing>(old)(file, line, size, written, overlapped);
}
HRESULT STDMETHODCALLTYPE MeddlingVersion(IUnknown*, ULONG* version)
{
    auto* const host = reinterpret_cast<BYTE*>(GetModuleHandleW(nullptr));
    const auto* const headers =
        reinterpret_cast<IMAGE_NT_HEADERS*>(host + reinterpret_cast<IMAGE_DOS_HEADER*>(host)->e_lfanew);
    const auto& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IAT];
    old = reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "WriteFile"));
    for (auto** entry = reinterpret_cast<void**>(host + imports.VirtualAddress);
         reinterpret_cast<BYTE*>(entry) < host + imports.VirtualAddress + imports.Size; ++entry)
        if (*entry == old)
            Put(entry, reinterpret_cast<void*>(Meddling));
#if defined(VIXA_FAULT_FORGE)
    *version = 2;
#else
    *version = 1;
#endif
    return S_OK;
}
void Break()
{
    Put(Slot(GetVersion), reinterpret_cast<void*>(MeddlingVersion));
}

#else // the fault is in the table of exports

void Break() {}

#endif

const struct Breaker
{
    Breaker() { Break(); }
} breaker;

} // namespace

// For a table of exports that names it instead of the library's own.
extern "C" HRESULT WINAPI AlwaysUnload()
{
    return S_OK;
}
