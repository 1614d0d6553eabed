#include "sxs/CRegistrySxs.h"

#include "sxs/CVixaSXSError.h"

#include <windows.h>

using namespace vixa::sxs;

namespace {

constexpr long ownApplication = 130;
constexpr long ownProductLine = 1025;
constexpr std::int32_t currentGeneration = 12;
constexpr REGSAM fullRights = KEY_ALL_ACCESS;
constexpr REGSAM writeRights = KEY_SET_VALUE | KEY_CREATE_SUB_KEY;

// Runs a step; its exception becomes a result code. What isn't a standard exception is nothing of this subsystem's.
template <typename Step>
HRESULT ResultOf(Step step)
{
    try {
        return step();
    } catch (const CVixaSXSError& error) {
        // The result code says that it went wrong; a debugger's line says where.
        OutputDebugStringA(error.what());
        return HRESULT_FROM_WIN32(static_cast<DWORD>(error.GetCode()));
    } catch (const std::exception&) {
        return E_UNEXPECTED;
    }
}

} // namespace

CRegistrySxs::CRegistrySxs(long rootKind, const char* text) : configuration(text)
{
    const HRESULT result = ResultOf([&] {
        const std::wstring path =
            configuration.ResolveRegistryPath(rootKind, APPLICATIONS, ownApplication, std::wstring(), ownProductLine);
        const bool mayWrite = configuration.GenerationId() == currentGeneration || configuration.WriteAnyGeneration();
        key = RegistryKey(rootKind, path, mayWrite ? fullRights : fullRights & ~writeRights);
        return S_OK;
    });
    resolved = result == S_OK;
}

CRegistrySxs::~CRegistrySxs() = default;

bool CRegistrySxs::CreateSubKey(const wchar_t* name)
{
    if (!resolved || !name)
        return false;
    return ResultOf([&] {
               key.SubKey(name).Create();
               return S_OK;
           }) == S_OK;
}

bool CRegistrySxs::SetStringValue(const wchar_t* subkey, const wchar_t* name, const wchar_t* value)
{
    if (!resolved || !subkey || !name || !value)
        return false;
    return ResultOf([&] {
               RegistryKey child = key.SubKey(subkey);
               const HRESULT opened = child.TryOpen();
               if (opened == S_OK)
                   child.SetString(name, value);
               return opened;
           }) == S_OK;
}

bool CRegistrySxs::DeleteValue(const wchar_t* subkey, const wchar_t* name)
{
    if (!resolved || !subkey || !name)
        return false;
    return ResultOf([&] {
               RegistryKey child = key.SubKey(subkey);
               const HRESULT opened = child.TryOpen();
               if (opened == S_OK)
                   child.DeleteValue(name);
               return opened;
           }) == S_OK;
}
