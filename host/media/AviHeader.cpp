#include "host/media/AviHeader.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/media/FileOnDisk.h"

#include <fstream>

namespace vixahost::media {

bool IsAvi(const std::filesystem::path& file)
{
    FileOnDisk bytes(file);
    return BeginsAsAvi(bytes);
}

AviFile ReadClipStructure(FileBytes& bytes, const std::filesystem::path& file)
{
    try {
        return ReadAviFile(bytes);
    } catch (const AviFault& fault) {
        throw FailedJob(Show(file) + " " + fault.what());
    }
}

std::uint64_t MendSoundLengths(const std::filesystem::path& file)
{
    constexpr std::streamoff lengthInHeader = 32;
    const AviFile clip = [&] {
        FileOnDisk bytes(file);
        return ReadClipStructure(bytes, file);
    }();
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    for (const AviStream& sound : clip.streams) {
        if (sound.type != TagOf("auds") || sound.sampleSize == 0)
            continue;
        const auto length = static_cast<std::uint32_t>(sound.ChunkBytes() / sound.sampleSize);
        stream.seekp(static_cast<std::streamoff>(sound.header) + lengthInHeader);
        stream.write(reinterpret_cast<const char*>(&length), sizeof length);
    }
    if (!stream.flush())
        throw FailedJob("Can't finish " + Show(file) + "; is the disk full or the folder protected?");
    return clip.Pictures() ? clip.Pictures()->chunks.size() : 0;
}

} // namespace vixahost::media
