// The library itself, as a host with several threads meets it.
#include "ModuleFixture.h"

#include "localisation/LanguageModule.h"
#include "resources/languages/StringIds.h"

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/IEffectInfo.h>

#include <wrl/client.h>

#include <atomic>
#include <map>
#include <thread>

namespace {

namespace fs = std::filesystem;
using Microsoft::WRL::ComPtr;
using namespace vixavideofx;

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

    fs::path folder;
    vixa::UniqueModule library;
};

// Hosts ask from several threads, each in its language: every text must come whole from one language file.
TEST_F(Library, ThreadsThatSwitchLanguagesGetWholeTexts)
{
    constexpr LANGID german = 1031, japanese = 1041;
    std::map<LANGID, std::pair<std::wstring, std::wstring>> texts; // name and group
    for (const auto& [language, code] : {std::pair{german, L"de-DE"}, {japanese, L"ja-JP"}}) {
        fs::copy_file(vixa::test::ProgramFolder() / FileName(code), folder / FileName(code));
        const auto file = vixa::LoadLanguageModule((folder / FileName(code)).wstring());
        texts[language] = {StringOf(file.get(), IDS_EMBOSS), StringOf(file.get(), IDS_GROUP_EDGES)};
    }
    Load();
    std::atomic<int> wrong = 0;
    {
        ULONG length = 0;
        InfoOf(CLSID_Emboss)->GetEffectName(german, nullptr, &length);
        const auto ask = [&](LANGID language) {
            const auto info = InfoOf(CLSID_Emboss);
            WCHAR name[256], group[256];
            for (int i = 0; i < 400; ++i) {
                wrong += info->GetEffectName(language, name, nullptr) != S_OK || name != texts[language].first;
                wrong += info->GetGroupName(0, group, nullptr) != S_OK ||
                         (group != texts[german].second && group != texts[japanese].second);
            }
        };
        std::thread one(ask, german), other(ask, japanese);
        one.join();
        other.join();
    }
    EXPECT_EQ(wrong, 0);
    library.reset();
    for (const auto* code : {L"de-DE", L"ja-JP"})
        EXPECT_TRUE(DeleteFileW((folder / FileName(code)).c_str())) << "unloading leaves a file open";
}

} // namespace
