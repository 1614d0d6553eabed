#include "tests/sxs/RegistryView.h"

#include "framework/Handles.h"
#include "tests/sxs/RegistryFaults.h"

namespace registry_view {

std::optional<std::map<std::wstring, Value>> ValuesOf(HKEY root, const std::wstring& path)
{
    const registry_faults::Bypass own;
    HKEY opened = nullptr;
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS)
        return {};
    const vixa::UniqueKey key(opened);
    std::map<std::wstring, Value> found;
    for (DWORD index = 0;; ++index) {
        wchar_t name[512], data[512];
        DWORD nameSize = 512, type = 0, size = sizeof data;
        if (RegEnumValueW(key.get(), index, name, &nameSize, nullptr, &type, reinterpret_cast<BYTE*>(data), &size) !=
            ERROR_SUCCESS)
            return found;
        found[{name, nameSize}] = {type, {data, size / sizeof *data}};
    }
}

bool KeyExists(HKEY root, const std::wstring& path)
{
    return ValuesOf(root, path).has_value();
}

std::optional<Value> ReadValue(HKEY root, const std::wstring& path, const std::wstring& name)
{
    const auto all = ValuesOf(root, path);
    if (!all || !all->contains(name))
        return {};
    return all->at(name);
}

} // namespace registry_view
