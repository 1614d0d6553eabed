#include "host/media/AviInterface.h"

#include "host/base/Text.h"

#include <cstdlib>
#include <map>
#include <mutex>
#include <string>

namespace vixahost::media {

namespace {

// The system's AVI file handler (the import library lacks the header's CLSID_AVIFile).
constexpr CLSID aviFileHandler = {0x00020000, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// The multimedia layer chooses the file procedure by the ending in front of a '+' (what follows names a part of a
// compound file, of which there is none here): names of this ending come to ours. Before it stands a number under
// which the real path is kept.
constexpr FOURCC ending = mmioFOURCC('V', 'X', 'H', ' ');

std::mutex pathsLock;
std::map<unsigned long, std::filesystem::path> paths;

class PathNumber
{
public:
    explicit PathNumber(const std::filesystem::path& path)
    {
        static unsigned long last = 0;
        const std::lock_guard hold(pathsLock);
        number = ++last;
        paths[number] = path;
    }
    ~PathNumber()
    {
        const std::lock_guard hold(pathsLock);
        paths.erase(number);
    }
    PathNumber(const PathNumber&) = delete;
    PathNumber& operator=(const PathNumber&) = delete;

    std::wstring Name() const { return std::to_wstring(number) + L".vxh+"; }

private:
    unsigned long number = 0;
};

HANDLE HandleOf(const MMIOINFO& info)
{
    return reinterpret_cast<HANDLE>(static_cast<ULONG_PTR>(info.adwInfo[0]));
}

LRESULT OpenFileOf(MMIOINFO& info, const char* name)
{
    // The name may have become a full path on its way.
    std::string_view last = name;
    if (const auto slash = last.find_last_of("\\/:"); slash != std::string_view::npos)
        last.remove_prefix(slash + 1);
    std::filesystem::path path;
    {
        const std::lock_guard hold(pathsLock);
        const auto found = paths.find(std::strtoul(std::string(last).c_str(), nullptr, 10));
        if (found == paths.end())
            return MMIOERR_FILENOTFOUND;
        path = found->second;
    }
    if (info.dwFlags & (MMIO_WRITE | MMIO_READWRITE | MMIO_CREATE))
        return MMIOERR_CANNOTOPEN;
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return MMIOERR_CANNOTOPEN;
    info.adwInfo[0] = static_cast<DWORD>(reinterpret_cast<ULONG_PTR>(file));
    info.lDiskOffset = 0;
    return MMSYSERR_NOERROR;
}

// The file procedure: what it must answer to each message is the multimedia layer's rule. -1 is a failure.
// NOLINTNEXTLINE(readability-non-const-parameter): the type is the platform's
LRESULT CALLBACK FileProcedure(LPSTR information, UINT message, LPARAM first, LPARAM second) noexcept
{
    auto& info = *reinterpret_cast<MMIOINFO*>(information);
    DWORD bytes = 0;
    switch (message) {
    case MMIOM_OPEN:
        return OpenFileOf(info, reinterpret_cast<const char*>(first));
    case MMIOM_CLOSE:
        return CloseHandle(HandleOf(info)) ? MMSYSERR_NOERROR : MMIOERR_CANNOTCLOSE;
    case MMIOM_READ:
        if (!ReadFile(HandleOf(info), reinterpret_cast<void*>(first), static_cast<DWORD>(second), &bytes, nullptr))
            return -1;
        info.lDiskOffset += static_cast<LONG>(bytes);
        return static_cast<LRESULT>(bytes);
    case MMIOM_SEEK: {
        const LARGE_INTEGER distance = {.QuadPart = static_cast<LONG>(first)};
        LARGE_INTEGER position = {};
        // SEEK_SET, SEEK_CUR and SEEK_END have the values of FILE_BEGIN, FILE_CURRENT and FILE_END.
        if (!SetFilePointerEx(HandleOf(info), distance, &position, static_cast<DWORD>(second)) ||
            position.QuadPart > MAXLONG)
            return -1;
        info.lDiskOffset = static_cast<LONG>(position.QuadPart);
        return static_cast<LRESULT>(position.QuadPart);
    }
    default:
        return 0;
    }
}

std::mutex sessionsLock;
int sessions = 0;

} // namespace

AviSession::AviSession()
{
    AVIFileInit();
    const std::lock_guard hold(sessionsLock);
    if (sessions++ == 0)
        mmioInstallIOProcW(ending, FileProcedure, MMIO_INSTALLPROC);
}

AviSession::~AviSession()
{
    {
        const std::lock_guard hold(sessionsLock);
        if (--sessions == 0)
            mmioInstallIOProcW(ending, nullptr, MMIO_REMOVEPROC);
    }
    AVIFileExit();
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): there must be a session
HRESULT AviSession::Open(const std::filesystem::path& file, Microsoft::WRL::ComPtr<IAVIFile>& opened) const
{
    const PathNumber number(file);
    CLSID handler = aviFileHandler;
    return AVIFileOpenW(&opened, number.Name().c_str(), OF_READ | OF_SHARE_DENY_WRITE, &handler);
}

} // namespace vixahost::media
