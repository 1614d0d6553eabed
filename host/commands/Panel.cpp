#include "host/commands/Panel.h"
#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/TargetFile.h"
#include "host/base/Text.h"
#include "host/commands/Words.h"
#include "host/effects/DataPropertySet.h"
#include "host/effects/EffectCatalogue.h"
#include "host/effects/PanelWindow.h"
#include "host/media/PictureFile.h"
#include "host/media/WindowPicture.h"

namespace vixahost::commands {

void Run(const PanelCommand& command)
{
    // The language that the catalogue was last read in is the panel's.
    const effects::EffectLibrary library;
    const auto catalogue = effects::ReadCatalogue(library, command.language);
    const effects::EffectStep step = effects::StepOf(catalogue, command.effect);
    const effects::CatalogueEntry& entry = *effects::FindEntry(catalogue, step.classId);
    const auto set = effects::DataPropertySet::Create(step.block);

    effects::PanelWindow host(640, 480);
    HWND panel = nullptr;
    const HRESULT result = host.ShowPanel(*entry.info.Get(), set.Get(), &panel);
    if (FAILED(result) || !panel)
        throw FailedJob("The panel of \"" + entry.englishName + "\" can't be opened: " + Explain(result) + ".");
    // The host's window is as large as the panel, as a host would leave room for it.
    RECT area = {};
    GetWindowRect(panel, &area);
    SetWindowPos(host.Handle(), HWND_TOP, 0, 0, area.right - area.left, area.bottom - area.top, SWP_NOACTIVATE);
    SetWindowPos(panel, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_SHOWWINDOW);
    ShowWindow(host.Handle(), SW_SHOWNOACTIVATE);
    for (int i = 0; i < 20; ++i) {
        RedrawWindow(host.Handle(), nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
        effects::PanelWindow::Pump();
        Sleep(10);
    }
    TargetFile target(command.target);
    media::WritePicture(target.Temporary(), media::PictureFormat::Png, media::PictureOfWindow(host.Handle()));
    target.Commit();
}

Words PanelWords(CLI::App& program)
{
    struct Given
    {
        std::string language, file;
        effects::EffectWords effect;
    };
    CLI::App* const parser = program.add_subcommand("panel", "Writes a picture of an effect's settings panel as PNG");
    const auto given = std::make_shared<Given>();
    parser->add_option("--language", given->language, "de, de-DE, pt-BR, or a number such as 1031");
    parser->add_option("EFFECT", given->effect.name, "The effect's English name");
    parser->add_option("FILE", given->file, "PNG file to write");
    parser->add_option("--set", given->effect.settings, "A value that the panel shows")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    return {parser, [given] {
                if (given->effect.name.empty() || given->file.empty())
                    throw WrongWords("It goes: vixahost panel EFFECT FILE [--language LANGUAGE] [--set NAME=VALUE].");
                return PanelCommand{given->effect, Wide(given->file),
                                    effects::AnyLanguage(given->language.empty() ? "en" : given->language)};
            }};
}

} // namespace vixahost::commands
