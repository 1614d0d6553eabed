#include "host/base/Handles.h"
#include "host/base/HostError.h"
#include "host/base/Interrupt.h"
#include "host/base/Progress.h"
#include "host/base/TargetFile.h"
#include "host/base/Text.h"
#include "host/commands/Commands.h"
#include "host/effects/StackFile.h"
#include "host/graph/EffectGraph.h"
#include "host/media/AviHeader.h"
#include "host/media/ClipReader.h"
#include "host/media/ClipWriter.h"
#include "host/media/PictureFile.h"
#include "host/media/PictureFrames.h"

#include <vixavideofx/IInstructionCeiling.h>

#include <cstdio>

namespace vixahost::commands {

namespace {

void RequireReadable(const std::filesystem::path& file)
{
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &data))
        throw FailedJob("There is no file " + Show(file) + "; check its name and folder.");
    if (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)
        throw FailedJob(Show(file) + " is a folder; name a picture or a clip in it.");
    if (data.nFileSizeLow == 0 && data.nFileSizeHigh == 0)
        throw FailedJob(Show(file) + " is empty; name a picture or a clip that holds something.");
    if (!Opened(CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                            nullptr)))
        throw FailedJob(Show(file) + " can't be opened (system error " + std::to_string(GetLastError()) +
                        "); are you allowed to read it?");
}

std::string StackText(const effects::EffectStack& stack)
{
    std::string text;
    for (const effects::EffectStep& step : stack) {
        const std::string settings = step.Settings();
        text += (text.empty() ? "" : ", then ") + std::string(step.Effect().name) +
                (settings.empty() ? "" : " (" + settings + ")");
    }
    return text;
}

void ReportDone(const ApplyCommand& command, const media::FrameFormat& format, std::int64_t frames, double milliseconds)
{
    char figures[96];
    std::snprintf(figures, sizeof figures, "%d x %d, %lld %s, %.2f ms per frame", format.width, format.height,
                  static_cast<long long>(frames), frames == 1 ? "picture" : "frames", milliseconds);
    Say(StackText(command.stack) + ": " + Show(command.output) + ", " + figures + "\n");
}

void LowerLevel(const graph::EffectGraph& graph, const ApplyCommand& command)
{
    for (std::size_t step = 0; step < command.stack.size(); ++step) {
        ComPtr<IInstructionCeiling> ceiling;
        // A library that knows no levels runs at the one it has.
        if (SUCCEEDED(graph.Filter(step)->QueryInterface(IID_IInstructionCeiling,
                                                         reinterpret_cast<void**>(ceiling.GetAddressOf()))))
            ceiling->SetCeiling(command.level);
    }
}

void ApplyToPicture(const ApplyCommand& command, media::PictureFormat format)
{
    media::Picture picture = media::ReadPicture(command.input);
    TargetFile target(command.output);
    double milliseconds = 0;
    media::PictureReader reader(picture);
    {
        const effects::EffectLibrary library;
        // Reader and writer share the picture: the one frame is read before it is written.
        media::PictureWriter writer(picture);
        graph::EffectGraph graph(library, command.stack, reader, writer, reader.Format().TimeOf(1));
        LowerLevel(graph, command);
        graph.Run();
        if (writer.FramesWritten() != 1)
            throw FailedJob("The filter graph gave no picture.");
        milliseconds = graph.MedianMilliseconds();
    }
    media::WritePicture(target.Temporary(), format, picture);
    if (Interrupted())
        throw FailedJob("Stopped before the end; nothing was written.");
    target.Commit();
    ReportDone(command, reader.Format(), 1, milliseconds);
}

void ApplyToClip(const ApplyCommand& command)
{
    media::ClipReader reader(command.input);
    TargetFile target(command.output);
    media::ClipWriter writer(target.Temporary(), reader);
    const effects::EffectLibrary library;
    Progress progress(reader.FrameCount());
    double milliseconds = 0;
    try {
        graph::EffectGraph graph(library, command.stack, reader, writer, reader.Format().TimeOf(reader.FrameCount()));
        LowerLevel(graph, command);
        graph.Run([&](std::int64_t done) { progress.Show(done); });
        milliseconds = graph.MedianMilliseconds();
    } catch (...) {
        progress.End();
        throw;
    }
    progress.End();
    writer.Finish();
    if (Interrupted())
        throw FailedJob("Stopped before the end; nothing was written.");
    target.Commit();
    ReportDone(command, reader.Format(), reader.FrameCount(), milliseconds);
    if (writer.Depth() == media::ClipDepth::Rgb24)
        Say("The clip has 24 bits per pixel: with 32 it would be larger than the 2 GB that an AVI file may have.\n");
}

} // namespace

void Apply(const ApplyCommand& command)
{
    const std::optional<media::PictureFormat> format = media::PictureFormatOf(command.output);
    const bool clipWanted = _wcsicmp(command.output.extension().c_str(), L".avi") == 0;
    if (!format && !clipWanted)
        throw WrongWords("The output " + Show(command.output) +
                         " must end in .png, .bmp, .jpg or .tif for a picture or in .avi for a clip.");
    RequireReadable(command.input);
    if (IsSameFile(command.input, command.output))
        throw WrongWords("Input and output are the same file, " + Show(command.input) +
                         "; name another output, the input is never changed.");
    const bool clip = media::IsAvi(command.input);
    if (clip != clipWanted)
        throw WrongWords(Show(command.input) + (clip ? " is a clip: the output must end in .avi."
                                                     : " is not an AVI clip: the output must be a picture (.png, "
                                                       ".bmp, .jpg, .tif)."));
    if (!command.stackFile.empty()) {
        ApplyCommand loaded = command;
        {
            const effects::EffectLibrary library;
            const auto catalogue = effects::ReadCatalogue(library);
            loaded.stack = effects::StackToRun(effects::LoadStackFile(command.stackFile, catalogue), catalogue);
        }
        if (loaded.stack.empty())
            throw FailedJob("The stack file " + Show(command.stackFile) +
                            " has no effect that is switched on; there is nothing to apply.");
        clip ? ApplyToClip(loaded) : ApplyToPicture(loaded, *format);
        return;
    }
    if (clip)
        ApplyToClip(command);
    else
        ApplyToPicture(command, *format);
}

} // namespace vixahost::commands
