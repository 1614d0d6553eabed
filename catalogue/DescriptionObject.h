// What the two kinds of description objects have in common: reference counting, the parameter's name and its picture.
#pragma once

#include "framework/CBaseObject.h"
#include "framework/RefCount.h"

#include <vixavideofx/PropertySetInfos.h>

#include <string_view>

namespace vixa {

// The texts and pictures of a description, by the rules of its interface: a language other than the current one gives
// E_FAIL, no place for the answer E_INVALIDARG, short memory E_OUTOFMEMORY.
HRESULT checkTextRequest(LANGID language, const WCHAR* text, const ULONG* length) noexcept;
HRESULT answerText(UINT stringId, WCHAR* text, ULONG* length) noexcept;
HRESULT answerImage(UINT imageId, BYTE* buffer, ULONG* size) noexcept;

// Created with a count of 0: the first AddRef makes it the caller's. Any thread may use it; texts follow the rules of
// the language switch.
template <typename Interface>
class DescriptionObject : public Interface, public CBaseObject
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) noexcept override
    {
        if (!object)
            return E_POINTER;
        *object = nullptr;
        if (iid != IID_IUnknown && iid != __uuidof(Interface))
            return E_NOINTERFACE;
        AddRef();
        *object = static_cast<Interface*>(this);
        return S_OK;
    }

    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return references.Add(); }

    ULONG STDMETHODCALLTYPE Release() noexcept override
    {
        return references.Drop([this] { delete this; });
    }

    HRESULT STDMETHODCALLTYPE GetImage(BYTE* buffer, ULONG* size) noexcept override
    {
        return answerImage(imageId, buffer, size);
    }

    HRESULT STDMETHODCALLTYPE GetName(LANGID language, WCHAR* text, ULONG* length) noexcept override
    {
        const HRESULT check = checkTextRequest(language, text, length);
        return FAILED(check) ? check : answerText(nameId, text, length);
    }

    DescriptionObject(const DescriptionObject&) = delete;
    DescriptionObject& operator=(const DescriptionObject&) = delete;

protected:
    DescriptionObject(const WCHAR* name, UINT imageId_, UINT nameId_)
        : CBaseObject(name), imageId(imageId_), nameId(nameId_)
    {
    }
    virtual ~DescriptionObject() = default;

private:
    UINT imageId, nameId;
    RefCount references{0};
};

} // namespace vixa
