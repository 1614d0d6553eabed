// The reference-counted IUnknown under objects that are shared but offer no interface by QueryInterface.
#pragma once

#include "framework/RefCount.h"

#include <unknwn.h>

// Starts with one reference, the creator's. Counts are interlocked; the last Release destroys through the virtual
// destructor.
class GCUnknown : public virtual IUnknown
{
public:
    // Always E_NOINTERFACE; `*object` becomes null when there is one.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) noexcept override
    {
        if (object)
            *object = nullptr;
        return E_NOINTERFACE;
    }

    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return references.Add(); }

    ULONG STDMETHODCALLTYPE Release() noexcept override
    {
        return references.Drop([this] { delete this; });
    }

    virtual ~GCUnknown() = default;

protected:
    GCUnknown() = default;
    // A copy is an object of its own: it has its own creator's reference.
    GCUnknown(const GCUnknown&) noexcept {}
    GCUnknown& operator=(const GCUnknown&) noexcept { return *this; }

private:
    vixa::RefCount references{1};
};
