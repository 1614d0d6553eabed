// Clips that the platform's decoders read: what kind a file is, and what is in it, as far as that must be known without
// them. Trusts no number. Portable: bytes in, answers out.
#pragma once

#include "host/media/AviFile.h"

#include <string_view>

namespace vixahost::media {

// The kind of clip, of those that aren't read here, that a file begins as: "MP4 or QuickTime"; empty for any other
// file.
std::string_view ForeignClip(FileBytes& file);

// True for an MP4 or QuickTime clip without the box that describes its film: a recording that was not ended, or a copy
// that was cut short.
bool LacksItsFilm(FileBytes& file);

// Whether a foreign clip's own description tells of sound. The platform's graph is silent on sound for which it has no
// decoder.
bool TellsOfSound(FileBytes& file);

} // namespace vixahost::media
