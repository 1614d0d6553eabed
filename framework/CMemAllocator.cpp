#include "framework/CMemAllocator.h"

#include <algorithm>

CMemAllocator::CMemAllocator(LPCTSTR name, IUnknown* outer, HRESULT* result) noexcept
    : CBaseAllocator(name, outer, result)
{
}

// Every sample that is out holds a reference, so all are at home here.
CMemAllocator::~CMemAllocator()
{
    ReallyFree();
}

CUnknown* CALLBACK CMemAllocator::CreateInstance(IUnknown* outer, HRESULT* result) noexcept
{
    return new (std::nothrow) CMemAllocator(nullptr, outer, result);
}

HRESULT CMemAllocator::SetProperties(ALLOCATOR_PROPERTIES* request, ALLOCATOR_PROPERTIES* actual) noexcept
{
    if (!request || !actual)
        return E_POINTER;
    const LONG alignment = request->cbAlign;
    if (alignment <= 0 || (alignment & (alignment - 1)) != 0)
        return VFW_E_BADALIGN;
    return CBaseAllocator::SetProperties(request, actual);
}

HRESULT CMemAllocator::Alloc()
{
    const HRESULT result = CBaseAllocator::Alloc();
    if (FAILED(result))
        return result;
    if (result == S_FALSE)
        return buffer ? S_OK : VFW_E_SIZENOTSET;
    ReallyFree();
    const HRESULT made = MakeBuffers();
    if (FAILED(made)) {
        ReallyFree();
        return made;
    }
    m_bChanged = false;
    return S_OK;
}

// The memory waits for the next commit.
void CMemAllocator::Free() {}

HRESULT CMemAllocator::MakeBuffers() noexcept
{
    const auto roundUp = [this](ULONGLONG bytes) {
        const auto alignment = static_cast<ULONGLONG>(m_lAlignment);
        return (bytes + alignment - 1) / alignment * alignment;
    };
    const ULONGLONG prefix = roundUp(static_cast<ULONGLONG>(m_lPrefix));
    const ULONGLONG stride = roundUp(static_cast<ULONGLONG>(m_lPrefix) + static_cast<ULONGLONG>(m_lSize));
    // Memory comes at page boundaries; room for a wider alignment is in the additional one.
    const auto count = static_cast<ULONGLONG>(m_lCount);
    const ULONGLONG total = prefix + static_cast<ULONGLONG>(m_lAlignment);
    if (stride > (static_cast<ULONGLONG>(MAXLONG) - std::min(total, static_cast<ULONGLONG>(MAXLONG))) / count)
        return E_OUTOFMEMORY;
    buffer.reset(static_cast<BYTE*>(
        VirtualAlloc(nullptr, static_cast<SIZE_T>(total + stride * count), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)));
    if (!buffer)
        return E_OUTOFMEMORY;
    const ULONGLONG address = reinterpret_cast<ULONG_PTR>(buffer.get());
    BYTE* next = buffer.get() + static_cast<SIZE_T>(roundUp(address) - address + prefix);
    for (; m_lAllocated < m_lCount; ++m_lAllocated, next += static_cast<SIZE_T>(stride)) {
        auto* const sample = new (std::nothrow) CMediaSample(this, next, m_lSize);
        if (!sample)
            return E_OUTOFMEMORY;
        PutFree(sample);
    }
    return S_OK;
}

void CMemAllocator::ReallyFree() noexcept
{
    while (const std::unique_ptr<CMediaSample> sample{TakeFree()}) {
    }
    m_lAllocated = 0;
    buffer.reset();
}

HRESULT CreateMemoryAllocator(IMemAllocator** allocator) noexcept
{
    *allocator = nullptr;
    HRESULT result = S_OK;
    CUnknown* const created = CMemAllocator::CreateInstance(nullptr, &result);
    if (!created)
        return E_OUTOFMEMORY;
    created->NonDelegatingAddRef();
    if (SUCCEEDED(result))
        result = created->NonDelegatingQueryInterface(IID_IMemAllocator, reinterpret_cast<void**>(allocator));
    created->NonDelegatingRelease();
    return result;
}
