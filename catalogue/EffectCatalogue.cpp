#include "catalogue/EffectCatalogue.h"

#include "bitmap/ExportPicture.h"
#include "catalogue/EffectRecord.h"
#include "localisation/ModulePictures.h"
#include "localisation/Texts.h"

#include <vixavideofx/PropertySets.h>

#include <exception>

using vixa::EffectRecord;
using vixavideofx::PropertySetKind;

EffectCatalogue::EffectCatalogue(const CFactoryTemplate* effect) : CBaseObject(nullptr), factoryTemplate(effect) {}

EffectCatalogue::~EffectCatalogue() = default;

const EffectRecord* EffectCatalogue::Record() const noexcept
{
    return factoryTemplate ? vixa::FindRecord(*factoryTemplate->m_ClsID) : nullptr;
}

template <typename Field>
HRESULT EffectCatalogue::Answer(ULONG* out, Field field) const noexcept
{
    if (!factoryTemplate)
        return E_FAIL;
    if (!out)
        return E_INVALIDARG;
    const EffectRecord* const record = Record();
    if (!record)
        return E_FAIL;
    *out = static_cast<ULONG>(record->*field);
    return S_OK;
}

STDMETHODIMP EffectCatalogue::GetTypeCode(ULONG* code) noexcept
{
    return Answer(code, &EffectRecord::typeCode);
}

STDMETHODIMP EffectCatalogue::GetGroupId(ULONG* group) noexcept
{
    return Answer(group, &EffectRecord::groupId);
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
    if (!factoryTemplate)
        return E_FAIL;
    if (!buffer && !length)
        return E_INVALIDARG;
    const EffectRecord* const record = Record();
    if (!record)
        return E_FAIL;
    try {
        const std::wstring text = vixa::LoadResString(record->groupNameId);
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
    if (!factoryTemplate)
        return E_FAIL;
    if (!buffer && !length)
        return E_INVALIDARG;
    const EffectRecord* const record = Record();
    if (!record)
        return E_FAIL;
    try {
        ModuleBase::SetLanguage(static_cast<LANGID>(language));
        vixa::HandOutText(vixa::LoadResString(record->nameId), buffer, length);
        return S_OK;
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
}

STDMETHODIMP EffectCatalogue::GetIcon(BYTE* buffer, ULONG* size) noexcept
{
    if (!factoryTemplate)
        return E_FAIL;
    // A buffer alone has no capacity, so there is nothing that could be done with it.
    if (!size)
        return E_INVALIDARG;
    const EffectRecord* const record = Record();
    if (!record)
        return E_FAIL;
    vixa::ModulePictures pictures;
    return ExportPicture(pictures, record->iconId, buffer, size);
}

STDMETHODIMP EffectCatalogue::GetSecondBitmap(BYTE* buffer, ULONG* size, ULONG* value) noexcept
{
    if (!factoryTemplate)
        return E_FAIL;
    if (!size || (buffer && !value))
        return E_INVALIDARG;
    const EffectRecord* const record = Record();
    if (!record)
        return E_FAIL;
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
    ULONG kind = 0;
    const HRESULT result = GetPropertySetKind(&kind);
    if (FAILED(result))
        return result;
    switch (static_cast<PropertySetKind>(kind)) {
    case PropertySetKind::None:
    case PropertySetKind::DataBlock:
    case PropertySetKind::HostKind4:
    case PropertySetKind::HostKind5:
    case PropertySetKind::HostKind6:
        *info = nullptr;
        return S_OK;
    default:
        // A number or a choice would be described from its row; no effect here is of these kinds, so there is none.
        return E_FAIL;
    }
}

STDMETHODIMP EffectCatalogue::SetDefaults(IUnknown* propertySet) noexcept
{
    if (!propertySet)
        return E_INVALIDARG;
    ULONG kind = 0;
    const HRESULT result = GetPropertySetKind(&kind);
    if (FAILED(result))
        return result;
    if (static_cast<PropertySetKind>(kind) == PropertySetKind::None)
        return S_OK;
    if (static_cast<PropertySetKind>(kind) != PropertySetKind::DataBlock)
        return E_FAIL; // no default is known for any other kind
    const CLSID& effect = *factoryTemplate->m_ClsID;
    const auto block = vixa::DefaultBlockOf(effect);
    if (block.empty())
        return E_FAIL;
    static_cast<IDataPropertySet*>(propertySet)->SetData(block.data(), static_cast<int>(block.size_bytes()));
    panel.Reset();
    return S_OK;
}

STDMETHODIMP EffectCatalogue::ShowSettingsDialog(ULONG, HWND parent, UINT notifyMessage, IUnknown* propertySet,
                                                 HWND* window) noexcept
{
    if (!propertySet || !window || !factoryTemplate)
        return E_FAIL;
    *window = nullptr;
    const EffectRecord* const record = Record();
    if (!record)
        return E_FAIL;
    try {
        panel.Show(record->makePanel, g_hInst, parent, notifyMessage, static_cast<IDataPropertySet*>(propertySet),
                   window);
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
    return *window ? S_OK : E_FAIL;
}
