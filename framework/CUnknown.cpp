#include "framework/CUnknown.h"

HRESULT GetInterface(IUnknown* face, void** ppv) noexcept
{
    if (!ppv)
        return E_POINTER;
    face->AddRef();
    *ppv = face;
    return S_OK;
}

CUnknown::CUnknown(LPCTSTR name, IUnknown* outer) noexcept
    : CBaseObject(name), ownUnknown(*this), m_pUnknown(outer ? outer : &ownUnknown)
{
}

CUnknown::~CUnknown() = default;

HRESULT CUnknown::NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept
{
    if (!ppv)
        return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown))
        return GetInterface(&ownUnknown, ppv);
    *ppv = nullptr;
    return E_NOINTERFACE;
}

ULONG CUnknown::NonDelegatingAddRef() noexcept
{
    return references.Add();
}

ULONG CUnknown::NonDelegatingRelease() noexcept
{
    return references.Drop([this] {
        // What the destructor lets go of may take and drop a reference on this object once more; that must not come
        // back here as a second last one.
        references.Add();
        delete this;
    });
}

HRESULT CUnknown::OwnUnknown::QueryInterface(REFIID riid, void** ppv) noexcept
{
    return object.NonDelegatingQueryInterface(riid, ppv);
}

ULONG CUnknown::OwnUnknown::AddRef() noexcept
{
    return object.NonDelegatingAddRef();
}

ULONG CUnknown::OwnUnknown::Release() noexcept
{
    return object.NonDelegatingRelease();
}
