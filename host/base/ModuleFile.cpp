#include "host/base/ModuleFile.h"

#include <string>

namespace vixahost {

std::filesystem::path FileOf(HMODULE module)
{
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

std::filesystem::path ThisProgram()
{
    return FileOf(nullptr);
}

} // namespace vixahost
