#include "framework/DllEntry.h"
#include "framework/FilterMapper.h"
#include "framework/Handles.h"

#include <cwchar>

namespace {

constexpr int textLength = 260; // of every buffer here, with the terminator; longer names are cut

struct Text
{
    WCHAR characters[textLength] = {};
};

Text CutText(LPCWSTR text) noexcept
{
    Text cut;
    lstrcpynW(cut.characters, text, textLength);
    return cut;
}

// Where class keys stand: below HKEY_CLASSES_ROOT, or below the user's own part of it.
struct ClassesRoot
{
    HKEY key;
    LPCWSTR format;
};
constexpr LPCWSTR machineFormat = L"CLSID\\%ls", userFormat = L"Software\\Classes\\CLSID\\%ls";

Text ClassKeyName(const ClassesRoot& root, const CLSID& classId) noexcept
{
    constexpr int identifierLength = 39; // of StringFromGUID2's text, with the terminator
    WCHAR identifier[identifierLength];
    StringFromGUID2(classId, identifier, identifierLength);
    Text name;
    std::swprintf(name.characters, textLength, root.format, identifier);
    return name;
}

// In wide characters: the component system reads them so, and the ANSI code page may lack some of a folder's.
HRESULT ModulePath(Text& path) noexcept
{
    const DWORD length = GetModuleFileNameW(g_hInst, path.characters, textLength);
    if (length == 0)
        return HRESULT_FROM_WIN32(GetLastError());
    // The component system reads no longer path, and a cut one names another file or none.
    return length < textLength ? S_OK : HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE);
}

// A link that stands where the key should be is opened itself, and takes no values.
LSTATUS CreateKey(HKEY parent, LPCWSTR name, vixa::UniqueKey& key) noexcept
{
    HKEY opened = nullptr;
    const LSTATUS status =
        RegCreateKeyExW(parent, name, 0, nullptr, REG_OPTION_OPEN_LINK, KEY_WRITE, nullptr, &opened, nullptr);
    if (status == ERROR_SUCCESS)
        key.reset(opened);
    return status;
}

LSTATUS SetText(HKEY key, LPCWSTR valueName, LPCWSTR text) noexcept
{
    const DWORD bytes = (static_cast<DWORD>(std::wcslen(text)) + 1) * DWORD{sizeof(WCHAR)};
    return RegSetValueExW(key, valueName, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), bytes);
}

LSTATUS WriteClassKey(const ClassesRoot& root, const CFactoryTemplate& row, LPCWSTR path) noexcept
{
    vixa::UniqueKey classKey, serverKey;
    LSTATUS status = CreateKey(root.key, ClassKeyName(root, *row.m_ClsID).characters, classKey);
    if (status == ERROR_SUCCESS)
        status = SetText(classKey.get(), nullptr, CutText(row.m_Name).characters);
    if (status == ERROR_SUCCESS)
        status = CreateKey(classKey.get(), L"InprocServer32", serverKey);
    if (status == ERROR_SUCCESS)
        status = SetText(serverKey.get(), nullptr, path);
    if (status == ERROR_SUCCESS)
        status = SetText(serverKey.get(), L"ThreadingModel", L"Both");
    return status;
}

bool IsLink(HKEY key) noexcept
{
    DWORD type = 0;
    return RegQueryValueExW(key, L"SymbolicLinkValue", nullptr, &type, nullptr, nullptr) == ERROR_SUCCESS &&
           type == REG_LINK;
}

// Deletes a link and leaves what it points at. RegDeleteKey by its name would follow it.
LSTATUS DeleteLink(HKEY link) noexcept
{
    const auto deleteKey = reinterpret_cast<LONG(WINAPI*)(HANDLE)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtDeleteKey")));
    return deleteKey && deleteKey(link) >= 0 ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

// Deletes a key with everything below it, links as links. A key that cannot be opened counts as deleted.
LSTATUS DeleteTree(HKEY parent, LPCWSTR name) noexcept
{
    HKEY opened = nullptr;
    if (RegOpenKeyExW(parent, name, REG_OPTION_OPEN_LINK, MAXIMUM_ALLOWED, &opened) != ERROR_SUCCESS)
        return ERROR_SUCCESS;
    {
        const vixa::UniqueKey key(opened);
        if (IsLink(opened))
            return DeleteLink(opened);
        Text previous;
        for (;;) {
            Text child;
            DWORD length = textLength;
            if (RegEnumKeyExW(opened, 0, child.characters, &length, nullptr, nullptr, nullptr, nullptr) !=
                ERROR_SUCCESS)
                break;
            // One that is still the first after its deletion will be for ever.
            if (std::wcscmp(child.characters, previous.characters) == 0)
                return ERROR_ACCESS_DENIED;
            const LSTATUS status = DeleteTree(opened, child.characters);
            if (status != ERROR_SUCCESS)
                return status;
            previous = child;
        }
    }
    return RegDeleteKeyW(parent, name);
}

// The rows that have a filter setup; the mapper must be there also when none has.
HRESULT EnterFilterSetups(bool registering) noexcept
{
    vixa::FilterMapper mapper;
    HRESULT result = mapper.Status();
    for (const CFactoryTemplate& row : g_Templates)
        if (SUCCEEDED(result) && row.m_pAMovieSetup_Filter)
            result = mapper.Enter(*row.m_pAMovieSetup_Filter, registering);
    return FAILED(result) ? result : S_OK;
}

HRESULT WriteClassKeys(const ClassesRoot& root) noexcept
{
    Text path;
    if (const HRESULT result = ModulePath(path); FAILED(result))
        return result;
    for (const CFactoryTemplate& row : g_Templates)
        if (const LSTATUS status = WriteClassKey(root, row, path.characters); status != ERROR_SUCCESS)
            return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
    return S_OK;
}

void DeleteClassKeys(const ClassesRoot& root) noexcept
{
    for (const CFactoryTemplate& row : g_Templates)
        DeleteTree(root.key, ClassKeyName(root, *row.m_ClsID).characters);
}

} // namespace

STDAPI AMovieDllRegisterServer2(BOOL registering) noexcept
{
    const ClassesRoot root = {HKEY_CLASSES_ROOT, machineFormat};
    Text path;
    HRESULT result = registering ? WriteClassKeys(root) : ModulePath(path);
    // What was registered from elsewhere can be removed from any path.
    if (!registering && result == HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE))
        result = S_OK;
    if (SUCCEEDED(result))
        result = EnterFilterSetups(registering != FALSE);
    if (SUCCEEDED(result) && !registering)
        DeleteClassKeys(root);
    return result;
}

HRESULT RegisterServerForUser(bool registering) noexcept
{
    const ClassesRoot root = {HKEY_CURRENT_USER, userFormat};
    if (registering)
        return WriteClassKeys(root);
    DeleteClassKeys(root);
    return S_OK;
}

bool OtherWidthServesUser() noexcept
{
    constexpr REGSAM otherView = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
    const ClassesRoot root = {HKEY_CURRENT_USER, userFormat};
    HKEY opened = nullptr;
    RegOpenKeyExW(root.key, ClassKeyName(root, *g_Templates.front().m_ClsID).characters, 0, KEY_READ | otherView,
                  &opened);
    const vixa::UniqueKey key(opened);
    return key != nullptr;
}
