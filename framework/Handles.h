// Owners for the platform's handles: one type per kind, so that none is taken for another, each given back once.
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
using UniqueFont = UniqueHandle<HFONT, DeleteObject>;
using UniqueHook = UniqueHandle<HHOOK, UnhookWindowsHookEx>;
using UniqueGlobal = UniqueHandle<HGLOBAL, GlobalFree>;

// The kernel's objects all have the same handle and the same end; only the kind tells their owners apart.
template <typename Kind>
struct KernelObjectDeleter
{
    void operator()(HANDLE handle) const noexcept { CloseHandle(handle); }
};

template <typename Kind>
using UniqueKernelObject = std::unique_ptr<void, KernelObjectDeleter<Kind>>;

using UniqueEvent = UniqueKernelObject<struct EventKind>;
using UniqueSemaphore = UniqueKernelObject<struct SemaphoreKind>;
using UniqueThread = UniqueKernelObject<struct ThreadKind>;
using UniqueProcess = UniqueKernelObject<struct ProcessKind>;
using UniqueToken = UniqueKernelObject<struct TokenKind>;
using UniquePipe = UniqueKernelObject<struct PipeKind>;
using UniqueFile = UniqueKernelObject<struct FileKind>;

// What CreateFile and its like answer: they say INVALID_HANDLE_VALUE for no handle, the owner holds null then.
template <typename Owner = UniqueFile>
Owner Opened(HANDLE handle) noexcept
{
    return Owner(handle == INVALID_HANDLE_VALUE ? nullptr : handle);
}

// A device context of a window, or of the screen when there is none: given back rather than deleted.
struct WindowDCDeleter
{
    HWND window = nullptr;
    void operator()(HDC dc) const noexcept { ReleaseDC(window, dc); }
};
using UniqueWindowDC = std::unique_ptr<std::remove_pointer_t<HDC>, WindowDCDeleter>;
using UniqueScreenDC = UniqueWindowDC;

} // namespace vixa
