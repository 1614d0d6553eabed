// The system's dialogs to choose a file.
#pragma once

#include "host/browse/Texts.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace vixahost::browse {

enum class FilePurpose
{
    OpenMedium,
    SavePicture,
    SaveClip,
    OpenStack,
    SaveStack,
    SavePreset,
};

// What is opened when several files are chosen: the sequence of pictures that the first one is of, or that file.
std::filesystem::path OneOf(const std::vector<std::filesystem::path>& files);

// Begins with `suggestion`, which may be empty. None when the user has cancelled. Nothing is asked about a file that is
// there already.
std::optional<std::filesystem::path> AskForFile(HWND owner, const Texts& texts, FilePurpose purpose,
                                                const std::filesystem::path& suggestion = {});

} // namespace vixahost::browse
