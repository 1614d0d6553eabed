// What the lists of a filter's pins and of a pin's media types have in common: how they are walked through.
#pragma once

#include "framework/Answered.h"
#include "framework/CBaseObject.h"
#include "framework/CUnknown.h"
#include "framework/RefCount.h"

#include <climits>

// Holds a reference on its owner, whose list it is. When that list changed since the start (its version did), Next,
// Skip and Clone answer VFW_E_ENUM_OUT_OF_SYNC until Reset. Starts with one reference, the creator's. A derived class
// says what the list holds, and calls Reset when it is made without another to stand where that one does.
template <typename Interface, typename Item, typename Owner>
class CEnumerator : public Interface, public CBaseObject
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** ppv) noexcept override
    {
        if (!ppv)
            return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, __uuidof(Interface)))
            return GetInterface(static_cast<Interface*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return references.Add(); }
    ULONG STDMETHODCALLTYPE Release() noexcept override
    {
        return references.Drop([this] { delete this; });
    }

    // S_OK when all that were asked for were had, S_FALSE when fewer. E_INVALIDARG when more than one is asked for and
    // their number is not. A failure leaves the caller nothing and the position where it was.
    HRESULT STDMETHODCALLTYPE Next(ULONG count, Item** items, ULONG* fetched) noexcept override
    {
        if (!items)
            return E_POINTER;
        if (fetched)
            *fetched = 0;
        else if (count > 1)
            return E_INVALIDARG;
        if (OutOfSync())
            return VFW_E_ENUM_OUT_OF_SYNC;
        const int start = position;
        ULONG had = 0;
        HRESULT result = S_OK;
        while (had < count && (result = Step(&items[had])) == S_OK)
            ++had;
        if (FAILED(result)) {
            position = start;
            while (had > 0)
                GiveBack(items[--had]);
        } else if (fetched) {
            *fetched = had;
        }
        return result;
    }

    HRESULT STDMETHODCALLTYPE Skip(ULONG count) noexcept override
    {
        if (OutOfSync())
            return VFW_E_ENUM_OUT_OF_SYNC;
        HRESULT result = S_OK;
        Item* passed = nullptr;
        for (; count > 0 && (result = Step(&passed)) == S_OK; --count)
            GiveBack(passed);
        return result;
    }

    HRESULT STDMETHODCALLTYPE Reset() noexcept override
    {
        return vixa::Answered([&] {
            version = Version();
            position = 0;
            return S_OK;
        });
    }

    HRESULT STDMETHODCALLTYPE Clone(Interface** copy) noexcept override
    {
        if (!copy)
            return E_POINTER;
        *copy = nullptr;
        if (OutOfSync())
            return VFW_E_ENUM_OUT_OF_SYNC;
        *copy = Copied();
        return *copy ? S_OK : E_OUTOFMEMORY;
    }

protected:
    explicit CEnumerator(Owner* listOwner) noexcept : owner(listOwner) { owner->AddRef(); }
    CEnumerator(const CEnumerator& other) noexcept
        : Interface(), CBaseObject(), owner(other.owner), position(other.position), version(other.version)
    {
        owner->AddRef();
    }
    virtual ~CEnumerator() { owner->Release(); }

    // The list's version now.
    virtual LONG Version() const = 0;
    // The item of that index, which becomes the caller's; S_FALSE behind the last.
    virtual HRESULT At(int index, Item** item) const = 0;
    virtual void GiveBack(Item* item) const noexcept = 0;
    // A second one that stands where this one does; null when there is no memory.
    virtual Interface* Copied() const noexcept = 0;

    Owner* const owner;

private:
    bool OutOfSync() const noexcept
    {
        return FAILED(vixa::Answered([&] { return Version() == version ? S_OK : E_FAIL; }));
    }

    HRESULT Step(Item** item) noexcept
    {
        const HRESULT result = vixa::Answered([&] { return position < INT_MAX ? At(position, item) : S_FALSE; });
        if (result == S_OK)
            ++position;
        return result;
    }

    vixa::RefCount references{1};
    int position = 0;
    LONG version = 0;
};
