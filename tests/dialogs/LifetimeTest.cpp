// What panels leave behind: nothing, however often they are opened, used and closed.
#include "tests/dialogs/PanelFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

namespace {

// The process's GDI objects: handles are an index below a generation, and an index alone names the object too.
int GdiObjects()
{
    int count = 0;
    for (UINT_PTR index = 1; index < 0x10000; ++index)
        count += GetObjectType(reinterpret_cast<HGDIOBJ>(index)) != 0;
    return count;
}

// How many windows, hooks and other user objects there are: more probes than closed windows have left free slots take
// new slots behind all that live.
int UserObjects()
{
    constexpr int probes = 400;
    HWND windows[probes];
    int highest = 0;
    for (HWND& window : windows) {
        window = CreateWindowExW(0, L"Static", nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        highest = std::max<int>(highest, LOWORD(reinterpret_cast<UINT_PTR>(window)));
    }
    for (HWND window : windows)
        DestroyWindow(window);
    return highest - probes;
}

BOOL CALLBACK CountWindow(HWND, LPARAM sum)
{
    ++*reinterpret_cast<int*>(sum);
    return TRUE;
}

BOOL CALLBACK CountTree(HWND window, LPARAM sum)
{
    CountWindow(window, sum);
    EnumChildWindows(window, CountWindow, sum);
    return TRUE;
}

int ThreadWindows()
{
    int count = 0;
    EnumThreadWindows(GetCurrentThreadId(), CountTree, reinterpret_cast<LPARAM>(&count));
    return count;
}

// The bytes in use on all heaps of the process.
std::size_t HeapBytes()
{
    HANDLE heaps[64];
    std::size_t sum = 0;
    const DWORD count = GetProcessHeaps(64, heaps);
    for (DWORD i = 0; i < count && i < 64; ++i) {
        PROCESS_HEAP_ENTRY entry{};
        HeapLock(heaps[i]);
        while (HeapWalk(heaps[i], &entry))
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)
                sum += entry.cbData;
        HeapUnlock(heaps[i]);
    }
    return sum;
}

// Opens, uses and closes all seven panels.
void Round(HostWindow& host, int number)
{
    ColourPanel colour(host, {1, 1});
    AddPanel add(host, {1, 2, 3, 1});
    InvertPanel invert(host, {1});
    MultiplyPanel multiply(host, {1});
    GammaPanel gamma(host, {99});
    ShiftPanel shift(host, {7});
    EmptyPanel empty(host, {});
    add.Scroll(1007, TB_ENDTRACK);
    SendMessageW(invert.Control(1020), BM_CLICK, 0, 0);
    PostMessageW(multiply.Control(1029), WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    HostWindow::Pump();
    const HWND windows[] = {colour.window, add.window,   invert.window, multiply.window,
                            gamma.window,  shift.window, empty.window};
    // The windows go before their objects, or after them, or some this way and some that.
    for (std::size_t i = 0; i < std::size(windows); ++i)
        if (number % 3 == 0 || (number % 3 == 1 && i % 2 == 0))
            DestroyWindow(windows[i]);
}

LRESULT CALLBACK PassOn(int code, WPARAM wParam, LPARAM lParam)
{
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

// The measures notice what they are to notice.
TEST(Lifetime, MeasuresSeeLeaks)
{
    HostWindow host;
    const std::size_t bytes = HeapBytes();
    const int users = UserObjects(), gdi = GdiObjects(), windows = ThreadWindows();
    std::vector<std::unique_ptr<int>> small(500);
    for (auto& each : small)
        each = std::make_unique<int>();
    std::vector<HHOOK> hooks(50);
    for (HHOOK& hook : hooks)
        hook = SetWindowsHookExW(WH_GETMESSAGE, PassOn, nullptr, GetCurrentThreadId());
    const HBRUSH brush = CreateSolidBrush(1);
    const HWND window =
        CreateWindowExW(0, L"Static", nullptr, WS_CHILD, 0, 0, 0, 0, host.hwnd, nullptr, nullptr, nullptr);
    EXPECT_GE(HeapBytes(), bytes + 500 * sizeof(int));
    EXPECT_GE(UserObjects(), users + 50);
    EXPECT_EQ(GdiObjects(), gdi + 1);
    EXPECT_EQ(ThreadWindows(), windows + 1);
    DestroyWindow(window);
    DeleteObject(brush);
    for (HHOOK hook : hooks)
        UnhookWindowsHookEx(hook);
}

TEST(Lifetime, ClosedPanelsLeaveNoWindowHookOrGdiObject)
{
    const int rounds = Repetitions(286, 10);
    const TestModule module;
    HostWindow host;
    const auto closeOrphans = [&] {
        while (const HWND child = GetWindow(host.hwnd, GW_CHILD))
            DestroyWindow(child);
    };
    for (int i = 0; i < 3; ++i) // what the system keeps for good
        Round(host, i);
    closeOrphans();
    const int gdi = GdiObjects(), windows = ThreadWindows();
    const int users = UserObjects();
    const std::size_t bytes = HeapBytes();
    for (int i = 0; i < rounds; ++i) {
        Round(host, i);
        closeOrphans();
    }
    EXPECT_EQ(ThreadWindows(), windows);
    EXPECT_LE(GdiObjects(), gdi + 6); // caches of the system may still grow
    EXPECT_LE(UserObjects(), users + 20) << "a leak of one object for each panel would be " << 7 * rounds;
    EXPECT_LE(HeapBytes(), bytes + 5000) << "a leak of 100 bytes for each panel would be " << 700 * rounds;
    printf("%d panels: GDI objects %d -> %d, windows %d -> %d, user objects %d -> %d, heap bytes %+d\n", 7 * rounds,
           gdi, GdiObjects(), windows, ThreadWindows(), users, UserObjects(), static_cast<int>(HeapBytes() - bytes));
}

TEST(Lifetime, SliderMovesCostNoMemory)
{
    const TestModule module;
    HostWindow host;
    AddPanel panel(host, {0, 0, 0, 1});
    const auto move = [&](int count) {
        for (int i = 0; i < count; ++i) {
            panel.Put(1007, i % 511 - 255);
            panel.Scroll(1007, TB_LINEDOWN);
            panel.set.history.clear();
        }
        HostWindow::Pump();
    };
    move(1000);
    const std::size_t before = HeapBytes();
    const int gdi = GdiObjects();
    host.notifications = 0;
    const int moves = Repetitions(10000, 1000);
    move(moves);
    EXPECT_EQ(host.notifications, moves);
    EXPECT_LE(HeapBytes(), before + 2000);
    EXPECT_LE(GdiObjects(), gdi + 6); // caches of the system may still grow
    printf("%d moves: heap bytes %+d\n", moves, static_cast<int>(HeapBytes() - before));
}

} // namespace
