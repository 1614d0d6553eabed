#include "host/base/HostError.h"
#include "host/base/TargetFile.h"
#include "host/base/Text.h"
#include "host/browse/BrowseWindow.h"
#include "host/commands/Commands.h"
#include "host/media/PictureFile.h"
#include "host/media/WindowPicture.h"

#include <exception>
#include <thread>

namespace vixahost::commands {

namespace {

LANGID LanguageNamed(const std::string& code, const std::filesystem::path& libraryFile)
{
    std::vector<std::string> known;
    for (const effects::Language& language : effects::FindLanguages(libraryFile)) {
        const std::string full = LowerCase(language.code);
        if (full == LowerCase(code) || full.substr(0, full.find('-')) == LowerCase(code))
            return language.id;
        known.push_back(language.code);
    }
    std::string list;
    for (const std::string& one : known)
        list += (list.empty() ? "" : ", ") + one;
    throw WrongWords("There is no language \"" + code + "\" beside the library; there are " + list + ".");
}

void SaveScreenshot(HWND window, const std::filesystem::path& file)
{
    if (media::PictureFormatOf(file) != media::PictureFormat::Png)
        throw WrongWords("--screenshot writes a PNG picture; give it a name that ends in .png.");
    TargetFile target(file);
    media::WritePicture(target.Temporary(), media::PictureFormat::Png, media::PictureOf(window));
    target.Commit();
}

void RunWindow(const BrowseCommand& command)
{
    browse::BrowseWindow window({command.width, command.height});
    if (!command.language.empty())
        window.SetLanguage(LanguageNamed(command.language, window.Work().LibraryFile()));
    if (!command.stackFile.empty())
        window.LoadStack(command.stackFile);
    if (!command.file.empty())
        window.Open(command.file);
    ShowWindow(window.Handle(), SW_SHOWDEFAULT);
    UpdateWindow(window.Handle());
    MSG message = {};
    if (!command.screenshot.empty()) {
        // Until everything has been drawn and nothing has come for a while.
        const ULONGLONG start = GetTickCount64();
        for (ULONGLONG last = start; GetTickCount64() - last < 500 && GetTickCount64() - start < 10'000; Sleep(5))
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
                DispatchMessageW(&message);
                if (window.Pending())
                    last = GetTickCount64();
            }
        SaveScreenshot(window.Handle(), command.screenshot);
        return;
    }
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        if (window.Translate(message))
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

} // namespace

void Browse(const BrowseCommand& command)
{
    // The system's file dialogs want a thread of the kind that has a message loop.
    std::exception_ptr failure;
    std::thread([&] {
        const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        try {
            RunWindow(command);
        } catch (...) {
            failure = std::current_exception();
        }
        if (SUCCEEDED(com))
            CoUninitialize();
    }).join();
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace vixahost::commands
