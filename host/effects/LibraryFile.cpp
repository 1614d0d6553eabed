#include "host/effects/LibraryFile.h"

#include "host/base/ModuleFile.h"
#include "host/base/Text.h"
#include "host/effects/EffectLibrary.h"

#include <cstdint>
#include <fstream>
#include <vector>

namespace vixahost::effects {

std::filesystem::path LibraryOr(const std::filesystem::path& named)
{
    return named.empty() ? LibraryBesideTheProgram() : std::filesystem::absolute(named).make_preferred();
}

int WidthOf(const std::filesystem::path& file)
{
    // The DOS header says where the signature is, which the machine's number follows.
    std::ifstream stream(file, std::ios::binary);
    IMAGE_DOS_HEADER start = {};
    struct
    {
        DWORD signature;
        WORD machine;
    } header = {};
    if (!stream.read(reinterpret_cast<char*>(&start), sizeof start) || start.e_magic != IMAGE_DOS_SIGNATURE ||
        !stream.seekg(start.e_lfanew) || !stream.read(reinterpret_cast<char*>(&header), sizeof header) ||
        header.signature != IMAGE_NT_SIGNATURE)
        return 0;
    return header.machine == IMAGE_FILE_MACHINE_I386 ? 32 : header.machine == IMAGE_FILE_MACHINE_AMD64 ? 64 : 0;
}

std::string VersionOf(const std::filesystem::path& file)
{
    DWORD ignored = 0;
    std::vector<char> block(GetFileVersionInfoSizeW(file.c_str(), &ignored));
    VS_FIXEDFILEINFO* version = nullptr;
    UINT size = 0;
    if (block.empty() || !GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(block.size()), block.data()) ||
        !VerQueryValueW(block.data(), L"\\", reinterpret_cast<void**>(&version), &size) || size < sizeof *version)
        return {};
    return std::to_string(HIWORD(version->dwFileVersionMS)) + "." + std::to_string(LOWORD(version->dwFileVersionMS)) +
           "." + std::to_string(HIWORD(version->dwFileVersionLS));
}

std::filesystem::path HostFor(const std::filesystem::path& library)
{
    const int width = WidthOf(library);
    for (const auto& folder :
         {library.parent_path(), ThisProgram().parent_path().parent_path() / (width == 64 ? L"x64" : L"x86")})
        if (auto program = folder / L"vixahost.exe"; width != 0 && WidthOf(program) == width)
            return program;
    return {};
}

std::string WidthComplaint(const std::filesystem::path& library)
{
    const std::string width = std::to_string(WidthOf(library));
    const std::filesystem::path host = HostFor(library);
    return Show(library) + " is a " + width + "-bit library, which a " + std::to_string(ownWidth) +
           "-bit program can't load; use " +
           (host.empty() ? "a vixahost.exe of " + width + " bit, from the same package" : Show(host)) + ".";
}

} // namespace vixahost::effects
