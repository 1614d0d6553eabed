#include "module/VixaVideoFXModule.h"

#include "localisation/LanguageFiles.h"
#include "module/EffectTable.h"
#include "module/ObjectFactory.h"
#include "module/VixaVideoFXClassFactory.h"

#include <array>

namespace {

// The class's printable type name; its key is taken over the whole text, prefix included.
constexpr char classFactoryName[] = "class VixaVideoFXClassFactory";

VixaVideoFXModule module;
ObjectFactory objectFactory;
std::map<std::wstring, std::string, std::less<>> classNames; // class identifier text to class name

// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" with its terminator.
using GuidText = std::array<wchar_t, 39>;

GuidText TextOf(REFGUID guid) noexcept
{
    GuidText text{};
    StringFromGUID2(guid, text.data(), static_cast<int>(text.size()));
    return text;
}

} // namespace

bool VixaVideoFXModule::Init()
{
    g_hInst = moduleHandle;
    DllEntryPoint(g_hInst, DLL_PROCESS_ATTACH, nullptr);

    auto method = std::make_unique<ObjectFactory::CreateMethod<VixaVideoFXClassFactory>>();
    if (objectFactory.Register(method.get(), classFactoryName))
        static_cast<void>(method.release()); // the factory owns it now
    for (int row = 0; row < g_cTemplates; ++row)
        classNames[TextOf(*g_Templates[row].m_ClsID).data()] = classFactoryName;
    return true;
}

void VixaVideoFXModule::Term()
{
    classNames.clear();
    DllEntryPoint(g_hInst, DLL_PROCESS_DETACH, nullptr);
}

bool VixaVideoFXModule::GetLanguageFileName(LANGID language, std::wstring& path)
{
    vixa::MakeLanguageFileName(language, path);
    return true;
}

VixaVideoFXClassFactory* CreateClassFactory(REFCLSID clsid) noexcept
{
    const auto named = classNames.find(std::wstring_view(TextOf(clsid).data()));
    if (named == classNames.end())
        return nullptr;
    return static_cast<VixaVideoFXClassFactory*>(objectFactory.CreateByName(named->second.c_str()));
}

VixaVideoFXModule& TheModule() noexcept
{
    return module;
}
