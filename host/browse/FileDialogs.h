// The system's dialogs to choose a file.
#pragma once

#include <windows.h>

#include <filesystem>
#include <optional>

namespace vixahost::browse {

enum class FilePurpose
{
    OpenMedium,
    SavePicture,
    SaveClip,
    OpenStack,
    SaveStack,
};

// None when the user has cancelled.
std::optional<std::filesystem::path> AskForFile(HWND owner, FilePurpose purpose);

} // namespace vixahost::browse
