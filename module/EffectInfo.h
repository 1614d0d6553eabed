// The catalogue object of one effect, tied to its class factory.
#pragma once

#include "catalogue/EffectCatalogue.h"
#include "module/EffectTable.h"
#include "module/VixaVideoFXClassFactory.h"

class VixaVideoFXClassFactory::EffectInfo final : public EffectCatalogue
{
public:
    // `effect` is a row of g_Templates. The count starts at 0: who creates the object takes the first reference.
    explicit EffectInfo(const CFactoryTemplate* effect) : EffectCatalogue(RecordOf(effect)), factoryTemplate(effect) {}
    ~EffectInfo() override;

    // IUnknown and IEffectInfo: this object; IClassFactory: the effect's class factory, made when there is none alive.
    // E_POINTER, E_NOINTERFACE or E_OUTOFMEMORY; `*object` is null then.
    STDMETHODIMP QueryInterface(REFIID riid, void** object) noexcept override;
    STDMETHODIMP_(ULONG) AddRef() noexcept override;
    STDMETHODIMP_(ULONG) Release() noexcept override;

private:
    friend class VixaVideoFXClassFactory;

    const CFactoryTemplate* const factoryTemplate;
    VixaVideoFXClassFactory* classFactory = nullptr;
    vixa::RefCount references{0};
};
