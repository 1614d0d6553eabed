// The library's one module object: its start and stop, and the names of its language files.
#pragma once

#include "localisation/ModuleBase.h"

#include <string>

class VixaVideoFXModule final : public ModuleBase
{
public:
    // Runs inside the loader's lock at attach: enters the library in the framework and registers the class factory's
    // creation.
    bool Init() override;

    // Takes the library out of the framework.
    void Term() override;

    // Turns the library's path into the path of a language's file; always true.
    bool GetLanguageFileName(LANGID language, std::wstring& path) override;
};

// A new class factory, of no effect yet, or null when memory is short or was so at attach. The caller takes the first
// reference.
class VixaVideoFXClassFactory;
VixaVideoFXClassFactory* CreateClassFactory() noexcept;

// The object that DllMain attaches and detaches.
VixaVideoFXModule& TheModule() noexcept;
