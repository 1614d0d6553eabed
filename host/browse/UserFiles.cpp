#include "host/browse/UserFiles.h"

#include "host/base/Handles.h"
#include "host/base/Text.h"

#include <shlobj.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <string>

namespace vixahost::browse {

namespace {
constexpr std::size_t mostRecent = 8;
}

std::filesystem::path UserFolder()
{
    std::array<wchar_t, MAX_PATH> folder = {};
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder.data())))
        return {};
    return std::filesystem::path(folder.data()) / L"VixaVideoFX";
}

RecentFiles::RecentFiles(const std::filesystem::path& folder)
{
    if (folder.empty())
        return;
    listFile = folder / L"recent.txt";
    std::ifstream stream(listFile, std::ios::binary);
    for (std::string line; files.size() < mostRecent && std::getline(stream, line);)
        if (!line.empty())
            files.emplace_back(Wide(line));
}

void RecentFiles::Enter(const std::filesystem::path& file)
{
    std::error_code fault;
    const std::filesystem::path whole = std::filesystem::absolute(file, fault);
    if (fault)
        return;
    std::erase_if(files, [&](const auto& old) { return _wcsicmp(old.c_str(), whole.c_str()) == 0; });
    files.insert(files.begin(), whole);
    files.resize(std::min(files.size(), mostRecent));
    if (listFile.empty())
        return;
    std::filesystem::create_directories(listFile.parent_path(), fault);
    std::ofstream stream(listFile, std::ios::binary);
    for (const auto& entry : files)
        stream << Utf8(entry.native()) << '\n';
}

std::vector<std::filesystem::path> StackFilesIn(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> files;
    if (folder.empty())
        return files;
    WIN32_FIND_DATAW found = {};
    const auto search = Opened<UniqueSearch>(FindFirstFileW((folder / L"*.txt").c_str(), &found));
    if (!search)
        return files;
    do {
        files.push_back(folder / found.cFileName);
    } while (FindNextFileW(search.get(), &found));
    std::sort(files.begin(), files.end());
    return files;
}

std::filesystem::path SuggestedName(const std::filesystem::path& source, const std::wstring& addition,
                                    const std::wstring& ending)
{
    const std::wstring stem = source.stem().native() + L"-" + addition;
    std::error_code fault;
    std::filesystem::path name = source.parent_path() / (stem + ending);
    for (int number = 2; std::filesystem::exists(name, fault); ++number)
        name = source.parent_path() / (stem + L"-" + std::to_wstring(number) + ending);
    return name;
}

std::filesystem::path HelpPage(std::filesystem::path folder, const std::string& stem)
{
    std::vector<std::filesystem::path> folders;
    for (int level = 0; level < 5 && !folder.empty(); ++level) {
        folders.push_back(folder);
        folder = folder.parent_path();
    }
    const std::filesystem::path effects = L"docs/effects";
    for (const auto& page :
         {effects / (Wide(stem) + L".md"), effects / L"README.md", std::filesystem::path(L"README.md")})
        for (const auto& place : folders) {
            std::error_code fault;
            if (std::filesystem::is_regular_file(place / page, fault))
                return (place / page).make_preferred();
        }
    return {};
}

} // namespace vixahost::browse
