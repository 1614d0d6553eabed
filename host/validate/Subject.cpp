#include "host/validate/Subject.h"

#include "host/validate/Contract.h"
#include "host/validate/CrashWatch.h"

namespace vixahost::validate {

HMODULE Subject::Module()
{
    if (!module)
        module.reset(LoadLibraryW(file.c_str()));
    WatchModule(module.get());
    if (!module)
        Skip("the library does not load (see loading/loads)");
    return module.get();
}

void Subject::Unload() noexcept
{
    module.reset();
    WatchModule(nullptr);
}

HRESULT Subject::ClassObject(REFCLSID classId, REFIID riid, void** object)
{
    const auto call = reinterpret_cast<GetClassObject>(Export("DllGetClassObject"));
    if (!call)
        Skip("DllGetClassObject is missing (see exports/names)");
    return call(classId, riid, object);
}

HRESULT Subject::CanUnload()
{
    const auto call = reinterpret_cast<CanUnloadNow>(Export("DllCanUnloadNow"));
    if (!call)
        Skip("DllCanUnloadNow is missing (see exports/names)");
    return call();
}

ComPtr<IClassFactory> Subject::Factory(REFCLSID classId)
{
    ComPtr<IClassFactory> factory;
    RequireResult(ClassObject(classId, IID_IClassFactory, &factory), S_OK,
                  std::string(PromiseOf(classId).name) + ": DllGetClassObject");
    Require(factory != nullptr, std::string(PromiseOf(classId).name) + ": DllGetClassObject gave no factory");
    return factory;
}

ComPtr<IEffectInfo> Subject::Info(REFCLSID classId)
{
    ComPtr<IEffectInfo> info;
    RequireResult(Factory(classId).As(&info), S_OK,
                  std::string(PromiseOf(classId).name) + ": the factory's QueryInterface(IEffectInfo)");
    return info;
}

ComPtr<IBaseFilter> Subject::Filter(REFCLSID classId)
{
    ComPtr<IBaseFilter> filter;
    RequireResult(Factory(classId)->CreateInstance(nullptr, IID_IBaseFilter, &filter), S_OK,
                  std::string(PromiseOf(classId).name) + ": CreateInstance(IBaseFilter)");
    return filter;
}

ULONG ReferencesOf(IUnknown* object)
{
    object->AddRef();
    return object->Release();
}

ComPtr<IEffectFilter> Parameters(IBaseFilter* filter)
{
    ComPtr<IEffectFilter> effect;
    RequireResult(filter->QueryInterface(IID_IEffectFilter, &effect), S_OK,
                  "the filter's QueryInterface(IEffectFilter)");
    return effect;
}

} // namespace vixahost::validate
