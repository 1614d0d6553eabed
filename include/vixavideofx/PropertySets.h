// Property sets: objects that the host implements and owns, and that hold an effect's parameters. The library calls
// them through the pointer it is given and never asks for them with QueryInterface, so they need no identifier. It
// calls on the thread on which the host called it, and panels on the thread that runs their window. It keeps no
// reference; an open panel keeps the pointer.
#pragma once

#include <unknwn.h>

// A block of bytes whose layout belongs to the effect (DataBlocks.h). The set copies it and never looks into it.
struct IDataPropertySet : IUnknown
{
    // Copies the whole stored block to `buffer` and its length in bytes to `*size`, which is not read. A failure code
    // when there is nothing to copy. This library gives 64 KiB of room, of which it takes what its effect's block
    // needs.
    virtual HRESULT STDMETHODCALLTYPE GetData(void* buffer, int* size) = 0;

    // Replaces the stored block by `size` bytes from `data`. What it answers is not looked at.
    virtual HRESULT STDMETHODCALLTYPE SetData(const void* data, int size) = 0;
};

// One number.
struct ISingleValuePropertySet : IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetValue(double* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetValue(double value) = 0;
};

// One choice out of a list, counted from 0.
struct ISingleEnumPropertySet : IUnknown
{
    virtual HRESULT STDMETHODCALLTYPE GetValue(long* index) = 0;
    virtual HRESULT STDMETHODCALLTYPE SetValue(long index) = 0;
};
