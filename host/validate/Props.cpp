#include "host/validate/Props.h"

#include <vfwmsgs.h>

#include <new>

namespace vixahost::validate {

GuardedMemory::GuardedMemory(std::size_t size, Guard guard) : length(size)
{
    constexpr std::size_t page = 4096;
    const std::size_t room = size == 0 ? page : (size + page - 1) / page * page;
    base = static_cast<std::uint8_t*>(VirtualAlloc(nullptr, room + 2 * page, MEM_RESERVE, PAGE_NOACCESS));
    if (!base || !VirtualAlloc(base + page, room, MEM_COMMIT, PAGE_READWRITE))
        throw std::bad_alloc();
    start = guard == Guard::Before ? base + page : base + page + room - size;
}

GuardedMemory::~GuardedMemory()
{
    VirtualFree(base, 0, MEM_RELEASE);
}

HRESULT RecordedSet::QueryInterface(REFIID riid, void** object) noexcept
{
    ++queries;
    *object = nullptr;
    if (riid != IID_IUnknown)
        return E_NOINTERFACE;
    AddRef();
    *object = static_cast<IUnknown*>(this);
    return S_OK;
}

HRESULT RecordedSet::GetData(void* buffer, int* size) noexcept
{
    ++reads;
    if (answer)
        return answer(buffer, size);
    if (block.empty())
        return E_FAIL;
    std::memcpy(buffer, block.data(), block.size() * sizeof(std::int32_t));
    *size = static_cast<int>(block.size() * sizeof(std::int32_t));
    return S_OK;
}

HRESULT RecordedSet::SetData(const void* data, int size) noexcept
{
    ++writes;
    lastSize = size;
    if (size < 0 || size > 4096)
        return E_INVALIDARG;
    block.assign(static_cast<std::size_t>(size + 3) / sizeof(std::int32_t), 0);
    std::memcpy(block.data(), data, static_cast<std::size_t>(size));
    return S_OK;
}

HRESULT HandSample::QueryInterface(REFIID riid, void** object) noexcept
{
    const bool known = riid == IID_IUnknown || riid == IID_IMediaSample;
    *object = known ? this : nullptr;
    if (known)
        AddRef();
    return known ? S_OK : E_NOINTERFACE;
}

HRESULT HandSample::GetPointer(BYTE** pointer) noexcept
{
    *pointer = bytes;
    return pointerResult;
}

HRESULT HandSample::GetTime(REFERENCE_TIME* from, REFERENCE_TIME* to) noexcept
{
    *from = start;
    *to = end;
    return S_OK;
}

HRESULT HandSample::GetMediaType(AM_MEDIA_TYPE** type) noexcept
{
    *type = nullptr;
    return S_FALSE;
}

HRESULT HandSample::GetMediaTime(LONGLONG* from, LONGLONG* to) noexcept
{
    *from = *to = 0;
    return VFW_E_MEDIA_TIME_NOT_SET;
}

} // namespace vixahost::validate
