#include "sxs/RegistryKey.h"

#include "sxs/CVixaSXSError.h"
#include "sxs/SxsConfiguration.h"

#include <utility>

using namespace vixa::sxs;

namespace {

void Check(LSTATUS status)
{
    if (status != ERROR_SUCCESS)
        throw CVixaSXSError(static_cast<std::int32_t>(status), AREA_REGISTRY);
}

} // namespace

RegistryKey::RegistryKey(long root, std::wstring pathBelow, REGSAM rights)
    : path(std::move(pathBelow)), access(rights), rootKind(root)
{
}

RegistryKey RegistryKey::SubKey(const std::wstring& name) const
{
    return {rootKind, SxsConfiguration::JoinPath(path, name), access};
}

HKEY RegistryKey::Root()
{
    if (rootHandle)
        return rootHandle.get();
    HKEY found = nullptr;
    switch (rootKind) {
    case LOCAL_MACHINE:
        found = HKEY_LOCAL_MACHINE;
        break;
    case CURRENT_USER:
        Check(RegOpenCurrentUser(KEY_ALL_ACCESS, &found));
        break;
    case CLASSES_ROOT:
        found = HKEY_CLASSES_ROOT;
        break;
    default:
        throw CVixaSXSError(CODE_INVALID_ACCESS, AREA_REGISTRY);
    }
    rootHandle.reset(found);
    return found;
}

void RegistryKey::Create()
{
    if (handle)
        return;
    HKEY created = nullptr;
    Check(RegCreateKeyExW(Root(), path.c_str(), 0, nullptr, REG_OPTION_OPEN_LINK, access, nullptr, &created, nullptr));
    handle.reset(created);
}

void RegistryKey::Open()
{
    if (handle)
        return;
    HKEY opened = nullptr;
    Check(RegOpenKeyExW(Root(), path.c_str(), REG_OPTION_OPEN_LINK, access, &opened));
    handle.reset(opened);
}

HRESULT RegistryKey::TryOpen()
{
    try {
        Open();
        return S_OK;
    } catch (const CVixaSXSError&) {
        return HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE);
    }
}

void RegistryKey::SetString(const std::wstring& name, const std::wstring& value)
{
    Open();
    const std::size_t bytes = (value.size() + 1) * sizeof(wchar_t);
    Check(RegSetValueExW(handle.get(), name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                         static_cast<DWORD>(bytes)));
}

void RegistryKey::DeleteValue(const std::wstring& name)
{
    Open();
    Check(RegDeleteValueW(handle.get(), name.c_str()));
}
