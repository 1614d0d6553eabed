// The floors of the house: a room includes only what stands on its own floor's foundations or below.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace {

namespace fs = std::filesystem;

const fs::path root = VIXA_SOURCE_DIR;

// What each room may include besides itself; no room includes any other folder of the tree. Kept as a list rather than
// as numbers so that two rooms of one floor cannot quietly grow into each other.
const std::map<std::string, std::set<std::string>> allowed = {
    {"include", {}},
    {"framework", {}},
    {"effects/kernels", {"include"}},
    {"bridges/frei0r", {"include", "effects/kernels"}},
    {"parameters", {"include"}},
    {"filter", {"include", "framework", "parameters"}},
    {"bitmap", {"framework"}},
    {"ui", {"framework"}},
    {"sxs", {"framework"}},
    {"effects", {"include", "framework", "parameters", "filter", "effects/kernels"}},
    {"localisation", {"bitmap", "framework"}},
    {"dialogs", {"include", "framework", "parameters", "ui", "localisation", "resources"}},
    {"registration", {"framework", "sxs"}},
    {"catalogue", {"include", "framework", "bitmap", "dialogs", "localisation"}},
    {"module",
     {"include", "framework", "effects", "catalogue", "localisation", "registration", "resources", "dialogs"}},
    {"host/base", {"framework"}},
    {"host/media", {"framework", "host/base"}},
    {"host/effects", {"include", "framework", "host/base"}},
    {"host/graph", {"include", "framework", "host/base", "host/media", "host/effects"}},
    {"host/browse", {"include", "framework", "host/base", "host/media", "host/effects", "host/graph"}},
    {"host/fixtures", {"include", "framework", "host/base", "host/effects", "host/graph"}},
    {"host/validate", {"include", "framework", "host/base", "host/effects", "host/graph", "host/fixtures"}},
    {"host/commands",
     {"include", "framework", "host/base", "host/media", "host/effects", "host/graph", "host/browse", "host/validate"}},
    {"host", {"host/base", "host/commands"}}, // main
    {"examples", {"include"}},
};

// The longest room that the path lies in: a folder below a room that is none itself belongs to that room.
std::string RoomOf(const std::string& path)
{
    const auto slash = path.find('/');
    if (slash == std::string::npos)
        return {};
    const std::string inner = path.substr(0, path.find('/', slash + 1));
    return allowed.contains(inner) ? inner : path.substr(0, slash);
}

bool IsSource(const fs::path& file)
{
    static const std::set<std::string> endings = {".h", ".cpp", ".inl"};
    return endings.contains(file.extension().string());
}

// An included file as seen from the root.
std::string FromRoot(const std::string& included, const fs::path& by, const std::string& room)
{
    if (included.starts_with("vixavideofx/"))
        return "include/" + included;
    const bool isNeighbour = included.find('/') == std::string::npos && fs::exists(by.parent_path() / included);
    return isNeighbour ? room + "/" + included : included;
}

TEST(House, IncludesNeverPointUpward)
{
    const std::regex include(R"re(^\s*#\s*include\s*["<]([^">]+)[">])re");
    std::size_t checked = 0;
    for (const auto& [room, mayInclude] : allowed) {
        for (const auto& entry : fs::recursive_directory_iterator(root / room)) {
            const std::string path = fs::relative(entry.path(), root).generic_string();
            if (!entry.is_regular_file() || !IsSource(entry.path()) || (RoomOf(path) != room && room != "include"))
                continue;
            std::ifstream stream(entry.path());
            std::string line;
            for (int number = 1; std::getline(stream, line); ++number) {
                std::smatch match;
                if (!std::regex_search(line, match, include))
                    continue;
                const std::string target = FromRoot(match[1], entry.path(), room);
                const std::string targetRoom = RoomOf(target);
                const bool ofTheTree = allowed.contains(targetRoom) || fs::exists(root / targetRoom);
                if (targetRoom.empty() || targetRoom == room || !ofTheTree)
                    continue;
                ++checked;
                EXPECT_TRUE(mayInclude.contains(targetRoom))
                    << path << ":" << number << ": " << room << " must not include " << targetRoom << " (" << target
                    << ")";
            }
        }
    }
    EXPECT_GT(checked, 0u) << "no include between rooms was seen: is the tree where it should be?";
}

// Whether `from` may include `to`, through others too.
bool Reaches(const std::string& from, const std::string& to, std::set<std::string>& seen)
{
    const auto rule = allowed.find(from);
    return rule != allowed.end() && seen.insert(from).second &&
           std::any_of(rule->second.begin(), rule->second.end(),
                       [&](const std::string& next) { return next == to || Reaches(next, to, seen); });
}

TEST(House, ArrowsPointOneWay)
{
    for (const auto& [room, mayInclude] : allowed) {
        std::set<std::string> seen;
        EXPECT_FALSE(Reaches(room, room, seen)) << room << " may include itself through others";
    }
}

TEST(House, PortableRoomsKnowNoWindows)
{
    const std::regex windows(R"re(#\s*include\s*<(windows|objbase|unknwn|strmif|guiddef)\.h>)re");
    for (const char* room : {"effects/kernels", "bridges"})
        for (const auto& entry : fs::recursive_directory_iterator(root / room)) {
            if (!entry.is_regular_file() || !IsSource(entry.path()))
                continue;
            std::ifstream stream(entry.path());
            for (std::string line; std::getline(stream, line);)
                EXPECT_FALSE(std::regex_search(line, windows)) << entry.path() << ": " << line;
        }
}

} // namespace
