#include "localisation/ModuleBase.h"

#include "localisation/LanguageFiles.h"
#include "localisation/LanguageModule.h"
#include "localisation/StringBlock.h"

#include <algorithm>
#include <mutex>
#include <shared_mutex>
#include <span>

std::atomic<LANGID> ModuleBase::currentLanguage = vixa::englishLanguage;
std::vector<ModuleBase*> ModuleBase::modules;

namespace {

// Guards the text modules and the current language while a text is read or a module exchanged. Files are opened and
// closed outside it, because the system's loader has a lock of its own.
class LanguageLock
{
public:
    void lock() noexcept { AcquireSRWLockExclusive(&srw); }
    void unlock() noexcept { ReleaseSRWLockExclusive(&srw); }
    void lock_shared() noexcept { AcquireSRWLockShared(&srw); }
    void unlock_shared() noexcept { ReleaseSRWLockShared(&srw); }

private:
    SRWLOCK srw = SRWLOCK_INIT;
};
constinit LanguageLock languageLock;

} // namespace

ModuleBase::~ModuleBase()
{
    if (resourceHandle && resourceHandle != moduleHandle)
        FreeLibrary(resourceHandle);
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

vixa::UniqueModule ModuleBase::OpenLanguage(LANGID language)
{
    std::wstring path = LibraryPath();
    return GetLanguageFileName(language, path) ? vixa::LoadLanguageModule(path) : nullptr;
}

void ModuleBase::TakeLanguage(vixa::UniqueModule& file, LANGID language) noexcept
{
    const HMODULE before = resourceHandle;
    currentLanguage = file ? language : vixa::englishLanguage;
    resourceHandle = file ? file.release() : moduleHandle;
    file.reset(before == moduleHandle ? nullptr : before);
}

void ModuleBase::LoadLanguage(LANGID language)
{
    vixa::UniqueModule file = OpenLanguage(language);
    const std::unique_lock guard(languageLock);
    TakeLanguage(file, language);
}

void ModuleBase::SetLanguage(LANGID language)
{
    if (!modules.empty())
        modules.front()->LoadResStringIn(language, 0);
}

std::wstring ModuleBase::LoadResStringIn(LANGID language, UINT id) const
{
    const auto isServed = [=](const ModuleBase* module) {
        return module->resourceHandle && currentLanguage == language;
    };
    {
        const std::shared_lock guard(languageLock);
        if (std::ranges::all_of(modules, isServed))
            return ReadString(id);
    }
    // What can throw comes first, so that texts are never left without a module.
    std::vector<vixa::UniqueModule> files(modules.size());
    std::ranges::transform(modules, files.begin(), [=](ModuleBase* module) { return module->OpenLanguage(language); });
    const std::unique_lock guard(languageLock);
    for (std::size_t i = 0; i < files.size(); ++i)
        modules[i]->TakeLanguage(files[i], language);
    return ReadString(id);
}

std::wstring ModuleBase::LoadResString(UINT id) const
{
    const std::shared_lock guard(languageLock);
    return ReadString(id);
}

std::wstring ModuleBase::ReadString(UINT id) const
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
