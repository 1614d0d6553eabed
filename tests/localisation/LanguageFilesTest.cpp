#include "localisation/LanguageFiles.h"

#include <gtest/gtest.h>

#include <set>

namespace {

std::wstring FileName(unsigned language, std::wstring path)
{
    vixa::MakeLanguageFileName(static_cast<vixa::LanguageId>(language), path);
    return path;
}

TEST(LanguageFiles, NameIsTheLibraryPathWithTheLanguagesSuffix)
{
    EXPECT_EQ(FileName(1031, L"C:\\fx\\VixaVideoFX.dll"), L"C:\\fx\\VixaVideoFX_de-DE.nls");
    EXPECT_EQ(FileName(0x0422, L"C:\\fx\\VixaVideoFX.dll"), L"C:\\fx\\VixaVideoFX_uk-UK.nls");
    // The extension is four characters, whatever they say; long paths are no matter.
    EXPECT_EQ(FileName(0x0405, L"C:\\effects"), L"C:\\eff_cs-CZ.nls");
    EXPECT_EQ(FileName(0x0405, L".dll"), L"_cs-CZ.nls");
    const std::wstring deep = L"\\\\?\\C:\\" + std::wstring(600, L'd');
    EXPECT_EQ(FileName(0x041D, deep + L".dll"), deep + L"_sv-SE.nls");
    for (const auto* path : {L"", L"a", L"dll"})
        EXPECT_EQ(FileName(0x0411, path), L"VixaVideoFX_ja-JP.nls");
}

TEST(LanguageFiles, SublanguagesChooseWhereUsageDiffers)
{
    const std::pair<unsigned, std::wstring_view> cases[] = {
        {0x040A, L"es-ES"}, {0x0C0A, L"es-ES"}, {0x080A, L"es-CL"}, {0x340A, L"es-CL"}, {0x000A, L"es-CL"},
        {0x0404, L"zh-TW"}, {0x0804, L"zh-CN"}, {0x0C04, L"zh-CN"}, {0x0416, L"pt-BR"}, {0x0816, L"pt-PT"},
        {0x0409, L"en-US"}, {0x040D, L"en-US"}, {0x0000, L"en-US"}, {0x0407, L"de-DE"}, {0x0C07, L"de-DE"},
        {0x0414, L"nb-NO"}, {0x0814, L"nb-NO"}, {0x0424, L"sl-SI"}, {0x041B, L"sk-SK"}, {0x03FF, L"en-US"},
        {0x0405, L"cs-CZ"}, {0x0406, L"da-DK"}, {0x0408, L"el-GR"}, {0x040B, L"fi-FI"}, {0x040C, L"fr-FR"},
        {0x040E, L"hu-HU"}, {0x0410, L"it-IT"}, {0x0411, L"ja-JP"}, {0x0412, L"ko-KR"}, {0x0413, L"nl-NL"},
        {0x0415, L"pl-PL"}, {0x0419, L"ru-RU"}, {0x041D, L"sv-SE"}, {0x041E, L"th-TH"}, {0x041F, L"tr-TR"},
        {0x0422, L"uk-UK"}};
    for (const auto& [language, code] : cases)
        EXPECT_EQ(vixa::LanguageCode(static_cast<vixa::LanguageId>(language)), code) << std::hex << language;
}

TEST(LanguageFiles, EveryIdentifierIsServedByOneOfTheListedFiles)
{
    std::set<std::wstring_view> reached;
    for (unsigned language = 0; language <= 0xFFFF; ++language)
        reached.insert(vixa::LanguageCode(static_cast<vixa::LanguageId>(language)));
    const auto codes = vixa::LanguageCodes();
    EXPECT_EQ(reached, std::set<std::wstring_view>(codes.begin(), codes.end()));
    EXPECT_EQ(codes.size(), 27u);
    EXPECT_EQ(reached.size(), codes.size());
}

} // namespace
