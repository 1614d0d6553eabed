#include "host/effects/EffectLibrary.h"

#include "host/base/HostError.h"
#include "host/base/ModuleFile.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/effects/LibraryFile.h"

namespace vixahost::effects {

namespace {

template <typename Function>
Function Export(HMODULE module, const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

} // namespace

std::filesystem::path LibraryBesideTheProgram()
{
    return ThisProgram().parent_path() / L"VixaVideoFX.dll";
}

EffectLibrary::EffectLibrary() : EffectLibrary(LibraryBesideTheProgram()) {}

EffectLibrary::EffectLibrary(const std::filesystem::path& file) : module(LoadLibraryW(file.c_str()))
{
    const DWORD error = GetLastError();
    if (const int width = module ? ownWidth : WidthOf(file); width != 0 && width != ownWidth)
        throw FailedJob(WidthComplaint(file));
    if (!module)
        throw FailedJob("The effect library can't be loaded (" + ExplainError(error) + "); put it here: " + Show(file));
    getClassObject = Export<GetClassObject>(module.get(), "DllGetClassObject");
    canUnloadNow = Export<CanUnloadNow>(module.get(), "DllCanUnloadNow");
    if (!getClassObject || !canUnloadNow)
        throw FailedJob(Show(file) + " is no effect library (it lacks DllGetClassObject or DllCanUnloadNow); "
                                     "put the right one there.");
}

Microsoft::WRL::ComPtr<IBaseFilter> EffectLibrary::CreateFilter(const GUID& classId, std::string_view name) const
{
    Microsoft::WRL::ComPtr<IClassFactory> factory;
    HRESULT result = getClassObject(classId, IID_IClassFactory, &factory);
    Microsoft::WRL::ComPtr<IBaseFilter> filter;
    if (SUCCEEDED(result))
        result = factory->CreateInstance(nullptr, IID_IBaseFilter, &filter);
    if (FAILED(result))
        throw FailedJob("The library can't make the effect \"" + std::string(name) + "\": " + Explain(result) +
                        "; is VixaVideoFX.dll of the same version as this program?");
    return filter;
}

Microsoft::WRL::ComPtr<IEffectInfo> EffectLibrary::CatalogueOf(const GUID& classId) const
{
    Microsoft::WRL::ComPtr<IClassFactory> factory;
    HRESULT result = getClassObject(classId, IID_IClassFactory, &factory);
    Microsoft::WRL::ComPtr<IEffectInfo> info;
    if (SUCCEEDED(result))
        result = factory->QueryInterface(IID_IEffectInfo, &info);
    if (FAILED(result))
        throw FailedJob("The library tells nothing about one of its effects: " + Explain(result) +
                        "; is VixaVideoFX.dll of the same version as this program?");
    return info;
}

std::filesystem::path EffectLibrary::File() const
{
    return FileOf(module.get());
}

bool EffectLibrary::CanUnload() const noexcept
{
    return canUnloadNow() == S_OK;
}

} // namespace vixahost::effects
