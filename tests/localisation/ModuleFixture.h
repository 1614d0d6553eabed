// A library with language files in a folder of its own, and a module object that serves texts from there.
#pragma once

#include "framework/Handles.h"
#include "localisation/LanguageFiles.h"
#include "localisation/ModuleBase.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace vixa::test {

namespace fs = std::filesystem;

class TestModule : public ModuleBase
{
public:
    bool Init() override
    {
        initialised = moduleHandle != nullptr;
        return initAnswer;
    }
    void Term() override { initialised = false; }
    bool GetLanguageFileName(LANGID language, std::wstring& path) override
    {
        MakeLanguageFileName(language, path);
        return true;
    }

    bool initAnswer = true;
    bool initialised = false;
};

// The folder of the test program, where the built files are.
inline fs::path ProgramFolder()
{
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    return fs::path(path).parent_path();
}

class ModuleFixture : public testing::Test
{
protected:
    void SetUp() override
    {
        folder = fs::temp_directory_path() / (L"vixa-texts-" + std::to_wstring(GetCurrentProcessId()));
        fs::remove_all(folder);
        fs::create_directories(folder);
        fs::copy_file(ProgramFolder() / L"localisation_library.dll", LibraryPath());
        library.reset(LoadLibraryW(LibraryPath().c_str()));
        ASSERT_TRUE(library);
    }

    void TearDown() override
    {
        library.reset();
        std::error_code ignored;
        fs::remove_all(folder, ignored);
    }

    fs::path LibraryPath() const { return folder / L"VixaVideoFX.dll"; }
    fs::path LanguagePath(std::wstring_view code) const
    {
        return folder / (L"VixaVideoFX_" + std::wstring(code) + L".nls");
    }
    void AddLanguage(std::wstring_view code) const
    {
        fs::copy_file(ProgramFolder() / L"localisation_language.nls", LanguagePath(code),
                      fs::copy_options::overwrite_existing);
    }

    fs::path folder;
    UniqueModule library;
};

} // namespace vixa::test
