#include "framework/CMediaType.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

void FreeMediaType(AM_MEDIA_TYPE& type) noexcept
{
    if (type.cbFormat != 0)
        CoTaskMemFree(type.pbFormat);
    type.cbFormat = 0;
    type.pbFormat = nullptr;
    if (IUnknown* const attached = std::exchange(type.pUnk, nullptr))
        attached->Release();
}

void DeleteMediaType(AM_MEDIA_TYPE* type) noexcept
{
    if (!type)
        return;
    FreeMediaType(*type);
    CoTaskMemFree(type);
}

HRESULT CopyMediaType(AM_MEDIA_TYPE* target, const AM_MEDIA_TYPE* source) noexcept
{
    *target = *source;
    target->pUnk = nullptr;
    target->pbFormat = nullptr;
    target->cbFormat = 0;
    if (source->cbFormat != 0 && source->pbFormat) {
        target->pbFormat = static_cast<BYTE*>(CoTaskMemAlloc(source->cbFormat));
        if (!target->pbFormat)
            return E_OUTOFMEMORY;
        std::memcpy(target->pbFormat, source->pbFormat, source->cbFormat);
        target->cbFormat = source->cbFormat;
    }
    target->pUnk = source->pUnk;
    if (target->pUnk)
        target->pUnk->AddRef();
    return S_OK;
}

AM_MEDIA_TYPE* CreateMediaType(const AM_MEDIA_TYPE* source) noexcept
{
    UniqueMediaType copy(static_cast<AM_MEDIA_TYPE*>(CoTaskMemAlloc(sizeof(AM_MEDIA_TYPE))));
    if (!copy || FAILED(CopyMediaType(copy.get(), source)))
        return nullptr;
    return copy.release();
}

CMediaType::CMediaType() noexcept : AM_MEDIA_TYPE{}
{
    InitMediaType();
}

CMediaType::CMediaType(const GUID* majorType) noexcept : CMediaType()
{
    majortype = *majorType;
}

CMediaType::CMediaType(const AM_MEDIA_TYPE& other) : CMediaType()
{
    *this = other;
}

CMediaType::CMediaType(const CMediaType& other) : CMediaType(static_cast<const AM_MEDIA_TYPE&>(other)) {}

CMediaType& CMediaType::operator=(const AM_MEDIA_TYPE& other)
{
    if (FAILED(Set(other)))
        throw std::bad_alloc();
    return *this;
}

CMediaType& CMediaType::operator=(const CMediaType& other)
{
    return *this = static_cast<const AM_MEDIA_TYPE&>(other);
}

CMediaType::CMediaType(CMediaType&& other) noexcept : CMediaType()
{
    *this = std::move(other);
}

CMediaType& CMediaType::operator=(CMediaType&& other) noexcept
{
    std::swap(static_cast<AM_MEDIA_TYPE&>(*this), static_cast<AM_MEDIA_TYPE&>(other));
    return *this;
}

CMediaType::~CMediaType()
{
    FreeMediaType(*this);
}

HRESULT CMediaType::Set(const AM_MEDIA_TYPE& other) noexcept
{
    if (&other == this)
        return S_OK;
    AM_MEDIA_TYPE copy;
    const HRESULT result = CopyMediaType(&copy, &other);
    if (FAILED(result))
        return result;
    FreeMediaType(*this);
    static_cast<AM_MEDIA_TYPE&>(*this) = copy;
    return S_OK;
}

bool CMediaType::operator==(const CMediaType& other) const noexcept
{
    return majortype == other.majortype && subtype == other.subtype && formattype == other.formattype &&
           cbFormat == other.cbFormat && (cbFormat == 0 || std::memcmp(pbFormat, other.pbFormat, cbFormat) == 0);
}

void CMediaType::SetSampleSize(ULONG size) noexcept
{
    bFixedSizeSamples = size != 0;
    lSampleSize = size;
}

bool CMediaType::SetFormat(const BYTE* format, ULONG length) noexcept
{
    if (length == 0) {
        ResetFormatBuffer();
        return true;
    }
    if (!AllocFormatBuffer(length))
        return false;
    std::memcpy(pbFormat, format, length);
    return true;
}

void CMediaType::ResetFormatBuffer() noexcept
{
    if (cbFormat != 0)
        CoTaskMemFree(pbFormat);
    cbFormat = 0;
    pbFormat = nullptr;
}

BYTE* CMediaType::AllocFormatBuffer(ULONG length) noexcept
{
    if (length == cbFormat)
        return pbFormat;
    auto* const block = static_cast<BYTE*>(CoTaskMemAlloc(length));
    if (!block)
        return nullptr;
    ResetFormatBuffer();
    pbFormat = block;
    cbFormat = length;
    return block;
}

BYTE* CMediaType::ReallocFormatBuffer(ULONG length) noexcept
{
    if (length == cbFormat)
        return pbFormat;
    auto* const block = static_cast<BYTE*>(CoTaskMemAlloc(length));
    if (!block)
        return nullptr;
    if (cbFormat != 0)
        std::memcpy(block, pbFormat, std::min(cbFormat, length));
    ResetFormatBuffer();
    pbFormat = block;
    cbFormat = length;
    return block;
}

void CMediaType::InitMediaType() noexcept
{
    // One byte of fixed size is what a type without further words stands for.
    bFixedSizeSamples = TRUE;
    lSampleSize = 1;
}

bool CMediaType::IsPartiallySpecified() const noexcept
{
    return majortype == GUID_NULL || formattype == GUID_NULL;
}

bool CMediaType::MatchesPartial(const CMediaType* partial) const noexcept
{
    if (partial->majortype != GUID_NULL && majortype != partial->majortype)
        return false;
    if (partial->subtype != GUID_NULL && subtype != partial->subtype)
        return false;
    if (partial->formattype == GUID_NULL)
        return true;
    return formattype == partial->formattype && cbFormat == partial->cbFormat &&
           (cbFormat == 0 || std::memcmp(pbFormat, partial->pbFormat, cbFormat) == 0);
}
