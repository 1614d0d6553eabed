// The storage that copies of a GDIBitmap share.
#pragma once

#include "framework/Handles.h"
#include "framework/RefCount.h"

#include <windows.h>

#include <wrl/client.h>

#include <memory>

// Counted by the bitmaps that share it; only the count is thread-safe. The last Release gives bitmap and header back.
struct SharedBitmapData
{
    vixa::UniqueBitmap bitmap;    // null when empty
    std::unique_ptr<BYTE[]> info; // BITMAPINFOHEADER and colour table
    void* bits = nullptr;         // pixels of a DIB section, owned by `bitmap`; null for a device-compatible bitmap
    bool compatible = false;      // made for the screen without a bit depth
    vixa::RefCount references{1};

    // The record of an empty bitmap, with one reference. Never null: when memory is short, a record that the whole
    // process shares.
    static Microsoft::WRL::ComPtr<SharedBitmapData> MakeEmpty() noexcept;
    // Black storage as IBitmap::Create makes it; null on failure.
    static Microsoft::WRL::ComPtr<SharedBitmapData> Make(SIZE size, int bitCount) noexcept;
    // A copy of what a bitmap handle shows, at its own depth; null on failure. The handle stays the caller's.
    static Microsoft::WRL::ComPtr<SharedBitmapData> MakeFrom(HBITMAP source) noexcept;

    ULONG AddRef() noexcept { return references.Add(); }
    ULONG Release() noexcept;

    BITMAPINFO* Info() const noexcept { return reinterpret_cast<BITMAPINFO*>(info.get()); }
    // Colour table entries as the header has them; 0 without a header.
    int PaletteSize() const noexcept;
    // Hands the colour table to the DIB section, which keeps one of its own for blits from and to its handle.
    void GiveColorTable(HDC selected) const noexcept;

private:
    bool AllocateInfo(SIZE size, int bitCount) noexcept;
};
