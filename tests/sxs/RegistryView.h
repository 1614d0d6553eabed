// Looks into the registry past the code under test: types and bytes as they stand there.
#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <string>

namespace registry_view {

struct Value
{
    DWORD type;
    std::wstring data; // of a text with its terminator
    bool operator==(const Value&) const = default;
};

// Text of a REG_SZ value as the registry holds it.
inline Value TextValue(const std::wstring& data)
{
    return {REG_SZ, data + L'\0'};
}

// A key of HKEY_LOCAL_MACHINE that is a link to another one there, until the end at the latest.
class PlantedLink
{
public:
    PlantedLink(std::wstring from, const std::wstring& to);
    ~PlantedLink();
    PlantedLink(const PlantedLink&) = delete;
    PlantedLink& operator=(const PlantedLink&) = delete;

    bool Exists() const;

private:
    const std::wstring path;
};

bool KeyExists(HKEY root, const std::wstring& path);

// Absent when the key or the value is.
std::optional<Value> ReadValue(HKEY root, const std::wstring& path, const std::wstring& name);

// Every value of a key by name; absent when the key is.
std::optional<std::map<std::wstring, Value>> ValuesOf(HKEY root, const std::wstring& path);

} // namespace registry_view
