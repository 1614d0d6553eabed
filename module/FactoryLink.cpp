// The two halves of an effect's face to the host, class factory and catalogue object, and how each finds the other.
#include "module/EffectInfo.h"
#include "module/VixaVideoFXClassFactory.h"

#include <vixavideofx/IEffectInfo.h>

#include <mutex>
#include <new>

namespace {

// Guards every pointer between a factory and its catalogue object. Nothing is called out of the library under it.
class LinkLock
{
public:
    void lock() noexcept { AcquireSRWLockExclusive(&srw); }
    void unlock() noexcept { ReleaseSRWLockExclusive(&srw); }

private:
    SRWLOCK srw = SRWLOCK_INIT;
};
LinkLock linkLock;

// Lets `linked` point at a live object with one more reference: the one it points at, or a new one from `make`. An
// object that another thread is destroying right now is first detached through its `back` pointer; its destructor then
// finds no partner.
template <typename Partner, typename Back, typename Count, typename Make>
bool Acquire(Partner*& linked, Back back, Count count, Make make) noexcept
{
    if (linked && (linked->*count).TryAdd())
        return true;
    if (linked)
        linked->*back = nullptr;
    linked = make();
    if (linked)
        (linked->*count).Add();
    return linked != nullptr;
}

} // namespace

STDMETHODIMP VixaVideoFXClassFactory::QueryInterface(REFIID riid, void** object) noexcept
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (riid == IID_IUnknown || riid == IID_IClassFactory) {
        AddRef();
        *object = static_cast<IClassFactory*>(this);
        return S_OK;
    }
    if (riid != IID_IEffectInfo)
        return E_NOINTERFACE;

    const std::scoped_lock guard(linkLock);
    const bool acquired = Acquire(effectInfo, &EffectInfo::classFactory, &EffectInfo::references, [this]() noexcept {
        auto* const made = new (std::nothrow) EffectInfo(factoryTemplate);
        if (made)
            made->classFactory = this;
        return made;
    });
    if (!acquired)
        return E_OUTOFMEMORY;
    *object = static_cast<IEffectInfo*>(effectInfo);
    return S_OK;
}

STDMETHODIMP_(ULONG) VixaVideoFXClassFactory::AddRef() noexcept
{
    return references.Add();
}

STDMETHODIMP_(ULONG) VixaVideoFXClassFactory::Release() noexcept
{
    return references.Drop([this] { delete this; });
}

VixaVideoFXClassFactory::~VixaVideoFXClassFactory()
{
    const std::scoped_lock guard(linkLock);
    if (effectInfo)
        effectInfo->classFactory = nullptr;
}

STDMETHODIMP VixaVideoFXClassFactory::EffectInfo::QueryInterface(REFIID riid, void** object) noexcept
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    if (riid == IID_IUnknown || riid == IID_IEffectInfo) {
        AddRef();
        *object = static_cast<IEffectInfo*>(this);
        return S_OK;
    }
    if (riid != IID_IClassFactory)
        return E_NOINTERFACE;

    const std::scoped_lock guard(linkLock);
    const bool acquired = Acquire(classFactory, &VixaVideoFXClassFactory::effectInfo,
                                  &VixaVideoFXClassFactory::references, [this]() noexcept {
                                      auto* const made = new (std::nothrow) VixaVideoFXClassFactory;
                                      if (made) {
                                          made->factoryTemplate = factoryTemplate;
                                          made->effectInfo = this;
                                      }
                                      return made;
                                  });
    if (!acquired)
        return E_OUTOFMEMORY;
    *object = static_cast<IClassFactory*>(classFactory);
    return S_OK;
}

STDMETHODIMP_(ULONG) VixaVideoFXClassFactory::EffectInfo::AddRef() noexcept
{
    return references.Add();
}

STDMETHODIMP_(ULONG) VixaVideoFXClassFactory::EffectInfo::Release() noexcept
{
    return references.Drop([this] { delete this; });
}

VixaVideoFXClassFactory::EffectInfo::~EffectInfo()
{
    const std::scoped_lock guard(linkLock);
    if (classFactory)
        classFactory->effectInfo = nullptr;
}
