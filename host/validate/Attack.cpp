#include "host/validate/Attack.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/fixtures/GuardedMemory.h"
#include "host/fixtures/PushGraph.h"
#include "host/validate/CrashWatch.h"
#include "host/validate/EmbeddedPanel.h"

#include <vixavideofx/ClassIds.h>

#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <mutex>
#include <random>
#include <thread>

namespace vixahost::validate {

namespace {

// Chance that can be repeated: each thread has its own seed.
class Dice
{
public:
    explicit Dice(unsigned seed) : engine(seed) {}
    // From 0 to below the count.
    std::size_t Below(std::size_t count) { return engine() % count; }
    template <typename Range>
    auto& One(Range&& range)
    {
        return *(std::begin(range) + static_cast<std::ptrdiff_t>(Below(std::size(range))));
    }
    std::int32_t Any() { return static_cast<std::int32_t>(engine()); }

private:
    std::mt19937 engine;
};

// One kind of attempt. Each answers how many times it did what it is named for.
struct Attempt
{
    const char* what;
    int threads;
    int (*run)(Subject&, Dice&);
};

int LinkQueries(Subject& library, Dice& dice)
{
    const auto factory = library.Factory(*dice.One(Promises()).classId);
    for (int i = 0; i < 1000; ++i) {
        ComPtr<IEffectInfo> info;
        ComPtr<IClassFactory> back;
        RequireResult(factory.As(&info), S_OK, "the factory's QueryInterface(IEffectInfo)");
        RequireResult(info.As(&back), S_OK, "the catalogue object's QueryInterface(IClassFactory)");
        Require(back.Get() == factory.Get(), "a catalogue object leads to another factory");
    }
    return 2000;
}

// The factory goes before or after its catalogue object, which answers what a host asks at its start.
int Objects(Subject& library, Dice& dice)
{
    const Promise& effect = dice.One(Promises());
    auto factory = library.Factory(*effect.classId);
    ComPtr<IEffectInfo> info;
    RequireResult(factory.As(&info), S_OK, "the factory's QueryInterface(IEffectInfo)");
    if (dice.Below(2))
        factory.Reset();
    constexpr ULONG languages[] = {1033, 0x0407, 0x040C, 0x0411, 0x0419, 0, 0xFFFF, 0x040D};
    WCHAR text[256] = {};
    RequireResult(info->GetEffectName(dice.One(languages), text, nullptr), S_OK, "GetEffectName");
    Require(text[0] != 0, "an effect has no name");
    ULONG key = 0;
    RequireResult(info->GetSortKey(&key), S_OK, "GetSortKey");
    RequireNumber(key, effect.sortKey, std::string(effect.name) + ": GetSortKey");
    fixtures::RecordedSet set;
    RequireResult(info->SetDefaults(&set), S_OK, "SetDefaults");
    Require(set.Block() == effect.defaults, std::string(effect.name) + ": other defaults");
    return 1;
}

std::int32_t AnyValue(Dice& dice)
{
    constexpr std::int32_t edges[] = {INT_MIN, -256, -1, 0, 1, 2, 7, 11, 100, 255, 256, INT_MAX};
    return dice.Below(2) ? dice.One(edges) : dice.Any();
}

// A block of any values, or one that is short, absurdly long, or can't be read.
void Disorder(fixtures::RecordedSet& set, Dice& dice)
{
    set.Store({AnyValue(dice), AnyValue(dice), AnyValue(dice), AnyValue(dice)});
    const int claimed = AnyValue(dice);
    const HRESULT result = dice.Below(3) ? S_OK : E_FAIL;
    if (dice.Below(2))
        set.answer = [&set, claimed, result](void* buffer, int* size) {
            set.effects::DataPropertySet::GetData(buffer, size);
            *size = claimed;
            return result;
        };
}

int Frames(Subject& library, Dice& dice)
{
    const Promise& effect = dice.One(Promises());
    const auto filter = library.Filter(*effect.classId);
    const auto parameters = Parameters(filter.Get());
    constexpr LONG sizes[] = {LONG_MIN, -65536, -7, -1, 0, 1, 2, 3, 5, 16, 33, 65536, 0x10000001, LONG_MAX};
    const LONG columns = dice.One(sizes), rows = dice.One(sizes);
    fixtures::PushGraph graph(filter.Get(), fixtures::VideoType(columns, rows));
    graph.Seen().keepsContent = false;
    constexpr int frames = 10;
    for (int i = 0; i < frames; ++i) {
        fixtures::RecordedSet set;
        Disorder(set, dice);
        RequireResult(parameters->SetPropertySet(&set), S_OK, "SetPropertySet");
        const fixtures::GuardedMemory memory(1 + dice.Below(3000), dice.Below(2)
                                                                       ? fixtures::GuardedMemory::Guard::Behind
                                                                       : fixtures::GuardedMemory::Guard::Before);
        fixtures::HandSample sample(memory.Bytes());
        // What it says of its size it has, because 0 would mean that its length counts; of that it may say anything.
        if (dice.Below(2))
            sample.length = AnyValue(dice);
        RequireResult(graph.Send(&sample), S_OK, std::string(effect.name) + ": Receive");
    }
    RequireNumber(graph.Seen().samples, frames, "samples delivered");
    return frames;
}

// What may be sent to a panel without being a request of the system's own that carries a pointer or begins a loop.
constexpr UINT messages[] = {
    WM_NULL,       WM_DESTROY,     WM_MOVE,       WM_SIZE,          WM_ACTIVATE,     WM_SETFOCUS,
    WM_KILLFOCUS,  WM_ENABLE,      WM_SETREDRAW,  WM_PAINT,         WM_CLOSE,        WM_SYSCOLORCHANGE,
    WM_SHOWWINDOW, WM_CANCELMODE,  WM_NEXTDLGCTL, WM_INITDIALOG,    WM_COMMAND,      WM_TIMER,
    WM_HSCROLL,    WM_VSCROLL,     WM_INITMENU,   WM_KEYDOWN,       WM_KEYUP,        WM_CHAR,
    WM_MOUSEMOVE,  WM_LBUTTONDOWN, WM_LBUTTONUP,  WM_LBUTTONDBLCLK, WM_MBUTTONUP,    WM_MOUSEWHEEL,
    WM_USER,       WM_USER + 1,    WM_APP,        WM_APP + 77,      WM_PARENTNOTIFY, 0xC000,
    0xFFFF,
};

HWND AnyChild(HWND panel, Dice& dice)
{
    HWND child = GetWindow(panel, GW_CHILD);
    for (std::size_t steps = dice.Below(12); child && steps > 0; --steps)
        child = GetWindow(child, GW_HWNDNEXT);
    return child;
}

void SendAny(HWND panel, Dice& dice)
{
    const HWND child = AnyChild(panel, dice);
    if (dice.Below(8) == 0) {
        constexpr UINT codes[] = {TTN_GETDISPINFOW, TTN_SHOW, TTN_POP, NM_CLICK, 0, UINT_MAX};
        NMTTDISPINFOW notice = {};
        notice.hdr = {child, reinterpret_cast<UINT_PTR>(child), dice.One(codes)};
        SendMessageW(panel, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&notice));
        return;
    }
    const LPARAM parameters[] = {0, reinterpret_cast<LPARAM>(child), MAKELPARAM(dice.Any(), dice.Any())};
    const auto wParam = dice.Below(2) ? static_cast<WPARAM>(MAKEWPARAM(1000 + dice.Below(50), dice.Below(12)))
                                      : static_cast<WPARAM>(dice.Any());
    SendMessageW(panel, dice.One(messages), wParam, dice.One(parameters));
}

// A panel is opened, disturbed, and taken away in one of the ways that hosts have.
int PanelMessages(Subject& library, Dice& dice)
{
    const Promise& effect = dice.One(Promises());
    Embedded panel(library, *effect.classId, effect.working);
    const std::size_t way = dice.Below(6);
    if (way == 0)
        panel.set.onWrite = [&] { panel.info.Reset(); };
    else if (way == 1)
        panel.host.onChange = [&](WPARAM, LPARAM) { panel.info.Reset(); };
    constexpr int count = 40;
    // The system gives handles of windows that have gone to new ones, perhaps another thread's.
    const auto lives = [&] { return GetWindowThreadProcessId(panel.panel, nullptr) == GetCurrentThreadId(); };
    for (int i = 0; i < count && lives(); ++i) {
        if (way == 5 && i == count / 2)
            DestroyWindow(panel.host.Handle());
        SendAny(panel.panel, dice);
        if (dice.Below(10) == 0)
            panel.Disturb();
        if (dice.Below(10) == 0)
            effects::PanelWindow::Pump();
        if (dice.Below(10) == 0 && lives())
            panel.Use();
    }
    if (way == 2)
        std::thread([&] { panel.info.Reset(); }).join();
    else if (way == 3 && lives())
        DestroyWindow(panel.panel);
    else if (way == 4)
        panel.info.Reset();
    effects::PanelWindow::Pump();
    return count;
}

constexpr Attempt attempts[] = {
    {"link queries", 2, LinkQueries},
    {"objects", 3, Objects},
    {"frames", 2, Frames},
    {"panel messages", 2, PanelMessages},
};

// All attempts at once, each on its threads.
class Assault
{
public:
    explicit Assault(Subject& subject) : library(subject)
    {
        for (const Attempt& attempt : attempts)
            for (int i = 0; i < attempt.threads; ++i)
                workers.push_back(std::make_unique<Worker>(attempt));
        unsigned seed = 0;
        for (const auto& worker : workers)
            worker->thread = std::thread(&Assault::Work, this, std::ref(*worker), ++seed);
    }
    ~Assault()
    {
        Stop();
        for (const auto& worker : workers)
            worker->thread.join();
    }
    Assault(const Assault&) = delete;
    Assault& operator=(const Assault&) = delete;

    void Stop() noexcept { over = true; }
    // All threads have ended, after Stop or because one found something.
    bool Ended() const
    {
        return std::all_of(workers.begin(), workers.end(), [](const auto& worker) { return worker->ended.load(); });
    }
    // What was found first; empty when nothing was.
    std::string Fault()
    {
        const std::lock_guard hold(lock);
        return fault;
    }
    std::string Figures() const
    {
        std::string text;
        for (const Attempt& attempt : attempts) {
            std::uint64_t sum = 0;
            for (const auto& worker : workers)
                if (&worker->attempt == &attempt)
                    sum += worker->done;
            text += std::to_string(sum) + " " + attempt.what + ", ";
        }
        PROCESS_MEMORY_COUNTERS memory = {};
        GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
        return text + std::to_string(memory.PagefileUsage / 1024) + " KB of memory\n";
    }
    // What got no further for so long, or null. Asked by one thread, often.
    const char* Stuck(ULONGLONG milliseconds)
    {
        const ULONGLONG now = GetTickCount64();
        for (const auto& worker : workers) {
            if (const std::uint64_t done = worker->done; done != worker->doneBefore) {
                worker->doneBefore = done;
                worker->since = now;
            } else if (!worker->ended && now - worker->since > milliseconds) {
                return worker->attempt.what;
            }
        }
        return nullptr;
    }

private:
    struct Worker
    {
        explicit Worker(const Attempt& its) : attempt(its) {}
        const Attempt& attempt;
        std::atomic<std::uint64_t> done = 0;
        std::atomic<bool> ended = false;
        std::uint64_t doneBefore = 0; // when it was last looked at, and since when it is so
        ULONGLONG since = GetTickCount64();
        std::thread thread;
    };

    void Work(Worker& worker, unsigned seed)
    {
        const HRESULT com = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        try {
            for (Dice dice(seed); !over;)
                worker.done += static_cast<std::uint64_t>(worker.attempt.run(library, dice));
        } catch (const Finding& finding) {
            Fail(worker, finding.reason);
        } catch (const std::exception& other) {
            Fail(worker, other.what());
        }
        if (SUCCEEDED(com))
            CoUninitialize();
        worker.ended = true;
    }
    void Fail(const Worker& worker, const std::string& found)
    {
        over = true;
        const std::lock_guard hold(lock);
        if (fault.empty())
            fault = std::string(worker.attempt.what) + ": " + found;
    }

    Subject& library;
    std::atomic<bool> over = false;
    std::mutex lock;
    std::string fault; // the first; guarded by the lock
    std::vector<std::unique_ptr<Worker>> workers;
};

} // namespace

void Attack(const std::filesystem::path& file, int minutes, const std::function<void(const std::string&)>& say)
{
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    WatchForCrashes(SayCrash);
    Subject library(file);
    library.Info(vixavideofx::CLSID_Emboss);
    const effects::PanelWindow first(1, 1); // two threads that register a window class at once may find none
    Assault assault(library);
    // Whoever doesn't end is stuck too, so the threads are watched until the last has ended.
    for (int seconds = 1; !assault.Ended(); ++seconds) {
        Sleep(1000);
        if (seconds == minutes * 60)
            assault.Stop();
        if (seconds % 60 == 0)
            say(std::to_string(seconds / 60) + " min: " + assault.Figures());
        if (const char* const stuck = assault.Stuck(120'000)) {
            const std::string fault = assault.Fault();
            say("hang: " + std::string(stuck) + " get no further\n" + (fault.empty() ? "" : fault + "\n"));
            TerminateProcess(GetCurrentProcess(), 4);
        }
    }
    const std::string fault = assault.Fault();
    if (!fault.empty())
        throw FailedJob("The library gave way: " + fault);
    if (library.CanUnload() != S_OK)
        throw FailedJob("Objects of the library are left when everything has been released.");
    say("The library held: " + assault.Figures());
}

} // namespace vixahost::validate
