#include "localisation/LanguageModule.h"

#include "localisation/ResourceFile.h"

#include <algorithm>
#include <cstddef>
#include <span>

namespace vixa {

namespace {

// While it lives, a file that cannot be read makes the call fail instead of asking the user.
class QuietErrors
{
public:
    QuietErrors() noexcept
    {
        isSet = SetThreadErrorMode(GetThreadErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &before);
    }
    ~QuietErrors()
    {
        if (isSet)
            SetThreadErrorMode(before, nullptr);
    }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

private:
    DWORD before = 0;
    BOOL isSet;
};

// The bytes of the file that `module` maps. The mapping is known in whole pages, zero after the file's end; where the
// path says which file it is, its exact size tells a truncated file from a whole one.
std::span<const std::byte> MappedFile(HMODULE module, const std::wstring& path) noexcept
{
    // The system marks a module that is mapped as data in the low bits of its handle.
    const auto* const base = reinterpret_cast<const std::byte*>(reinterpret_cast<ULONG_PTR>(module) & ~ULONG_PTR{3});
    MEMORY_BASIC_INFORMATION region;
    if (VirtualQuery(base, &region, sizeof region) == 0 || region.State != MEM_COMMIT)
        return {};
    std::size_t size = region.RegionSize;
    WIN32_FILE_ATTRIBUTE_DATA file;
    if (path.find_first_of(L"\\/") != std::wstring::npos &&
        GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &file) && file.nFileSizeHigh == 0)
        size = std::min<std::size_t>(size, file.nFileSizeLow);
    return {base, size};
}

UniqueModule MapAsData(const std::wstring& path)
{
    UniqueModule module(LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE));
    if (module && !IsWholeResourceModule(MappedFile(module.get(), path)))
        module.reset();
    return module;
}

// The path in 8.3 names; empty where the volume has none.
std::wstring ShortPath(const std::wstring& path)
{
    std::wstring shorter(path.size() + 1, L'\0');
    const DWORD length = GetShortPathNameW(path.c_str(), shorter.data(), static_cast<DWORD>(shorter.size()));
    shorter.resize(length < shorter.size() ? length : 0);
    return shorter;
}

} // namespace

UniqueModule LoadLanguageModule(const std::wstring& path)
{
    const QuietErrors quiet;
    UniqueModule module = MapAsData(path);
    // Not every system takes a long path for a module that is mapped as data.
    if (!module && path.size() >= MAX_PATH) {
        if (const std::wstring shorter = ShortPath(path); !shorter.empty())
            module = MapAsData(shorter);
    }
    return module;
}

} // namespace vixa
