// vixahost browse
#pragma once

#include <filesystem>
#include <string>

namespace vixahost::commands {

// A window with everything to try: `file` (a picture or a clip) may be empty.
struct BrowseCommand
{
    std::filesystem::path file;
    std::filesystem::path stackFile;  // empty, or the stack to begin with
    std::filesystem::path screenshot; // empty, or the picture of the window to write before it closes by itself
    std::string language;             // empty, or a code such as "de-DE" or "de"
    int width = 0, height = 0;        // pixels of the window; 0: as the system likes
};

// Opens the browser's window and returns when it is closed. Throws HostError.
void Run(const BrowseCommand& command);

} // namespace vixahost::commands
