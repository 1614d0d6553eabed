#include "host/base/TargetFile.h"

#include "host/base/Handles.h"
#include "host/base/ResultCode.h"
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

constexpr const wchar_t* partial = L".partial-";

// Locks a byte that no file reaches. The lock ends with its owner, however that ends, and the whole system sees it.
bool Lock(HANDLE file, DWORD kind)
{
    OVERLAPPED place = {};
    place.OffsetHigh = 0x40000000;
    return LockFileEx(file, kind | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place) != FALSE;
}

UniqueFile OpenShared(const std::filesystem::path& file, DWORD access, DWORD how)
{
    return Opened(CreateFileW(file.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              how, FILE_ATTRIBUTE_NORMAL, nullptr));
}

// The temporary files of this target that nobody writes any more.
void RemoveLeftovers(const std::filesystem::path& target)
{
    const std::wstring beginning = target.filename().native() + partial;
    std::error_code fault;
    std::filesystem::directory_iterator entry(FolderOf(target), fault);
    for (; !fault && entry != std::filesystem::directory_iterator(); entry.increment(fault)) {
        const std::wstring name = entry->path().filename().native();
        if (!name.starts_with(beginning) ||
            name.find_first_not_of(L"0123456789", beginning.size()) != std::wstring::npos)
            continue;
        const UniqueFile left = OpenShared(entry->path(), GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING);
        if (left && Lock(left.get(), LOCKFILE_EXCLUSIVE_LOCK))
            DeleteFileW(entry->path().c_str());
    }
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
    RemoveLeftovers(target);
    // Another prefix or machine may have a process of this number too.
    const DWORD number = GetCurrentProcessId();
    for (DWORD next = number; !hold && next < number + 1000; ++next) {
        temporary = target;
        temporary += partial + std::to_wstring(next);
        hold = OpenShared(temporary, GENERIC_READ, CREATE_NEW); // writers need not share more than reading
        if (!hold && GetLastError() != ERROR_FILE_EXISTS)
            break;
    }
    if (!hold)
        throw WriteFault(GetLastError());
    Lock(hold.get(), 0);
}

TargetFile::~TargetFile()
{
    hold.reset();
    DeleteFileW(temporary.c_str());
}

FailedJob TargetFile::WriteFault(unsigned long error) const
{
    if (error != ERROR_DISK_FULL && error != ERROR_HANDLE_DISK_FULL)
        return FailedJob("Can't write " + Show(target) + " (" + ExplainError(error) + "); is the folder protected?");
    std::array<wchar_t, MAX_PATH + 1> disk = {};
    if (!GetVolumePathNameW(FolderOf(target).c_str(), disk.data(), MAX_PATH))
        disk[0] = L'\0';
    return FailedJob("The disk " + (disk[0] ? Utf8(disk.data()) + " " : "") + "is full; there is no room for " +
                     Show(target) + ". Make some, or name another folder.");
}

void TargetFile::Commit()
{
    hold.reset();
    if (!MoveFileExW(temporary.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING))
        throw FailedJob("Can't put the result in the place of " + Show(target) + " (" + ExplainError(GetLastError()) +
                        "); is it open elsewhere or protected?");
}

bool IsSameFile(const std::filesystem::path& one, const std::filesystem::path& other)
{
    const auto a = Identity(one), b = Identity(other);
    return a && b && a->dwVolumeSerialNumber == b->dwVolumeSerialNumber && a->nFileIndexHigh == b->nFileIndexHigh &&
           a->nFileIndexLow == b->nFileIndexLow;
}

} // namespace vixahost
