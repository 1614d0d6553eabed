#include "module/ClassFactoryBase.h"

#include <atomic>

namespace {

std::atomic<LONG> serverLocks = 0;

} // namespace

LONG ServerLocks() noexcept
{
    return serverLocks;
}

ClassFactoryBase::ClassFactoryBase() : CBaseObject(nullptr) {}

STDMETHODIMP ClassFactoryBase::CreateInstance(IUnknown* outer, REFIID riid, void** object) noexcept
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (outer && riid != IID_IUnknown)
        return E_NOINTERFACE;
    if (!factoryTemplate)
        return E_UNEXPECTED;

    HRESULT result = S_OK;
    CUnknown* const created = factoryTemplate->CreateInstance(outer, &result);
    if (!created)
        return FAILED(result) ? result : E_OUTOFMEMORY;
    // The object starts with a count of 0: holding it across the query makes a failed query or a failed creation
    // destroy it.
    created->NonDelegatingAddRef();
    if (SUCCEEDED(result))
        result = created->NonDelegatingQueryInterface(riid, object);
    created->NonDelegatingRelease();
    return result;
}

STDMETHODIMP ClassFactoryBase::LockServer(BOOL lock) noexcept
{
    serverLocks += lock ? 1 : -1;
    return S_OK;
}
