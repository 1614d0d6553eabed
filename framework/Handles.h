// Owners for the platform's handles: one alias per kind, each released once by its deleter.
#pragma once

#include <windows.h>

#include <memory>
#include <type_traits>

namespace vixa {

template <auto Release>
struct HandleDeleter
{
    template <typename Handle>
    void operator()(Handle handle) const noexcept
    {
        Release(handle);
    }
};

template <typename Handle, auto Release>
using UniqueHandle = std::unique_ptr<std::remove_pointer_t<Handle>, HandleDeleter<Release>>;

using UniqueModule = UniqueHandle<HMODULE, FreeLibrary>;
using UniqueKey = UniqueHandle<HKEY, RegCloseKey>;
using UniqueMemoryDC = UniqueHandle<HDC, DeleteDC>;
using UniqueBitmap = UniqueHandle<HBITMAP, DeleteObject>;
using UniqueHook = UniqueHandle<HHOOK, UnhookWindowsHookEx>;
using UniqueGlobal = UniqueHandle<HGLOBAL, GlobalFree>;
using UniqueEvent = UniqueHandle<HANDLE, CloseHandle>;

// The screen's device context, given back rather than deleted.
struct ScreenDCDeleter
{
    void operator()(HDC dc) const noexcept { ReleaseDC(nullptr, dc); }
};
using UniqueScreenDC = std::unique_ptr<std::remove_pointer_t<HDC>, ScreenDCDeleter>;

} // namespace vixa
