// The catalogue's answers for one effect: everything of IEffectInfo but IUnknown, which belongs to the class that ties
// the object to a class factory.
#pragma once

#include "catalogue/EffectRecord.h"
#include "dialogs/EffectPanel.h"
#include "framework/CBaseObject.h"

#include <vixavideofx/IEffectInfo.h>

class EffectCatalogue : public IEffectInfo, public CBaseObject
{
public:
    // What is known of the effect, not owned; null makes every query fail.
    explicit EffectCatalogue(const vixa::EffectRecord* effect);
    virtual ~EffectCatalogue();

    STDMETHODIMP GetTypeCode(ULONG* code) noexcept override;
    STDMETHODIMP GetGroupId(ULONG* group) noexcept override;
    STDMETHODIMP GetGroupName(ULONG ignored, WCHAR* buffer, ULONG* length) noexcept override;
    STDMETHODIMP GetSubtypeCode(ULONG* code) noexcept override;
    STDMETHODIMP GetEffectName(ULONG language, WCHAR* buffer, ULONG* length) noexcept override;
    STDMETHODIMP GetIcon(BYTE* buffer, ULONG* size) noexcept override;
    STDMETHODIMP GetSecondBitmap(BYTE* buffer, ULONG* size, ULONG* value) noexcept override;
    STDMETHODIMP GetPropertySetKind(ULONG* kind) noexcept override;
    STDMETHODIMP GetPropertySetInfo(IUnknown** info) noexcept override;
    STDMETHODIMP SetDefaults(IUnknown* propertySet) noexcept override;
    STDMETHODIMP ShowSettingsDialog(ULONG ignored, HWND parent, UINT notifyMessage, IUnknown* propertySet,
                                    HWND* window) noexcept override;
    STDMETHODIMP GetSortKey(ULONG* key) noexcept override;
    STDMETHODIMP GetVersion(ULONG* version) noexcept override;

private:
    // The rule of the simple getters: E_FAIL without a record, E_INVALIDARG without `out`.
    template <typename Field>
    HRESULT Answer(ULONG* out, Field field) const noexcept;

    const vixa::EffectRecord* const record;
    vixa::PanelOwner panel;
};
