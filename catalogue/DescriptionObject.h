// What the two kinds of description objects have in common: reference counting, the parameter's name and its picture.
#pragma once

#include "framework/CBaseObject.h"
#include "framework/RefCount.h"

#include <vixavideofx/PropertySetInfos.h>

#include <string_view>

namespace vixa {

// The texts and pictures of a description, by the rules of its interface: a language other than the current one gives
// E_FAIL, no place for the answer E_INVALIDARG, short memory E_OUTOFMEMORY.
HRESULT CheckTextRequest(LANGID language, const WCHAR* text, const ULONG* length) noexcept;
HRESULT AnswerText(UINT stringId, WCHAR* text, ULONG* length) noexcept;
HRESULT AnswerImage(UINT imageId, BYTE* buffer, ULONG* size) noexcept;

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
        return AnswerImage(imageId, buffer, size);
    }

    HRESULT STDMETHODCALLTYPE GetName(LANGID language, WCHAR* text, ULONG* length) noexcept override
    {
        const HRESULT check = CheckTextRequest(language, text, length);
        return FAILED(check) ? check : AnswerText(nameId, text, length);
    }

    DescriptionObject(const DescriptionObject&) = delete;
    DescriptionObject& operator=(const DescriptionObject&) = delete;

protected:
    DescriptionObject(const WCHAR* name, UINT image, UINT text) : CBaseObject(name), imageId(image), nameId(text) {}
    virtual ~DescriptionObject() = default;

private:
    UINT imageId, nameId;
    RefCount references{0};
};

} // namespace vixa
