#include "module/VixaVideoFXModule.h"

#include "framework/DllEntry.h"
#include "localisation/LanguageFiles.h"
#include "module/ObjectFactory.h"
#include "module/VixaVideoFXClassFactory.h"

namespace {

// The class's printable type name; its key is taken over the whole text, prefix included.
constexpr char classFactoryName[] = "class VixaVideoFXClassFactory";

VixaVideoFXModule module;
ObjectFactory objectFactory;

} // namespace

bool VixaVideoFXModule::Init()
{
    g_hInst = moduleHandle;
    DllEntryPoint(g_hInst, DLL_PROCESS_ATTACH, nullptr);

    auto method = std::make_unique<ObjectFactory::CreateMethod<VixaVideoFXClassFactory>>();
    if (objectFactory.Register(method.get(), classFactoryName))
        static_cast<void>(method.release()); // the factory owns it now
    return true;
}

void VixaVideoFXModule::Term()
{
    DllEntryPoint(g_hInst, DLL_PROCESS_DETACH, nullptr);
}

bool VixaVideoFXModule::GetLanguageFileName(LANGID language, std::wstring& path)
{
    vixa::MakeLanguageFileName(language, path);
    return true;
}

VixaVideoFXClassFactory* CreateClassFactory() noexcept
{
    return static_cast<VixaVideoFXClassFactory*>(objectFactory.CreateByName(classFactoryName));
}

VixaVideoFXModule& TheModule() noexcept
{
    return module;
}
