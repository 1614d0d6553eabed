#include "framework/CMediaSample.h"

#include "framework/CBaseAllocator.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

constexpr DWORD validFlags = AM_SAMPLE_SPLICEPOINT | AM_SAMPLE_PREROLL | AM_SAMPLE_DATADISCONTINUITY |
                             AM_SAMPLE_TYPECHANGED | AM_SAMPLE_TIMEVALID | AM_SAMPLE_TIMEDISCONTINUITY |
                             AM_SAMPLE_FLUSH_ON_PAUSE | AM_SAMPLE_STOPVALID | AM_SAMPLE_ENDOFSTREAM;

// Whether a structure of that many bytes has the whole field.
template <typename Field>
bool Contains(DWORD size, std::size_t offset, const Field&) noexcept
{
    return size >= offset + sizeof(Field); // NOLINT(bugprone-sizeof-expression): a field that is a pointer is meant
}

} // namespace

CMediaSample::CMediaSample(CBaseAllocator* allocator, BYTE* buffer, LONG length) noexcept
    : m_pBuffer(buffer), m_lActual(length), m_cbBuffer(length), m_pAllocator(allocator)
{
}

CMediaSample::~CMediaSample()
{
    DeleteMediaType(m_pMediaType);
}

HRESULT CMediaSample::QueryInterface(REFIID riid, void** ppv) noexcept
{
    if (!ppv)
        return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IMediaSample) || IsEqualIID(riid, IID_IMediaSample2))
        return GetInterface(static_cast<IMediaSample2*>(this), ppv);
    *ppv = nullptr;
    return E_NOINTERFACE;
}

ULONG CMediaSample::AddRef() noexcept
{
    return references.Add();
}

ULONG CMediaSample::Release() noexcept
{
    return references.Drop([this] {
        Clear();
        m_pAllocator->ReleaseBuffer(this); // may be the end of the allocator, and of this sample
    });
}

void CMediaSample::Clear() noexcept
{
    DeleteMediaType(m_pMediaType);
    m_pMediaType = nullptr;
    m_dwFlags = 0;
    m_dwTypeSpecificFlags = 0;
    m_dwStreamId = AM_STREAM_MEDIA;
    mediaTimeValid = false;
    m_lActual = m_cbBuffer;
}

HRESULT CMediaSample::WriteFlag(DWORD flag, bool set) noexcept
{
    m_dwFlags = set ? m_dwFlags | flag : m_dwFlags & ~flag;
    return S_OK;
}

HRESULT CMediaSample::GetPointer(BYTE** buffer) noexcept
{
    if (!buffer)
        return E_POINTER;
    *buffer = m_pBuffer;
    return S_OK;
}

LONG CMediaSample::GetSize() noexcept
{
    return m_cbBuffer;
}

HRESULT CMediaSample::GetTime(REFERENCE_TIME* start, REFERENCE_TIME* end) noexcept
{
    if (!start || !end)
        return E_POINTER;
    if (!(m_dwFlags & AM_SAMPLE_TIMEVALID))
        return VFW_E_SAMPLE_TIME_NOT_SET;
    *start = m_Start;
    if (m_dwFlags & AM_SAMPLE_STOPVALID) {
        *end = m_End;
        return S_OK;
    }
    *end = m_Start == MAXLONGLONG ? m_Start : m_Start + 1; // an end that does not lie before the start
    return VFW_S_NO_STOP_TIME;
}

HRESULT CMediaSample::SetTime(REFERENCE_TIME* start, REFERENCE_TIME* end) noexcept
{
    m_dwFlags &= ~static_cast<DWORD>(AM_SAMPLE_TIMEVALID | AM_SAMPLE_STOPVALID);
    if (!start)
        return S_OK;
    m_Start = *start;
    m_dwFlags |= AM_SAMPLE_TIMEVALID;
    if (end) {
        m_End = *end;
        m_dwFlags |= AM_SAMPLE_STOPVALID;
    }
    return S_OK;
}

HRESULT CMediaSample::IsSyncPoint() noexcept
{
    return ReadFlag(AM_SAMPLE_SPLICEPOINT);
}

HRESULT CMediaSample::SetSyncPoint(BOOL isSyncPoint) noexcept
{
    return WriteFlag(AM_SAMPLE_SPLICEPOINT, isSyncPoint != FALSE);
}

HRESULT CMediaSample::IsPreroll() noexcept
{
    return ReadFlag(AM_SAMPLE_PREROLL);
}

HRESULT CMediaSample::SetPreroll(BOOL isPreroll) noexcept
{
    return WriteFlag(AM_SAMPLE_PREROLL, isPreroll != FALSE);
}

LONG CMediaSample::GetActualDataLength() noexcept
{
    return m_lActual;
}

HRESULT CMediaSample::SetActualDataLength(LONG length) noexcept
{
    if (length < 0)
        return E_INVALIDARG;
    if (length > m_cbBuffer)
        return VFW_E_BUFFER_OVERFLOW;
    m_lActual = length;
    return S_OK;
}

HRESULT CMediaSample::GetMediaType(AM_MEDIA_TYPE** type) noexcept
{
    if (!type)
        return E_POINTER;
    *type = nullptr;
    if (!m_pMediaType)
        return S_FALSE;
    *type = CreateMediaType(m_pMediaType);
    return *type ? S_OK : E_OUTOFMEMORY;
}

HRESULT CMediaSample::SetMediaType(AM_MEDIA_TYPE* type) noexcept
{
    AM_MEDIA_TYPE* copy = nullptr;
    if (type) {
        copy = CreateMediaType(type);
        if (!copy)
            return E_OUTOFMEMORY;
    }
    DeleteMediaType(m_pMediaType);
    m_pMediaType = copy;
    return WriteFlag(AM_SAMPLE_TYPECHANGED, copy != nullptr);
}

HRESULT CMediaSample::IsDiscontinuity() noexcept
{
    return ReadFlag(AM_SAMPLE_DATADISCONTINUITY);
}

HRESULT CMediaSample::SetDiscontinuity(BOOL discontinuity) noexcept
{
    return WriteFlag(AM_SAMPLE_DATADISCONTINUITY, discontinuity != FALSE);
}

HRESULT CMediaSample::GetMediaTime(LONGLONG* start, LONGLONG* end) noexcept
{
    if (!start || !end)
        return E_POINTER;
    if (!mediaTimeValid)
        return VFW_E_MEDIA_TIME_NOT_SET;
    *start = m_MediaStart;
    *end = m_MediaEnd;
    return S_OK;
}

HRESULT CMediaSample::SetMediaTime(LONGLONG* start, LONGLONG* end) noexcept
{
    if (!start) {
        mediaTimeValid = false;
        return S_OK;
    }
    if (!end)
        return E_POINTER;
    m_MediaStart = *start;
    m_MediaEnd = *end;
    mediaTimeValid = true;
    return S_OK;
}

HRESULT CMediaSample::GetProperties(DWORD size, BYTE* properties) noexcept
{
    if (size == 0)
        return S_OK;
    if (!properties)
        return E_POINTER;
    AM_SAMPLE2_PROPERTIES all = {};
    const DWORD given = std::min(size, static_cast<DWORD>(sizeof all));
    all.cbData = given;
    all.dwTypeSpecificFlags = m_dwTypeSpecificFlags;
    all.dwSampleFlags = m_dwFlags;
    all.lActual = m_lActual;
    all.tStart = m_Start;
    all.tStop = m_End;
    all.dwStreamId = m_dwStreamId;
    all.pMediaType = m_pMediaType;
    all.pbBuffer = m_pBuffer;
    all.cbBuffer = m_cbBuffer;
    std::memcpy(properties, &all, given);
    return S_OK;
}

HRESULT CMediaSample::SetProperties(DWORD size, const BYTE* properties) noexcept
{
    if (size == 0)
        return S_OK;
    if (!properties)
        return E_POINTER;
    AM_SAMPLE2_PROPERTIES given = {};
    std::memcpy(&given, properties, std::min(size, static_cast<DWORD>(sizeof given)));
#define CONTAINS(field) Contains(size, offsetof(AM_SAMPLE2_PROPERTIES, field), given.field)
    const bool hasFlags = CONTAINS(dwSampleFlags);
    const bool hasType = CONTAINS(pMediaType);

    if (hasFlags && (given.dwSampleFlags & ~validFlags))
        return E_INVALIDARG;
    if (CONTAINS(lActual) && given.lActual < 0)
        return E_INVALIDARG;
    if (CONTAINS(lActual) && given.lActual > m_cbBuffer)
        return VFW_E_BUFFER_OVERFLOW;
    if (CONTAINS(pbBuffer) && given.pbBuffer && given.pbBuffer != m_pBuffer)
        return E_INVALIDARG;
    if (CONTAINS(cbBuffer) && given.cbBuffer != 0 && given.cbBuffer != m_cbBuffer)
        return E_INVALIDARG;
    // The type before the rest: it alone can still fail.
    if (hasType) {
        const HRESULT result = SetMediaType((given.dwSampleFlags & AM_SAMPLE_TYPECHANGED) ? given.pMediaType : nullptr);
        if (FAILED(result))
            return result;
    }
    if (CONTAINS(dwTypeSpecificFlags))
        m_dwTypeSpecificFlags = given.dwTypeSpecificFlags;
    if (hasFlags) {
        m_dwFlags = given.dwSampleFlags;
        WriteFlag(AM_SAMPLE_TYPECHANGED, m_pMediaType != nullptr);
    }
    if (CONTAINS(lActual))
        m_lActual = given.lActual;
    if (CONTAINS(tStart))
        m_Start = given.tStart;
    if (CONTAINS(tStop))
        m_End = given.tStop;
    if (CONTAINS(dwStreamId))
        m_dwStreamId = given.dwStreamId;
#undef CONTAINS
    return S_OK;
}
