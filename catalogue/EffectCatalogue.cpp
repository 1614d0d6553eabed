#include "catalogue/EffectCatalogue.h"

#include "bitmap/ExportPicture.h"
#include "framework/DllEntry.h"
#include "localisation/ModulePictures.h"
#include "localisation/Texts.h"

#include <vixavideofx/PropertySets.h>

#include <wrl/client.h>

#include <exception>
#include <functional>

using Microsoft::WRL::ComPtr;
using vixa::EffectRecord;
using vixavideofx::PropertySetKind;

namespace {

// Hands a new description object out with its first reference.
HRESULT HandOut(IUnknown* description, IUnknown** info) noexcept
{
    if (!description)
        return E_OUTOFMEMORY;
    description->AddRef();
    *info = description;
    return S_OK;
}

} // namespace

EffectCatalogue::EffectCatalogue(const EffectRecord* effect) : CBaseObject(nullptr), record(effect) {}

EffectCatalogue::~EffectCatalogue() = default;

template <typename Field>
HRESULT EffectCatalogue::Answer(ULONG* out, Field field) const noexcept
{
    if (!record)
        return E_FAIL;
    if (!out)
        return E_INVALIDARG;
    *out = static_cast<ULONG>(std::invoke(field, *record));
    return S_OK;
}

STDMETHODIMP EffectCatalogue::GetTypeCode(ULONG* code) noexcept
{
    return Answer(code, &EffectRecord::typeCode);
}

STDMETHODIMP EffectCatalogue::GetGroupId(ULONG* group) noexcept
{
    return Answer(group, [](const EffectRecord& effect) { return effect.group.id; });
}

STDMETHODIMP EffectCatalogue::GetSubtypeCode(ULONG* code) noexcept
{
    return Answer(code, &EffectRecord::subtypeCode);
}

STDMETHODIMP EffectCatalogue::GetPropertySetKind(ULONG* kind) noexcept
{
    return Answer(kind, &EffectRecord::parameterKind);
}

STDMETHODIMP EffectCatalogue::GetSortKey(ULONG* key) noexcept
{
    return Answer(key, &EffectRecord::sortKey);
}

STDMETHODIMP EffectCatalogue::GetVersion(ULONG* version) noexcept
{
    if (!version)
        return E_INVALIDARG;
    *version = 1;
    return S_OK;
}

STDMETHODIMP EffectCatalogue::GetGroupName(ULONG, WCHAR* buffer, ULONG* length) noexcept
{
    if (!record)
        return E_FAIL;
    if (!buffer && !length)
        return E_INVALIDARG;
    try {
        const std::wstring text = vixa::LoadResString(record->group.nameId);
        if (text.empty())
            return E_FAIL;
        vixa::HandOutText(text, buffer, length);
        return S_OK;
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
}

STDMETHODIMP EffectCatalogue::GetEffectName(ULONG language, WCHAR* buffer, ULONG* length) noexcept
{
    if (!record)
        return E_FAIL;
    if (!buffer && !length)
        return E_INVALIDARG;
    try {
        vixa::HandOutText(vixa::LoadResStringIn(static_cast<LANGID>(language), record->nameId), buffer, length);
        return S_OK;
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
}

STDMETHODIMP EffectCatalogue::GetIcon(BYTE* buffer, ULONG* size) noexcept
{
    if (!record)
        return E_FAIL;
    // A buffer alone has no capacity, so there is nothing that could be done with it.
    if (!size)
        return E_INVALIDARG;
    vixa::ModulePictures pictures;
    return ExportPicture(pictures, record->iconId, buffer, size);
}

STDMETHODIMP EffectCatalogue::GetSecondBitmap(BYTE* buffer, ULONG* size, ULONG* value) noexcept
{
    if (!record)
        return E_FAIL;
    if (!size || (buffer && !value))
        return E_INVALIDARG;
    vixa::ModulePictures pictures;
    const HRESULT result = ExportPicture(pictures, record->secondBitmapId, buffer, size);
    if (SUCCEEDED(result) && value)
        *value = record->secondBitmapValue;
    return result;
}

STDMETHODIMP EffectCatalogue::GetPropertySetInfo(IUnknown** info) noexcept
{
    if (!info)
        return E_INVALIDARG;
    if (!record)
        return E_FAIL;
    switch (record->parameterKind) {
    case PropertySetKind::SingleValue:
        return record->value ? HandOut(SingleValuePropertySetInfo::New(*record->value), info) : E_FAIL;
    case PropertySetKind::SingleEnum:
        return record->choice ? HandOut(SingleEnumPropertySetInfo::New(*record->choice), info) : E_FAIL;
    case PropertySetKind::None:
    case PropertySetKind::DataBlock:
    case PropertySetKind::HostKind4:
    case PropertySetKind::HostKind5:
    case PropertySetKind::HostKind6:
        *info = nullptr;
        return S_OK;
    }
    return E_FAIL;
}

STDMETHODIMP EffectCatalogue::SetDefaults(IUnknown* propertySet) noexcept
{
    if (!propertySet)
        return E_INVALIDARG;
    if (!record)
        return E_FAIL;
    const ComPtr<IEffectInfo> self(this); // the host may let go of it meanwhile
    // What the set itself answers is not looked at.
    switch (record->parameterKind) {
    case PropertySetKind::None:
        return S_OK;
    case PropertySetKind::DataBlock: {
        const auto numbers = record->defaults.Numbers();
        if (numbers.empty())
            return E_FAIL;
        static_cast<IDataPropertySet*>(propertySet)->SetData(numbers.data(), static_cast<int>(numbers.size_bytes()));
        panel.Reset();
        return S_OK;
    }
    case PropertySetKind::SingleValue:
        if (!record->value)
            return E_FAIL;
        static_cast<ISingleValuePropertySet*>(propertySet)->SetValue(record->value->defaultValue);
        return S_OK;
    case PropertySetKind::SingleEnum:
        if (!record->choice)
            return E_FAIL;
        static_cast<ISingleEnumPropertySet*>(propertySet)->SetValue(record->choice->defaultIndex);
        return S_OK;
    default:
        return E_FAIL; // the host's own kinds have no defaults here
    }
}

STDMETHODIMP EffectCatalogue::ShowSettingsDialog(ULONG, HWND parent, UINT notifyMessage, IUnknown* propertySet,
                                                 HWND* window) noexcept
{
    if (!propertySet || !window || !record)
        return E_FAIL;
    *window = nullptr;
    const ComPtr<IEffectInfo> self(this); // the host may let go of it meanwhile
    try {
        if (record->makePanel)
            panel.Show(record->makePanel, g_hInst, parent, notifyMessage, static_cast<IDataPropertySet*>(propertySet),
                       window);
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
    return *window ? S_OK : E_FAIL;
}
