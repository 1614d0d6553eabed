// A library that serves texts in its user's language: its own handle, and the module its texts come from now.
#pragma once

#include "framework/Handles.h"

#include <windows.h>

#include <atomic>
#include <string>
#include <vector>

// Texts come from a language file beside the library or, where there is none, from the library itself. Pictures always
// come from the library. Any thread may switch the language and read texts: each text comes whole from one language.
// Attach, Detach and destruction belong to the library's load and unload.
class ModuleBase
{
public:
    ModuleBase() = default;
    // Frees the language file.
    virtual ~ModuleBase();
    // After Attach; its answer is Attach's.
    virtual bool Init();
    // Before the module leaves the list of attached modules.
    virtual void Term();
    // Turns the library's path into that of its language file. False: the module has no language files.
    virtual bool GetLanguageFileName(LANGID language, std::wstring& path);

    ModuleBase(const ModuleBase&) = delete;
    ModuleBase& operator=(const ModuleBase&) = delete;

    // Takes `module` as the library's own handle, enters the module into the list, speaks English, and calls Init.
    bool Attach(HINSTANCE module);
    // Calls Term and takes the module off the list. The language file stays until destruction.
    void Detach();

    // Replaces the language file by that of `language`. A file that is missing, damaged or no PE module is no error and
    // leaves no handle open: the library's own English texts serve, and the language is English.
    void LoadLanguage(LANGID language);
    // Switches every attached module; nothing happens when `language` is current. A language whose file could not be
    // loaded is tried again on the next call, because the current one is then English.
    static void SetLanguage(LANGID language);
    // SetLanguage and, before another thread can switch again, the whole string `id` of this module in that language.
    // Throws std::bad_alloc.
    std::wstring LoadResStringIn(LANGID language, UINT id) const;
    static LANGID GetLanguage() noexcept { return currentLanguage; }

    // The whole string `id`; empty when it is 0 or missing. Throws std::bad_alloc.
    std::wstring LoadResString(UINT id) const;
    // The resource of the low 16 bits of `id`, for LockResource, or null; `*size`, when given, receives its bytes.
    // Bitmaps and resources of type "PICTURE" come from the library itself, all others from the text module. What it
    // points to lives until the next language switch of any thread, in the library itself until unload.
    HGLOBAL FindModuleResource(UINT id, LPCWSTR type, DWORD* size = nullptr) const noexcept;

    HINSTANCE ModuleHandle() const noexcept { return moduleHandle; }
    // The module that serves texts: a language file or the library itself.
    HMODULE ResourceHandle() const noexcept { return resourceHandle; }

    // The attached modules in the order of their Attach.
    static const std::vector<ModuleBase*>& Modules() noexcept { return modules; }

protected:
    HINSTANCE moduleHandle = nullptr;
    HMODULE resourceHandle = nullptr;

    static std::atomic<LANGID> currentLanguage;
    static std::vector<ModuleBase*> modules;

private:
    // The language's file, checked and mapped; null when there is none of use.
    vixa::UniqueModule OpenLanguage(LANGID language);
    // Exchanges the text module for `file`, or for the library itself when it is null; `file` then holds the one
    // before.
    void TakeLanguage(vixa::UniqueModule& file, LANGID language) noexcept;
    std::wstring ReadString(UINT id) const;
    std::wstring LibraryPath() const;
};
