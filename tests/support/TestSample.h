// A media sample of the test's own over any memory, with any lengths: what a foreign filter may hand to an effect.
#pragma once

#include <strmif.h>
#include <vfwmsgs.h>

#include <cstdint>
#include <optional>
#include <span>

namespace test {

class TestSample final : public IMediaSample
{
public:
    TestSample() = default;
    explicit TestSample(std::span<std::uint8_t> memory)
        : bytes(memory.data()), size(static_cast<long>(memory.size())), length(size)
    {
    }

    STDMETHODIMP QueryInterface(REFIID riid, void** object) noexcept override
    {
        const bool known = riid == IID_IUnknown || riid == IID_IMediaSample;
        *object = known ? this : nullptr;
        if (known)
            AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() noexcept override { return ++references; }
    STDMETHODIMP_(ULONG) Release() noexcept override { return --references; }
    STDMETHODIMP GetPointer(BYTE** pointer) noexcept override
    {
        *pointer = bytes;
        return pointerResult;
    }
    STDMETHODIMP_(long) GetSize() noexcept override { return size; }
    STDMETHODIMP GetTime(REFERENCE_TIME* from, REFERENCE_TIME* to) noexcept override
    {
        *from = start;
        *to = end;
        return S_OK;
    }
    STDMETHODIMP SetTime(REFERENCE_TIME* from, REFERENCE_TIME* to) noexcept override
    {
        ++changes;
        start = from ? *from : 0;
        end = to ? *to : 0;
        return S_OK;
    }
    STDMETHODIMP IsSyncPoint() noexcept override { return S_OK; }
    STDMETHODIMP SetSyncPoint(BOOL) noexcept override { return ++changes, S_OK; }
    STDMETHODIMP IsPreroll() noexcept override { return S_FALSE; }
    STDMETHODIMP SetPreroll(BOOL) noexcept override { return ++changes, S_OK; }
    STDMETHODIMP_(long) GetActualDataLength() noexcept override { return length; }
    STDMETHODIMP SetActualDataLength(long newLength) noexcept override
    {
        ++changes;
        length = newLength;
        return S_OK;
    }
    STDMETHODIMP GetMediaType(AM_MEDIA_TYPE** type) noexcept override
    {
        *type = nullptr;
        return S_FALSE;
    }
    STDMETHODIMP SetMediaType(AM_MEDIA_TYPE*) noexcept override { return ++changes, S_OK; }
    STDMETHODIMP IsDiscontinuity() noexcept override { return S_FALSE; }
    STDMETHODIMP SetDiscontinuity(BOOL) noexcept override { return ++changes, S_OK; }
    STDMETHODIMP GetMediaTime(LONGLONG* from, LONGLONG* to) noexcept override
    {
        *from = *to = 0;
        return VFW_E_MEDIA_TIME_NOT_SET;
    }
    STDMETHODIMP SetMediaTime(LONGLONG*, LONGLONG*) noexcept override { return ++changes, S_OK; }

    BYTE* bytes = nullptr;
    long size = 0;   // of the buffer
    long length = 0; // actual data
    HRESULT pointerResult = S_OK;
    REFERENCE_TIME start = 0, end = 400'000;
    int changes = 0; // times that somebody altered anything but the bytes
    ULONG references = 1;
};

} // namespace test
