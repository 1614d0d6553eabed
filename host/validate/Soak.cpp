#include "host/validate/Soak.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/fixtures/OpenObjects.h"
#include "host/fixtures/PixelModel.h"
#include "host/fixtures/PushGraph.h"
#include "host/validate/CrashWatch.h"
#include "host/validate/EmbeddedPanel.h"
#include "host/validate/Threads.h"

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/IEffectChaining.h>
#include <vixavideofx/IInstructionCeiling.h>

#include <psapi.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <optional>
#include <random>

namespace vixahost::validate {

namespace {

using namespace vixavideofx;
using Frame = std::vector<std::uint8_t>;
using Block = std::vector<std::int32_t>;

constexpr LONG frameWidth = 16, frameHeight = 12;
constexpr int framesOfARound = 4000;

// An effect of the row and the two blocks between which it is switched.
struct Place
{
    const GUID* effect;
    std::array<Block, 2> blocks;
};

const std::array<Place, 3>& Row()
{
    static const std::array<Place, 3> row = {{{&CLSID_AddPixel, {{{10, 20, 30, 0}, {-40, 5, 60, 0}}}},
                                              {&CLSID_Emboss, {{{2}, {8}}}},
                                              {&CLSID_GammaCorrection, {{{200}, {45}}}}}};
    return row;
}

// What a frame may become: with each of the effects at either of its blocks.
std::vector<Frame> Possible(const Frame& frame)
{
    std::vector<Frame> results = {frame};
    for (const Place& place : Row()) {
        std::vector<Frame> next;
        for (const Frame& before : results)
            for (const Block& block : place.blocks)
                next.push_back(fixtures::ExpectedFrame(*place.effect, block, before, frameWidth, frameHeight));
        results = std::move(next);
    }
    return results;
}

// What the process holds. A number for each of `held`.
constexpr std::array<const char*, 4> held = {"KB of memory", "handles", "drawing objects", "windows"};
using Holding = std::array<long, held.size()>;

Holding Now()
{
    PROCESS_MEMORY_COUNTERS memory = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
    return {static_cast<long>(memory.PagefileUsage / 1024), fixtures::OpenHandles(), fixtures::OpenDrawingObjects(),
            fixtures::OpenWindows()};
}

// Grown: even the lowest figure of the last tenth is above the highest of the second one. The first tenth is the
// system's, which keeps what it was asked for once.
// Memory has an allowance for heaps that fragment; a byte lost with each of a million frames is four times as much.
constexpr Holding allowance = {256, 0, 0, 0};

std::string Growth(const std::vector<Holding>& history)
{
    const auto tenth = static_cast<std::ptrdiff_t>(history.size() / 10);
    std::string grown;
    for (std::size_t i = 0; i < held.size(); ++i) {
        const auto less = [i](const Holding& one, const Holding& other) { return one[i] < other[i]; };
        const long early = (*std::max_element(history.begin() + tenth, history.begin() + 2 * tenth, less))[i];
        const long late = (*std::min_element(history.end() - tenth, history.end(), less))[i];
        if (late > early + allowance[i])
            grown += (grown.empty() ? "" : ", ") + std::to_string(late - early) + " " + held[i];
    }
    return grown;
}

class Soaking
{
public:
    explicit Soaking(Subject& subject) : library(subject)
    {
        for (std::size_t i = 0; i < frame.size(); ++i)
            frame[i] = static_cast<std::uint8_t>(i * 29 + i / 7);
        possible = Possible(frame);
        for (std::size_t i = 0; i < possible.size(); ++i)
            for (std::size_t j = 0; j < i; ++j)
                Require(possible[i] != possible[j], "two rows of parameters make the same frame");
        for (const Place& place : Row()) {
            row.push_back(library.Filter(*place.effect));
            Switch(*row.back().Get(), place.blocks[0]);
        }
        graph.emplace(row, fixtures::VideoType(frameWidth, frameHeight));
    }

    // Some thousand frames, with new threads beside them.
    void Round()
    {
        const ComPtr<IEffectInfo> info = library.Info(CLSID_Emboss);
        const Meanwhile others(5, [&](int thread) {
            try {
                Disturb(thread, *info.Get());
            } catch (const Finding& finding) {
                Note(finding.reason);
            } catch (const std::exception& other) {
                Note(other.what());
            }
        });
        for (int i = 0; i < framesOfARound; ++i) {
            Require(std::find(possible.begin(), possible.end(), graph->Through(frame)) != possible.end(),
                    "frame " + std::to_string(frames + 1) + " came out torn");
            ++frames;
        }
    }

    // What another thread found; empty when nothing was.
    std::string Fault() const { return failed ? fault : std::string(); }
    std::string Figures() const
    {
        return std::to_string(frames) + " frames, " + std::to_string(done[0] + done[1]) + " changes of parameters, " +
               std::to_string(done[2]) + " of levels, " + std::to_string(done[3]) + " of the language, " +
               std::to_string(done[4]) + " panels";
    }

private:
    static void Switch(IBaseFilter& filter, const Block& block)
    {
        fixtures::RecordedSet set(block);
        RequireResult(Parameters(&filter)->SetPropertySet(&set), S_OK, "SetPropertySet");
    }

    void Disturb(int thread, IEffectInfo& info)
    {
        const auto turn = static_cast<std::size_t>(++done[static_cast<std::size_t>(thread)]);
        const std::size_t place = turn % row.size();
        switch (thread) {
        case 2: {
            ComPtr<IInstructionCeiling> ceiling;
            ComPtr<IEffectChaining> chaining;
            if (SUCCEEDED(row[place].As(&ceiling)))
                RequireResult(ceiling->SetCeiling(static_cast<ULONG>(turn / 3 % 4)), S_OK, "SetCeiling");
            if (SUCCEEDED(row[place].As(&chaining)))
                RequireResult(chaining->SetChaining(turn / 5 % 2 == 0), S_OK, "SetChaining");
            break;
        }
        case 3: {
            constexpr ULONG languages[] = {1033, 0x0407, 0x040C, 0x0411, 0x0419};
            WCHAR text[256] = {};
            RequireResult(info.GetEffectName(languages[turn % 5], text, nullptr), S_OK, "GetEffectName");
            Require(text[0] != 0, "an effect has no name");
            break;
        }
        case 4: {
            const Embedded panel(library, *Promises()[turn % Promises().size()].classId, Block{1, 2, 3, 0});
            panel.Use();
            panel.Disturb();
            effects::PanelWindow::Pump();
            break;
        }
        default:
            Switch(*row[place].Get(), Row()[place].blocks[turn / 3 % 2]);
        }
    }

    void Note(const std::string& found)
    {
        if (!noted.test_and_set()) {
            fault = found;
            failed = true;
        }
    }

    Subject& library;
    Frame frame = Frame(static_cast<std::size_t>(frameWidth * frameHeight) * 4);
    std::vector<Frame> possible;
    // One graph for the whole time: a system may keep something of each that it makes.
    std::vector<ComPtr<IBaseFilter>> row;
    std::optional<fixtures::PushGraph> graph;
    std::uint64_t frames = 0;
    std::array<std::atomic<std::uint64_t>, 5> done = {};
    std::atomic_flag noted;
    std::string fault; // of the first to note one; read once `failed` is set
    std::atomic<bool> failed = false;
};

} // namespace

void Soak(const std::filesystem::path& file, int minutes, const std::function<void(const std::string&)>& say)
try {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    WatchForCrashes(SayCrash);
    Subject library(file);
    library.Info(CLSID_Emboss);
    const effects::PanelWindow first(1, 1); // two threads that register a window class at once may find none
    std::optional<Soaking> soaking(std::in_place, library);
    std::vector<Holding> history;
    const auto figures = [&] {
        std::string text = soaking->Figures();
        for (std::size_t i = 0; i < held.size(); ++i)
            text += (i == 0 ? "; " : ", ") + std::to_string(history.back()[i]) + " " + held[i];
        return text + "\n";
    };
    const ULONGLONG start = GetTickCount64(), end = start + static_cast<ULONGLONG>(minutes) * 60'000;
    ULONGLONG told = start;
    while (GetTickCount64() < end || history.size() < 30) {
        soaking->Round();
        history.push_back(Now());
        if (const std::string fault = soaking->Fault(); !fault.empty())
            throw FailedJob("The library gave way: " + fault);
        if (GetTickCount64() - told >= 60'000) {
            told += 60'000;
            say(std::to_string((told - start) / 60'000) + " min: " + figures());
        }
    }
    if (const std::string grown = Growth(history); !grown.empty())
        throw FailedJob("The process has grown by " + grown + "; at the end " + figures());
    const std::string last = figures();
    soaking.reset();
    if (library.CanUnload() != S_OK)
        throw FailedJob("Objects of the library are left when everything has been released.");
    say("No frame was torn and nothing has grown: " + last);
} catch (const Finding& finding) {
    throw FailedJob("The library gave way: " + finding.reason);
}

} // namespace vixahost::validate
