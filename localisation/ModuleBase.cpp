#include "localisation/ModuleBase.h"

#include "localisation/LanguageFiles.h"
#include "localisation/LanguageModule.h"
#include "localisation/StringBlock.h"

#include <span>

LANGID ModuleBase::currentLanguage = vixa::englishLanguage;
std::vector<ModuleBase*> ModuleBase::modules;

ModuleBase::~ModuleBase()
{
    ReleaseLanguage();
}

bool ModuleBase::Init()
{
    return true;
}

void ModuleBase::Term() {}

bool ModuleBase::GetLanguageFileName(LANGID, std::wstring&)
{
    return false;
}

bool ModuleBase::Attach(HINSTANCE module)
{
    moduleHandle = resourceHandle = module;
    modules.push_back(this);
    LoadLanguage(vixa::englishLanguage);
    return Init();
}

void ModuleBase::Detach()
{
    Term();
    std::erase(modules, this);
}

void ModuleBase::LoadLanguage(LANGID language)
{
    // What can throw comes first, so that texts are never left without a module.
    std::wstring path = LibraryPath();
    vixa::UniqueModule file;
    if (GetLanguageFileName(language, path))
        file = vixa::LoadLanguageModule(path);
    ReleaseLanguage();
    currentLanguage = file ? language : vixa::englishLanguage;
    resourceHandle = file ? file.release() : moduleHandle;
}

void ModuleBase::SetLanguage(LANGID language)
{
    // Asked once, before the first module's switch changes the answer for the others.
    const bool isCurrent = currentLanguage == language;
    for (ModuleBase* module : modules) {
        if (!module->resourceHandle || !isCurrent)
            module->LoadLanguage(language);
    }
}

std::wstring ModuleBase::LoadResString(UINT id) const
{
    if (id == 0)
        return {};
    DWORD size = 0;
    const HGLOBAL resource = FindModuleResource(vixa::StringBlockId(id), RT_STRING, &size);
    const void* block = resource ? LockResource(resource) : nullptr;
    if (!block)
        return {};
    return vixa::StringOfBlock({static_cast<const std::byte*>(block), size}, vixa::IndexInStringBlock(id));
}

HGLOBAL ModuleBase::FindModuleResource(UINT id, LPCWSTR type, DWORD* size) const noexcept
{
    if (id == 0)
        return nullptr;
    const bool isPicture =
        IS_INTRESOURCE(type) ? type == RT_BITMAP : CompareStringOrdinal(type, -1, L"PICTURE", -1, TRUE) == CSTR_EQUAL;
    const HMODULE module = isPicture ? moduleHandle : resourceHandle;
    const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(id), type);
    if (!resource)
        return nullptr;
    if (size)
        *size = SizeofResource(module, resource);
    return LoadResource(module, resource);
}

void ModuleBase::ReleaseLanguage() noexcept
{
    if (resourceHandle && resourceHandle != moduleHandle)
        FreeLibrary(resourceHandle);
    resourceHandle = nullptr;
}

std::wstring ModuleBase::LibraryPath() const
{
    constexpr std::size_t step = 260;
    std::wstring path(step, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(moduleHandle, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() + step);
    }
}
