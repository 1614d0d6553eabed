// The library as a host sees it: a module beside the program, asked for class factories by class identifier.
#pragma once

#include "host/base/Handles.h"

#include <vixavideofx/IEffectInfo.h>

#include <strmif.h>
#include <wrl/client.h>

#include <filesystem>
#include <string_view>

namespace vixahost::effects {

// VixaVideoFX.dll in this program's folder, whether it is there or not.
std::filesystem::path LibraryBesideTheProgram();

class EffectLibrary
{
public:
    // Loads VixaVideoFX.dll from the program's own folder. Throws FailedJob when it isn't there or can't be loaded.
    EffectLibrary();
    // Loads the library from a path.
    explicit EffectLibrary(const std::filesystem::path& file);

    // A new filter for one effect. Throws FailedJob. Must be released before the library object goes.
    Microsoft::WRL::ComPtr<IBaseFilter> CreateFilter(const GUID& classId, std::string_view name) const;

    // The catalogue object of one effect. Throws FailedJob. Must be released before the library object goes.
    Microsoft::WRL::ComPtr<IEffectInfo> CatalogueOf(const GUID& classId) const;

    // Where the library was loaded from.
    std::filesystem::path File() const;

    // What the library answers to DllCanUnloadNow: true when none of its objects is alive.
    bool CanUnload() const noexcept;

private:
    using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();

    UniqueModule module;
    GetClassObject getClassObject = nullptr;
    CanUnloadNow canUnloadNow = nullptr;
};

} // namespace vixahost::effects
