#include "host/base/TargetFile.h"

#include "host/base/Handles.h"
#include "host/base/Text.h"

#include <array>
#include <optional>
#include <utility>

namespace vixahost {

namespace {

std::filesystem::path FolderOf(const std::filesystem::path& file)
{
    const std::filesystem::path folder = file.parent_path();
    return folder.empty() ? std::filesystem::path(L".") : folder;
}

std::optional<BY_HANDLE_FILE_INFORMATION> Identity(const std::filesystem::path& file)
{
    const UniqueFile opened =
        Opened(CreateFileW(file.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                           OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION information = {};
    if (!opened || !GetFileInformationByHandle(opened.get(), &information))
        return std::nullopt;
    return information;
}

} // namespace

TargetFile::TargetFile(std::filesystem::path file) : target(std::move(file))
{
    const std::filesystem::path folder = FolderOf(target);
    const DWORD folderIs = GetFileAttributesW(folder.c_str());
    if (folderIs == INVALID_FILE_ATTRIBUTES || !(folderIs & FILE_ATTRIBUTE_DIRECTORY))
        throw FailedJob("The output's folder " + Show(folder) + " doesn't exist; make it or name another.");
    const DWORD targetIs = GetFileAttributesW(target.c_str());
    if (targetIs != INVALID_FILE_ATTRIBUTES && (targetIs & FILE_ATTRIBUTE_DIRECTORY))
        throw FailedJob("The output " + Show(target) + " is a folder; name a file in it.");
    temporary = target;
    temporary += L".partial-" + std::to_wstring(GetCurrentProcessId());
}

TargetFile::~TargetFile()
{
    DeleteFileW(temporary.c_str());
}

FailedJob TargetFile::WriteFault(unsigned long error) const
{
    if (error != ERROR_DISK_FULL && error != ERROR_HANDLE_DISK_FULL)
        return FailedJob("Can't write " + Show(target) + " (system error " + std::to_string(error) +
                         "); is the folder protected?");
    std::array<wchar_t, MAX_PATH + 1> disk = {};
    if (!GetVolumePathNameW(FolderOf(target).c_str(), disk.data(), MAX_PATH))
        disk[0] = L'\0';
    return FailedJob("The disk " + (disk[0] ? Utf8(disk.data()) + " " : "") + "is full; there is no room for " +
                     Show(target) + ". Make some, or name another folder.");
}

void TargetFile::Commit()
{
    if (!MoveFileExW(temporary.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING))
        throw FailedJob("Can't put the result in the place of " + Show(target) + " (system error " +
                        std::to_string(GetLastError()) + "); is it open elsewhere or protected?");
}

bool IsSameFile(const std::filesystem::path& one, const std::filesystem::path& other)
{
    const auto a = Identity(one), b = Identity(other);
    return a && b && a->dwVolumeSerialNumber == b->dwVolumeSerialNumber && a->nFileIndexHigh == b->nFileIndexHigh &&
           a->nFileIndexLow == b->nFileIndexLow;
}

} // namespace vixahost
