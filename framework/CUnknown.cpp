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
    : CBaseObject(name), m_own(*this), m_pUnknown(outer ? outer : &m_own)
{
}

CUnknown::~CUnknown() = default;

HRESULT CUnknown::NonDelegatingQueryInterface(REFIID riid, void** ppv) noexcept
{
    if (!ppv)
        return E_POINTER;
    if (IsEqualIID(riid, IID_IUnknown))
        return GetInterface(&m_own, ppv);
    *ppv = nullptr;
    return E_NOINTERFACE;
}

ULONG CUnknown::NonDelegatingAddRef() noexcept
{
    return static_cast<ULONG>(InterlockedIncrement(&m_cRef));
}

ULONG CUnknown::NonDelegatingRelease() noexcept
{
    const LONG left = InterlockedDecrement(&m_cRef);
    if (left == 0) {
        // What the destructor lets go of may take and drop a reference on this object once more; that must not come
        // back here as a second last one.
        m_cRef = 1;
        delete this;
    }
    return static_cast<ULONG>(left);
}

HRESULT CUnknown::OwnUnknown::QueryInterface(REFIID riid, void** ppv) noexcept
{
    return m_object.NonDelegatingQueryInterface(riid, ppv);
}

ULONG CUnknown::OwnUnknown::AddRef() noexcept
{
    return m_object.NonDelegatingAddRef();
}

ULONG CUnknown::OwnUnknown::Release() noexcept
{
    return m_object.NonDelegatingRelease();
}
