// make-pages [--check] ROOT: writes docs/effects: a page for each effect, its pictures and an index. The pictures show
// what the effects make of docs/effects/sample.png, the first picture of docs/effects.png. With --check it writes
// nothing and tells which files are not as it would write them; pictures are compared by their pixels.
#include "bridges/frei0r/Bands.h"
#include "bridges/frei0r/Steps.h"
#include "tools/make-pages/Page.h"
#include "tools/make-pages/Picture.h"

#include <algorithm>
#include <bit>
#include <cctype>
#include <cstdio>
#include <exception>
#include <fstream>
#include <set>
#include <stdexcept>
#include <string_view>

using namespace vixa::pages;

namespace {

namespace fs = std::filesystem;

template <const auto& description, auto step>
Effect Describe(const char* identifier, std::span<const vixavideofx::ParameterDescription> parameters,
                const std::array<std::uint32_t, 11>& number)
{
    using Fields = typename std::remove_cvref_t<decltype(description)>::Block;
    using Numbers = std::array<std::int32_t, sizeof(Fields) / sizeof(std::int32_t)>;
    const auto defaults = std::bit_cast<Numbers>(description.defaults);
    const vixa::frei0r::Knobs<Fields, description.defaults> all(parameters);
    std::vector<vixa::frei0r::Knob> knobs;
    for (std::size_t i = 0; i < all.size(); ++i)
        knobs.push_back(all[i]);
    return {.identifier = identifier,
            .number = number,
            .parameters = parameters,
            .defaults = Block(defaults.begin(), defaults.end()),
            .stepOf =
                [](const Block& block) {
                    Numbers numbers;
                    std::copy_n(block.begin(), numbers.size(), numbers.begin());
                    return step(std::bit_cast<Fields>(numbers));
                },
            .knobs = std::move(knobs),
            .name = {}};
}

std::vector<Effect> AllEffects()
{
    namespace steps = vixa::frei0r::steps;
    using namespace vixavideofx;
#define EFFECT(name, list, ...)                                                                                        \
    Describe<descriptions::name, steps::name>(#name, parameters::list, std::array<std::uint32_t, 11>{__VA_ARGS__}),
    return {
#include "EffectList.inc"
    };
#undef EFFECT
}

// The English name: of "AddPixel" the text IDS_ADD_PIXEL.
std::string NameOf(const std::string& identifier, const std::string& texts)
{
    std::string id = "IDS";
    for (const char letter : identifier) {
        if (std::isupper(static_cast<unsigned char>(letter)))
            id += '_';
        id += static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    }
    const auto at = texts.find(id + " ");
    const auto begin = texts.find('"', at) + 1;
    if (at == std::string::npos)
        throw std::runtime_error("resources/languages/en-US.rc has no " + id);
    return texts.substr(begin, texts.find('"', begin) - begin);
}

Picture Apply(const Effect& effect, const Setting& setting, Picture picture)
{
    for (int i = 0; i < setting.times; ++i)
        vixa::frei0r::Render(effect.stepOf(setting.block), picture.pixels.data(), picture.pixels.data(),
                             {picture.width, picture.height});
    return picture;
}

// Files of docs/effects as they should be.
class Folder
{
public:
    Folder(fs::path folder, bool only) : path(std::move(folder)), checks(only) {} // `only` checks, writes nothing

    void Text(const std::string& name, const std::string& text)
    {
        known.insert(name);
        const fs::path file = path / name;
        if (checks)
            Note(name, fs::exists(file) && ContentOf(file) == text);
        else if (!(std::ofstream(file, std::ios::binary) << text).flush())
            throw std::runtime_error(file.string() + " can't be written");
    }
    void Image(const std::string& name, const Picture& picture)
    {
        known.insert(name);
        const fs::path file = path / name;
        if (checks)
            Note(name, fs::exists(file) && ReadPng(file) == picture);
        else
            WritePng(file, picture);
    }
    // How many files differ, are missing, or are left of an effect that is no more.
    int Faults()
    {
        known.insert("sample.png");
        for (const auto& entry : fs::directory_iterator(path))
            Note(entry.path().filename().string(), !checks || known.contains(entry.path().filename().string()));
        return faults;
    }

private:
    void Note(const std::string& name, bool right)
    {
        if (right)
            return;
        std::fprintf(stderr, "docs/effects/%s is stale: build the target 'pages' and look at it\n", name.c_str());
        ++faults;
    }

    fs::path path;
    bool checks;
    int faults = 0;
    std::set<std::string> known;
};

int Make(const fs::path& root, bool checks)
{
    const auto words = ReadWords(root / "tools/make-pages/words.txt");
    const std::string texts = ContentOf(root / "resources/languages/en-US.rc");
    const std::string performance = ContentOf(root / "docs/performance.md");
    const Picture sample = ReadPng(root / "docs/effects/sample.png");
    auto effects = AllEffects();
    Folder folder(root / "docs/effects", checks);
    if (words.size() != effects.size())
        throw std::runtime_error("words.txt has another number of effects than the code");
    for (std::size_t i = 0; i < effects.size(); ++i) {
        Effect& effect = effects[i];
        if (words[i].name != effect.identifier)
            throw std::runtime_error("words.txt: " + effect.identifier + " is missed before " + words[i].name);
        effect.name = NameOf(effect.identifier, texts);
        std::vector<Setting> settings;
        for (const std::string& text : words[i].All("picture"))
            settings.push_back(ParseSetting(effect, text));
        if (settings.size() != 3)
            throw std::runtime_error("words.txt: " + effect.name + " needs three pictures");
        for (std::size_t picture = 0; picture < settings.size(); ++picture)
            folder.Image(PictureFile(effect, picture), Apply(effect, settings[picture], sample));
        folder.Text(effect.Stem() + ".md", PageOf(effect, words[i], settings, performance));
    }
    folder.Text("README.md", IndexOf(effects, words));
    return folder.Faults() == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    const bool checks = argc == 3 && std::string_view(argv[1]) == "--check";
    if (argc != 2 && !checks) {
        std::fputs("usage: make-pages [--check] ROOT\n", stderr);
        return 2;
    }
    try {
        return Make(argv[argc - 1], checks);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "make-pages: %s\n", error.what());
        return 1;
    }
}
