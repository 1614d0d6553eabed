// What a window looks like.
#pragma once

#include "host/media/Picture.h"

#include <windows.h>

namespace vixahost::media {

// The window as it is on the screen, with its menu but without the frame, which belongs to the desktop it is shown on.
// It must be visible. Throws FailedJob.
Picture PictureOfWindow(HWND window);
// What a part of the screen shows. Throws FailedJob.
Picture PictureOfScreen(const RECT& area);

} // namespace vixahost::media
