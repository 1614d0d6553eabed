// The library's one module object: its start and stop, and the names of its language files.
#pragma once

#include "localisation/ModuleBase.h"

#include <string>

class VixaVideoFXModule final : public ModuleBase
{
public:
    // Runs inside the loader's lock at attach: enters the library in the framework, registers the class factory's
    // creation, and names the class of every served effect.
    bool Init() override;

    // Empties the class names and takes the library out of the framework.
    void Term() override;

    // Turns the library's path into the path of a language's file; always true.
    bool GetLanguageFileName(LANGID language, std::wstring& path) override;
};

// A new class factory for a class identifier, or null when none is registered for it or memory is short. The caller
// takes the first reference.
class VixaVideoFXClassFactory;
VixaVideoFXClassFactory* CreateClassFactory(REFCLSID clsid) noexcept;

// The object that DllMain attaches and detaches.
VixaVideoFXModule& TheModule() noexcept;
