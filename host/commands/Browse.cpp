#include "host/commands/Browse.h"
#include "host/base/HostError.h"
#include "host/base/TargetFile.h"
#include "host/base/Text.h"
#include "host/browse/BrowseWindow.h"
#include "host/commands/Words.h"
#include "host/media/PictureFile.h"
#include "host/media/WindowPicture.h"

#include <cstdio>
#include <exception>
#include <thread>

namespace vixahost::commands {

namespace {

void SaveScreenshot(HWND window, const std::filesystem::path& file)
{
    if (media::PictureFormatOf(file) != media::PictureFormat::Png)
        throw WrongWords("--screenshot writes a PNG picture; give it a name that ends in .png.");
    TargetFile target(file);
    media::WritePicture(target.Temporary(), media::PictureFormat::Png, media::PictureOfWindow(window));
    target.Commit();
}

void RunWindow(const BrowseCommand& command)
{
    browse::BrowseWindow window({command.width, command.height});
    if (!command.language.empty())
        window.SetLanguage(effects::InstalledLanguage(command.language, window.Work().LibraryFile()));
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
        for (ULONGLONG last = start; GetTickCount64() - last < 500 && GetTickCount64() - start < 30'000; Sleep(5)) {
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
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

// "1180x760". Throws WrongWords.
void ReadSize(const std::string& text, BrowseCommand& command)
{
    if (text.empty())
        return;
    int length = 0;
    if (std::sscanf(text.c_str(), "%5dx%5d%n", &command.width, &command.height, &length) != 2 ||
        static_cast<std::size_t>(length) != text.size() || command.width < 1 || command.height < 1)
        throw WrongWords("--size takes the window's width and height in pixels, as in --size 1180x760; \"" + text +
                         "\" is none.");
}

} // namespace

void Run(const BrowseCommand& command)
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

Words BrowseWords(CLI::App& program)
{
    struct Given
    {
        std::string file, stack, screenshot, size, language;
    };
    CLI::App* const parser =
        program.add_subcommand("browse", "Opens a window in which effects are tried on a picture or a clip");
    const auto given = std::make_shared<Given>();
    parser->add_option("FILE", given->file, "Picture or clip to open");
    parser->add_option("--stack", given->stack, "A stack file to begin with")->type_name("FILE");
    parser->add_option("--screenshot", given->screenshot, "Writes a picture of the window (.png) and ends")
        ->type_name("FILE");
    parser->add_option("--size", given->size, "The window's size in pixels")->type_name("WIDTHxHEIGHT");
    parser->add_option("--language", given->language, "The effects' language, as de or pt-BR")->type_name("CODE");
    AddVerbose(*parser);
    return {parser, [given] {
                BrowseCommand command{Wide(given->file), Wide(given->stack), Wide(given->screenshot), given->language};
                ReadSize(given->size, command);
                return command;
            }};
}

} // namespace vixahost::commands
