#include "tests/sxs/RegistryView.h"

#include "framework/Handles.h"
#include "tests/sxs/RegistryFaults.h"

#include <gtest/gtest.h>

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

namespace {

vixa::UniqueKey OpenLink(const std::wstring& path)
{
    HKEY link = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), REG_OPTION_OPEN_LINK, KEY_ALL_ACCESS, &link);
    return vixa::UniqueKey(link);
}

} // namespace

PlantedLink::PlantedLink(std::wstring from, const std::wstring& to) : path(std::move(from))
{
    const registry_faults::Bypass own;
    HKEY made = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, REG_OPTION_CREATE_LINK, KEY_ALL_ACCESS,
                              nullptr, &made, nullptr),
              ERROR_SUCCESS);
    const vixa::UniqueKey link(made);
    const std::wstring whole = L"\\Registry\\Machine\\" + to; // without a terminator
    EXPECT_EQ(RegSetValueExW(made, L"SymbolicLinkValue", 0, REG_LINK, reinterpret_cast<const BYTE*>(whole.data()),
                             static_cast<DWORD>(whole.size() * sizeof(WCHAR))),
              ERROR_SUCCESS);
}

PlantedLink::~PlantedLink()
{
    const registry_faults::Bypass own;
    const auto deleteKey = reinterpret_cast<LONG(WINAPI*)(HANDLE)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtDeleteKey")));
    if (const auto link = OpenLink(path))
        deleteKey(link.get());
}

bool PlantedLink::Exists() const
{
    const registry_faults::Bypass own;
    return OpenLink(path) != nullptr;
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
