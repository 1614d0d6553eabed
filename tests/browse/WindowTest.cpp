// The browser's window, driven as its users do: by the mouse and the keys, and judged by what is on the screen.
#include "host/base/Handles.h"
#include "host/browse/BrowseWindow.h"
#include "host/browse/Ids.h"
#include "host/media/PictureFile.h"
#include "host/media/SampleScene.h"
#include "host/media/WindowPicture.h"
#include "tests/host/TestFiles.h"

#include <gtest/gtest.h>

#include <initguid.h>
#include <oleacc.h>
#include <shlobj.h>

#include <atomic>
#include <cstring>
#include <functional>
#include <numeric>
#include <set>
#include <string>
#include <thread>

using namespace vixahost;
using namespace vixahost::browse;
using Microsoft::WRL::ComPtr;

namespace {

bool WaitFor(const std::function<bool()>& done, DWORD milliseconds = 5000)
{
    for (const ULONGLONG end = GetTickCount64() + milliseconds; GetTickCount64() < end; Sleep(10))
        if (done())
            return true;
    return done();
}

std::wstring TextOf(HWND window)
{
    wchar_t text[300] = {};
    GetWindowTextW(window, text, 300);
    return text;
}

std::wstring ClassOf(HWND window)
{
    wchar_t name[100] = {};
    GetClassNameW(window, name, 100);
    return name;
}

// The window of that one's thread that gets the keys, or null.
HWND FocusOf(HWND window)
{
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
    return info.hwndFocus;
}

void Press(WORD key, bool down)
{
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.dwFlags = down ? 0 : KEYEVENTF_KEYUP;
    SendInput(1, &input, sizeof input);
}

void Key(WORD key, bool control = false)
{
    if (control)
        Press(VK_CONTROL, true);
    Press(key, true);
    Press(key, false);
    if (control)
        Press(VK_CONTROL, false);
}

// Through the clipboard: suggestions that a field makes while letters come in one by one would get between them.
void Paste(const std::wstring& text)
{
    const std::size_t bytes = (text.size() + 1) * sizeof(wchar_t);
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, bytes);
    std::memcpy(GlobalLock(memory), text.c_str(), bytes);
    GlobalUnlock(memory);
    ASSERT_TRUE(WaitFor([] { return OpenClipboard(nullptr) != FALSE; }));
    EmptyClipboard();
    SetClipboardData(CF_UNICODETEXT, memory);
    CloseClipboard();
    Key('V', true);
}

// The place and the button are one event each: a pointer set beforehand can still be moved back by what the display
// reports late of an earlier click.
void Mouse(POINT at, DWORD flag)
{
    const LONG width = GetSystemMetrics(SM_CXSCREEN), height = GetSystemMetrics(SM_CYSCREEN);
    INPUT input = {};
    input.type = INPUT_MOUSE;
    // The middle of the pixel in 65536ths of the screen.
    input.mi.dx = (at.x * 2 + 1) * 32768 / width;
    input.mi.dy = (at.y * 2 + 1) * 32768 / height;
    input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE | flag;
    SendInput(1, &input, sizeof input);
}

void Click(POINT at)
{
    Mouse(at, MOUSEEVENTF_LEFTDOWN);
    Mouse(at, MOUSEEVENTF_LEFTUP);
}

// With the button held. The pointer moves on after it, as hands do.
void Drag(POINT from, POINT to)
{
    Mouse(from, MOUSEEVENTF_LEFTDOWN);
    Mouse({(from.x + to.x) / 2, (from.y + to.y) / 2}, 0);
    Mouse(to, 0);
    Mouse(to, MOUSEEVENTF_LEFTUP);
    Mouse({to.x + 30, to.y + 30}, 0);
}

void Drop(HWND on, const std::filesystem::path& file)
{
    const std::size_t bytes = sizeof(DROPFILES) + (file.native().size() + 2) * sizeof(wchar_t);
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, bytes);
    auto* const drop = static_cast<DROPFILES*>(GlobalLock(memory));
    drop->pFiles = sizeof(DROPFILES);
    drop->fWide = TRUE;
    std::memcpy(drop + 1, file.c_str(), file.native().size() * sizeof(wchar_t));
    GlobalUnlock(memory);
    PostMessageW(on, WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
}

// A point of a window by its share of the width and of the height.
POINT PointIn(HWND window, double x, double y)
{
    RECT area = {};
    GetWindowRect(window, &area);
    return {area.left + static_cast<LONG>((area.right - area.left) * x),
            area.top + static_cast<LONG>((area.bottom - area.top) * y)};
}

class BrowserWindow : public testing::Test
{
protected:
    BrowserWindow()
    {
        thread = std::thread([this] {
            CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
            {
                BrowseWindow window({1000, 700});
                window.openPage = [this](const std::filesystem::path& page) {
                    openedPage = page;
                    return ++pagesOpened > 1;
                };
                ShowWindow(window.Handle(), SW_SHOW);
                SetForegroundWindow(window.Handle());
                frame = window.Handle();
                MSG message = {};
                while (GetMessageW(&message, nullptr, 0, 0) > 0) {
                    if (window.Translate(message))
                        continue;
                    TranslateMessage(&message);
                    DispatchMessageW(&message);
                }
            }
            CoUninitialize();
        });
        WaitFor([&] { return frame.load() && GetForegroundWindow() == frame; });
        tree = GetDlgItem(frame, IDC_TREE);
        preview = GetDlgItem(frame, IDC_PREVIEW);
        panelHost = FindWindowExW(frame, nullptr, L"VixaPanelHost", nullptr);
    }

    ~BrowserWindow() override
    {
        PostMessageW(frame, WM_SYSCOMMAND, SC_CLOSE, 0);
        // Whether the stack should be saved may be asked first.
        Answer(L"Don't save");
        thread.join();
    }

    // Presses a button of the question that is shown; false when there is none with such an answer.
    bool Answer(const std::wstring& text) const
    {
        HWND button = nullptr;
        WaitFor([&] {
            const HWND dialog = GetForegroundWindow();
            for (HWND child = nullptr; dialog != frame && (child = FindWindowExW(dialog, child, L"Button", nullptr));)
                if (TextOf(child) == text)
                    button = child;
            return button || !IsWindow(frame);
        });
        if (button)
            SendMessageW(button, BM_CLICK, 0, 0);
        return button && WaitFor([&] { return !IsWindow(button); });
    }

    std::wstring Told() const
    {
        std::wstring text(300, L'\0');
        SendMessageW(GetDlgItem(frame, IDC_STATUS), SB_GETTEXTW, 0, reinterpret_cast<LPARAM>(text.data()));
        text.resize(std::wcslen(text.data()));
        return text;
    }

    HWND Panel() const { return FindWindowExW(panelHost, nullptr, L"#32770", nullptr); }

    // What the preview shows.
    std::vector<std::uint8_t> Seen() const
    {
        const media::Picture window = media::PictureOfWindow(frame);
        RECT client = {}, pane = {};
        GetClientRect(frame, &client);
        MapWindowPoints(frame, nullptr, reinterpret_cast<POINT*>(&client), 2);
        GetWindowRect(preview, &pane);
        const int left = pane.left - client.left, top = window.height - (client.bottom - pane.top);
        std::vector<std::uint8_t> pixels;
        for (int y = top; y < top + pane.bottom - pane.top; ++y)
            pixels.insert(pixels.end(), window.Row(y) + left * 4, window.Row(y) + (left + pane.right - pane.left) * 4);
        return pixels;
    }

    // What the preview shows once it has come to rest.
    std::vector<std::uint8_t> SeenAtRest() const
    {
        std::vector<std::uint8_t> last = Seen();
        for (int calm = 0; calm < 4;) {
            Sleep(25);
            std::vector<std::uint8_t> now = Seen();
            calm = now == last ? calm + 1 : 0;
            last = std::move(now);
        }
        return last;
    }

    bool ChangesFrom(const std::vector<std::uint8_t>& before) const
    {
        return WaitFor([&] { return Seen() != before; }, 3000);
    }

    // Puts a file name into the system's dialog that a key has opened.
    void AnswerFileDialog(const std::filesystem::path& file)
    {
        HWND dialog = nullptr, field = nullptr;
        ASSERT_TRUE(WaitFor([&] {
            dialog = GetForegroundWindow();
            field = dialog && dialog != frame && ClassOf(dialog) == L"#32770" ? FocusOf(dialog) : nullptr;
            return field && ClassOf(field) == L"Edit";
        })) << "no file dialog came that takes a name";
        Paste(file.native());
        ASSERT_TRUE(WaitFor([&] { return TextOf(field) == file.native(); })) << "the name did not arrive";
        Key(VK_RETURN);
        ASSERT_TRUE(WaitFor([&] { return !IsWindow(dialog); })) << "the file dialog stayed";
        WaitFor([&] { return GetForegroundWindow() && GetForegroundWindow() != dialog; });
    }

    std::vector<HTREEITEM> Effects() const
    {
        std::vector<HTREEITEM> effects;
        for (auto* group = TreeView_GetRoot(tree); group; group = TreeView_GetNextSibling(tree, group))
            for (auto* item = TreeView_GetChild(tree, group); item; item = TreeView_GetNextSibling(tree, item))
                effects.push_back(item);
        return effects;
    }

    std::wstring Name(HTREEITEM effect) const
    {
        wchar_t text[100] = {};
        TVITEMW item = {};
        item.mask = TVIF_TEXT;
        item.hItem = effect;
        item.pszText = text;
        item.cchTextMax = 100;
        TreeView_GetItem(tree, &item);
        return text;
    }

    void Choose(HTREEITEM effect) const
    {
        TreeView_EnsureVisible(tree, effect);
        RECT row = {};
        TreeView_GetItemRect(tree, effect, &row, TRUE);
        MapWindowPoints(tree, nullptr, reinterpret_cast<POINT*>(&row), 2);
        Click({(row.left + row.right) / 2, (row.top + row.bottom) / 2});
        WaitFor([&] { return TreeView_GetSelection(tree) == effect; });
    }

    // Moves a slider by one page towards a share of its channel.
    static void ClickSlider(HWND slider, double share)
    {
        RECT channel = {};
        SendMessageW(slider, TBM_GETCHANNELRECT, 0, reinterpret_cast<LPARAM>(&channel));
        POINT at = {channel.left + static_cast<LONG>((channel.right - channel.left) * share),
                    (channel.top + channel.bottom) / 2};
        ClientToScreen(slider, &at);
        Click(at);
    }

    // Does to a control what a user does; false for one that isn't there to change the picture.
    static bool Operate(HWND control)
    {
        const std::wstring kind = ClassOf(control);
        const auto style = static_cast<DWORD>(GetWindowLongPtrW(control, GWL_STYLE));
        if (!(style & WS_VISIBLE))
            return false;
        if (kind == L"msctls_trackbar32") {
            ClickSlider(control, 0.97);
            return true;
        }
        if (kind == L"ComboBox") {
            SetFocusByClick(control);
            return true;
        }
        const DWORD button = style & BS_TYPEMASK;
        if (kind == L"Button" && (button == BS_AUTOCHECKBOX || button == BS_CHECKBOX)) {
            Click(PointIn(control, 0.1, 0.5));
            return true;
        }
        return false;
    }

    // Opens the list and takes the entry below.
    static void SetFocusByClick(HWND combo)
    {
        Click(PointIn(combo, 0.95, 0.5));
        EXPECT_TRUE(WaitFor([&] { return SendMessageW(combo, CB_GETDROPPEDSTATE, 0, 0) != FALSE; }));
        Key(VK_DOWN);
        Key(VK_RETURN);
    }

    std::thread thread;
    std::filesystem::path openedPage; // where F1 leads, the window's thread's until the count below says so
    std::atomic<int> pagesOpened = 0; // the first isn't shown by any program
    std::atomic<HWND> frame = nullptr;
    HWND tree = nullptr, preview = nullptr, panelHost = nullptr;
};

TEST_F(BrowserWindow, EveryEffectAndEveryControlChangesThePicture)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    // Whole paths: while the system's file dialog is open, the current folder is its own.
    const std::filesystem::path here = std::filesystem::current_path();
    const std::filesystem::path in = here / L"browse-in.png", out = here / L"browse-out.png";
    const media::Picture scene = media::DrawSampleScene();
    media::WritePicture(in, media::PictureFormat::Png, scene);
    DeleteFileW(out.c_str());

    Key('O', true);
    AnswerFileDialog(in);
    EXPECT_TRUE(WaitFor([&] { return TextOf(frame).starts_with(L"browse-in.png"); })) << "the picture wasn't opened";
    Key('3', true); // nothing but the result
    Key(VK_DELETE, true);
    const auto plain = SeenAtRest();

    const std::vector<HTREEITEM> effects = Effects();
    ASSERT_EQ(effects.size(), 13u);
    std::size_t operated = 0;
    for (const HTREEITEM effect : effects) {
        SCOPED_TRACE(testing::Message() << "effect " << std::filesystem::path(Name(effect)).string());
        Choose(effect);
        ASSERT_EQ(TreeView_GetSelection(tree), effect);
        bool any = false;
        auto before = SeenAtRest();
        // Sliders first: with an intensity of 0 the choice of a colour has nothing to show.
        std::vector<HWND> controls;
        for (HWND control = GetWindow(Panel(), GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT))
            controls.insert(ClassOf(control) == L"msctls_trackbar32" ? controls.begin() : controls.end(), control);
        for (const HWND control : controls) {
            // A box that only joins the sliders shows its work at the next slider.
            const bool joins = ClassOf(control) == L"Button" &&
                               FindWindowExW(Panel(), nullptr, L"msctls_trackbar32", nullptr) != nullptr;
            const LRESULT state = SendMessageW(control, BM_GETCHECK, 0, 0);
            if (!Operate(control))
                continue;
            any = true;
            ++operated;
            if (joins) {
                EXPECT_TRUE(WaitFor([&] { return SendMessageW(control, BM_GETCHECK, 0, 0) != state; }));
                ClickSlider(FindWindowExW(Panel(), nullptr, L"msctls_trackbar32", nullptr), 0.03);
            }
            EXPECT_TRUE(ChangesFrom(before)) << "control " << GetDlgCtrlID(control) << " changed nothing";
            before = SeenAtRest();
        }
        if (!any) {
            EXPECT_NE(before, plain) << "an effect without settings shows at once";
        }
    }
    EXPECT_GE(operated, 12u) << "the panels' controls were found";

    // Undo and redo what the last panel with controls has not seen: the choice of the last effect.
    const auto last = SeenAtRest();
    Key('Z', true);
    EXPECT_TRUE(ChangesFrom(last));
    Key('Y', true);
    EXPECT_TRUE(WaitFor([&] { return Seen() == last; }));

    Key('S', true);
    AnswerFileDialog(out);
    ASSERT_TRUE(WaitFor([&] { return Told().ends_with(out.filename().native()); })) << "what was saved is said";
    const media::Picture saved = media::ReadPicture(out);
    EXPECT_EQ(saved.width, scene.width);
    EXPECT_NE(saved.pixels, scene.pixels);

    // Over the original only when that is wanted: without a choice another name is asked for.
    Key('S', true);
    AnswerFileDialog(in);
    ASSERT_TRUE(
        WaitFor([&] { return FindWindowExW(GetForegroundWindow(), nullptr, nullptr, L"Choose another name"); }));
    Key(VK_RETURN);
    AnswerFileDialog(here / L"browse-out.gif");
    Key(VK_RETURN); // that this is no picture's name is said
    EXPECT_TRUE(WaitFor([&] { return GetForegroundWindow() == frame; }));
    EXPECT_EQ(media::ReadPicture(in).pixels, scene.pixels) << "the original was overwritten unasked";
    EXPECT_EQ(Told(), L"") << "what was saved before is still said";
    Key('S', true);
    AnswerFileDialog(in);
    EXPECT_TRUE(Answer(L"Replace"));
    EXPECT_TRUE(WaitFor([&] { return Told().ends_with(in.filename().native()); }));
    EXPECT_EQ(media::ReadPicture(in).pixels, saved.pixels);
    DeleteFileW(in.c_str());
    DeleteFileW(out.c_str());
    CoUninitialize();
}

TEST_F(BrowserWindow, TheDividerAndTheStackFollowTheMouse)
{
    const auto both = SeenAtRest();
    Click(PointIn(preview, 0.25, 0.5));
    EXPECT_TRUE(ChangesFrom(both)) << "the divider stayed";
    const HWND list = GetDlgItem(frame, IDC_STACK);
    ASSERT_EQ(ListView_GetItemCount(list), 1);

    RECT area = {};
    GetWindowRect(frame, &area);
    SetWindowPos(frame, nullptr, 0, 0, area.right - area.left + 150, area.bottom - area.top + 90, SWP_NOMOVE);
    const auto enlarged = SeenAtRest();
    RedrawWindow(preview, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    EXPECT_TRUE(SeenAtRest() == enlarged) << "enlarging the window left parts of the old picture";
    Click(PointIn(GetDlgItem(frame, IDM_ADD), 0.5, 0.5));
    EXPECT_TRUE(WaitFor([&] { return ListView_GetItemCount(list) == 2; }));
    Choose(Effects()[9]);
    auto seen = SeenAtRest();
    RECT box = {};
    ListView_GetItemRect(list, 1, &box, LVIR_BOUNDS);
    POINT at = {box.left + 10, (box.top + box.bottom) / 2};
    ClientToScreen(list, &at);
    Click(at);
    EXPECT_TRUE(ChangesFrom(seen)) << "switching the step off shows";
    EXPECT_FALSE(ListView_GetCheckState(list, 1));
    Click(PointIn(GetDlgItem(frame, IDM_REMOVE), 0.5, 0.5));
    EXPECT_TRUE(WaitFor([&] { return ListView_GetItemCount(list) == 1; }));
    Choose(Effects()[3]);
    EXPECT_TRUE(WaitFor([&] { return Told().starts_with(L"Filter color has taken the place of"); }));
    PostMessageW(frame, WM_SYSCOMMAND, SC_CLOSE, 0);
    EXPECT_TRUE(Answer(L"Cancel")) << "a changed stack goes unasked";
    EXPECT_TRUE(IsWindow(frame));
}

BOOL CALLBACK CollectStop(HWND control, LPARAM list)
{
    if (IsWindowVisible(control) && IsWindowEnabled(control) && (GetWindowLongW(control, GWL_STYLE) & WS_TABSTOP))
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(control);
    return TRUE;
}

// A press of Tab brings the keys to each control that takes them, and each says what it is.
TEST_F(BrowserWindow, IsUsedByKeysAndHeard)
{
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    Choose(Effects()[1]);
    SeenAtRest();
    std::vector<HWND> wanted;
    EnumChildWindows(frame, CollectStop, reinterpret_cast<LPARAM>(&wanted));
    EXPECT_GE(wanted.size(), 6u);
    std::set<HWND> reached;
    for (std::size_t i = 0; i < 2 * wanted.size(); ++i) {
        const HWND before = FocusOf(frame);
        reached.insert(before);
        Key(VK_TAB);
        EXPECT_TRUE(WaitFor([&] { return FocusOf(frame) != before; }, 1000));
    }
    for (const HWND control : wanted) {
        EXPECT_TRUE(reached.contains(control)) << "Tab passes by " << GetDlgCtrlID(control);
        ComPtr<IAccessible> accessible;
        AccessibleObjectFromWindow(control, static_cast<DWORD>(OBJID_CLIENT), IID_PPV_ARGS(&accessible));
        VARIANT self = {};
        self.vt = VT_I4;
        BSTR name = nullptr;
        ASSERT_TRUE(accessible);
        accessible->get_accName(self, &name);
        EXPECT_TRUE(name && *name && !std::wstring(name).starts_with(L"Slider")) << GetDlgCtrlID(control);
        SysFreeString(name);
    }
    // Sliders are told apart by the labels above them.
    for (const HTREEITEM effect : Effects()) {
        Choose(effect);
        SeenAtRest();
        std::set<std::wstring> names;
        for (HWND slider = nullptr; (slider = FindWindowExW(Panel(), slider, L"msctls_trackbar32", nullptr));)
            EXPECT_TRUE(names.insert(TextOf(slider)).second && !TextOf(slider).empty())
                << std::filesystem::path(Name(effect)).string() << ": " << GetDlgCtrlID(slider);
    }
    // Another window comes between: the same control has the keys again.
    const HWND held = FocusOf(frame);
    PostMessageW(frame, WM_COMMAND, IDM_ABOUT, 0);
    ASSERT_TRUE(WaitFor([&] { return GetForegroundWindow() != frame; }));
    Key(VK_RETURN);
    EXPECT_TRUE(WaitFor([&] { return FocusOf(frame) == held; }));

    // The wheel enlarges what is under it, and Ctrl+0 shows the whole again.
    const auto whole = SeenAtRest();
    const POINT at = PointIn(preview, 0.3, 0.3);
    SetCursorPos(at.x, at.y);
    SendMessageW(preview, WM_MOUSEWHEEL, MAKEWPARAM(0, 3 * WHEEL_DELTA), MAKELPARAM(at.x, at.y));
    EXPECT_TRUE(ChangesFrom(whole));
    const auto zoomed = SeenAtRest();
    Key('0', true);
    EXPECT_TRUE(WaitFor([&] { return Seen() == whole; }));
    EXPECT_NE(zoomed, whole);
    CoUninitialize();
}

// Whether the window draws the first menu's first item itself.
bool IsDrawnHere(HMENU bar)
{
    MENUITEMINFOW item = {};
    item.cbSize = sizeof item;
    item.fMask = MIIM_FTYPE;
    return GetMenuItemInfoW(GetSubMenu(bar, 0), 0, TRUE, &item) && (item.fType & MFT_OWNERDRAW);
}

TEST_F(BrowserWindow, TheViewFollowsKeysAndADraggingMouse)
{
    const auto both = SeenAtRest();
    Key('3', true);
    EXPECT_TRUE(ChangesFrom(both));
    const auto after = SeenAtRest();
    Key('2', true);
    EXPECT_TRUE(ChangesFrom(after));
    const auto before = SeenAtRest();
    for (const auto* const view : {&after, &before, &after}) {
        Key('B', true);
        EXPECT_TRUE(WaitFor([&] { return Seen() == *view; })) << "another key than before and after in turn";
    }
    // The divider goes where it is let go, and stays.
    Click(PointIn(preview, 0.25, 0.5));
    const auto clicked = SeenAtRest();
    Key('1', true);
    EXPECT_TRUE(ChangesFrom(clicked));
    Drag(PointIn(preview, 0.5, 0.5), PointIn(preview, 0.25, 0.5));
    EXPECT_TRUE(WaitFor([&] { return SeenAtRest() == clicked; }));

    // In its own size each pixel of the picture is one of the screen.
    RECT pane = {};
    GetClientRect(preview, &pane);
    const media::Picture scene = media::DrawSampleScene();
    ASSERT_TRUE(pane.right > scene.width && pane.bottom > scene.height);
    const auto pixel = [&](const std::vector<std::uint8_t>& seen, int x, int y) {
        const std::uint8_t* const at = seen.data() + (static_cast<std::ptrdiff_t>(y) * pane.right + x) * 4;
        return RGB(at[2], at[1], at[0]);
    };
    Key('2', true);
    Key('4', true);
    EXPECT_TRUE(WaitFor([&] { return SeenAtRest() != before; }));
    const auto own = SeenAtRest();
    const int left = (pane.right - scene.width) / 2, top = (pane.bottom - scene.height) / 2;
    int wrong = 0;
    for (int y = scene.height / 2; y < scene.height; ++y) // the label is above
        for (int x = 0; x < scene.width - 20; ++x) {
            const std::uint8_t* const wanted = scene.Row(y) + static_cast<std::ptrdiff_t>(x) * 4;
            wrong += pixel(own, left + x, top + y) != RGB(wanted[2], wanted[1], wanted[0]);
        }
    EXPECT_EQ(wrong, 0) << "of the picture's lower half";

    // Larger than the pane it follows the mouse that drags it.
    for (int i = 0; i < 4; ++i)
        Key(VK_ADD, true);
    const auto large = SeenAtRest();
    Drag(PointIn(preview, 0.5, 0.6), [&] {
        POINT to = PointIn(preview, 0.5, 0.6);
        to.x -= 40;
        return to;
    }());
    const auto follows = [&](const std::vector<std::uint8_t>& moved) {
        for (int y = 50; y < pane.bottom / 2; ++y)
            for (int x = 100; x < pane.right - 150; ++x)
                if (pixel(moved, x, y) != pixel(large, x + 40, y))
                    return false;
        return moved != large;
    };
    EXPECT_TRUE(WaitFor([&] { return follows(SeenAtRest()); })) << "the picture isn't where it was dragged to";
}

TEST_F(BrowserWindow, OffersRecentFilesPresetsAndANewName)
{
    const test::ScratchFolder folder;
    const auto here = std::filesystem::absolute(folder / L"a.png").parent_path();
    const auto first = here / L"first.png", second = here / L"second.png";
    for (const auto& file : {first, second}) {
        media::WritePicture(file, media::PictureFormat::Png, media::DrawSampleScene());
        Drop(frame, file);
        ASSERT_TRUE(WaitFor([&] { return TextOf(frame).starts_with(file.filename().native()); }));
    }
    const auto entry = [&](UINT command) {
        wchar_t text[400] = {};
        GetMenuStringW(GetMenu(frame), command, text, 400, MF_BYCOMMAND);
        return std::wstring(text);
    };
    EXPECT_TRUE(entry(IDM_RECENT_FILE).ends_with(L"second.png"));
    ASSERT_TRUE(entry(IDM_RECENT_FILE + 1).ends_with(L"first.png"));
    PostMessageW(frame, WM_COMMAND, IDM_RECENT_FILE + 1, 0);
    EXPECT_TRUE(WaitFor([&] { return TextOf(frame).starts_with(L"first.png"); }));
    EXPECT_TRUE(WaitFor([&] { return entry(IDM_RECENT_FILE).ends_with(L"first.png"); }));

    const HWND list = GetDlgItem(frame, IDC_STACK);
    const auto shown = [&] {
        std::wstring names;
        for (int i = 0; i < ListView_GetItemCount(list); ++i) {
            wchar_t text[100] = {};
            ListView_GetItemText(list, i, 0, text, 100);
            names += std::wstring(text) + L";";
        }
        return names;
    };
    const auto choosePreset = [&](const std::wstring& name) {
        UINT command = IDM_PRESET;
        while (entry(command) != name && !entry(command).empty())
            ++command;
        EXPECT_EQ(entry(command), name);
        PostMessageW(frame, WM_COMMAND, command, 0);
    };
    const auto plain = SeenAtRest();
    choosePreset(L"Negative");
    EXPECT_TRUE(WaitFor([&] { return shown() == L"Invert color;"; }));
    EXPECT_TRUE(ChangesFrom(plain));

    // A stack of one's own, under a name of one's own.
    const auto own = PresetFolder() / L"of a test.txt";
    DeleteFileW(own.c_str());
    SetForegroundWindow(frame);
    PostMessageW(frame, WM_COMMAND, IDM_SAVE_PRESET, 0);
    AnswerFileDialog(own);
    ASSERT_TRUE(WaitFor([&] { return Told().ends_with(L"of a test.txt"); }));
    choosePreset(L"Relief");
    EXPECT_TRUE(WaitFor([&] { return shown() != L"Invert color;"; }));
    choosePreset(L"of a test");
    EXPECT_TRUE(WaitFor([&] { return shown() == L"Invert color;"; }));
    DeleteFileW(own.c_str());

    test::WriteBytes(here / L"first-invert-color.png", test::Bytes(1));
    Key('S', true);
    HWND field = nullptr;
    EXPECT_TRUE(WaitFor([&] {
        const HWND dialog = GetForegroundWindow();
        field = dialog != frame ? FocusOf(dialog) : nullptr;
        return field && TextOf(field) == L"first-invert-color-2.png";
    })) << "a name that is free should be offered, not \""
        << std::filesystem::path(TextOf(field)).string() << "\"";
    Key(VK_ESCAPE);
    EXPECT_TRUE(WaitFor([&] { return GetForegroundWindow() == frame; }));
}

TEST_F(BrowserWindow, F1OpensThePageOfTheEffectOrSaysWhereItIs)
{
    Choose(Effects()[2]);
    SeenAtRest();
    Key(VK_F1);
    ASSERT_TRUE(WaitFor([&] { return pagesOpened == 1; }));
    const std::filesystem::path page = openedPage;
    EXPECT_EQ(page.filename(), L"gamma-correction.md");
    EXPECT_TRUE(std::filesystem::is_regular_file(page));
    EXPECT_TRUE(WaitFor([&] {
        const HWND dialog = GetForegroundWindow();
        return dialog != frame && FindWindowExW(dialog, nullptr, nullptr, page.c_str());
    })) << "nothing says that it could not be opened, and where it is";
    EXPECT_TRUE(Answer(L"OK"));
    EXPECT_TRUE(WaitFor([&] { return GetForegroundWindow() == frame; }));
    Key(VK_DELETE, true);
    Key(VK_F1); // of no effect: all of them
    ASSERT_TRUE(WaitFor([&] { return pagesOpened == 2; }));
    EXPECT_EQ(openedPage.filename(), L"README.md");
    Key(VK_F1);
    EXPECT_TRUE(WaitFor([&] { return pagesOpened == 3; })) << "what worked is spoken of";
}

TEST_F(BrowserWindow, FollowsDarkColoursWhileItIsOpen)
{
    const int elements[] = {COLOR_WINDOW, COLOR_BTNFACE};
    const COLORREF light[] = {GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_BTNFACE)};
    constexpr COLORREF dark[] = {RGB(30, 30, 30), RGB(40, 40, 40)};
    const auto brightness = [](HWND control) {
        const media::Picture part = media::PictureOfWindow(control);
        return std::accumulate(part.pixels.begin(), part.pixels.end(), 0.0) / static_cast<double>(part.pixels.size());
    };
    SeenAtRest();
    for (const auto* const scheme : {dark, light}) {
        SetSysColors(2, elements, scheme);
        for (const int id : {IDC_TREE, IDC_STACK, IDC_STATUS}) // each pixel's alpha of 255 counts with a quarter
            EXPECT_TRUE(WaitFor([&] { return (brightness(GetDlgItem(frame, id)) < 150) == (scheme == dark); }, 1500))
                << id << " is as bright as " << brightness(GetDlgItem(frame, id));
        EXPECT_TRUE(WaitFor([&] { return IsDrawnHere(GetMenu(frame)) == (scheme == dark); }, 1500));
        PostMessageW(frame, WM_COMMAND, IDM_ABOUT, 0);
        HWND button = nullptr;
        EXPECT_TRUE(WaitFor([&] {
            button = FindWindowExW(GetForegroundWindow(), nullptr, L"Button", L"OK");
            return IsWindowVisible(button);
        }));
        EXPECT_TRUE(WaitFor([&] { return (brightness(button) < 150) == (scheme == dark); }, 1500))
            << "the question's button is as bright as " << brightness(button);
        SendMessageW(button, BM_CLICK, 0, 0);
        EXPECT_TRUE(WaitFor([&] { return GetForegroundWindow() == frame; }));
    }
}

TEST_F(BrowserWindow, TakesDroppedFilesAndSavesAClipUntilItIsCancelled)
{
    const test::ScratchFolder folder;
    test::ClipRecipe recipe;
    recipe.width = 160;
    recipe.height = 120;
    recipe.frames = 4000; // its progress is shown only after a third of a second
    recipe.bits = 8;
    recipe.sound = false;
    const auto clip = std::filesystem::absolute(folder / L"long.avi"), out = clip.parent_path() / L"cancelled.avi";
    test::WriteBytes(clip, test::MakeClip(recipe));
    std::string stack;
    for (int i = 0; i < 40; ++i)
        stack += "effect = Emboss\n";
    const auto stackFile = std::filesystem::absolute(folder / L"stack.txt");
    test::WriteBytes(stackFile, test::Bytes(stack.begin(), stack.end()));
    Drop(frame, stackFile);
    const HWND list = GetDlgItem(frame, IDC_STACK);
    ASSERT_TRUE(WaitFor([&] { return ListView_GetItemCount(list) == 40; })) << "a dropped stack was not taken";
    Drop(frame, clip);
    ASSERT_TRUE(WaitFor([&] { return TextOf(frame).starts_with(L"long.avi"); })) << "a dropped clip was not opened";
    SetForegroundWindow(frame);
    Key('S', true);
    AnswerFileDialog(out);
    HWND saving = nullptr;
    ASSERT_TRUE(WaitFor([&] {
        saving = FindWindowW(L"VixaSaveDialog", nullptr);
        return saving && IsWindowVisible(saving);
    })) << "nothing says how far it is";
    const HWND text = FindWindowExW(saving, nullptr, L"Static", nullptr);
    EXPECT_TRUE(WaitFor([&] { return TextOf(text).find(L"of 4000") != std::wstring::npos; })) << "no progress is said";
    Key(VK_ESCAPE);
    EXPECT_TRUE(WaitFor([&] { return !IsWindow(saving); }));
    EXPECT_TRUE(WaitFor([&] { return Told().starts_with(L"Saving was cancelled"); }));
    EXPECT_FALSE(std::filesystem::exists(out));
}

std::atomic<int> faults = 0;

LONG CALLBACK CountFaults(EXCEPTION_POINTERS* fault)
{
    if (fault->ExceptionRecord->ExceptionCode == static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION))
        ++faults;
    return EXCEPTION_CONTINUE_SEARCH;
}

// Thai letters are shaped within one font: each control that has some is written in a font with them.
BOOL CALLBACK HasItsLetters(HWND control, LPARAM language)
{
    auto* const font = reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0));
    const std::wstring text = TextOf(control);
    const std::size_t letter = text.find_first_of(L"\u0E01\u0E15\u0E40\u0E1B");
    if (!font || letter == std::wstring::npos)
        return TRUE;
    const UniqueScreenDC screen(GetDC(nullptr));
    const HGDIOBJ old = SelectObject(screen.get(), font);
    WORD glyph = 0;
    GetGlyphIndicesW(screen.get(), text.c_str() + letter, 1, &glyph, GGI_MARK_NONEXISTING_GLYPHS);
    SelectObject(screen.get(), old);
    EXPECT_NE(glyph, 0xFFFF) << reinterpret_cast<const char*>(language) << ": boxes in " << GetDlgCtrlID(control);
    return TRUE;
}

BOOL CALLBACK CountTooltip(HWND window, LPARAM count)
{
    *reinterpret_cast<int*>(count) += ClassOf(window) == TOOLTIPS_CLASSW;
    return TRUE;
}

// As after a fault, or a screenshot. Not every system lets a fault out of a window's procedure: it is counted before.
TEST(BrowserWindowEnd, AnOpenWindowCanBeDestroyed)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    void* const handler = AddVectoredExceptionHandler(TRUE, CountFaults);
    {
        BrowseWindow window({0, 0});
        const HWND frame = window.Handle(), tree = GetDlgItem(frame, IDC_TREE);
        // Somebody else's, whose font is none of the panels' business.
        const HWND tooltip =
            CreateWindowExW(0, TOOLTIPS_CLASSW, nullptr, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
        const LRESULT tooltipFont = SendMessageW(tooltip, WM_GETFONT, 0, 0);
        int others = 0;
        EnumThreadWindows(GetCurrentThreadId(), CountTooltip, reinterpret_cast<LPARAM>(&others));
        for (const effects::Language& language : effects::InstalledLanguages(window.Work().LibraryFile())) {
            SCOPED_TRACE(language.code);
            window.SetLanguage(language.id);
            TreeView_SelectItem(tree, TreeView_GetChild(tree, TreeView_GetRoot(tree))); // one with settings
            EnumChildWindows(frame, HasItsLetters, reinterpret_cast<LPARAM>(language.code.c_str()));
            EXPECT_EQ(SendMessageW(tooltip, WM_GETFONT, 0, 0), tooltipFont);
            int tooltips = 0;
            EnumThreadWindows(GetCurrentThreadId(), CountTooltip, reinterpret_cast<LPARAM>(&tooltips));
            EXPECT_EQ(tooltips, others + 1) << "the panel's has to go with it: it may have its font";
            // Its menus are drawn by the window where the system's font has no Thai, and still follow their keys.
            MENUITEMINFOW file = {};
            file.cbSize = sizeof file;
            file.fMask = MIIM_FTYPE;
            GetMenuItemInfoW(GetMenu(frame), 0, TRUE, &file);
            if (file.fType & MFT_OWNERDRAW) {
                EXPECT_EQ(language.code, "th-TH");
                EXPECT_EQ(SendMessageW(frame, WM_MENUCHAR, 'f', reinterpret_cast<LPARAM>(GetMenu(frame))),
                          MAKELRESULT(0, MNC_EXECUTE));
            }
            RECT last = {}, room = {};
            TreeView_GetItemRect(tree, TreeView_GetNextItem(tree, nullptr, TVGN_LASTVISIBLE), &last, FALSE);
            GetClientRect(tree, &room);
            EXPECT_LE(last.bottom, room.bottom) << language.code << ": not every effect is in sight";
        }
        DestroyWindow(tooltip);
    }
    EXPECT_EQ(faults, 0);
    RemoveVectoredExceptionHandler(handler);
    CoUninitialize();
}

BOOL CALLBACK CollectVisible(HWND control, LPARAM list)
{
    if (IsWindowVisible(control))
        reinterpret_cast<std::vector<HWND>*>(list)->push_back(control);
    return TRUE;
}

// What each part of the status line says fits into the part.
void ExpectRoomInStatus(HWND status)
{
    const UniqueScreenDC screen(GetDC(nullptr));
    const HGDIOBJ old = SelectObject(screen.get(), reinterpret_cast<HFONT>(SendMessageW(status, WM_GETFONT, 0, 0)));
    for (LRESULT i = SendMessageW(status, SB_GETPARTS, 0, 0); i-- > 0;) {
        wchar_t text[300] = {};
        SendMessageW(status, SB_GETTEXTW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
        RECT part = {};
        SendMessageW(status, SB_GETRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&part));
        SIZE size = {};
        GetTextExtentPoint32W(screen.get(), text, static_cast<int>(std::wcslen(text)), &size);
        EXPECT_LE(size.cx, part.right - part.left) << "part " << i << " of the status line is cut off";
    }
    SelectObject(screen.get(), old);
}

TEST(BrowserWindowEnd, TheSmallestWindowHasRoomForEverythingInEveryLanguage)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const test::ScratchFolder folder;
    const auto clip = std::filesystem::absolute(folder / L"clip.avi");
    test::WriteBytes(clip, test::MakeClip({}));
    {
        BrowseWindow window({0, 0});
        const HWND frame = window.Handle(), tree = GetDlgItem(frame, IDC_TREE), status = GetDlgItem(frame, IDC_STATUS);
        window.Open(clip);
        ShowWindow(frame, SW_SHOW);
        MINMAXINFO limits = {};
        SendMessageW(frame, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
        SetWindowPos(frame, nullptr, 0, 0, limits.ptMinTrackSize.x, limits.ptMinTrackSize.y, SWP_NOMOVE);
        for (const effects::Language& language : effects::InstalledLanguages(window.Work().LibraryFile())) {
            SCOPED_TRACE(language.code);
            window.SetLanguage(language.id);
            ExpectRoomInStatus(status);
            TreeView_SelectItem(tree, TreeView_GetChild(tree, TreeView_GetRoot(tree)));
            TreeView_SelectItem(tree, TreeView_GetNextVisible(tree, TreeView_GetSelection(tree)));
            ExpectRoomInStatus(status); // what took the other's place is said
            std::vector<HWND> controls;
            EnumChildWindows(frame, CollectVisible, reinterpret_cast<LPARAM>(&controls));
            std::erase_if(controls, [&](HWND control) { return GetParent(control) != frame; });
            RECT inside = {};
            GetClientRect(frame, &inside);
            MapWindowPoints(frame, nullptr, reinterpret_cast<POINT*>(&inside), 2);
            for (std::size_t i = 0; i < controls.size(); ++i) {
                RECT place = {}, common = {};
                GetWindowRect(controls[i], &place);
                EXPECT_TRUE(UnionRect(&common, &inside, &place) && EqualRect(&common, &inside))
                    << "control " << GetDlgCtrlID(controls[i]) << " reaches out of the window";
                EXPECT_GT(place.right - place.left, 60) << "control " << GetDlgCtrlID(controls[i]);
                SIZE needed = {};
                if (ClassOf(controls[i]) == L"Button" &&
                    SendMessageW(controls[i], BCM_GETIDEALSIZE, 0, reinterpret_cast<LPARAM>(&needed))) {
                    EXPECT_LE(needed.cx, place.right - place.left) << "button " << GetDlgCtrlID(controls[i]);
                }
                for (std::size_t k = 0; k < i; ++k) {
                    RECT other = {};
                    GetWindowRect(controls[k], &other);
                    EXPECT_FALSE(IntersectRect(&common, &place, &other))
                        << "controls " << GetDlgCtrlID(controls[k]) << " and " << GetDlgCtrlID(controls[i]);
                }
            }
        }
    }
    CoUninitialize();
}

} // namespace
