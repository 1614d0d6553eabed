// The built language files, all of them: what a translator gets wrong without noticing.
#include "ModuleFixture.h"

#include "localisation/LanguageModule.h"
#include "localisation/StringBlock.h"
#include "resources/languages/StringIds.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using Texts = std::map<UINT, std::wstring>;

fs::path FileOf(std::wstring_view code)
{
    return vixa::test::ProgramFolder() / (L"VixaVideoFX_" + std::wstring(code) + L".nls");
}

BOOL CALLBACK CollectName(HMODULE, LPCWSTR, LPWSTR name, LONG_PTR names)
{
    reinterpret_cast<std::set<UINT>*>(names)->insert(static_cast<UINT>(reinterpret_cast<ULONG_PTR>(name)));
    return TRUE;
}

// Every string of the file, whatever identifiers it uses.
Texts TextsOf(std::wstring_view code)
{
    const vixa::UniqueModule module = vixa::LoadLanguageModule(FileOf(code).wstring());
    if (!module)
        return {};
    std::set<UINT> blocks;
    EnumResourceNamesW(module.get(), RT_STRING, CollectName, reinterpret_cast<LONG_PTR>(&blocks));
    Texts texts;
    for (const UINT block : blocks) {
        const HRSRC found = FindResourceW(module.get(), MAKEINTRESOURCEW(block), RT_STRING);
        const auto* bytes = static_cast<const std::byte*>(LockResource(LoadResource(module.get(), found)));
        for (UINT index = 0; index < 16; ++index) {
            const std::wstring text = vixa::StringOfBlock({bytes, SizeofResource(module.get(), found)}, index);
            if (!text.empty())
                texts[(block - 1) * 16 + index] = text;
        }
    }
    return texts;
}

std::string Name(std::wstring_view code, UINT id)
{
    return std::string(code.begin(), code.end()) + " " + std::to_string(id);
}

bool IsSpace(wchar_t c)
{
    return c == L' ' || c == 0xA0 || c == 0x3000 || (c >= 0x2000 && c <= 0x200B) || c == 0xFEFF;
}

bool IsControl(wchar_t c)
{
    // With the marks that steer the direction of writing, which none of these languages needs.
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0xFFFD || c == 0xFFFE || c == 0xFFFF ||
           (c >= 0x202A && c <= 0x202E);
}

bool IsUtf16(std::wstring_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isHigh = text[i] >= 0xD800 && text[i] < 0xDC00, isLow = text[i] >= 0xDC00 && text[i] < 0xE000;
        if (isLow || (isHigh && (i + 1 == text.size() || text[i + 1] < 0xDC00 || text[i + 1] >= 0xE000)))
            return false;
        i += isHigh ? 1 : 0;
    }
    return true;
}

std::set<std::wstring> WordsOf(std::wstring text)
{
    for (wchar_t& c : text)
        c = c < 0x80 && !IsCharAlphaW(c) ? L' ' : static_cast<wchar_t>(towlower(c));
    std::set<std::wstring> words;
    std::wistringstream stream(text);
    for (std::wstring word; stream >> word;)
        words.insert(word);
    return words;
}

TEST(LanguageTexts, TheEnglishTextsAreTheAgreedOnes)
{
    const Texts texts = TextsOf(L"en-US");
    EXPECT_EQ(texts.size(), 37u);
    const std::pair<UINT, std::wstring_view> agreed[] = {
        {529, L"Multiply pixel"},
        {530, L"Gamma correction"},
        {531, L"Detect edges"},
        {532, L"Emboss"},
        {533, L"Enhance details"},
        {534, L"Enhance edges"},
        {535, L"Enhance focus"},
        {536, L"Light edges"},
        {537, L"Shift edges"},
        {538, L"Soften filter"},
        {539, L"Filter color"},
        {540, L"Color filter"},
        {541, L"Invert color"},
        {542, L"Add pixel"},
        {543, L"Edges"},
        {544, L"Sharpness"},
        {700, L"Red"},
        {701, L"Green"},
        {702, L"Blue"},
        {703, L"Move the slider thumb to adjust value "},
        {704, L"Select color"},
        {705, L"Select intensity"},
        {708, L"Move all sliders"},
        {709, L"Perform shift edges on horizontal"},
        {710, L"Gamma correction"},
        {711, L"Brighter"},
        {712, L"Darker"},
        {713, L"Horizontal"},
        {714, L"Vertical"},
        {715, L"Select this to move all sliders at the same time"},
        {716, L"Perform inversion to the green"},
        {717, L"Perform inversion to the blue"},
        {718, L"Perform shift edges on vertical"},
        {719, L"Select the color to be transformed"},
        {720, L"Multiply factor"},
        {721, L"Choose direction"},
        {723, L"Perform inversion to the red"},
    };
    for (const auto& [id, text] : agreed)
        EXPECT_EQ(texts.contains(id) ? texts.at(id) : L"", text) << id;
}

TEST(LanguageTexts, EveryListedFileIsThereAndNoOther)
{
    std::set<fs::path> built, listed;
    for (const auto& entry : fs::directory_iterator(vixa::test::ProgramFolder())) {
        if (entry.path().filename().wstring().starts_with(L"VixaVideoFX_") && entry.path().extension() == L".nls")
            built.insert(entry.path().filename());
    }
    for (const std::wstring_view code : vixa::LanguageCodes())
        listed.insert(FileOf(code).filename());
    EXPECT_EQ(built, listed);
}

TEST(LanguageTexts, FilesHoldTheSameTextsAndNothingBroken)
{
    const Texts english = TextsOf(L"en-US");
    for (const std::wstring_view code : vixa::LanguageCodes()) {
        const Texts texts = TextsOf(code);
        for (const auto& [id, text] : english)
            EXPECT_TRUE(texts.contains(id)) << Name(code, id) << " is missing or empty";
        for (const auto& [id, text] : texts) {
            EXPECT_TRUE(english.contains(id)) << Name(code, id) << " is not an identifier";
            EXPECT_TRUE(IsUtf16(text)) << Name(code, id);
            EXPECT_TRUE(std::ranges::none_of(text, IsControl)) << Name(code, id) << " has a control character";
            // The agreed English text of the slider tooltip ends with a space; translations don't copy that.
            const bool mayEndInSpace = code == L"en-US" && id == IDS_TIP_SLIDER;
            EXPECT_FALSE(IsSpace(text.front()) || (IsSpace(text.back()) && !mayEndInSpace)) << Name(code, id);
            EXPECT_EQ(std::ranges::adjacent_find(text, [](wchar_t a, wchar_t b) { return IsSpace(a) && IsSpace(b); }),
                      text.end())
                << Name(code, id) << " has two spaces in a row";
            EXPECT_LT(text.size(), 255u) << Name(code, id) << " does not fit the tooltip's buffer";
        }
    }
}

TEST(LanguageTexts, NamesThatStandTogetherDiffer)
{
    for (const std::wstring_view code : vixa::LanguageCodes()) {
        Texts texts = TextsOf(code);
        std::set<std::wstring> effects, colours;
        for (UINT id = IDS_MULTIPLY_PIXEL; id <= IDS_ADD_PIXEL; ++id) {
            if (id != IDS_GROUP_COLOR_FILTER)
                effects.insert(texts[id]);
        }
        EXPECT_EQ(effects.size(), 13u) << Name(code, 0) << ": two effects have one name";
        const std::set<std::wstring> groups = {texts[IDS_GROUP_COLOR_FILTER], texts[IDS_GROUP_EDGES],
                                               texts[IDS_GROUP_SHARPNESS]};
        EXPECT_EQ(groups.size(), 3u) << Name(code, 0);
        for (const UINT id :
             std::initializer_list<UINT>{IDS_RED, IDS_GREEN, IDS_BLUE, IDS_DARKER, IDS_BRIGHTER, IDS_HORIZONTAL,
                                         IDS_VERTICAL, IDS_TIP_INVERT_RED, IDS_TIP_INVERT_GREEN, IDS_TIP_INVERT_BLUE,
                                         IDS_TIP_SHIFT_HORIZONTAL, IDS_TIP_SHIFT_VERTICAL})
            EXPECT_TRUE(colours.insert(texts[id]).second) << Name(code, id) << " stands for something else, too";
    }
}

TEST(LanguageTexts, NoEnglishIsLeftOver)
{
    // Words that are the same in that language.
    const std::map<std::wstring, std::set<std::wstring>> shared = {
        {L"da-DK", {L"pixel"}},
        {L"de-DE", {L"pixel", L"details", L"horizontal"}},
        {L"el-GR", {L"pixel"}},
        {L"es-CL", {L"color", L"gamma", L"horizontal", L"vertical"}},
        {L"es-ES", {L"color", L"gamma", L"horizontal", L"vertical"}},
        {L"fr-FR", {L"correction", L"direction", L"gamma", L"inversion"}},
        {L"it-IT", {L"gamma", L"pixel"}},
        {L"nl-NL", {L"details", L"factor"}},
        {L"pl-PL", {L"gamma"}},
        {L"pt-BR", {L"horizontal", L"vertical"}},
        {L"pt-PT", {L"horizontal", L"vertical"}},
        {L"sk-SK", {L"filter"}},
        {L"sl-SI", {L"filter"}},
        {L"zh-TW", {L"gamma"}},
    };
    std::set<std::wstring> english;
    for (const auto& [id, text] : TextsOf(L"en-US"))
        english.merge(WordsOf(text));
    ASSERT_GT(english.size(), 40u);
    for (const std::wstring_view code : vixa::LanguageCodes()) {
        if (code == L"en-US")
            continue;
        const auto found = shared.find(std::wstring(code));
        for (const auto& [id, text] : TextsOf(code)) {
            for (const std::wstring& word : WordsOf(text)) {
                const bool isShared = found != shared.end() && found->second.contains(word);
                EXPECT_TRUE(isShared || word.size() < 3 || !english.contains(word))
                    << Name(code, id) << ": " << std::string(word.begin(), word.end());
            }
        }
    }
}

} // namespace
