#include "host/media/FileOnDisk.h"

#include <algorithm>

namespace vixahost::media {

FileOnDisk::FileOnDisk(const std::filesystem::path& path)
    : file(Opened(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr)))
{
    LARGE_INTEGER bytes = {};
    if (file && GetFileSizeEx(file.get(), &bytes))
        size = static_cast<std::uint64_t>(bytes.QuadPart);
}

bool FileOnDisk::Read(std::uint64_t offset, std::span<std::uint8_t> into)
{
    if (offset > size || into.size() > size - offset)
        return false;
    while (!into.empty()) {
        // With its place in the request a read doesn't lean on the handle's, which another thread may move.
        OVERLAPPED place = {};
        place.Offset = static_cast<DWORD>(offset);
        place.OffsetHigh = static_cast<DWORD>(offset >> 32);
        const auto wanted = static_cast<DWORD>(std::min<std::size_t>(into.size(), 1 << 30));
        DWORD got = 0;
        if (!ReadFile(file.get(), into.data(), wanted, &got, &place) || got == 0)
            return false;
        into = into.subspan(got);
        offset += got;
    }
    return true;
}

NewFile::NewFile(const TargetFile& finished)
    : target(finished), file(Opened(CreateFileW(target.Temporary().c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                                CREATE_ALWAYS, 0, nullptr)))
{
    if (!file)
        throw target.WriteFault(GetLastError());
}

void NewFile::Write(std::uint64_t offset, std::span<const std::uint8_t> bytes)
{
    const LARGE_INTEGER place = {.QuadPart = static_cast<LONGLONG>(offset)};
    if (!SetFilePointerEx(file.get(), place, nullptr, FILE_BEGIN))
        throw target.WriteFault(GetLastError());
    while (!bytes.empty()) {
        const auto wanted = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1 << 30));
        DWORD written = 0;
        if (!WriteFile(file.get(), bytes.data(), wanted, &written, nullptr))
            throw target.WriteFault(GetLastError());
        // Nothing taken without an error: there is no room.
        if (written == 0)
            throw target.WriteFault(ERROR_DISK_FULL);
        bytes = bytes.subspan(written);
    }
}

void NewFile::Close()
{
    file.reset();
}

} // namespace vixahost::media
