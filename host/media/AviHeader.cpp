#include "host/media/AviHeader.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/media/FileOnDisk.h"
#include "host/media/ForeignClip.h"

#include <cwchar>

namespace vixahost::media {

bool IsAvi(const std::filesystem::path& file)
{
    FileOnDisk bytes(file);
    return BeginsAsAvi(bytes);
}

std::string ConversionOf(const std::filesystem::path& file)
{
    const auto target = file.parent_path() / (file.stem().native() + L"-rgb.avi");
    return "ffmpeg -i \"" + Show(file) + "\" -c:v rawvideo -pix_fmt bgr24 -c:a pcm_s16le \"" + Show(target) + "\"";
}

std::string WaysOutFor(const std::filesystem::path& file)
{
    // Wine has GStreamer's decoders.
    static const bool wine = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
    return (wine ? "`./run decoders` says which decoders can still be had here, and installs them. Or convert it: "
                 : "Convert it first: ") +
           ConversionOf(file);
}

void RefuseFalseName(const std::filesystem::path& file)
{
    if (_wcsicmp(file.extension().c_str(), L".avi") == 0 && !IsAvi(file))
        throw FailedJob(Show(file) + " is no AVI clip although its name says so: it begins with other bytes.");
}

void RefuseWithoutFilm(const std::filesystem::path& file)
{
    FileOnDisk bytes(file);
    if (LacksItsFilm(bytes))
        throw FailedJob(Show(file) + " holds no film: what describes it is missing (`moov`), as in a recording that " +
                        "was not ended or a copy that was cut short.");
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
