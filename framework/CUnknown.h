// Reference counting and aggregation for component objects.
#pragma once

#include "framework/CBaseObject.h"
#include "framework/RefCount.h"

// An object's own IUnknown, as opposed to the one of the aggregate that it may be part of.
class INonDelegatingUnknown
{
public:
    virtual HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept = 0;
    virtual ULONG STDMETHODCALLTYPE NonDelegatingAddRef() noexcept = 0;
    virtual ULONG STDMETHODCALLTYPE NonDelegatingRelease() noexcept = 0;

protected:
    ~INonDelegatingUnknown() = default;
};

// Answers a QueryInterface: stores the face in `*ppv` with a new reference. E_POINTER when `ppv` is null.
HRESULT GetInterface(IUnknown* face, void** ppv) noexcept;

// An object starts with no reference; whoever creates it adds the first. The last NonDelegatingRelease destroys it.
// Counts are interlocked. Given an outer unknown, the faces of the object delegate to that one, without owning it.
class CUnknown : public INonDelegatingUnknown, public CBaseObject
{
public:
    CUnknown(LPCTSTR name, IUnknown* outer) noexcept;

    // Knows IUnknown; E_NOINTERFACE (and null in `*ppv`) for anything else, E_POINTER without `ppv`.
    HRESULT STDMETHODCALLTYPE NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept override;
    ULONG STDMETHODCALLTYPE NonDelegatingAddRef() noexcept override;
    // Returns the references left.
    ULONG STDMETHODCALLTYPE NonDelegatingRelease() noexcept override;
    virtual ~CUnknown();

    // The controlling unknown: the aggregate's, or the object's own. Not counted.
    IUnknown* GetOwner() const noexcept { return m_pUnknown; }

private:
    // The IUnknown that an aggregating object, or a creator, holds: it never delegates.
    class OwnUnknown final : public IUnknown
    {
    public:
        explicit OwnUnknown(CUnknown& owner) noexcept : object(owner) {}
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) noexcept override;
        ULONG STDMETHODCALLTYPE AddRef() noexcept override;
        ULONG STDMETHODCALLTYPE Release() noexcept override;

    private:
        CUnknown& object;
    };

    vixa::RefCount references{0};
    OwnUnknown ownUnknown;
    IUnknown* const m_pUnknown;
};

// The three operations that every face of a CUnknown has: they delegate to the controlling unknown.
#define DECLARE_IUNKNOWN                                                                                               \
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) noexcept override                                \
    {                                                                                                                  \
        return GetOwner()->QueryInterface(riid, ppv);                                                                  \
    }                                                                                                                  \
    ULONG STDMETHODCALLTYPE AddRef() noexcept override                                                                 \
    {                                                                                                                  \
        return GetOwner()->AddRef();                                                                                   \
    }                                                                                                                  \
    ULONG STDMETHODCALLTYPE Release() noexcept override                                                                \
    {                                                                                                                  \
        return GetOwner()->Release();                                                                                  \
    }
