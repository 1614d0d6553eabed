// A media sample: a buffer of an allocator with its times, flags and type.
#pragma once

#include "framework/CMediaType.h"
#include "framework/RefCount.h"

class CBaseAllocator;

// Made and owned by an allocator. The last Release does not destroy it but hands it back to the allocator.
class CMediaSample : public IMediaSample2
{
    friend class CBaseAllocator;
    friend class CMemAllocator;

public:
    CMediaSample(CBaseAllocator* allocator, BYTE* buffer, LONG length) noexcept;
    CMediaSample(const CMediaSample&) = delete;
    CMediaSample& operator=(const CMediaSample&) = delete;
    virtual ~CMediaSample();

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override;

    // IMediaSample. Null out pointers get E_POINTER.
    HRESULT STDMETHODCALLTYPE GetPointer(BYTE** buffer) noexcept override;
    LONG STDMETHODCALLTYPE GetSize() noexcept override;
    // VFW_S_NO_STOP_TIME (stop = start + 1) when only the start is set, VFW_E_SAMPLE_TIME_NOT_SET.
    HRESULT STDMETHODCALLTYPE GetTime(REFERENCE_TIME* start, REFERENCE_TIME* end) noexcept override;
    HRESULT STDMETHODCALLTYPE SetTime(REFERENCE_TIME* start, REFERENCE_TIME* end) noexcept override;
    HRESULT STDMETHODCALLTYPE IsSyncPoint() noexcept override;
    HRESULT STDMETHODCALLTYPE SetSyncPoint(BOOL isSyncPoint) noexcept override;
    HRESULT STDMETHODCALLTYPE IsPreroll() noexcept override;
    HRESULT STDMETHODCALLTYPE SetPreroll(BOOL isPreroll) noexcept override;
    LONG STDMETHODCALLTYPE GetActualDataLength() noexcept override;
    // VFW_E_BUFFER_OVERFLOW beyond the buffer, E_INVALIDARG below 0.
    HRESULT STDMETHODCALLTYPE SetActualDataLength(LONG length) noexcept override;
    // S_FALSE (and null) without a type; else a copy for DeleteMediaType.
    HRESULT STDMETHODCALLTYPE GetMediaType(AM_MEDIA_TYPE** type) noexcept override;
    HRESULT STDMETHODCALLTYPE SetMediaType(AM_MEDIA_TYPE* type) noexcept override;
    HRESULT STDMETHODCALLTYPE IsDiscontinuity() noexcept override;
    HRESULT STDMETHODCALLTYPE SetDiscontinuity(BOOL discontinuity) noexcept override;
    // VFW_E_MEDIA_TIME_NOT_SET.
    HRESULT STDMETHODCALLTYPE GetMediaTime(LONGLONG* start, LONGLONG* end) noexcept override;
    HRESULT STDMETHODCALLTYPE SetMediaTime(LONGLONG* start, LONGLONG* end) noexcept override;

    // IMediaSample2: as many bytes of AM_SAMPLE2_PROPERTIES as the caller's structure has. The media type that
    // GetProperties hands out stays the sample's.
    HRESULT STDMETHODCALLTYPE GetProperties(DWORD size, BYTE* properties) noexcept override;
    // Nothing changes unless everything is taken: E_INVALIDARG for another buffer or buffer size or a bad length.
    HRESULT STDMETHODCALLTYPE SetProperties(DWORD size, const BYTE* properties) noexcept override;

protected:
    HRESULT ReadFlag(DWORD flag) const noexcept { return (m_dwFlags & flag) ? S_OK : S_FALSE; }
    HRESULT WriteFlag(DWORD flag, bool set) noexcept;
    // A sample leaves its allocator clean, without anything of the frame before.
    void Clear() noexcept;

    DWORD m_dwFlags = 0; // AM_SAMPLE_PROPERTY_FLAGS
    DWORD m_dwTypeSpecificFlags = 0;
    BYTE* m_pBuffer;
    LONG m_lActual;
    LONG m_cbBuffer;
    CBaseAllocator* const m_pAllocator;
    CMediaSample* m_pNext = nullptr;
    REFERENCE_TIME m_Start = 0;
    REFERENCE_TIME m_End = 0;
    LONGLONG m_MediaStart = 0;
    LONGLONG m_MediaEnd = 0;
    bool mediaTimeValid = false;
    AM_MEDIA_TYPE* m_pMediaType = nullptr;
    DWORD m_dwStreamId = AM_STREAM_MEDIA;
    vixa::RefCount references{0};
};
