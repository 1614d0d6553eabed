#include "tests/sxs/RegistryFaults.h"

#include <gtest/gtest.h>

#include <set>
#include <utility>

namespace registry_faults {
namespace {

std::vector<Call> record;
std::multiset<HKEY> open;
std::function<LSTATUS(const Call&)> decision;
int bypasses = 0;

template <typename Function>
Function real(const char* name)
{
    static const HMODULE library = LoadLibraryW(L"advapi32.dll");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

bool isPredefined(HKEY key)
{
    return (reinterpret_cast<UINT_PTR>(key) & 0x80000000u) != 0;
}

LSTATUS before(const char* function, HKEY key, const wchar_t* name, REGSAM access = 0)
{
    if (bypasses > 0)
        return ERROR_SUCCESS;
    record.push_back({function, key, name ? name : L"", access});
    return decision ? decision(record.back()) : ERROR_SUCCESS;
}

LSTATUS afterOpening(LSTATUS status, const HKEY* result)
{
    if (status == ERROR_SUCCESS && bypasses == 0)
        open.insert(*result);
    return status;
}

} // namespace

Bypass::Bypass()
{
    ++bypasses;
}

Bypass::~Bypass()
{
    --bypasses;
}

void reset()
{
    record.clear();
    open.clear();
    decision = nullptr;
}

void onCall(std::function<LSTATUS(const Call&)> decide)
{
    decision = std::move(decide);
}

void failCall(std::size_t number)
{
    onCall([number](const Call&) { return record.size() == number + 1 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS; });
}

const std::vector<Call>& calls()
{
    return record;
}

std::size_t openKeys()
{
    return open.size();
}

// The functions themselves, under names of their own; the import entries are at the end.
extern "C" {

LSTATUS WINAPI hookOpenCurrentUser(REGSAM access, HKEY* result)
{
    const LSTATUS status = before("RegOpenCurrentUser", nullptr, nullptr, access);
    return status ? status
                  : afterOpening(real<decltype(&hookOpenCurrentUser)>("RegOpenCurrentUser")(access, result), result);
}

LSTATUS WINAPI hookCreateKeyExW(HKEY key, const wchar_t* path, DWORD reserved, wchar_t* type, DWORD options,
                                REGSAM access, SECURITY_ATTRIBUTES* security, HKEY* result, DWORD* disposition)
{
    const LSTATUS status = before("RegCreateKeyExW", key, path, access);
    return status ? status
                  : afterOpening(real<decltype(&hookCreateKeyExW)>("RegCreateKeyExW")(
                                     key, path, reserved, type, options, access, security, result, disposition),
                                 result);
}

LSTATUS WINAPI hookOpenKeyExW(HKEY key, const wchar_t* path, DWORD options, REGSAM access, HKEY* result)
{
    const LSTATUS status = before("RegOpenKeyExW", key, path, access);
    return status ? status
                  : afterOpening(real<decltype(&hookOpenKeyExW)>("RegOpenKeyExW")(key, path, options, access, result),
                                 result);
}

LSTATUS WINAPI hookSetValueExW(HKEY key, const wchar_t* name, DWORD reserved, DWORD type, const BYTE* data, DWORD size)
{
    const LSTATUS status = before("RegSetValueExW", key, name);
    return status ? status : real<decltype(&hookSetValueExW)>("RegSetValueExW")(key, name, reserved, type, data, size);
}

LSTATUS WINAPI hookDeleteValueW(HKEY key, const wchar_t* name)
{
    const LSTATUS status = before("RegDeleteValueW", key, name);
    return status ? status : real<decltype(&hookDeleteValueW)>("RegDeleteValueW")(key, name);
}

LSTATUS WINAPI hookDeleteKeyW(HKEY key, const wchar_t* name)
{
    const LSTATUS status = before("RegDeleteKeyW", key, name);
    return status ? status : real<decltype(&hookDeleteKeyW)>("RegDeleteKeyW")(key, name);
}

LSTATUS WINAPI hookEnumKeyExW(HKEY key, DWORD index, wchar_t* name, DWORD* size, DWORD* reserved, wchar_t* type,
                              DWORD* typeSize, FILETIME* written)
{
    const LSTATUS status = before("RegEnumKeyExW", key, nullptr);
    return status ? status
                  : real<decltype(&hookEnumKeyExW)>("RegEnumKeyExW")(key, index, name, size, reserved, type, typeSize,
                                                                     written);
}

LSTATUS WINAPI hookCloseKey(HKEY key)
{
    if (const auto found = open.find(key); bypasses == 0 && found != open.end())
        open.erase(found);
    else
        EXPECT_TRUE(bypasses > 0 || isPredefined(key)) << "closed a key that is not open";
    return real<decltype(&hookCloseKey)>("RegCloseKey")(key);
}

// Code reaches an imported function through its entry, or, where its address is a constant, through a symbol of its
// own.
#define IMPORT(name, size, hook)                                                                                       \
    extern decltype(&hook) entry##name asm("__imp__" #name "@" #size);                                                 \
    decltype(&hook) entry##name = hook;                                                                                \
    asm(".globl _" #name "@" #size "\n_" #name "@" #size ": jmp *__imp__" #name "@" #size "\n");

IMPORT(RegOpenCurrentUser, 8, hookOpenCurrentUser)
IMPORT(RegCreateKeyExW, 36, hookCreateKeyExW)
IMPORT(RegOpenKeyExW, 20, hookOpenKeyExW)
IMPORT(RegSetValueExW, 24, hookSetValueExW)
IMPORT(RegDeleteValueW, 8, hookDeleteValueW)
IMPORT(RegDeleteKeyW, 8, hookDeleteKeyW)
IMPORT(RegEnumKeyExW, 32, hookEnumKeyExW)
IMPORT(RegCloseKey, 4, hookCloseKey)
}

} // namespace registry_faults
