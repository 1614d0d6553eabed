// A media type that owns its format block, and the functions on the plain structure.
#pragma once

#include "framework/Platform.h"

#include <memory>

// Gives back what a plain media type owns (the format block and the attached object) and clears those fields.
void FreeMediaType(AM_MEDIA_TYPE& type) noexcept;

// The same, and the structure itself, which came from CoTaskMemAlloc. Null is allowed.
void DeleteMediaType(AM_MEDIA_TYPE* type) noexcept;

// Owns a type that came from CreateMediaType, an enumerator or a sample.
struct MediaTypeDeleter
{
    void operator()(AM_MEDIA_TYPE* type) const noexcept { DeleteMediaType(type); }
};
using UniqueMediaType = std::unique_ptr<AM_MEDIA_TYPE, MediaTypeDeleter>;

// Copies into a structure that owns nothing yet. E_OUTOFMEMORY (and no format block) when there is no memory. A block
// that the source claims and does not have is no block in the copy.
HRESULT CopyMediaType(AM_MEDIA_TYPE* target, const AM_MEDIA_TYPE* source) noexcept;

// A copy in task memory, for DeleteMediaType; null when there is no memory.
AM_MEDIA_TYPE* CreateMediaType(const AM_MEDIA_TYPE* source) noexcept;

class CMediaType : public AM_MEDIA_TYPE
{
public:
    CMediaType() noexcept;
    explicit CMediaType(const GUID* majorType) noexcept;
    // Copies throw std::bad_alloc; use Set where that is to be an answer instead.
    CMediaType(const CMediaType& other);
    explicit CMediaType(const AM_MEDIA_TYPE& other);
    CMediaType& operator=(const CMediaType& other);
    CMediaType& operator=(const AM_MEDIA_TYPE& other);
    CMediaType(CMediaType&& other) noexcept;
    CMediaType& operator=(CMediaType&& other) noexcept;
    ~CMediaType();

    // Takes over a copy. On failure (E_OUTOFMEMORY) this type stays as it was.
    HRESULT Set(const AM_MEDIA_TYPE& other) noexcept;

    // Equal identifiers and format blocks: the sample size and the flags only repeat what those say.
    bool operator==(const CMediaType& other) const noexcept;

    bool IsValid() const noexcept { return majortype != GUID_NULL; }
    const GUID* Type() const noexcept { return &majortype; }
    void SetType(const GUID* type) noexcept { majortype = *type; }
    const GUID* Subtype() const noexcept { return &subtype; }
    void SetSubtype(const GUID* type) noexcept { subtype = *type; }

    bool IsFixedSize() const noexcept { return bFixedSizeSamples != FALSE; }
    bool IsTemporalCompressed() const noexcept { return bTemporalCompression != FALSE; }
    // 0 for samples of variable size.
    ULONG GetSampleSize() const noexcept { return IsFixedSize() ? lSampleSize : 0; }
    void SetSampleSize(ULONG size) noexcept;
    void SetVariableSize() noexcept { bFixedSizeSamples = FALSE; }
    void SetTemporalCompression(bool compressed) noexcept { bTemporalCompression = compressed; }

    BYTE* Format() const noexcept { return pbFormat; }
    ULONG FormatLength() const noexcept { return cbFormat; }
    const GUID* FormatType() const noexcept { return &formattype; }
    void SetFormatType(const GUID* type) noexcept { formattype = *type; }
    // Copies a format block in, which is not this one; false when there is no memory.
    bool SetFormat(const BYTE* format, ULONG length) noexcept;
    void ResetFormatBuffer() noexcept;
    // A block of that length, contents not set; null (and the old block kept) when there is no memory.
    BYTE* AllocFormatBuffer(ULONG length) noexcept;
    // The same, keeping the old contents as far as they fit.
    BYTE* ReallocFormatBuffer(ULONG length) noexcept;

    // To a fresh type's sample size: fixed, 1 byte.
    void InitMediaType() noexcept;

    // A type without major type or format type leaves something for the other side to choose.
    bool IsPartiallySpecified() const noexcept;
    // Whether this type is one of those that the partial type describes.
    bool MatchesPartial(const CMediaType* partial) const noexcept;
};
