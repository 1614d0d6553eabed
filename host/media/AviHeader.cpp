#include "host/media/AviHeader.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/media/FileOnDisk.h"

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

} // namespace vixahost::media
