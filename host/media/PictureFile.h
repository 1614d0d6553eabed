// Picture files, through the platform's codecs.
#pragma once

#include "host/media/Picture.h"

#include <filesystem>
#include <optional>

namespace vixahost::media {

enum class PictureFormat
{
    Png,
    Bmp,
    Jpeg,
    Tiff,
};

// By the file name's ending, whatever its case: .png, .bmp, .dib, .jpg, .jpeg, .tif, .tiff.
std::optional<PictureFormat> PictureFormatOf(const std::filesystem::path& file);

// Reads the first picture of a file, whatever its pixel format, turned upright where the file says that it lies on its
// side. Throws FailedJob for a file that is missing, empty, damaged or of another format, and for a picture that is too
// large for the memory or for the codecs: PNG and JPEG end at 4 GB of pixels, BMP and TIFF at 2. COM must be running.
Picture ReadPicture(const std::filesystem::path& file);

// Writes a new file in the given format, whatever the name. Alpha is written when a pixel isn't opaque and the format
// has it (PNG, TIFF); else colours alone. Throws FailedJob, also for a TIFF file of more than 2 GB; what is left of the
// file is the caller's to remove. Messages call it `called` when that isn't empty.
void WritePicture(const std::filesystem::path& file, PictureFormat format, const Picture& picture,
                  const std::filesystem::path& called = {});

// True when some pixel isn't opaque.
bool HasAlpha(const Picture& picture);

} // namespace vixahost::media
