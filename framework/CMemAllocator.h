// The allocator whose buffers lie in one block of memory.
#pragma once

#include "framework/CBaseAllocator.h"

#include <memory>

// Every buffer starts at a multiple of the alignment, with the prefix before it. The memory stays from one commit to
// the next as long as the properties do.
class CMemAllocator : public CBaseAllocator
{
public:
    CMemAllocator(LPCTSTR name, IUnknown* outer, HRESULT* result) noexcept;
    ~CMemAllocator() override;

    // For a factory template; null when there is no memory.
    static CUnknown* CALLBACK CreateInstance(IUnknown* outer, HRESULT* result) noexcept;

    // E_INVALIDARG for a negative size or count, VFW_E_BADALIGN for an alignment that is no power of two.
    HRESULT STDMETHODCALLTYPE SetProperties(ALLOCATOR_PROPERTIES* request,
                                            ALLOCATOR_PROPERTIES* actual) noexcept override;

protected:
    HRESULT Alloc() override;
    void Free() override;

private:
    void ReallyFree() noexcept;
    HRESULT MakeBuffers() noexcept;

    struct VirtualFreeDeleter
    {
        void operator()(BYTE* memory) const noexcept { VirtualFree(memory, 0, MEM_RELEASE); }
    };
    std::unique_ptr<BYTE, VirtualFreeDeleter> buffer;
};

// A new allocator with one reference, the caller's. E_OUTOFMEMORY.
HRESULT CreateMemoryAllocator(IMemAllocator** allocator) noexcept;
