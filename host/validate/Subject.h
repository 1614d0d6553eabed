// The library under examination, as any host reaches it: by its file and its exports.
#pragma once

#include "host/base/Handles.h"
#include "host/validate/Check.h"

#include <vixavideofx/IEffectFilter.h>
#include <vixavideofx/IEffectInfo.h>

#include <strmif.h>
#include <wrl/client.h>

#include <filesystem>

namespace vixahost::validate {

using Microsoft::WRL::ComPtr;

class Subject
{
public:
    using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    using CanUnloadNow = HRESULT(STDAPICALLTYPE*)();

    explicit Subject(std::filesystem::path library) : file(std::move(library)) {}

    const std::filesystem::path& File() const noexcept { return file; }

    // The loaded module; loads it first. Skips the check when it can't be loaded: a check of its own says so.
    HMODULE Module();
    void Unload() noexcept;

    // An export, or null.
    void* Export(const char* name) { return reinterpret_cast<void*>(GetProcAddress(Module(), name)); }
    // The two exports that everything else needs. Skips the check when they are missing.
    HRESULT ClassObject(REFCLSID classId, REFIID riid, void** object);
    HRESULT CanUnload();

    // What an effect's checks begin with. Each fails the check when the library doesn't answer.
    ComPtr<IClassFactory> Factory(REFCLSID classId);
    ComPtr<IEffectInfo> Info(REFCLSID classId);
    ComPtr<IBaseFilter> Filter(REFCLSID classId);

private:
    std::filesystem::path file;
    UniqueModule module;
};

// Adds a reference and takes it away again: how many there are now.
ULONG ReferencesOf(IUnknown* object);

// A filter's own interface. Fails the check.
ComPtr<IEffectFilter> Parameters(IBaseFilter* filter);

} // namespace vixahost::validate
