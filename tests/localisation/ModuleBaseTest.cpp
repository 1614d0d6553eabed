#include "Holdings.h"
#include "ModuleFixture.h"

#include "localisation/LanguageModule.h"
#include "localisation/Texts.h"
#include "tests/support/Meanwhile.h"

#include <fstream>
#include <map>
#include <random>
#include <set>

namespace {

using vixa::test::identifiers;
using vixa::test::TestModule;
namespace fs = std::filesystem;

constexpr LANGID german = 1031, french = 1036;
const std::wstring germanText = L"F\u00FCge Pixel hinzu";

struct Modules : vixa::test::ModuleFixture
{
    void WriteFile(std::wstring_view code, std::string_view contents)
    {
        std::ofstream(LanguagePath(code), std::ios::binary) << contents;
    }

    static std::string ContentsOf(const ModuleBase& module, UINT id, LPCWSTR type)
    {
        DWORD size = 0;
        const HGLOBAL found = module.FindModuleResource(id, type, &size);
        return found ? std::string(static_cast<const char*>(LockResource(found)), size) : std::string();
    }
};

TEST_F(Modules, AttachSpeaksEnglishAndJoinsTheList)
{
    TestModule module;
    module.initAnswer = false;
    EXPECT_EQ(vixa::TextModule(), nullptr);
    EXPECT_EQ(vixa::LoadResString(542), L"");
    EXPECT_FALSE(module.Attach(library.get()));
    EXPECT_TRUE(module.initialised);
    EXPECT_EQ(vixa::TextModule(), &module);
    EXPECT_EQ(ModuleBase::GetLanguage(), 1033);
    EXPECT_EQ(module.ResourceHandle(), library.get());
    EXPECT_EQ(vixa::LoadResString(542), L"Add pixel");
    EXPECT_EQ(vixa::LoadResString(700), L"Red");
    for (const UINT missing : {0u, 1u, 541u, 544u, 706u, 0x10000u, 0xFFFFFFFFu})
        EXPECT_EQ(vixa::LoadResString(missing), L"") << missing;

    AddLanguage(L"en-US");
    ModuleBase::SetLanguage(1033);
    EXPECT_EQ(module.ResourceHandle(), library.get()) << "English is current already";
    module.Detach();
    EXPECT_FALSE(module.initialised);
    EXPECT_EQ(vixa::TextModule(), nullptr);

    TestModule next;
    EXPECT_TRUE(next.Attach(library.get()));
    EXPECT_NE(next.ResourceHandle(), library.get()) << "the English file is beside the library now";
    EXPECT_EQ(vixa::LoadResString(542), germanText);
    next.Detach();
}

TEST_F(Modules, ALanguageFileServesTextsAndTheLibraryPictures)
{
    TestModule module;
    module.Attach(library.get());
    AddLanguage(L"de-DE");
    ModuleBase::SetLanguage(german);
    EXPECT_EQ(ModuleBase::GetLanguage(), german);
    const HMODULE loaded = module.ResourceHandle();
    EXPECT_EQ(GetModuleHandleW(LanguagePath(L"de-DE").c_str()), nullptr) << "data, not code that could run";
    EXPECT_EQ(module.LoadResString(542), germanText);
    EXPECT_EQ(module.LoadResString(543), L"") << "a text that the file lacks is empty";
    EXPECT_EQ(module.LoadResString(160), L"a");
    EXPECT_EQ(module.LoadResString(161), L"") << "claims more than the block holds";
    EXPECT_EQ(module.LoadResString(162), L"");

    EXPECT_EQ(ContentsOf(module, 339, RT_BITMAP), "own bitmap");
    EXPECT_EQ(ContentsOf(module, 7, L"PICTURE"), "own picture");
    EXPECT_EQ(ContentsOf(module, 7, L"Picture"), "own picture");
    EXPECT_EQ(ContentsOf(module, 7, RT_RCDATA), "other data");
    EXPECT_EQ(ContentsOf(module, 0x10007, RT_RCDATA), "other data") << "the low 16 bits count";
    EXPECT_EQ(module.FindModuleResource(0, RT_RCDATA), nullptr);
    EXPECT_EQ(module.FindModuleResource(8, RT_RCDATA), nullptr);

    ModuleBase::SetLanguage(german);
    EXPECT_EQ(module.ResourceHandle(), loaded) << "asking again costs nothing";
    ModuleBase::SetLanguage(0x0807);
    EXPECT_EQ(ModuleBase::GetLanguage(), 0x0807) << "another German is served by the same file";
    EXPECT_EQ(module.LoadResString(700), L"Rot");
    WCHAR text[40];
    ASSERT_EQ(LoadStringW(module.ResourceHandle(), 542, text, 40), 16);
    EXPECT_EQ(text, germanText);
    module.Detach();
}

TEST_F(Modules, AMissingFileMeansEnglishAndIsTriedAgain)
{
    TestModule module;
    module.Attach(library.get());
    AddLanguage(L"de-DE");
    ModuleBase::SetLanguage(german);
    ModuleBase::SetLanguage(french);
    EXPECT_EQ(ModuleBase::GetLanguage(), 1033);
    EXPECT_EQ(module.ResourceHandle(), library.get());
    EXPECT_EQ(module.LoadResString(542), L"Add pixel");
    AddLanguage(L"fr-FR");
    ModuleBase::SetLanguage(french);
    EXPECT_EQ(ModuleBase::GetLanguage(), french);
    EXPECT_EQ(module.LoadResString(542), germanText);
    module.Detach();
}

TEST_F(Modules, DamagedFilesMeanEnglishAndStayClosed)
{
    TestModule module;
    module.Attach(library.get());
    AddLanguage(L"de-DE");
    std::ifstream stream(LanguagePath(L"de-DE"), std::ios::binary);
    const std::string whole(std::istreambuf_iterator<char>(stream), {});
    stream.close();
    ASSERT_GT(whole.size(), 1024u);

    std::vector<std::string> contents = {"", "MZ", "[texts]\nadd=hinzu\n", std::string(100000, '\xFF')};
    // The last cuts leave the last page of the mapping there, filled with zeros.
    for (std::size_t size = 64; size < whole.size(); size += 192)
        contents.push_back(whole.substr(0, size));
    contents.push_back(whole.substr(0, whole.size() - 1));
    for (const std::string& damaged : contents) {
        WriteFile(L"de-DE", damaged);
        const DWORD mode = GetThreadErrorMode();
        ModuleBase::SetLanguage(german);
        EXPECT_EQ(GetThreadErrorMode(), mode);
        EXPECT_EQ(ModuleBase::GetLanguage(), 1033) << damaged.size();
        EXPECT_EQ(module.LoadResString(542), L"Add pixel");
        EXPECT_TRUE(DeleteFileW(LanguagePath(L"de-DE").c_str())) << damaged.size() << ": somebody holds it open";
    }
    fs::create_directory(LanguagePath(L"de-DE"));
    ModuleBase::SetLanguage(german);
    EXPECT_EQ(ModuleBase::GetLanguage(), 1033) << "a folder";
    fs::remove(LanguagePath(L"de-DE"));
    WriteFile(L"de-DE", whole);
    ModuleBase::SetLanguage(german);
    EXPECT_EQ(module.LoadResString(542), germanText);
    module.Detach();
}

TEST_F(Modules, EveryAttachedModuleIsSwitched)
{
    struct Silent : ModuleBase
    {
        using ModuleBase::Attach;
    };
    AddLanguage(L"de-DE");
    TestModule first, second;
    Silent silent;
    for (ModuleBase* module :
         {static_cast<ModuleBase*>(&first), static_cast<ModuleBase*>(&silent), static_cast<ModuleBase*>(&second)})
        EXPECT_TRUE(module->Attach(library.get()));
    ModuleBase::SetLanguage(german);
    EXPECT_EQ(first.LoadResString(700), L"Rot");
    EXPECT_EQ(second.LoadResString(700), L"Rot");
    EXPECT_EQ(silent.LoadResString(700), L"Red") << "a module without language files";
    first.Detach();
    EXPECT_EQ(vixa::TextModule(), &silent);
    silent.Detach();
    second.Detach();
}

TEST(LanguageModule, BareNamesAreSearchedInTheUsualOrder)
{
    const vixa::UniqueModule found = vixa::LoadLanguageModule(L"VixaVideoFX_de-DE.nls");
    ASSERT_TRUE(found) << "it stands beside the program";
    WCHAR text[40];
    EXPECT_EQ(LoadStringW(found.get(), 700, text, 40), 3);
    EXPECT_STREQ(text, L"Rot");
    EXPECT_FALSE(vixa::LoadLanguageModule(L"VixaVideoFX_xx-XX.nls"));
    EXPECT_FALSE(vixa::LoadLanguageModule(L""));
}

TEST_F(Modules, OtherThreadsSwitchAroundAText)
{
    AddLanguage(L"de-DE");
    AddLanguage(L"fr-FR");
    TestModule module;
    module.Attach(library.get());
    ModuleBase::SetLanguage(german);
    ::test::OnAnotherThread other;
    {
        const ::test::Meanwhile<LockResource> reading(L"kernel32.dll", "LockResource",
                                                      [&] { other.Run([] { ModuleBase::SetLanguage(1033); }); });
        EXPECT_EQ(module.LoadResString(542), germanText) << "its file stays while it is read";
    }
    other.Join();
    ModuleBase::SetLanguage(french);
    const ::test::Meanwhile<FreeLibrary> closing(L"kernel32.dll", "FreeLibrary", [] { ModuleBase::SetLanguage(1033); });
    EXPECT_EQ(vixa::LoadResStringIn(german, 542), germanText) << "answered before anyone switches again";
    EXPECT_EQ(ModuleBase::GetLanguage(), 1033);
    module.Detach();
}

TEST_F(Modules, LibraryPathsMayBeLong)
{
    fs::path deep = L"\\\\?\\" + folder.wstring();
    while (deep.native().size() < 560) {
        deep /= std::wstring(50, L'd');
        ASSERT_TRUE(CreateDirectoryW(deep.c_str(), nullptr)) << GetLastError();
    }
    const fs::path longLibrary = deep / L"VixaVideoFX.dll", longLanguage = deep / L"VixaVideoFX_de-DE.nls";
    ASSERT_TRUE(CopyFileW(LibraryPath().c_str(), longLibrary.c_str(), TRUE));
    ASSERT_TRUE(
        CopyFileW((vixa::test::ProgramFolder() / L"localisation_language.nls").c_str(), longLanguage.c_str(), TRUE));
    const HMODULE loaded = LoadLibraryW(longLibrary.c_str());
    ASSERT_NE(loaded, nullptr) << GetLastError();
    {
        TestModule module;
        module.Attach(loaded);
        ModuleBase::SetLanguage(german);
        EXPECT_EQ(module.LoadResString(542), germanText);
        module.Detach();
    }
    FreeLibrary(loaded);
    DeleteFileW(longLibrary.c_str());
    EXPECT_TRUE(DeleteFileW(longLanguage.c_str())) << "somebody holds it open";
    for (; deep.native().size() > folder.native().size() + 4; deep = deep.parent_path())
        RemoveDirectoryW(deep.c_str());
}

TEST_F(Modules, EveryFileServesItsTextsAndSwitchingLeavesNothingBehind)
{
    ASSERT_EQ(std::size(identifiers), vixa::LanguageCodes().size());
    for (const std::wstring_view code : vixa::LanguageCodes()) {
        const std::wstring file = L"VixaVideoFX_" + std::wstring(code) + L".nls";
        fs::copy_file(vixa::test::ProgramFolder() / file, folder / file);
    }
    TestModule module;
    module.Attach(library.get());
    std::map<LANGID, std::wstring> texts;
    const auto switchTo = [&](LANGID language) {
        ModuleBase::SetLanguage(language);
        ASSERT_EQ(ModuleBase::GetLanguage(), language);
        const std::wstring text = module.LoadResString(542) + L"|" + module.LoadResString(719);
        const auto [known, isNew] = texts.try_emplace(language, text);
        ASSERT_EQ(known->second, text);
        ASSERT_GT(text.size(), 8u);
    };
    for (const auto& [language, code] : identifiers)
        switchTo(language);
    std::set<std::wstring> different;
    for (const auto& [language, text] : texts)
        different.insert(text);
    EXPECT_EQ(different.size(), std::size(identifiers)) << "two files answer the same texts";

    vixa::test::ExpectNothingIsLeft([&](std::size_t i) { switchTo(identifiers[i % std::size(identifiers)].first); });
    module.Detach();
}

// A file that is damaged inside may answer what it likes or count as missing, but nothing reads outside it.
TEST_F(Modules, FilesDamagedInsideAreReadWithinTheirBounds)
{
    std::ifstream stream(vixa::test::ProgramFolder() / L"localisation_language.nls", std::ios::binary);
    const std::string whole(std::istreambuf_iterator<char>(stream), {});
    stream.close();
    std::mt19937 random(7);
    TestModule module;
    module.Attach(library.get());
    int served = 0;
    for (int round = 0; round < 300; ++round) {
        std::string damaged = whole;
        for (unsigned changes = 1 + random() % 3; changes > 0; --changes)
            damaged[random() % damaged.size()] = static_cast<char>(random() % 2 ? random() : 0xFF);
        ModuleBase::SetLanguage(1033);
        WriteFile(L"de-DE", damaged);
        ModuleBase::SetLanguage(german);
        served += ModuleBase::GetLanguage() == german ? 1 : 0;
        for (UINT id = 0; id < 1024; id += 3)
            module.LoadResString(id);
        for (const UINT id : {7u, 339u})
            ContentsOf(module, id, RT_RCDATA);
    }
    EXPECT_GT(served, 10);
    EXPECT_LT(served, 300);
    module.Detach();
}

TEST(HandOutText, GoesByTwoCalls)
{
    WCHAR buffer[6] = {L'?', L'?', L'?', L'?', L'?', L'?'};
    ULONG length = 77;
    vixa::HandOutText(L"Rot", nullptr, &length);
    EXPECT_EQ(length, 4u);
    length = 0; // never read on entry
    vixa::HandOutText(L"Rot", buffer, &length);
    EXPECT_EQ(std::wstring(buffer, 6), std::wstring(L"Rot\0??", 6));
    EXPECT_EQ(length, 4u);
    vixa::HandOutText(L"", buffer, nullptr);
    EXPECT_EQ(std::wstring(buffer, 6), std::wstring(L"\0ot\0??", 6));
    vixa::HandOutText(L"", nullptr, &length);
    EXPECT_EQ(length, 1u);
    vixa::HandOutText(L"Rot", nullptr, nullptr);
}

} // namespace
