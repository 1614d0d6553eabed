// The functions that the library exports. The platform declares most of them without noexcept, which a definition must
// not add; none throws, because nothing that they call does.
#include "module/EffectTable.h"
#include "module/VixaVideoFXClassFactory.h"
#include "module/VixaVideoFXModule.h"
#include "registration/Registration.h"

#include <exception>

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, void*) noexcept
{
    // Always TRUE: a library that could not register its class factory answers E_OUTOFMEMORY to who asks for one.
    try {
        if (reason == DLL_PROCESS_ATTACH)
            TheModule().Attach(instance);
        else if (reason == DLL_PROCESS_DETACH)
            TheModule().Detach();
    } catch (const std::exception&) {
    }
    return TRUE;
}

STDAPI DllGetClassObject(REFCLSID clsid, REFIID riid, void** object)
{
    if (riid != IID_IUnknown && riid != IID_IClassFactory)
        return E_NOINTERFACE;
    CFactoryTemplate* const effect = FindEffect(clsid);
    if (!effect)
        return CLASS_E_CLASSNOTAVAILABLE;
    if (!object)
        return E_POINTER;
    VixaVideoFXClassFactory* const factory = CreateClassFactory();
    *object = static_cast<IClassFactory*>(factory);
    if (!factory)
        return E_OUTOFMEMORY;
    factory->factoryTemplate = effect;
    factory->AddRef();
    return S_OK;
}

STDAPI DllCanUnloadNow()
{
    return ServerLocks() <= 0 && CBaseObject::ObjectsActive() == 0 ? S_OK : S_FALSE;
}

STDAPI DllRegisterServer()
{
    return vixa::RegisterLibrary(EffectAliases());
}

STDAPI DllUnregisterServer()
{
    return vixa::UnregisterLibrary(EffectAliases());
}

// regsvr32 /n /i:user: for the current user alone, without administrator rights; /i without a text: as
// DllRegisterServer.
STDAPI DllInstall(BOOL install, PCWSTR commandLine) noexcept
{
    vixa::Scope scope = vixa::Scope::Machine;
    if (commandLine && *commandLine) {
        if (lstrcmpiW(commandLine, L"user") != 0)
            return E_INVALIDARG;
        scope = vixa::Scope::User;
    }
    return install ? vixa::RegisterLibrary(EffectAliases(), scope) : vixa::UnregisterLibrary(EffectAliases(), scope);
}
