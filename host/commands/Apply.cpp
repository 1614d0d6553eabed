#include "host/commands/Apply.h"
#include "host/base/Handles.h"
#include "host/base/HostError.h"
#include "host/base/Interrupt.h"
#include "host/base/Progress.h"
#include "host/base/ResultCode.h"
#include "host/base/TargetFile.h"
#include "host/base/Text.h"
#include "host/commands/Words.h"
#include "host/effects/StackFile.h"
#include "host/graph/FileJob.h"
#include "host/media/AviHeader.h"
#include "host/media/PictureSequence.h"

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <map>
#include <tuple>
#include <utility>

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
    if (!Opened(CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr)))
        throw FailedJob(Show(file) + " can't be opened (" + ExplainError(GetLastError()) +
                        "); are you allowed to read it?");
}

// A command, and its effects as the library's catalogue has them.
struct Job
{
    const ApplyCommand& command;
    effects::EffectLibrary effectLibrary;
    effects::EffectStack stack;
};

effects::EffectStack StackOf(const effects::EffectLibrary& library, const std::vector<effects::EffectWords>& steps)
{
    const auto catalogue = effects::ReadCatalogue(library);
    effects::EffectStack stack;
    for (const effects::EffectWords& words : steps)
        stack.push_back(effects::StepOf(catalogue, words));
    return stack;
}

effects::EffectStack StackOf(const effects::EffectLibrary& library, const std::filesystem::path& file)
{
    effects::EffectStack stack = effects::SwitchedOn(effects::LoadStackFile(file, effects::ReadCatalogue(library)));
    if (stack.empty())
        throw FailedJob("The stack file " + Show(file) +
                        " has no effect that is switched on; there is nothing to apply.");
    return stack;
}

std::string StackText(const effects::EffectStack& stack)
{
    std::string text;
    for (const effects::EffectStep& step : stack) {
        const std::string settings = effects::SettingsText(step);
        text += (text.empty() ? "" : ", then ") + step.name + (settings.empty() ? "" : " (" + settings + ")");
    }
    return text;
}

void ReportDone(const Job& job, const graph::JobDone& done)
{
    char figures[96];
    std::snprintf(figures, sizeof figures, "%d x %d, %lld %s, %.2f ms per frame", done.format.width, done.format.height,
                  static_cast<long long>(done.frames), done.frames == 1 ? "picture" : "frames", done.milliseconds);
    // Standard output may be full of frames.
    const auto say = IsStandard(job.command.output) ? Complain : Say;
    const std::string output = IsStandard(job.command.output) ? "standard output" : Show(job.command.output);
    say(StackText(job.stack) + ": " + output + ", " + figures + "\n");
    if (done.yuv)
        say("The clip's YUV was read as " + ColoursText(done.yuv->colours) + "; --matrix and --range choose others.\n");
}

void LowerLevel(const graph::EffectGraph& graph, const Job& job)
{
    for (std::size_t step = 0; step < job.stack.size(); ++step) {
        ComPtr<IInstructionCeiling> ceiling;
        // A library that knows no levels runs at the one it has.
        if (SUCCEEDED(graph.Filter(step)->QueryInterface(IID_IInstructionCeiling,
                                                         reinterpret_cast<void**>(ceiling.GetAddressOf()))))
            ceiling->SetCeiling(job.command.level);
    }
}

// Its line of the terminal ends with it, however the job ends.
class ProgressLine
{
public:
    ~ProgressLine()
    {
        if (progress)
            progress->End();
    }
    void Show(std::int64_t done, std::int64_t total)
    {
        if (!progress)
            progress.emplace(total);
        progress->Show(done);
    }

private:
    std::optional<Progress> progress;
};

bool IsAviName(const std::filesystem::path& name)
{
    return _wcsicmp(name.extension().c_str(), L".avi") == 0;
}

// How the input's sound comes to the frames that were written.
std::string WayToSound(const std::filesystem::path& input, const std::filesystem::path& output,
                       const media::FrameReader& reader)
{
    const std::string sound = "-i \"" + Show(input) + "\" -map 0:v -map 1:a";
    if (IsStandard(output))
        return "FFmpeg puts it back when it reads the clip after the frames: -i - " + sound;
    // Neither y4m nor a sequence holds sound, and a sequence doesn't tell its rate.
    const bool avi = IsAviName(output);
    const auto sequence = media::SequenceName::Of(output);
    const media::FrameFormat format = reader.Format();
    std::filesystem::path whole = output.parent_path() / (input.stem().native() + L"-with-sound");
    whole += avi ? L".avi" : L".mkv";
    return "This puts it back: ffmpeg " +
           (sequence ? "-framerate " + std::to_string(format.rate) + "/" + std::to_string(format.scale) +
                           " -start_number " + std::to_string(reader.FirstNumber().value_or(1)) + " "
                     : "") +
           "-i \"" + Show(output) + "\" " + sound + (avi ? " -c:v copy -c:a pcm_s16le \"" : " -c:v ffv1 -c:a copy \"") +
           Show(whole) + "\"";
}

graph::JobDone Apply(const Job& job, const std::optional<media::PictureFormat>& format)
{
    ProgressLine line;
    graph::FileJob fileJob = {job.effectLibrary, job.stack, job.command.output, Interrupted,
                              [&job](const graph::EffectGraph& graph) { LowerLevel(graph, job); }};
    if (format) {
        media::Picture picture = media::ReadPicture(job.command.input);
        return SaveThroughEffects(fileJob, picture, *format);
    }
    if (!IsStandard(job.command.output))
        fileJob.progress = [&line](std::int64_t done, std::int64_t total) { line.Show(done, total); };
    const auto reader = OpenFrames(job.command.input, job.command.frames);
    const auto target = CreateFrames(job.command.output, job.command.frames, *reader);
    graph::JobDone done = SaveThroughEffects(fileJob, *reader, *target->writer);
    if (done.frames == 0)
        throw FailedJob((IsStandard(job.command.input) ? "Standard input" : Show(job.command.input)) +
                        " holds no frame.");
    target->Commit();
    if (reader->HadAlpha())
        Complain("The pictures' transparency is left out: a clip's frames have none.\n");
    if (target->losesSound)
        Complain(
            std::string("The clip's sound is left out: ") +
            (IsAviName(job.command.output) ? "this system has no decoder for it. " : "only AVI clips have some. ") +
            WayToSound(job.command.input, job.command.output, *reader) + "\n");
    return done;
}

// The words of `apply`, in the order in which they stood: a setting belongs to the effect before it.
std::vector<effects::EffectWords> ReadSteps(const std::vector<CLI::Option*>& order, const CLI::Option* first,
                                            const CLI::Option* then, const CLI::Option* set)
{
    std::vector<effects::EffectWords> steps;
    std::size_t more = 0, settings = 0;
    for (const CLI::Option* option : order) {
        if (option == first ? !steps.empty() : option == then && steps.empty())
            throw WrongWords("--then comes after the first effect: vixahost apply EFFECT --then EFFECT IN OUT.");
        if (option == first) {
            steps.push_back({first->results().front(), {}});
        } else if (option == then) {
            steps.push_back({then->results().at(more++), {}});
        } else if (option == set) {
            const std::string& assignment = set->results().at(settings++);
            if (steps.empty())
                throw WrongWords("--set " + assignment + " belongs after the name of the effect that it sets.");
            steps.back().settings.push_back(assignment);
        }
    }
    return steps;
}

// "1920x1080".
void ReadSize(const std::string& size, media::RawFormat& format)
{
    char rest = 0;
    unsigned width = 0, height = 0;
    if (std::sscanf(size.c_str(), "%9ux%9u%c", &width, &height, &rest) != 2 || width == 0 || height == 0)
        throw WrongWords("--size " + size + " is no size: write it as 1920x1080.");
    format.width = static_cast<int>(width);
    format.height = static_cast<int>(height);
}

// "25" or "30000/1001": frames and seconds.
std::pair<std::uint32_t, std::uint32_t> ReadRate(const std::string& rate)
{
    char rest = 0;
    unsigned frames = 0, seconds = 1;
    const int read = std::sscanf(rate.c_str(), "%9u/%9u%c", &frames, &seconds, &rest);
    if (read < 1 || read > 2 || (read == 1 && rate.find_first_not_of("0123456789") != std::string::npos) ||
        frames == 0 || seconds == 0 || seconds > std::uint64_t{60} * frames)
        throw WrongWords("--rate " + rate + " is no rate: write it as 25 or 30000/1001.");
    return {frames, seconds};
}

// The input is never changed: neither a file nor one of a sequence's pictures.
bool Overwrites(const std::filesystem::path& input, const std::filesystem::path& output)
{
    const auto from = media::SequenceName::Of(input), to = media::SequenceName::Of(output);
    if (!from || !to)
        return IsSameFile(input, output);
    return std::ranges::any_of(from->Numbers(),
                               [&](std::int64_t number) { return IsSameFile(from->At(number), to->At(number)); });
}

} // namespace

void Run(const ApplyCommand& command)
{
    Job job = {command, {}, {}};
    // What is wrong with the words is said before the files are looked at.
    if (command.stackFile.empty())
        job.stack = StackOf(job.effectLibrary, command.steps);
    const bool clipWanted = NamesFrames(command.output);
    const auto format = clipWanted ? std::nullopt : media::PictureFormatOf(command.output);
    if (!format && !clipWanted)
        throw WrongWords("The output " + Show(command.output) +
                         " must end in .png, .bmp, .jpg or .tif for a picture, in .avi or .y4m for a clip, be a "
                         "sequence of pictures such as frame%04d.png, or - for standard output.");
    if (!IsStandard(command.input)) {
        const bool sequence = media::SequenceName::Of(command.input).has_value();
        if (!sequence)
            RequireReadable(command.input);
        if (Overwrites(command.input, command.output))
            throw WrongWords("Input and output are the same file" + std::string(sequence ? "s" : "") + ", " +
                             Show(command.input) + "; name another output, the input is never changed.");
        if (command.frames.rateGiven && !sequence)
            throw WrongWords("--rate is for a sequence of pictures and for --format rgb32; " + Show(command.input) +
                             " tells its own.");
    } else if (!command.frames.bare && command.frames.rateGiven) {
        throw WrongWords("--rate is for a sequence of pictures and for --format rgb32; y4m tells its own.");
    } else if (command.frames.bare && command.frames.bare->width == 0) {
        throw WrongWords(
            "Frames of rgb32 don't tell their size: add --size 1920x1080, and --rate 25 if it isn't that.");
    }
    const bool clip = HoldsFrames(command.input);
    if (!clip)
        media::RefuseFalseName(command.input);
    if (clip != clipWanted)
        throw WrongWords(Show(command.input) +
                         (clip ? " is a clip: the output must end in .avi or .y4m, be a sequence such as "
                                 "frame%04d.png, or -."
                               : " is no clip: the output must be a picture (.png, .bmp, .jpg, .tif)."));
    if (!command.stackFile.empty())
        job.stack = StackOf(job.effectLibrary, command.stackFile);
    CatchInterrupts();
    ReportDone(job, Apply(job, format));
}

Words ApplyWords(CLI::App& program)
{
    struct Given
    {
        std::string effect, input, output, stackFile;
        std::vector<std::string> settings, more;
        unsigned long level = IInstructionCeiling::Avx512;
        media::YuvMatrix matrix = {};
        media::YuvRange range = {};
        std::string format = "y4m", size, rate;
    };
    static const std::map<std::string, unsigned long> levels = {
        {"plain", IInstructionCeiling::Plain},
        {"sse2", IInstructionCeiling::Sse2},
        {"avx2", IInstructionCeiling::Avx2},
        {"avx512", IInstructionCeiling::Avx512},
    };
    static const std::map<std::string, media::YuvMatrix> matrices = {{"601", media::YuvMatrix::Bt601},
                                                                     {"709", media::YuvMatrix::Bt709}};
    static const std::map<std::string, media::YuvRange> ranges = {{"limited", media::YuvRange::Limited},
                                                                  {"full", media::YuvRange::Full}};
    CLI::App* const parser =
        program.add_subcommand("apply", "Sends a picture (PNG, BMP, JPEG, TIFF) or a clip "
                                        "(AVI, y4m, pictures in%04d.png) through one or more effects");
    const auto given = std::make_shared<Given>();
    const CLI::Option* const first =
        parser->add_option("EFFECT", given->effect, "The effect's name, as `vixahost effects` lists it")->required();
    parser->add_option("IN", given->input, "Picture or clip to read; - is standard input")->required();
    const CLI::Option* const out = parser->add_option(
        "OUT", given->output, "Picture or clip to write; its ending says the format, - is standard output");
    parser->add_option("--stack", given->stackFile, "A stack file instead of EFFECT, as the browser saves it")
        ->type_name("FILE");
    const CLI::Option* const set = parser->add_option("--set", given->settings, "A parameter of the effect before it")
                                       ->type_name("NAME=VALUE")
                                       ->allow_extra_args(false);
    const CLI::Option* const then =
        parser->add_option("--then", given->more, "A further effect")->type_name("EFFECT")->allow_extra_args(false);
    parser
        ->add_option("--level", given->level,
                     "The best instruction set to use, to compare times: plain, sse2, avx2, avx512")
        ->type_name("LEVEL")
        ->transform(CLI::CheckedTransformer(levels, CLI::ignore_case));
    const CLI::Option* const matrix =
        parser
            ->add_option("--matrix", given->matrix,
                         "What the YUV of a clip means, 601 or 709 (BT.601, BT.709); without it frames wider than 1279 "
                         "or higher than 576 pixels are 709")
            ->type_name("MATRIX")
            ->transform(CLI::CheckedTransformer(matrices));
    const CLI::Option* const range =
        parser->add_option("--range", given->range, "The levels of a clip's YUV: limited (16 to 235) or full")
            ->type_name("RANGE")
            ->transform(CLI::CheckedTransformer(ranges));
    parser
        ->add_option(
            "--format", given->format,
            "How frames come and go on - (standard input, standard output): y4m, or rgb32 (blue, green, red and "
            "a byte without colour, rows from the top)")
        ->type_name("FORMAT")
        ->check(CLI::IsMember({"y4m", "rgb32"}));
    parser->add_option("--size", given->size, "The size of rgb32 frames on standard input")->type_name("WIDTHxHEIGHT");
    parser
        ->add_option("--rate", given->rate,
                     "Frames per second, such as 25 or 30000/1001, of rgb32 on standard input and of a sequence of "
                     "pictures (in%04d.png)")
        ->type_name("RATE");
    AddVerbose(*parser);
    parser->footer(examples);
    return {parser, [=] {
                FrameWords frames;
                if (matrix->count() > 0)
                    frames.clip.colours.matrix = given->matrix;
                if (range->count() > 0)
                    frames.clip.colours.range = given->range;
                frames.rateGiven = !given->rate.empty();
                if (frames.rateGiven)
                    std::tie(frames.clip.rate, frames.clip.scale) = ReadRate(given->rate);
                if (given->format == "rgb32") {
                    frames.bare = {.rate = frames.clip.rate, .scale = frames.clip.scale};
                    if (!given->size.empty())
                        ReadSize(given->size, *frames.bare);
                } else if (!given->size.empty()) {
                    throw WrongWords("--size is for --format rgb32; y4m tells its own.");
                }
                if (given->stackFile.empty()) {
                    if (out->count() == 0)
                        throw WrongWords(
                            "OUT is required: vixahost apply EFFECT IN OUT (`vixahost --help` shows how it goes)");
                    return ApplyCommand{ReadSteps(parser->parse_order(), first, then, set),
                                        {},
                                        Wide(given->input),
                                        Wide(given->output),
                                        given->level,
                                        frames};
                }
                if (out->count() > 0 || then->count() > 0 || set->count() > 0)
                    throw WrongWords("--stack FILE takes the place of EFFECT, --then and --set: vixahost apply --stack "
                                     "FILE IN OUT.");
                // Without EFFECT the two files are the first two words.
                return ApplyCommand{
                    {}, Wide(given->stackFile), Wide(given->effect), Wide(given->input), given->level, frames};
            }};
}

} // namespace vixahost::commands
