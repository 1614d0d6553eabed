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
Function Real(const char* name)
{
    static const HMODULE library = LoadLibraryW(L"advapi32.dll");
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

bool IsPredefined(HKEY key)
{
    return (reinterpret_cast<UINT_PTR>(key) & 0x80000000u) != 0;
}

LSTATUS Before(const char* function, HKEY key, const wchar_t* name, REGSAM access = 0)
{
    if (bypasses > 0)
        return ERROR_SUCCESS;
    record.push_back({function, key, name ? name : L"", access});
    return decision ? decision(record.back()) : ERROR_SUCCESS;
}

LSTATUS AfterOpening(LSTATUS status, const HKEY* result)
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

void Reset()
{
    record.clear();
    open.clear();
    decision = nullptr;
}

void OnCall(std::function<LSTATUS(const Call&)> decide)
{
    decision = std::move(decide);
}

void FailCall(std::size_t number)
{
    OnCall([number](const Call&) { return record.size() == number + 1 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS; });
}

const std::vector<Call>& Calls()
{
    return record;
}

std::size_t OpenKeys()
{
    return open.size();
}

// The functions themselves, under names of their own; the import entries are at the end.
extern "C" {

LSTATUS WINAPI HookOpenCurrentUser(REGSAM access, HKEY* result)
{
    const LSTATUS status = Before("RegOpenCurrentUser", nullptr, nullptr, access);
    return status ? status
                  : AfterOpening(Real<decltype(&HookOpenCurrentUser)>("RegOpenCurrentUser")(access, result), result);
}

LSTATUS WINAPI HookCreateKeyExW(HKEY key, const wchar_t* path, DWORD reserved, wchar_t* type, DWORD options,
                                REGSAM access, SECURITY_ATTRIBUTES* security, HKEY* result, DWORD* disposition)
{
    const LSTATUS status = Before("RegCreateKeyExW", key, path, access);
    return status ? status
                  : AfterOpening(Real<decltype(&HookCreateKeyExW)>("RegCreateKeyExW")(
                                     key, path, reserved, type, options, access, security, result, disposition),
                                 result);
}

LSTATUS WINAPI HookOpenKeyExW(HKEY key, const wchar_t* path, DWORD options, REGSAM access, HKEY* result)
{
    const LSTATUS status = Before("RegOpenKeyExW", key, path, access);
    return status ? status
                  : AfterOpening(Real<decltype(&HookOpenKeyExW)>("RegOpenKeyExW")(key, path, options, access, result),
                                 result);
}

LSTATUS WINAPI HookSetValueExW(HKEY key, const wchar_t* name, DWORD reserved, DWORD type, const BYTE* data, DWORD size)
{
    const LSTATUS status = Before("RegSetValueExW", key, name);
    return status ? status : Real<decltype(&HookSetValueExW)>("RegSetValueExW")(key, name, reserved, type, data, size);
}

LSTATUS WINAPI HookDeleteValueW(HKEY key, const wchar_t* name)
{
    const LSTATUS status = Before("RegDeleteValueW", key, name);
    return status ? status : Real<decltype(&HookDeleteValueW)>("RegDeleteValueW")(key, name);
}

LSTATUS WINAPI HookDeleteKeyW(HKEY key, const wchar_t* name)
{
    const LSTATUS status = Before("RegDeleteKeyW", key, name);
    return status ? status : Real<decltype(&HookDeleteKeyW)>("RegDeleteKeyW")(key, name);
}

LSTATUS WINAPI HookEnumKeyExW(HKEY key, DWORD index, wchar_t* name, DWORD* size, DWORD* reserved, wchar_t* type,
                              DWORD* typeSize, FILETIME* written)
{
    const LSTATUS status = Before("RegEnumKeyExW", key, nullptr);
    return status ? status
                  : Real<decltype(&HookEnumKeyExW)>("RegEnumKeyExW")(key, index, name, size, reserved, type, typeSize,
                                                                     written);
}

LSTATUS WINAPI HookCloseKey(HKEY key)
{
    if (const auto found = open.find(key); bypasses == 0 && found != open.end())
        open.erase(found);
    else
        EXPECT_TRUE(bypasses > 0 || IsPredefined(key)) << "closed a key that is not open";
    return Real<decltype(&HookCloseKey)>("RegCloseKey")(key);
}

// Code reaches an imported function through its entry, or, where its address is a constant, through a symbol of its
// own.
#ifdef _WIN64
#define SYMBOL(name, size) #name
#define ADDRESS "(%rip)"
#else
#define SYMBOL(name, size) "_" #name "@" #size
#define ADDRESS
#endif
#define IMPORT(name, size, hook)                                                                                       \
    extern decltype(&(hook)) entry##name asm("__imp_" SYMBOL(name, size));                                             \
    decltype(&(hook)) entry##name = (hook);                                                                            \
    asm(".globl " SYMBOL(name, size) "\n" SYMBOL(name, size) ": jmp *__imp_" SYMBOL(name, size) ADDRESS "\n");

IMPORT(RegOpenCurrentUser, 8, HookOpenCurrentUser)
IMPORT(RegCreateKeyExW, 36, HookCreateKeyExW)
IMPORT(RegOpenKeyExW, 20, HookOpenKeyExW)
IMPORT(RegSetValueExW, 24, HookSetValueExW)
IMPORT(RegDeleteValueW, 8, HookDeleteValueW)
IMPORT(RegDeleteKeyW, 8, HookDeleteKeyW)
IMPORT(RegEnumKeyExW, 32, HookEnumKeyExW)
IMPORT(RegCloseKey, 4, HookCloseKey)
}

} // namespace registry_faults
