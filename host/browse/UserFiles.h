// What the window keeps for its user between runs: the files opened last, and stacks of the user's own.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vixahost::browse {

// The folder of all this, below the user's own application data; empty when the system names none. Not made yet.
std::filesystem::path UserFolder();

// The last files, newest first, at most eight.
class RecentFiles
{
public:
    // Without a folder the list ends with this.
    explicit RecentFiles(const std::filesystem::path& folder);
    const std::vector<std::filesystem::path>& List() const noexcept { return files; }
    // Puts a file first and writes the list. What can't be written is only forgotten.
    void Enter(const std::filesystem::path& file);

private:
    std::filesystem::path listFile;
    std::vector<std::filesystem::path> files;
};

// The stack files of a folder, sorted by name; none when there is no such folder.
std::vector<std::filesystem::path> StackFilesIn(const std::filesystem::path& folder);

// A name for the result beside the source, with `ending`: "photo-emboss.png", or "photo-emboss-2.png" when that is
// there.
std::filesystem::path SuggestedName(const std::filesystem::path& source, const std::wstring& addition,
                                    const std::wstring& ending);

// The page that tells most of an effect, of those that exist: docs/effects/`stem`.md, docs/effects/README.md,
// README.md, each looked for in the folder and in up to four above it. Empty when there is none.
std::filesystem::path HelpPage(std::filesystem::path folder, const std::string& stem);

} // namespace vixahost::browse
