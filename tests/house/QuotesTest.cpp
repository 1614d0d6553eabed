// What the documents quote as code is code: a part of a file that is built and run.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path project = VIXA_SOURCE_DIR;

std::vector<std::string> LinesOf(const fs::path& file)
{
    std::ifstream stream(file);
    std::vector<std::string> lines;
    // A quotation may stand further to the left than its original.
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line.substr(std::min(line.find_first_not_of(" \t"), line.size())));
    return lines;
}

std::string Joined(auto first, auto last)
{
    std::string text = "\n";
    for (; first != last; ++first)
        text += *first + "\n";
    return text;
}

TEST(House, QuotedCodeIsPartOfAnExample)
{
    std::vector<std::string> examples;
    for (const auto& entry : fs::directory_iterator(project / "examples")) {
        const auto lines = LinesOf(entry.path());
        examples.push_back(Joined(lines.begin(), lines.end()));
    }
    std::vector<fs::path> documents = {project / "README.md"};
    for (const auto& entry : fs::directory_iterator(project / "docs"))
        // (that page's effect is no part of the tree, so its code is no quotation)
        if (entry.path().extension() == ".md" && entry.path().filename() != "adding-an-effect.md")
            documents.push_back(entry.path());

    const std::string languages[] = {"```cpp", "```c", "```csharp", "```python", "```javascript", "```go"};
    int quotations = 0;
    for (const fs::path& document : documents) {
        const auto lines = LinesOf(document);
        for (auto line = lines.begin(); line != lines.end(); ++line) {
            if (std::ranges::find(languages, *line) == std::end(languages))
                continue;
            const auto end = std::find(line, lines.end(), "```");
            const std::string quotation = Joined(line + 1, end);
            EXPECT_TRUE(std::ranges::any_of(
                examples, [&](const std::string& text) { return text.find(quotation) != std::string::npos; }))
                << document << " quotes what no file in examples/ says:" << quotation;
            ++quotations;
            line = end;
        }
    }
    EXPECT_GT(quotations, 0);
}

} // namespace
