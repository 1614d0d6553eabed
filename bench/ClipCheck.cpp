// clip_check: long runs that are too slow for every test run. tools/check-clip.sh starts it.
//
//   clip_check graph [FRAMES]   1920 x 1080 frames through every effect in a graph, all four bytes of every pixel
//                               compared with the plain kernels' result
//   clip_check files [FRAMES]   the same with clips on the disk, in the current directory (two of up to 2 GB)
//   clip_check memory [FRAMES]  640 x 480 frames through all thirteen effects in series, and what memory they took
#include "bench/AllocationCount.h"
#include "bench/KernelResult.h"
#include "host/base/HostError.h"
#include "host/base/Interrupt.h"
#include "host/base/Text.h"
#include "host/commands/Apply.h"
#include "host/graph/EffectGraph.h"
#include "host/media/AviHeader.h"
#include "host/media/ClipReader.h"

#include <windows.h>

#include <psapi.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <vector>

namespace {

using namespace vixahost;

// Every effect, with settings under which it changes most pixels.
effects::EffectStack AllEffects()
{
    effects::EffectStack stack;
    const effects::EffectLibrary library;
    for (const effects::CatalogueEntry& entry : effects::ReadCatalogue(library))
        stack.push_back(effects::StepOf(entry));
    const auto set = [&](const char* effect, const char* setting) {
        for (effects::EffectStep& step : stack)
            if (step.name == effect)
                effects::SetParameter(step, setting);
    };
    set("Add pixel", "red=60");
    set("Add pixel", "green=-30");
    set("Filter color", "intensity=-120");
    set("Filter color", "colour=green");
    set("Invert color", "mask=5");
    set("Multiply pixel", "factor=137");
    set("Gamma correction", "gamma=160");
    return stack;
}

// Frames of noise and ramps, each different from the others: one long run of bytes, begun at another place each time.
class Frames final : public media::FrameReader
{
public:
    Frames(const media::FrameFormat& frames, int count)
        : format(frames), left(count), bytes(frames.FrameBytes() + 4096 * 4)
    {
        std::mt19937 random(20);
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<std::uint8_t>(i / 4096 % 2 ? random() : i / 64);
    }

    media::FrameFormat Format() const override { return format; }
    std::span<const std::uint8_t> Frame(int index) const
    {
        return {bytes.data() + index * 37 % 4096 * 4, format.FrameBytes()};
    }
    bool Read(std::span<std::uint8_t> frame) override
    {
        if (next == left)
            return false;
        const auto from = Frame(next++);
        std::memcpy(frame.data(), from.data(), frame.size());
        return true;
    }

private:
    media::FrameFormat format;
    int left;
    int next = 0;
    std::vector<std::uint8_t> bytes;
};

// Compares what comes with what the kernels make of the same frame. `used` is 4, or 3 where the fourth byte is lost.
class Comparison
{
public:
    Comparison(const effects::EffectStep& step, const media::FrameFormat& format, std::size_t bytesUsed)
        : effect(step), size(format), used(bytesUsed), wanted(format.FrameBytes())
    {
    }

    void Compare(std::span<const std::uint8_t> original, std::span<const std::uint8_t> result)
    {
        std::memcpy(wanted.data(), original.data(), wanted.size());
        bench::ApplyKernel(effect, wanted, size.width, size.height);
        for (std::size_t i = 0; i < wanted.size(); ++i)
            if (i % 4 < used && wanted[i] != result[i]) {
                char text[160];
                std::snprintf(text, sizeof text, "%s: frame %d differs at x %zu, y %zu, byte %zu: %d instead of %d",
                              effect.name.c_str(), frames, i / 4 % std::size_t(size.width),
                              i / 4 / std::size_t(size.width), i % 4, result[i], wanted[i]);
                throw FailedJob(text);
            }
        ++frames;
    }

    int Frames() const noexcept { return frames; }

private:
    const effects::EffectStep& effect;
    media::FrameFormat size;
    std::size_t used;
    std::vector<std::uint8_t> wanted;
    int frames = 0;
};

template <typename Take>
class Writer final : public media::FrameWriter
{
public:
    explicit Writer(Take function) : take(function) {}
    void Write(std::span<const std::uint8_t> frame) override { take(frame); }

private:
    Take take;
};

void Report(const effects::EffectStep& step, int frames, double milliseconds)
{
    char line[160];
    std::snprintf(line, sizeof line, "%-18s %-32s %d frames equal, %.2f ms per frame\n", step.name.c_str(),
                  effects::SettingsText(step).c_str(), frames, milliseconds);
    Say(line);
}

constexpr media::FrameFormat hd = {1920, 1080, 25, 1};

void CheckGraph(int count)
{
    const effects::EffectLibrary library;
    for (const effects::EffectStep& step : AllEffects()) {
        Frames reader(hd, count);
        Comparison comparison(step, hd, 4);
        Writer writer(
            [&](std::span<const std::uint8_t> frame) { comparison.Compare(reader.Frame(comparison.Frames()), frame); });
        graph::EffectGraph graph(library, {step}, reader, writer, hd.TimeOf(count));
        graph.Run();
        if (comparison.Frames() != count)
            throw FailedJob("frames were lost");
        Report(step, comparison.Frames(), graph.MedianMilliseconds());
    }
}

// A 24-bit clip written without the AVI file interface, so that the reader is checked as well.
void WriteClip(const std::filesystem::path& file, const Frames& frames, int count)
{
    std::ofstream out(file, std::ios::binary);
    const auto width = static_cast<std::uint32_t>(hd.width), height = static_cast<std::uint32_t>(hd.height);
    const std::uint32_t frameBytes = width * 3 * height, number = static_cast<std::uint32_t>(count);
    const std::uint32_t movie = 4 + number * (8 + frameBytes), index = number * 16;
    const auto put = [&](std::initializer_list<std::uint32_t> values) {
        for (const std::uint32_t value : values)
            out.write(reinterpret_cast<const char*>(&value), 4);
    };
    const auto tag = [](const char(&text)[5]) {
        std::uint32_t value = 0;
        std::memcpy(&value, text, 4);
        return value;
    };
    constexpr std::uint32_t streamList = 4 + 8 + 56 + 8 + 40, headerList = 4 + 8 + 56 + 8 + streamList;
    put({tag("RIFF"), 4 + 8 + headerList + 8 + movie + 8 + index, tag("AVI "), tag("LIST"), headerList, tag("hdrl")});
    put({tag("avih"), 56, 40000, 0, 0, 0x10, number, 0, 1, frameBytes, width, height, 0, 0, 0, 0});
    put({tag("LIST"), streamList, tag("strl"), tag("strh"), 56, tag("vids"), tag("DIB "), 0, 0, 0, hd.scale, hd.rate, 0,
         number, frameBytes, 0xFFFFFFFF, 0, 0, width | height << 16});
    put({tag("strf"), 40, 40, width, height, 1 | 24 << 16, 0, frameBytes, 0, 0, 0, 0});
    put({tag("LIST"), movie, tag("movi")});
    std::vector<char> narrow(frameBytes);
    for (int i = 0; i < count; ++i) {
        const auto frame = frames.Frame(i);
        for (std::size_t pixel = 0; pixel < frame.size() / 4; ++pixel)
            std::memcpy(&narrow[pixel * 3], &frame[pixel * 4], 3);
        put({tag("00db"), frameBytes});
        out.write(narrow.data(), static_cast<std::streamsize>(narrow.size()));
    }
    put({tag("idx1"), index});
    for (std::uint32_t i = 0; i < number; ++i)
        put({tag("00db"), 0x10, 4 + i * (8 + frameBytes), frameBytes});
    if (!out.flush())
        throw FailedJob("the clip can't be written");
}

// The step as words, so that it goes the way that a user's does.
commands::ApplyCommand ToWords(const effects::EffectStep& step)
{
    effects::EffectWords words = {step.name, {}};
    for (const auto& parameter : vixavideofx::ParametersOf(step.classId))
        words.settings.push_back(std::string(parameter.name) + "=" +
                                 effects::ShowValue(parameter, step.block.at(parameter.offset / sizeof(std::int32_t))));
    return {{words}, {}, L"check-in.avi", L"check-out.avi"};
}

void CheckFiles(int count)
{
    const Frames frames(hd, count);
    WriteClip(L"check-in.avi", frames, count);
    std::vector<std::uint8_t> original(hd.FrameBytes()), result(hd.FrameBytes());
    for (const effects::EffectStep& step : AllEffects()) {
        const auto begin = std::chrono::steady_clock::now();
        commands::Run(ToWords(step));
        const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - begin;
        media::ClipReader in(L"check-in.avi"), out(L"check-out.avi");
        Comparison comparison(step, hd, 3);
        while (in.Read(original)) {
            if (!out.Read(result))
                throw FailedJob("frames were lost");
            comparison.Compare(original, result);
        }
        if (out.FrameCount() != count || comparison.Frames() != count || out.Format().rate != hd.rate)
            throw FailedJob("length or rate were lost");
        Report(step, comparison.Frames(), taken.count() / count);
    }
    DeleteFileW(L"check-in.avi");
    DeleteFileW(L"check-out.avi");
}

void CheckMemory(int count)
{
    const effects::EffectLibrary library;
    const media::FrameFormat format = {640, 480, 25, 1};
    Frames reader(format, count);
    int done = 0;
    std::size_t large = 0;
    Writer writer([&](std::span<const std::uint8_t>) {
        ++done;
        if (done == 100) {
            bench::CountAllocationsFrom(format.FrameBytes() / 2);
        }
        if (done == 100 || done == count / 2 || done == count) {
            large = bench::LargeAllocations();
            PROCESS_MEMORY_COUNTERS memory = {};
            memory.cb = sizeof memory;
            GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
            char line[160];
            std::snprintf(line, sizeof line, "after %6d frames: working set %zu KB, at most %zu KB\n", done,
                          std::size_t{memory.WorkingSetSize} / 1024, std::size_t{memory.PeakWorkingSetSize} / 1024);
            Say(line);
        }
    });
    graph::EffectGraph graph(library, AllEffects(), reader, writer, format.TimeOf(count));
    graph.Run();
    Say("allocations of half a frame's size or more since frame 100: " + std::to_string(large) + "\n");
    if (done != count || large != 0)
        throw FailedJob("frames were lost or memory was taken for each");
}

} // namespace

int wmain(int words, wchar_t** word)
{
    CatchInterrupts();
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const std::wstring what = words > 1 ? word[1] : L"";
    const int frames = words > 2 ? static_cast<int>(std::wcstol(word[2], nullptr, 10)) : 0;
    try {
        if (what == L"graph")
            CheckGraph(frames > 0 ? frames : 300);
        else if (what == L"files")
            CheckFiles(frames > 0 ? frames : 300);
        else if (what == L"memory")
            CheckMemory(frames > 0 ? frames : 10'000);
        else
            throw WrongWords("say graph, files or memory, and a number of frames if you like");
    } catch (const HostError& fault) {
        Complain(std::string("clip_check: ") + fault.what() + "\n");
        return fault.Status();
    }
    Say("all as it should be\n");
    return 0;
}
