// The class factory of one effect: creates its filter, and leads to its catalogue object.
#pragma once

#include "framework/RefCount.h"
#include "module/ClassFactoryBase.h"

// Created by DllGetClassObject, which sets the effect's row and takes the first reference; the count starts at 0.
//
// Factory and catalogue object point at each other without holding references, so either may die first. Every reading
// and writing of the two pointers happens under one process-wide lock, which makes the lazy creation safe from any
// thread, also while another thread releases the other's last reference.
class VixaVideoFXClassFactory final : public ClassFactoryBase
{
public:
    class EffectInfo;

    VixaVideoFXClassFactory() = default;
    ~VixaVideoFXClassFactory() override;

    // IUnknown and IClassFactory: the factory; IEffectInfo: the effect's catalogue object, made when there is none
    // alive. E_POINTER, E_NOINTERFACE, or E_OUTOFMEMORY for a catalogue object that can't be made; `*object` is null
    // then.
    STDMETHODIMP QueryInterface(REFIID riid, void** object) noexcept override;
    STDMETHODIMP_(ULONG) AddRef() noexcept override;
    STDMETHODIMP_(ULONG) Release() noexcept override;

private:
    EffectInfo* effectInfo = nullptr;
    vixa::RefCount references{0};
};
