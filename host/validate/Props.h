// What the checks hand to the library: memory between inaccessible pages, property sets and samples that do as they are
// told and keep a record.
#pragma once

#include <vixavideofx/PropertySets.h>

#include <strmif.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <span>
#include <vector>

namespace vixahost::validate {

// Memory that lies directly against an inaccessible page: one byte too far ends the process.
class GuardedMemory
{
public:
    enum class Guard
    {
        Before,
        Behind
    };
    GuardedMemory(std::size_t size, Guard guard);
    ~GuardedMemory();
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    std::span<std::uint8_t> Bytes() const noexcept { return {start, length}; }

private:
    std::uint8_t *base, *start;
    std::size_t length;
};

// A property set on the checker's stack; references are counted and own nothing.
class RecordedSet final : public IDataPropertySet
{
public:
    explicit RecordedSet(std::span<const std::int32_t> values = {}) : block(values.begin(), values.end()) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return --references; }
    HRESULT STDMETHODCALLTYPE GetData(void* buffer, int* size) noexcept override;
    HRESULT STDMETHODCALLTYPE SetData(const void* data, int size) noexcept override;

    std::vector<std::int32_t> block;
    std::function<HRESULT(void*, int*)> answer; // stands in for GetData
    ULONG references = 1;
    int reads = 0, writes = 0, queries = 0, lastSize = -1;
};

// A sample over memory of the checker's, with any lengths.
class HandSample final : public IMediaSample
{
public:
    HandSample() = default;
    explicit HandSample(std::span<std::uint8_t> memory)
        : bytes(memory.data()), size(static_cast<long>(memory.size())), length(size)
    {
    }
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return --references; }
    HRESULT STDMETHODCALLTYPE GetPointer(BYTE** pointer) noexcept override;
    long STDMETHODCALLTYPE GetSize() noexcept override { return size; }
    HRESULT STDMETHODCALLTYPE GetTime(REFERENCE_TIME* from, REFERENCE_TIME* to) noexcept override;
    HRESULT STDMETHODCALLTYPE SetTime(REFERENCE_TIME*, REFERENCE_TIME*) noexcept override { return Changed(); }
    HRESULT STDMETHODCALLTYPE IsSyncPoint() noexcept override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetSyncPoint(BOOL) noexcept override { return Changed(); }
    HRESULT STDMETHODCALLTYPE IsPreroll() noexcept override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE SetPreroll(BOOL) noexcept override { return Changed(); }
    long STDMETHODCALLTYPE GetActualDataLength() noexcept override { return length; }
    HRESULT STDMETHODCALLTYPE SetActualDataLength(long) noexcept override { return Changed(); }
    HRESULT STDMETHODCALLTYPE GetMediaType(AM_MEDIA_TYPE** type) noexcept override;
    HRESULT STDMETHODCALLTYPE SetMediaType(AM_MEDIA_TYPE*) noexcept override { return Changed(); }
    HRESULT STDMETHODCALLTYPE IsDiscontinuity() noexcept override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE SetDiscontinuity(BOOL) noexcept override { return Changed(); }
    HRESULT STDMETHODCALLTYPE GetMediaTime(LONGLONG* from, LONGLONG* to) noexcept override;
    HRESULT STDMETHODCALLTYPE SetMediaTime(LONGLONG*, LONGLONG*) noexcept override { return Changed(); }

    BYTE* bytes = nullptr;
    long size = 0;   // of the buffer
    long length = 0; // of the data in it
    HRESULT pointerResult = S_OK;
    REFERENCE_TIME start = 1234, end = 5678;
    int changes = 0; // how often somebody altered anything but the bytes
    ULONG references = 1;

private:
    HRESULT Changed() noexcept
    {
        ++changes;
        return S_OK;
    }
};

} // namespace vixahost::validate
