// The library itself, as a host meets it: alone in its folder, and with its language files beside it.
#include "Holdings.h"
#include "ModuleFixture.h"

#include "localisation/LanguageModule.h"
#include "resources/StringIds.h"

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/IEffectInfo.h>

#include <wrl/client.h>

namespace {

namespace fs = std::filesystem;
using Microsoft::WRL::ComPtr;
using vixa::test::identifiers;
using namespace vixavideofx;

struct EffectTexts
{
    const CLSID& clsid;
    UINT nameId, groupId;
};

// One of each group, and one more.
const EffectTexts effects[] = {{CLSID_AddPixel, IDS_ADD_PIXEL, IDS_GROUP_COLOR_FILTER},
                               {CLSID_GammaCorrection, IDS_GAMMA_CORRECTION, IDS_GROUP_COLOR_FILTER},
                               {CLSID_ShiftEdges, IDS_SHIFT_EDGES, IDS_GROUP_EDGES},
                               {CLSID_SoftenFilter, IDS_SOFTEN_FILTER, IDS_GROUP_SHARPNESS}};

std::wstring StringOf(HMODULE module, UINT id)
{
    WCHAR text[256] = {};
    LoadStringW(module, id, text, 256);
    return text;
}

// A copy of the library in a folder of its own.
struct Library : testing::Test
{
    void SetUp() override
    {
        folder = fs::temp_directory_path() / (L"vixa-library-" + std::to_wstring(GetCurrentProcessId()));
        fs::remove_all(folder);
        fs::create_directories(folder);
        fs::copy_file(vixa::test::ProgramFolder() / L"VixaVideoFX.dll", folder / L"VixaVideoFX.dll");
    }
    void TearDown() override
    {
        library.reset();
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    static fs::path FileName(std::wstring_view code) { return L"VixaVideoFX_" + std::wstring(code) + L".nls"; }

    void Load()
    {
        library.reset(LoadLibraryW((folder / L"VixaVideoFX.dll").c_str()));
        ASSERT_TRUE(library) << GetLastError();
    }

    ComPtr<IEffectInfo> InfoOf(const CLSID& clsid) const
    {
        using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
        const auto get = reinterpret_cast<GetClassObject>(
            reinterpret_cast<void*>(GetProcAddress(library.get(), "DllGetClassObject")));
        ComPtr<IClassFactory> factory;
        ComPtr<IEffectInfo> info;
        EXPECT_EQ(get(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.GetAddressOf())), S_OK);
        EXPECT_EQ(factory->QueryInterface(IID_IEffectInfo, reinterpret_cast<void**>(info.GetAddressOf())), S_OK);
        return info;
    }

    template <typename Request>
    static std::wstring TextOf(const Request& request)
    {
        WCHAR text[256] = {};
        ULONG length = 0;
        EXPECT_EQ(request(nullptr, &length), S_OK);
        EXPECT_LE(length, 256u);
        EXPECT_EQ(request(text, nullptr), S_OK);
        EXPECT_EQ(std::wstring(text).size() + 1, length);
        return text;
    }

    static std::wstring NameOf(const ComPtr<IEffectInfo>& info, LANGID language)
    {
        return TextOf([&](WCHAR* text, ULONG* length) { return info->GetEffectName(language, text, length); });
    }
    static std::wstring GroupOf(const ComPtr<IEffectInfo>& info)
    {
        return TextOf([&](WCHAR* text, ULONG* length) { return info->GetGroupName(0, text, length); });
    }

    fs::path folder;
    vixa::UniqueModule library;
};

TEST_F(Library, AloneItAnswersInEnglish)
{
    Load();
    const vixa::UniqueModule english =
        vixa::LoadLanguageModule((vixa::test::ProgramFolder() / FileName(L"en-US")).wstring());
    for (const EffectTexts& effect : effects) {
        const auto info = InfoOf(effect.clsid);
        for (const auto& [language, code] : identifiers) {
            EXPECT_EQ(NameOf(info, language), StringOf(english.get(), effect.nameId));
            EXPECT_EQ(GroupOf(info), StringOf(english.get(), effect.groupId));
        }
    }
}

TEST_F(Library, WithItsFilesItAnswersInEveryLanguage)
{
    for (const auto& [language, code] : identifiers)
        fs::copy_file(vixa::test::ProgramFolder() / FileName(code), folder / FileName(code));
    Load();
    {
        const auto first = InfoOf(CLSID_Emboss);
        for (const EffectTexts& effect : effects) {
            const auto info = InfoOf(effect.clsid);
            for (const auto& [language, code] : identifiers) {
                const vixa::UniqueModule file =
                    vixa::LoadLanguageModule((vixa::test::ProgramFolder() / FileName(code)).wstring());
                EXPECT_EQ(NameOf(info, language), StringOf(file.get(), effect.nameId));
                EXPECT_EQ(GroupOf(info), StringOf(file.get(), effect.groupId));
                EXPECT_EQ(GroupOf(first), StringOf(file.get(), IDS_GROUP_EDGES)) << "one language for all objects";
            }
        }
        vixa::test::ExpectNothingIsLeft(
            [&](std::size_t i) { EXPECT_FALSE(NameOf(first, identifiers[i % std::size(identifiers)].first).empty()); });
    }
    library.reset();
    for (const auto& [language, code] : identifiers)
        EXPECT_TRUE(DeleteFileW((folder / FileName(code)).c_str())) << "unloading leaves a file open";
}

} // namespace
