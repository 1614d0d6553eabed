#include "host/browse/BrowseWindow.h"

#include "host/base/HostError.h"
#include "host/base/ModuleFile.h"
#include "host/base/TargetFile.h"
#include "host/base/Text.h"
#include "host/browse/Ids.h"
#include "host/browse/Question.h"
#include "host/browse/SaveDialog.h"
#include "host/effects/StackFile.h"
#include "host/media/PictureFile.h"

#include <algorithm>
#include <cstdio>
#include <initializer_list>

namespace vixahost::browse {

namespace {

constexpr UINT resultReady = WM_APP + 2;
constexpr UINT_PTR playTimer = 1, failureTimer = 2;
constexpr UINT failureInterval = 300; // milliseconds
constexpr const wchar_t* program = L"VixaVideoFX";

struct ButtonText
{
    int command;
    UINT text;
};
constexpr ButtonText stackButtonTexts[] = {
    {IDM_ADD, IDT_ADD}, {IDM_REMOVE, IDT_REMOVE}, {IDM_UP, IDT_UP}, {IDM_DOWN, IDT_DOWN}};
constexpr ButtonText clipButtonTexts[] = {
    {IDM_PLAY, IDT_PLAY}, {IDM_STEP_BACK, IDT_BACK}, {IDM_STEP_FORWARD, IDT_FORWARD}};

HWND MakeButton(HWND parent, const ButtonText& button, const Style& style)
{
    return CreateControl(WC_BUTTONW, L"", WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON, parent, button.command, style);
}

// A number as the status line shows it.
std::wstring Number(const char* format, double value)
{
    char text[40] = {};
    std::snprintf(text, sizeof text, format, value);
    return Wide(text);
}

} // namespace

BrowseWindow::BrowseWindow(SIZE size) : style(std::make_unique<Style>()), recent(UserFolder())
{
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    keys = LoadAcceleratorsW(instance, MAKEINTRESOURCEW(IDR_BROWSE));
    if (size.cx == 0)
        size = {style->Scale(1180), style->Scale(760)};
    Create({L"VixaBrowseWindow", 0, IDC_ARROW, reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1)}, program,
           WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, WS_EX_ACCEPTFILES, nullptr, nullptr, size);
    const HWND window = hwnd;
    openPage = [window](const std::filesystem::path& page) {
        // Above 32 it worked.
        return reinterpret_cast<INT_PTR>(
                   ShellExecuteW(window, nullptr, page.c_str(), nullptr, nullptr, SW_SHOWNORMAL)) > 32;
    };
    session = std::make_unique<Session>([this, window] {
        // One message at a time: the newest result is what it shows.
        if (!resultPosted.exchange(true))
            PostMessageW(window, resultReady, 0, 0);
    });
    OnCreate();
}

BrowseWindow::~BrowseWindow()
{
    // With the window goes the panel, which lives in the library: that is the session's, and goes last.
    if (hwnd)
        DestroyWindow(hwnd);
    panel.reset();
    preview.reset();
    tree.reset();
    list.reset();
    session.reset();
}

void BrowseWindow::OnCreate()
{
    tree = std::make_unique<EffectTree>(hwnd, IDC_TREE, *style);
    tree->onChosen = [this](std::size_t index) { OnChosen(index); };
    stackLabel = CreateControl(WC_STATICW, L"", WS_VISIBLE, hwnd, 0, *style);
    list = std::make_unique<StackList>(hwnd, IDC_STACK, *style);
    list->onSelected = [this](std::size_t index) { ChangeStack([&](StackModel& stack) { stack.Select(index); }); };
    list->onSwitched = [this](std::size_t index, bool on) {
        ChangeStack([&](StackModel& stack) { stack.Switch(index, on); });
    };
    for (const ButtonText& button : stackButtonTexts)
        stackButtons.push_back(MakeButton(hwnd, button, *style));
    panelLabel = CreateControl(WC_STATICW, L"", WS_VISIBLE | SS_ENDELLIPSIS, hwnd, 0, *style);
    panel = std::make_unique<PanelHost>(hwnd, texts);
    panel->onNewBlock = [this](const std::vector<std::int32_t>& block) { OnPanelChanged(block); };
    emptyPanel = CreateControl(WC_STATICW, L"", 0, panel->Handle(), 0, *style);
    preview = std::make_unique<PreviewPane>(hwnd, IDC_PREVIEW, *style, texts);
    for (const ButtonText& button : clipButtonTexts)
        clipButtons.push_back(MakeButton(hwnd, button, *style));
    seekBar =
        CreateControl(TRACKBAR_CLASSW, L"", WS_VISIBLE | WS_TABSTOP | TBS_HORZ | TBS_NOTICKS, hwnd, IDC_SEEK, *style);
    timeText = CreateControl(WC_STATICW, L"", WS_VISIBLE | SS_LEFTNOWORDWRAP, hwnd, 0, *style);
    status = CreateControl(STATUSCLASSNAMEW, L"", WS_VISIBLE | SBARS_SIZEGRIP, hwnd, IDC_STATUS, *style);
    menuContent.languages = effects::InstalledLanguages(session->LibraryFile());
    savedStack = session->Stack().Items();
    tree->Fill(session->Catalogue());
    ShowMedium();
    ShowTexts();
    tree->ShowFirst();
    FollowColours(hwnd);
    SetTimer(hwnd, failureTimer, failureInterval, nullptr);
    // Who uses the keys sees where they go from the beginning, not only after the first.
    SendMessageW(hwnd, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS | UISF_HIDEACCEL), 0);
}

// With the files, presets and languages that there are now.
void BrowseWindow::NewMenu()
{
    menuContent.recent = recent.List();
    menuContent.presets.clear();
    for (const ShippedPreset& preset : ShippedPresets())
        menuContent.presets.push_back(texts(static_cast<UINT>(preset.name)));
    menuContent.shipped = menuContent.presets.size();
    ownPresets = StackFilesIn(PresetFolder());
    for (const auto& file : ownPresets)
        menuContent.presets.push_back(file.stem().native());
    const HMENU old = GetMenu(hwnd), fresh = MakeMenu(texts, menuContent);
    // The old menu refers to its items until it is gone.
    MenuPainter painter;
    painter.Take(fresh);
    SetMenu(hwnd, fresh);
    if (old)
        DestroyMenu(old);
    menuPainter = std::move(painter);
}

// Everything that is said in the chosen language.
void BrowseWindow::ShowTexts()
{
    NewMenu();
    const auto name = [&](HWND control, UINT text) { SetWindowTextW(control, texts(text).c_str()); };
    name(tree->Handle(), IDT_EFFECTS);
    name(list->Handle(), IDT_STACK);
    name(stackLabel, IDT_STACK);
    name(emptyPanel, IDT_NO_SETTINGS);
    name(preview->Handle(), IDT_PREVIEW);
    name(seekBar, IDT_POSITION);
    for (std::size_t i = 0; i < stackButtons.size(); ++i)
        name(stackButtons[i], stackButtonTexts[i].text);
    for (std::size_t i = 0; i < clipButtons.size(); ++i)
        name(clipButtons[i], clipButtonTexts[i].text);
    InvalidateRect(preview->Handle(), nullptr, FALSE);
    Tell({});
    ShowTitle();
    ShowStack();
    ShowPosition();
}

LRESULT BrowseWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    if (!status) // still being made
        return Window::OnMessage(message, wParam, lParam);
    switch (message) {
    case resultReady:
        ShowResult();
        return 0;
    case WM_SIZE:
        LayOut();
        return 0;
    case WM_GETMINMAXINFO:
        reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {style->Scale(640), style->Scale(500)};
        return 0;
    case WM_COMMAND:
        OnCommand(LOWORD(wParam));
        return 0;
    case WM_NOTIFY:
        return OnNotify(*reinterpret_cast<const NMHDR*>(lParam));
    case WM_HSCROLL:
        if (reinterpret_cast<HWND>(lParam) == seekBar)
            OnSeekBar();
        return 0;
    case WM_TIMER:
        // A graph that fails on the way has no result to tell of.
        if (wParam == failureTimer) {
            if (shownNumber != session->Latest().number)
                ShowResult();
        } else if (session->Advance(GetTickCount64()))
            ShowPosition();
        return 0;
    case WM_INITMENUPOPUP:
        UpdateMenu();
        return 0;
    case WM_MEASUREITEM:
        return menuPainter.Measure(*reinterpret_cast<MEASUREITEMSTRUCT*>(lParam));
    case WM_DRAWITEM:
        return menuPainter.Draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
    case WM_MENUCHAR:
        if (const auto item = MenuPainter::ItemOf(reinterpret_cast<HMENU>(lParam), LOWORD(wParam)))
            return MAKELRESULT(*item, MNC_EXECUTE);
        break;
    case WM_DROPFILES:
        OnDrop(reinterpret_cast<HDROP>(wParam));
        return 0;
    case WM_SETFOCUS:
        ShowFocus();
        return 0;
    case WM_SYSCOLORCHANGE:
        // The system's own controls ask for new colours only when they are told.
        for (HWND child = GetWindow(hwnd, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
            SendMessageW(child, message, wParam, lParam);
        FollowColours(hwnd);
        NewMenu();
        return 0;
    case WM_SETTINGCHANGE:
        TakeNewStyle();
        return 0;
    case WM_CLOSE:
        if (MayClose())
            DestroyWindow(hwnd);
        return 0;
    case WM_DESTROY:
        panel->Close();
        PostQuitMessage(0);
        return 0;
    default:
        break;
    }
    return Window::OnMessage(message, wParam, lParam);
}

// Some control always has the keys: the one that had them, or else the list of effects.
void BrowseWindow::ShowFocus() const
{
    const bool takes = IsChild(hwnd, lastFocus) && IsWindowVisible(lastFocus) && IsWindowEnabled(lastFocus);
    SetFocus(takes ? lastFocus : tree->Handle());
}

void BrowseWindow::OnFault(const char* message) noexcept
{
    session->Pause();
    MessageBoxW(hwnd, Wide(message).c_str(), program, MB_OK | MB_ICONWARNING);
}

bool BrowseWindow::Translate(MSG& message)
{
    // Too late once another window comes up: a window that is disabled has lost the keys before it hears of it.
    if (const HWND focus = GetFocus(); focus && IsChild(hwnd, focus))
        lastFocus = focus;
    if (message.hwnd != hwnd && !IsChild(hwnd, message.hwnd))
        return false;
    return TranslateAcceleratorW(hwnd, keys, &message) || IsDialogMessageW(hwnd, &message);
}

template <typename Function>
void BrowseWindow::ChangeStack(Function change)
{
    session->Change(change);
    Tell({});
    ShowStack();
}

void BrowseWindow::OnChosen(std::size_t index)
{
    const effects::CatalogueEntry& entry = session->Catalogue().at(index);
    const effects::EffectStep* const current = session->Stack().Current();
    const std::wstring old =
        current ? effects::FindEntry(session->Catalogue(), current->classId)->name : std::wstring();
    const std::size_t steps = session->Stack().Items().size();
    ChangeStack([&](StackModel& stack) { stack.Choose(effects::StepOf(entry)); });
    if (session->Stack().Items().size() > steps)
        Tell(texts(IDT_WAS_ADDED, {entry.name}));
    else if (old != entry.name)
        Tell(texts(IDT_TOOK_PLACE, {entry.name, old}));
}

// The commands of which there are as many as there are files, presets or languages.
bool BrowseWindow::OnNumbered(int command)
{
    const auto index = [&](int first, std::size_t count) -> std::optional<std::size_t> {
        const auto number = static_cast<std::size_t>(command - first);
        return command >= first && number < count ? std::optional(number) : std::nullopt;
    };
    if (const auto language = index(IDM_LANGUAGE, menuContent.languages.size())) {
        SetLanguage(menuContent.languages[*language].id);
    } else if (const auto file = index(IDM_RECENT_FILE, recent.List().size())) {
        Open(std::filesystem::path(recent.List()[*file]));
    } else if (const auto preset = index(IDM_PRESET, menuContent.presets.size())) {
        effects::EffectStack items =
            *preset < menuContent.shipped
                ? LoadPreset(ShippedPresets()[*preset], session->Catalogue())
                : effects::LoadStackFile(ownPresets.at(*preset - menuContent.shipped), session->Catalogue());
        ChangeStack([&](StackModel& stack) { stack.Replace(std::move(items)); });
        savedStack = session->Stack().Items();
    } else {
        return false;
    }
    return true;
}

void BrowseWindow::OnCommand(int command)
{
    const std::size_t selected = session->Stack().Selected();
    const effects::EffectStep* const current = session->Stack().Current();
    const bool clip = session->Open().IsClip();
    if (OnNumbered(command))
        return;
    switch (command) {
    case IDM_OPEN:
        return AskOpen();
    case IDM_SAVE:
        return AskSave();
    case IDM_LOAD_STACK:
        return AskLoadStack();
    case IDM_SAVE_STACK:
        return AskSaveStack();
    case IDM_SAVE_PRESET:
        return AskSavePreset();
    case IDM_EXIT:
        SendMessageW(hwnd, WM_CLOSE, 0, 0);
        return;
    case IDM_UNDO:
        return ChangeStack([](StackModel& stack) { stack.Undo(); });
    case IDM_REDO:
        return ChangeStack([](StackModel& stack) { stack.Redo(); });
    case IDM_ADD: {
        const effects::CatalogueEntry* const entry =
            current ? effects::FindEntry(session->Catalogue(), current->classId) : &session->Catalogue().front();
        return ChangeStack([&](StackModel& stack) { stack.Add(effects::StepOf(*entry)); });
    }
    case IDM_REMOVE:
        return ChangeStack([&](StackModel& stack) { stack.Remove(selected); });
    case IDM_UP:
        return ChangeStack([&](StackModel& stack) { stack.Move(selected, -1); });
    case IDM_DOWN:
        return ChangeStack([&](StackModel& stack) { stack.Move(selected, 1); });
    case IDM_SWITCH:
        if (current)
            ChangeStack([&](StackModel& stack) { stack.Switch(selected, !current->on); });
        return;
    case IDM_RESET:
        return panel->Reset();
    case IDM_DIVIDER_LEFT:
        return preview->SetDivider(0);
    case IDM_DIVIDER_MIDDLE:
        return preview->SetDivider(0.5);
    case IDM_DIVIDER_RIGHT:
        return preview->SetDivider(1);
    case IDM_COMPARE:
        return preview->SetDivider(preview->Divider() == 0 ? 1 : 0);
    case IDM_FIT:
        return preview->SetZoom(0);
    case IDM_ACTUAL_SIZE:
        return preview->SetZoom(1);
    case IDM_ZOOM_IN:
        return preview->ZoomBy(1.25);
    case IDM_ZOOM_OUT:
        return preview->ZoomBy(0.8);
    case IDM_ENLARGE:
        return preview->SetEnlarge(!preview->Enlarges());
    case IDM_PLAY:
        if (clip) {
            session->Player().Playing() ? session->Pause() : session->Play(GetTickCount64());
            ShowPosition();
        }
        return;
    case IDM_STEP_BACK:
    case IDM_STEP_FORWARD:
    case IDM_TO_START:
        if (clip) {
            const std::int64_t step = command == IDM_STEP_BACK ? -1 : 1;
            session->Seek(command == IDM_TO_START ? 0 : session->Player().Position() + step);
            ShowPosition();
        }
        return;
    case IDM_COLOURS_BY_SIZE:
    case IDM_BT601:
    case IDM_BT709:
    case IDM_LIMITED_RANGE:
    case IDM_FULL_RANGE:
        return SetColours(command);
    case IDM_EFFECT_HELP:
        return ShowHelp();
    case IDM_ABOUT:
        return About();
    default:
        return;
    }
}

void BrowseWindow::SetColours(int command)
{
    if (!session->Open().Yuv())
        return;
    media::YuvChoice colours = session->Choice().colours;
    if (command == IDM_COLOURS_BY_SIZE)
        colours = {};
    else if (command == IDM_BT601 || command == IDM_BT709)
        colours.matrix = command == IDM_BT601 ? media::YuvMatrix::Bt601 : media::YuvMatrix::Bt709;
    else
        colours.range = command == IDM_FULL_RANGE ? media::YuvRange::Full : media::YuvRange::Limited;
    session->SetColours(colours);
    ShowPosition();
}

LRESULT BrowseWindow::OnNotify(const NMHDR& header)
{
    if (header.hwndFrom == tree->Handle())
        return tree->OnNotify(header);
    if (header.hwndFrom == list->Handle())
        return list->OnNotify(header);
    return 0;
}

void BrowseWindow::OnPanelChanged(const std::vector<std::int32_t>& block)
{
    LARGE_INTEGER now = {};
    QueryPerformanceCounter(&now);
    const std::size_t selected = session->Stack().Selected();
    const bool changed = session->Change([&](StackModel& stack) { stack.SetBlock(selected, block, GetTickCount64()); });
    // A panel tells of the end of a move as well, when all is said already.
    if (!changed)
        return;
    changedAt = now;
    told.clear();
    list->Show(session->Stack().Items(), selected, session->Catalogue());
}

void BrowseWindow::ShowResult()
{
    resultPosted = false;
    const LiveResult result = session->Latest();
    if (!result.after && result.failure.empty())
        return;
    shownNumber = result.number;
    preview->Show(session->Open().Format(), result);
    if (changedAt.QuadPart != 0 && !session->Busy()) {
        LARGE_INTEGER now = {}, frequency = {};
        QueryPerformanceCounter(&now);
        QueryPerformanceFrequency(&frequency);
        latency =
            1000.0 * static_cast<double>(now.QuadPart - changedAt.QuadPart) / static_cast<double>(frequency.QuadPart);
        changedAt = {};
    }
    ShowStatus();
}

void BrowseWindow::ShowStack()
{
    const StackModel& stack = session->Stack();
    list->Show(stack.Items(), stack.Selected(), session->Catalogue());
    const effects::EffectStep* const current = stack.Current();
    if (current) {
        const effects::CatalogueEntry* const entry = effects::FindEntry(session->Catalogue(), current->classId);
        tree->Select(static_cast<std::size_t>(entry - session->Catalogue().data()));
    }
    EnableWindow(stackButtons[1], current != nullptr);
    EnableWindow(stackButtons[2], current && stack.Selected() > 0);
    EnableWindow(stackButtons[3], current && stack.Selected() + 1 < stack.Items().size());
    if (const HWND focus = GetFocus(); IsChild(hwnd, focus) && !IsWindowEnabled(focus))
        SetFocus(list->Handle());
    ShowPanel();
}

void BrowseWindow::ShowPanel()
{
    const effects::EffectStep* const current = session->Stack().Current();
    if (!current) {
        panel->Close();
        SetWindowTextW(panelLabel, texts(IDT_EMPTY_STACK).c_str());
        ShowWindow(emptyPanel, SW_HIDE);
        return;
    }
    const effects::CatalogueEntry& entry = *effects::FindEntry(session->Catalogue(), current->classId);
    const HWND before = panel->Panel();
    panel->Open(entry, current->block);
    if (panel->Panel() != before)
        FollowColours(panel->Handle());
    SetWindowTextW(panelLabel, texts(IDT_SETTINGS, {entry.name}).c_str());
    const bool empty = panel->IsEmpty();
    ShowWindow(emptyPanel, empty ? SW_SHOW : SW_HIDE);
    ShowWindow(panel->Panel(), empty ? SW_HIDE : SW_SHOW);
}

void BrowseWindow::ShowTitle()
{
    const Medium& medium = session->Open();
    const std::wstring name = medium.File().empty() ? texts(IDT_SAMPLE) : Wide(medium.Name());
    SetWindowTextW(hwnd, (name + L" - " + program).c_str());
}

void BrowseWindow::ShowMedium()
{
    const Medium& medium = session->Open();
    ShowTitle();
    if (medium.IsClip()) {
        SendMessageW(seekBar, TBM_SETRANGEMIN, FALSE, 0);
        SendMessageW(seekBar, TBM_SETRANGEMAX, TRUE, static_cast<LPARAM>(medium.FrameCount() - 1));
        SendMessageW(seekBar, TBM_SETPAGESIZE, 0, std::max<LPARAM>(1, static_cast<LPARAM>(medium.FrameCount() / 10)));
        SetTimer(hwnd, playTimer, USER_TIMER_MINIMUM, nullptr);
        ShowPosition();
    } else {
        KillTimer(hwnd, playTimer);
    }
    LayOut();
}

void BrowseWindow::ShowPosition()
{
    const Medium& medium = session->Open();
    const Player& player = session->Player();
    SendMessageW(seekBar, TBM_SETPOS, TRUE, static_cast<LPARAM>(player.Position()));
    SetWindowTextW(timeText, Wide(TimeText(medium.Format(), player.Position(), medium.FrameCount())).c_str());
    SetWindowTextW(clipButtons[0], texts(player.Playing() ? IDT_PAUSE : IDT_PLAY).c_str());
}

void BrowseWindow::ShowStatus()
{
    const Medium& medium = session->Open();
    const media::FrameFormat& format = medium.Format();
    std::wstring size = texts(IDT_SIZE, {std::to_wstring(format.width), std::to_wstring(format.height)});
    if (medium.IsClip()) {
        const std::wstring rate = Number("%.3g", static_cast<double>(format.rate) / format.scale);
        size += L", " + texts(IDT_FRAMES, {std::to_wstring(medium.FrameCount()), rate});
    }
    std::wstring spent;
    if (const LiveResult result = session->Latest(); result.after)
        spent = texts(IDT_EFFECTS_TIME, {Number("%.2f", result.milliseconds)});
    if (latency > 0)
        spent += L", " + texts(IDT_APPEARED, {Number("%.1f", latency)});

    // The times change with every picture: their part only grows, or its border would never rest.
    RECT client = {};
    GetClientRect(status, &client);
    const int edges = style->Scale(16), grip = GetSystemMetrics(SM_CXVSCROLL);
    timesWidth = std::max({timesWidth, style->Width(spent) + edges + grip, style->Scale(120)});
    const int times = std::max<int>(client.right - timesWidth, 0);
    const int sizes = std::max(times - style->Width(size) - edges, 0);
    // What is said comes first: where it doesn't fit beside the others, it has the line to itself.
    const bool alone = style->Width(told) + edges > sizes;
    const std::vector<int> parts = alone ? std::vector{-1} : std::vector{sizes, times, -1};
    if (parts != statusParts)
        SendMessageW(status, SB_SETPARTS, parts.size(), reinterpret_cast<LPARAM>(parts.data()));
    statusParts = parts;
    const std::wstring said = style->Shortened(told, client.right - edges - grip);
    const std::wstring* const shown[] = {&said, &size, &spent};
    for (std::size_t i = 0; i < parts.size(); ++i)
        SendMessageW(status, SB_SETTEXTW, i, reinterpret_cast<LPARAM>(shown[i]->c_str()));
}

void BrowseWindow::Tell(const std::wstring& text)
{
    told = text;
    ShowStatus();
}

void BrowseWindow::UpdateMenu()
{
    const HMENU menu = GetMenu(hwnd);
    const StackModel& stack = session->Stack();
    const effects::EffectStep* const current = stack.Current();
    const auto enable = [&](UINT command, bool enabled) {
        EnableMenuItem(menu, command, MF_BYCOMMAND | (enabled ? MF_ENABLED : MF_GRAYED));
    };
    enable(IDM_UNDO, stack.CanUndo());
    enable(IDM_REDO, stack.CanRedo());
    enable(IDM_SAVE_STACK, current != nullptr);
    enable(IDM_REMOVE, current != nullptr);
    enable(IDM_UP, current && stack.Selected() > 0);
    enable(IDM_DOWN, current && stack.Selected() + 1 < stack.Items().size());
    enable(IDM_SWITCH, current != nullptr);
    enable(IDM_SAVE_PRESET, current != nullptr);
    enable(IDM_RESET, current && !panel->IsEmpty());
    for (const UINT command : std::initializer_list<UINT>{IDM_PLAY, IDM_STEP_BACK, IDM_STEP_FORWARD, IDM_TO_START})
        enable(command, session->Open().IsClip());
    const auto check = [&](UINT command, bool checked) {
        CheckMenuItem(menu, command, MF_BYCOMMAND | (checked ? MF_CHECKED : MF_UNCHECKED));
    };
    check(IDM_SWITCH, current && current->on);
    check(IDM_ENLARGE, preview->Enlarges());
    check(IDM_FIT, preview->Fits());
    const auto yuv = session->Open().Yuv();
    for (UINT command = IDM_COLOURS_BY_SIZE; command <= IDM_FULL_RANGE; ++command)
        enable(command, yuv.has_value());
    check(IDM_COLOURS_BY_SIZE, yuv && !session->Choice().colours.matrix && !session->Choice().colours.range);
    check(IDM_BT601, yuv && yuv->colours.matrix == media::YuvMatrix::Bt601);
    check(IDM_BT709, yuv && yuv->colours.matrix == media::YuvMatrix::Bt709);
    check(IDM_LIMITED_RANGE, yuv && yuv->colours.range == media::YuvRange::Limited);
    check(IDM_FULL_RANGE, yuv && yuv->colours.range == media::YuvRange::Full);
    const std::vector<effects::Language>& languages = menuContent.languages;
    for (std::size_t i = 0; i < languages.size(); ++i)
        if (languages[i].id == session->Language())
            CheckMenuRadioItem(menu, IDM_LANGUAGE, IDM_LANGUAGE + static_cast<UINT>(languages.size()) - 1,
                               IDM_LANGUAGE + static_cast<UINT>(i), MF_BYCOMMAND);
}

void BrowseWindow::LayOut()
{
    SendMessageW(status, WM_SIZE, 0, 0);
    RECT client = {}, bar = {};
    GetClientRect(hwnd, &client);
    GetWindowRect(status, &bar);
    ShowStatus();

    const int gap = style->Scale(6), line = style->LineHeight() + style->Scale(4), button = style->Scale(26);
    const int bottom = client.bottom - (bar.bottom - bar.top) - gap;
    const int left = gap, width = std::clamp<int>(client.right * 3 / 10, style->Scale(292), style->Scale(380));

    // The left column from below: what has a height of its own first, the tree takes the rest.
    const int panelHeight = style->Scale(150);
    int y = bottom - panelHeight;
    MoveWindow(panel->Handle(), left, y, width, panelHeight, TRUE);
    MoveWindow(emptyPanel, style->Scale(8), style->Scale(8), width - style->Scale(16), line, TRUE);
    y -= line;
    MoveWindow(panelLabel, left, y, width, line, TRUE);
    y -= gap + button;
    const int buttonWidth = (width - 3 * gap) / 4;
    for (std::size_t i = 0; i < stackButtons.size(); ++i)
        MoveWindow(stackButtons[i], left + static_cast<int>(i) * (buttonWidth + gap), y, buttonWidth, button, TRUE);
    const int listHeight = std::clamp(y - tree->FullHeight() - line - 3 * gap, style->Scale(64), style->Scale(160));
    y -= gap / 2 + listHeight;
    MoveWindow(list->Handle(), left, y, width, listHeight, TRUE);
    list->FitColumns();
    y -= line;
    MoveWindow(stackLabel, left, y, width, line, TRUE);
    MoveWindow(tree->Handle(), left, gap, width, std::max(y - 2 * gap, 0), TRUE);

    const int x = left + width + gap, right = client.right - gap;
    const int previewBottom = LayOutClip({x, gap, std::max(right, x + 1), bottom});
    MoveWindow(preview->Handle(), x, gap, std::max(right - x, 1), std::max(previewBottom - gap, 1), TRUE);
}

// What belongs to a clip, at the area's bottom; tells where the picture above it may end.
int BrowseWindow::LayOutClip(const RECT& area)
{
    const Medium& medium = session->Open();
    const bool clip = medium.IsClip();
    for (const HWND control : clipButtons)
        ShowWindow(control, clip ? SW_SHOW : SW_HIDE);
    ShowWindow(seekBar, clip ? SW_SHOW : SW_HIDE);
    ShowWindow(timeText, clip ? SW_SHOW : SW_HIDE);
    if (!clip)
        return area.bottom;
    const int gap = style->Scale(6), line = style->LineHeight() + style->Scale(4), high = style->Scale(26);
    const auto buttons = static_cast<int>(clipButtons.size());
    const int room = area.right - area.left, buttonWidth = std::min(style->Scale(90), (room + gap) / buttons - gap);
    const std::wstring longest = Wide(TimeText(medium.Format(), medium.FrameCount() - 1, medium.FrameCount()));
    // Digits may be drawn wider than they were measured, which would cut off the last.
    const int timeWidth = std::max(style->Scale(100), style->Width(longest) * 9 / 8);
    int cursor = area.left, y = area.bottom - high;
    for (const HWND control : clipButtons) {
        MoveWindow(control, cursor, y, buttonWidth, high, TRUE);
        cursor += buttonWidth + gap;
    }
    // In a narrow window the position has a line of its own, above the buttons.
    if (area.right - timeWidth - cursor < style->Scale(120)) {
        cursor = area.left;
        y -= high + gap;
    }
    MoveWindow(seekBar, cursor, y, std::max<int>(area.right - timeWidth - cursor, 1), high, TRUE);
    MoveWindow(timeText, area.right - timeWidth, y + (high - line) / 2, timeWidth, line, TRUE);
    return y - gap;
}

void BrowseWindow::TakeNewStyle()
{
    auto fresh = std::make_unique<Style>(texts.Language());
    const auto font = reinterpret_cast<WPARAM>(fresh->Font());
    for (HWND child = GetWindow(hwnd, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        SendMessageW(child, WM_SETFONT, font, TRUE);
    SendMessageW(emptyPanel, WM_SETFONT, font, TRUE);
    // The parts keep a reference to the style object: it takes the new one's content.
    style->Swap(*fresh);
    timesWidth = 0;
    LayOut();
}

void BrowseWindow::OnSeekBar()
{
    session->Seek(SendMessageW(seekBar, TBM_GETPOS, 0, 0));
    ShowPosition();
}

void BrowseWindow::Open(const std::filesystem::path& file)
{
    session->OpenFile(file);
    latency = 0;
    opened.push_back(session->Open().File());
    recent.Enter(file);
    NewMenu();
    Tell({});
    ShowMedium();
}

void BrowseWindow::LoadStack(const std::filesystem::path& file)
{
    effects::EffectStack items = effects::LoadStackFile(file, session->Catalogue());
    ChangeStack([&](StackModel& stack) { stack.Replace(std::move(items)); });
    savedStack = session->Stack().Items();
    opened.push_back(file);
}

void BrowseWindow::Save(const std::filesystem::path& file)
{
    session->Pause();
    Tell({});
    const Medium& medium = session->Open();
    SaveOrder order;
    if (medium.IsClip())
        order.source = medium.File(), order.choice = session->Choice();
    else
        order.still = medium.Still();
    order.stack = effects::SwitchedOn(session->Stack().Items());
    order.target = file;
    const Saved done = SaveDialog::Run(hwnd, *style, texts, std::move(order));
    const std::wstring saved = texts(IDT_SAVED, {file.native()});
    Tell(done == Saved::No             ? texts(IDT_SAVE_CANCELLED)
         : done == Saved::WithoutSound ? texts(IDT_WITHOUT_SOUND, {saved})
                                       : saved);
}

void BrowseWindow::SetLanguage(LANGID language)
{
    panel->Close();
    session->SetLanguage(language);
    texts.SetLanguage(language);
    TakeNewStyle();
    tree->Fill(session->Catalogue());
    LayOut();
    tree->ShowFirst();
    ShowTexts();
}

void BrowseWindow::AskOpen()
{
    if (const auto file = AskForFile(hwnd, texts, FilePurpose::OpenMedium))
        Open(*file);
}

bool BrowseWindow::MayReplace(const std::filesystem::path& file)
{
    if (GetFileAttributesW(file.c_str()) == INVALID_FILE_ATTRIBUTES)
        return true;
    // Frames of the clip that is open are read while others are written: that one is refused when saving begins.
    const Medium& medium = session->Open();
    if (medium.IsClip() && IsSameFile(file, medium.File()))
        return true;
    const bool original =
        std::any_of(opened.begin(), opened.end(), [&](const auto& old) { return IsSameFile(file, old); });
    const Question question = {texts(original ? IDT_REPLACE_ORIGINAL : IDT_REPLACE_FILE, {file.filename().native()}),
                               texts(original ? IDT_ORIGINAL_LOST : IDT_FILE_THERE),
                               {texts(IDT_REPLACE), texts(IDT_OTHER_NAME)},
                               OwnFont()};
    return Ask(hwnd, program, question) == 0;
}

std::optional<std::filesystem::path> BrowseWindow::AskTarget(FilePurpose purpose, std::filesystem::path suggestion)
{
    for (;;) {
        auto file = AskForFile(hwnd, texts, purpose, suggestion);
        if (!file || MayReplace(*file))
            return file;
        suggestion = *file;
    }
}

void BrowseWindow::AskSave()
{
    const Medium& medium = session->Open();
    const effects::EffectStack steps = effects::SwitchedOn(session->Stack().Items());
    const std::wstring addition =
        steps.size() == 1 ? Wide(effects::FileStem(*effects::FindEntry(session->Catalogue(), steps[0].classId)))
                          : std::wstring(L"effects");
    const bool pictureFile = !medium.IsClip() && media::PictureFormatOf(medium.File());
    const std::wstring ending = medium.IsClip() ? L".avi"
                                : pictureFile   ? medium.File().extension().native()
                                                : std::wstring(L".png");
    const std::filesystem::path source =
        medium.File().empty() ? std::filesystem::path(Wide(medium.Name())) : medium.File();
    if (const auto file = AskTarget(medium.IsClip() ? FilePurpose::SaveClip : FilePurpose::SavePicture,
                                    SuggestedName(source, addition, ending)))
        Save(*file);
}

void BrowseWindow::AskLoadStack()
{
    if (const auto file = AskForFile(hwnd, texts, FilePurpose::OpenStack))
        LoadStack(*file);
}

void BrowseWindow::SaveStack(const std::filesystem::path& file)
{
    effects::SaveStackFile(file, session->Stack().Items());
    savedStack = session->Stack().Items();
    Tell(texts(IDT_SAVED, {file.native()}));
}

void BrowseWindow::AskSaveStack()
{
    if (const auto file = AskTarget(FilePurpose::SaveStack, {}))
        SaveStack(*file);
}

void BrowseWindow::AskSavePreset()
{
    const std::filesystem::path folder = PresetFolder();
    std::error_code fault;
    std::filesystem::create_directories(folder, fault);
    const auto file = AskTarget(FilePurpose::SavePreset, folder / L"1.txt");
    if (!file)
        return;
    SaveStack(*file);
    NewMenu();
}

bool BrowseWindow::MayClose()
{
    const effects::EffectStack& items = session->Stack().Items();
    if (items.empty() || items == savedStack)
        return true;
    const Question question = {texts(IDT_KEEP_STACK),
                               texts(IDT_STACK_CHANGED),
                               {texts(IDT_SAVE_STACK), texts(IDT_DONT_SAVE), texts(IDT_CANCEL)},
                               OwnFont()};
    const std::size_t answer = Ask(hwnd, program, question);
    if (answer == 0)
        AskSaveStack();
    return answer == 1 || (answer == 0 && session->Stack().Items() == savedStack);
}

void BrowseWindow::OnDrop(HDROP drop)
{
    std::vector<std::filesystem::path> files;
    for (UINT i = 0, count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0); i < count; ++i) {
        std::wstring name(DragQueryFileW(drop, i, nullptr, 0) + 1, L'\0');
        name.resize(DragQueryFileW(drop, i, name.data(), static_cast<UINT>(name.size())));
        files.emplace_back(name);
    }
    DragFinish(drop);
    if (files.empty())
        return;
    SetForegroundWindow(hwnd);
    const std::filesystem::path file = OneOf(files);
    if (_wcsicmp(file.extension().c_str(), L".txt") == 0)
        LoadStack(file);
    else
        Open(file);
}

void BrowseWindow::ShowHelp()
{
    const effects::EffectStep* const current = session->Stack().Current();
    const std::string stem =
        current ? effects::FileStem(*effects::FindEntry(session->Catalogue(), current->classId)) : std::string();
    const std::filesystem::path page = HelpPage(ThisProgram().parent_path(), stem);
    if (page.empty())
        return About();
    if (!openPage(page))
        Ask(hwnd, program, {texts(IDT_NO_VIEWER), page.native(), {}, OwnFont()});
}

void BrowseWindow::About()
{
    const std::wstring text = texts(IDT_ABOUT_COUNTS, {std::to_wstring(session->Catalogue().size()),
                                                       std::to_wstring(menuContent.languages.size())}) +
                              L"\n" + session->LibraryFile().native() + L"\n\n" + texts(IDT_ABOUT_HINT);
    Ask(hwnd, program, {std::wstring(program) + L" " + Wide(VIXA_VERSION), text, {}, OwnFont()});
}

} // namespace vixahost::browse
