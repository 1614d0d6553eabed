// What a class factory of one effect does, whatever else it offers.
#pragma once

#include "framework/DirectShow.h"

// The count of server locks that all factories share; above 0 the library stays loaded.
LONG ServerLocks() noexcept;

class ClassFactoryBase : public IClassFactory, public CBaseObject
{
public:
    // E_POINTER without `object`; E_NOINTERFACE for an outer unknown with another interface than IUnknown; the create
    // routine's failure; E_OUTOFMEMORY without an object; else what the object's own QueryInterface answers.
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID riid, void** object) noexcept override;

    // Counts the locks up or down, atomically. S_OK.
    STDMETHODIMP LockServer(BOOL lock) noexcept override;

    virtual ~ClassFactoryBase() = default;

    // The effect's row; not owned. Set once by who creates the factory.
    const CFactoryTemplate* factoryTemplate = nullptr;

protected:
    ClassFactoryBase();
};
