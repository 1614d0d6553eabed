// What is said of a picture that does not fit into memory.
#pragma once

#include "host/base/HostError.h"

#include <string>

namespace vixahost::media {

// "Not enough memory for a picture of 20000 x 20000 pixels; the largest here is about 11000 x 11000." The second size
// is measured when it is called: a picture of which two copies fit, each in one piece, as while it is read or shown.
FailedJob NoRoomFor(int width, int height);
FailedJob NoRoomFor(const std::string& what);

} // namespace vixahost::media
