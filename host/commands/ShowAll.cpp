#include "host/commands/ShowAll.h"
#include "host/base/HostError.h"
#include "host/base/Interrupt.h"
#include "host/base/ResultCode.h"
#include "host/base/TargetFile.h"
#include "host/base/Text.h"
#include "host/effects/EffectCatalogue.h"
#include "host/graph/EffectGraph.h"
#include "host/media/ContactSheet.h"
#include "host/media/PictureFile.h"
#include "host/media/PictureFrames.h"
#include "host/media/SampleScene.h"

#include <cstdio>

namespace vixahost::commands {

namespace {

// Values that show what an effect does: of named values the last, else one beyond the middle of the range and one
// before it, in turn.
effects::EffectStep Showing(const effects::CatalogueEntry& effect)
{
    effects::EffectStep step = effects::StepOf(effect);
    int ranges = 0;
    for (const auto& parameter : vixavideofx::ParametersOf(effect.classId)) {
        const std::int32_t range = parameter.maximum - parameter.minimum;
        const std::int32_t value = !parameter.choices.empty() ? parameter.choices.back().value
                                   : ranges++ % 2 == 0        ? parameter.minimum + range * 5 / 8
                                                              : parameter.minimum + range * 3 / 8;
        effects::SetParameter(step, std::string(parameter.name) + "=" + std::to_string(value));
    }
    return step;
}

constexpr int framesMeasured = 15;

std::string Cell(std::string text, std::size_t width)
{
    text.resize(std::max(width, text.size() + 1), ' ');
    return text;
}

void Save(const std::filesystem::path& file, const media::Picture& picture)
{
    TargetFile target(file);
    media::WritePicture(target.Temporary(), media::PictureFormat::Png, picture);
    target.Commit();
}

} // namespace

void Run(const ShowAllCommand&)
{
    const std::filesystem::path folder = L"out";
    if (!CreateDirectoryW(folder.c_str(), nullptr) && GetLastError() != ERROR_ALREADY_EXISTS)
        throw FailedJob("The folder \"out\" can't be made here (" + ExplainError(GetLastError()) +
                        "); start from a folder that you may write to.");
    CatchInterrupts();
    const effects::EffectLibrary library;
    const media::Picture scene = media::DrawSampleScene();
    std::vector<media::SheetTile> tiles = {{"The sample picture", "", scene}};

    Say(Cell("effect", 18) + Cell("settings", 32) + Cell("size", 12) + "ms per frame\n");
    for (const effects::CatalogueEntry& effect : effects::ReadCatalogue(library)) {
        const effects::EffectStep step = Showing(effect);
        media::Picture result = scene;
        media::PictureReader reader(scene, framesMeasured);
        media::PictureWriter writer(result);
        graph::EffectGraph graph(library, {step}, reader, writer, reader.Format().TimeOf(framesMeasured));
        graph.Run();
        if (writer.FramesWritten() != framesMeasured)
            throw FailedJob("The filter graph lost frames.");
        Save(folder / (effects::FileStem(effect) + ".png"), result);

        char time[32];
        std::snprintf(time, sizeof time, "%12.3f", graph.MedianMilliseconds());
        const std::string settings = effects::SettingsText(step);
        Say(Cell(effect.englishName, 18) + Cell(settings.empty() ? "-" : settings, 32) +
            Cell(std::to_string(result.width) + " x " + std::to_string(result.height), 12) + time + "\n");
        tiles.push_back({effect.englishName, settings, std::move(result)});
    }
    // The sample itself is a tile and no file, the sheet a file and no tile.
    const std::string effectCount = std::to_string(tiles.size() - 1), files = std::to_string(tiles.size());
    Save(folder / L"contact-sheet.png", media::DrawContactSheet("VixaVideoFX: " + effectCount + " effects", tiles));
    Say(files + " pictures are in the folder out; contact-sheet.png shows all of them.\n");
}

} // namespace vixahost::commands
