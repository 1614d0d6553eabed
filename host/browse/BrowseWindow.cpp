#include "host/browse/BrowseWindow.h"

#include "host/base/HostError.h"
#include "host/base/Text.h"
#include "host/browse/FileDialogs.h"
#include "host/browse/Ids.h"
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
constexpr const wchar_t* program = L"VixaVideoFX browser";

struct ButtonText
{
    int command;
    const wchar_t* text;
};
constexpr ButtonText stackButtonTexts[] = {
    {IDM_ADD, L"Add"}, {IDM_REMOVE, L"Remove"}, {IDM_UP, L"Up"}, {IDM_DOWN, L"Down"}};
constexpr ButtonText clipButtonTexts[] = {
    {IDM_PLAY, L"Play"}, {IDM_STEP_BACK, L"< Step"}, {IDM_STEP_FORWARD, L"Step >"}};

HWND MakeButton(HWND parent, const ButtonText& button, const Style& style)
{
    return CreateControl(WC_BUTTONW, button.text, WS_VISIBLE | WS_TABSTOP | BS_PUSHBUTTON, parent, button.command,
                         style);
}

} // namespace

BrowseWindow::BrowseWindow(SIZE size) : style(std::make_unique<Style>())
{
    const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&controls);
    const HINSTANCE instance = GetModuleHandleW(nullptr);
    keys = LoadAcceleratorsW(instance, MAKEINTRESOURCEW(IDR_BROWSE));
    const HMENU menu = LoadMenuW(instance, MAKEINTRESOURCEW(IDR_BROWSE));
    if (size.cx == 0)
        size = {style->Scale(1180), style->Scale(760)};
    Create({L"VixaBrowseWindow", 0, IDC_ARROW, reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1)}, program,
           WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, WS_EX_ACCEPTFILES, nullptr, menu, size);
    const HWND window = hwnd;
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
    tree->onChosen = [this](std::size_t index) {
        const effects::CatalogueEntry& entry = session->Catalogue().at(index);
        ChangeStack([&](StackModel& stack) { stack.Choose(effects::StepOf(entry)); });
    };
    stackLabel = CreateControl(WC_STATICW, L"Stack: the effects in order", WS_VISIBLE, hwnd, 0, *style);
    list = std::make_unique<StackList>(hwnd, IDC_STACK, *style);
    list->onSelected = [this](std::size_t index) { ChangeStack([&](StackModel& stack) { stack.Select(index); }); };
    list->onSwitched = [this](std::size_t index, bool on) {
        ChangeStack([&](StackModel& stack) { stack.Switch(index, on); });
    };
    for (const ButtonText& button : stackButtonTexts)
        stackButtons.push_back(MakeButton(hwnd, button, *style));
    panelLabel = CreateControl(WC_STATICW, L"", WS_VISIBLE | SS_ENDELLIPSIS, hwnd, 0, *style);
    panel = std::make_unique<PanelHost>(hwnd);
    panel->onNewBlock = [this](const std::vector<std::int32_t>& block) { OnPanelChanged(block); };
    emptyPanel = CreateControl(WC_STATICW, L"This effect has no settings.", 0, panel->Handle(), 0, *style);
    preview = std::make_unique<PreviewPane>(hwnd, IDC_PREVIEW, *style);
    for (const ButtonText& button : clipButtonTexts)
        clipButtons.push_back(MakeButton(hwnd, button, *style));
    seekBar = CreateControl(TRACKBAR_CLASSW, L"Position", WS_VISIBLE | WS_TABSTOP | TBS_HORZ | TBS_NOTICKS, hwnd,
                            IDC_SEEK, *style);
    timeText = CreateControl(WC_STATICW, L"", WS_VISIBLE | SS_RIGHT, hwnd, 0, *style);
    status = CreateControl(STATUSCLASSNAMEW, L"", WS_VISIBLE | SBARS_SIZEGRIP, hwnd, IDC_STATUS, *style);
    tree->Fill(session->Catalogue());
    FillLanguages();
    ShowMedium();
    ShowStack();
    tree->ShowFirst();
    SetTimer(hwnd, failureTimer, failureInterval, nullptr);
}

void BrowseWindow::FillLanguages()
{
    languages = effects::InstalledLanguages(session->LibraryFile());
    const HMENU menu = GetSubMenu(GetMenu(hwnd), 4);
    DeleteMenu(menu, 0, MF_BYPOSITION);
    for (std::size_t i = 0; i < languages.size(); ++i)
        AppendMenuW(menu, i > 0 && i % 14 == 0 ? MF_STRING | MF_MENUBARBREAK : MF_STRING, IDM_LANGUAGE + i,
                    languages[i].name.c_str());
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
    case WM_DROPFILES:
        OnDrop(reinterpret_cast<HDROP>(wParam));
        return 0;
    case WM_SETTINGCHANGE:
        TakeNewStyle();
        return 0;
    case WM_DESTROY:
        panel->Close();
        PostQuitMessage(0);
        return 0;
    default:
        return Window::OnMessage(message, wParam, lParam);
    }
}

void BrowseWindow::OnFault(const char* message) noexcept
{
    session->Pause();
    MessageBoxW(hwnd, Wide(message).c_str(), program, MB_OK | MB_ICONWARNING);
}

bool BrowseWindow::Translate(MSG& message)
{
    if (message.hwnd != hwnd && !IsChild(hwnd, message.hwnd))
        return false;
    return TranslateAcceleratorW(hwnd, keys, &message) || IsDialogMessageW(hwnd, &message);
}

template <typename Function>
void BrowseWindow::ChangeStack(Function change)
{
    session->Change(change);
    ShowStack();
}

void BrowseWindow::OnCommand(int command)
{
    const std::size_t selected = session->Stack().Selected();
    const effects::EffectStep* const current = session->Stack().Current();
    const bool clip = session->Open().IsClip();
    if (command >= IDM_LANGUAGE && command < IDM_LANGUAGE + static_cast<int>(languages.size())) {
        SetLanguage(languages[static_cast<std::size_t>(command - IDM_LANGUAGE)].id);
        return;
    }
    switch (command) {
    case IDM_OPEN:
        return AskOpen();
    case IDM_SAVE:
        return AskSave();
    case IDM_LOAD_STACK:
        return AskLoadStack();
    case IDM_SAVE_STACK:
        return AskSaveStack();
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
    case IDM_ABOUT:
        return About();
    default:
        return;
    }
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
    ShowPanel();
}

void BrowseWindow::ShowPanel()
{
    const effects::EffectStep* const current = session->Stack().Current();
    if (!current) {
        panel->Close();
        SetWindowTextW(panelLabel, L"The stack is empty: choose an effect.");
        ShowWindow(emptyPanel, SW_HIDE);
        return;
    }
    const effects::CatalogueEntry& entry = *effects::FindEntry(session->Catalogue(), current->classId);
    panel->Open(entry, current->block);
    SetWindowTextW(panelLabel, (L"Settings: " + entry.name).c_str());
    const bool empty = panel->IsEmpty();
    ShowWindow(emptyPanel, empty ? SW_SHOW : SW_HIDE);
    ShowWindow(panel->Panel(), empty ? SW_HIDE : SW_SHOW);
}

void BrowseWindow::ShowMedium()
{
    const Medium& medium = session->Open();
    SetWindowTextW(hwnd, (Wide(medium.Name()) + L" - " + program).c_str());
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
    ShowStatus();
}

void BrowseWindow::ShowPosition()
{
    const Medium& medium = session->Open();
    const Player& player = session->Player();
    SendMessageW(seekBar, TBM_SETPOS, TRUE, static_cast<LPARAM>(player.Position()));
    SetWindowTextW(timeText, Wide(TimeText(medium.Format(), player.Position(), medium.FrameCount())).c_str());
    SetWindowTextW(clipButtons[0], player.Playing() ? L"Pause" : L"Play");
}

void BrowseWindow::ShowStatus()
{
    const Medium& medium = session->Open();
    const media::FrameFormat& format = medium.Format();
    std::wstring text = std::to_wstring(format.width) + L" x " + std::to_wstring(format.height) + L" pixels";
    if (medium.IsClip()) {
        char clip[64] = {};
        std::snprintf(clip, sizeof clip, ", %lld frames, %.3g per second", static_cast<long long>(medium.FrameCount()),
                      static_cast<double>(format.rate) / format.scale);
        text += Wide(clip);
    }
    char spent[40] = {}, appeared[40] = {};
    if (const LiveResult result = session->Latest(); result.after)
        std::snprintf(spent, sizeof spent, "Effects %.2f ms", result.milliseconds);
    if (latency > 0)
        std::snprintf(appeared, sizeof appeared, ", new picture after %.1f ms", latency);
    SendMessageW(status, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(text.c_str()));
    SendMessageW(status, SB_SETTEXTW, 1, reinterpret_cast<LPARAM>(Wide(std::string(spent) + appeared).c_str()));
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
    enable(IDM_RESET, current && !panel->IsEmpty());
    for (const UINT command : std::initializer_list<UINT>{IDM_PLAY, IDM_STEP_BACK, IDM_STEP_FORWARD, IDM_TO_START})
        enable(command, session->Open().IsClip());
    const auto check = [&](UINT command, bool checked) {
        CheckMenuItem(menu, command, MF_BYCOMMAND | (checked ? MF_CHECKED : MF_UNCHECKED));
    };
    check(IDM_SWITCH, current && current->on);
    check(IDM_ENLARGE, preview->Enlarges());
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
    const int parts[] = {std::max<int>(client.right - style->Scale(310), 100), -1};
    SendMessageW(status, SB_SETPARTS, 2, reinterpret_cast<LPARAM>(parts));

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
    const int listHeight = std::clamp((y - gap) / 4, style->Scale(64), style->Scale(160));
    y -= gap / 2 + listHeight;
    MoveWindow(list->Handle(), left, y, width, listHeight, TRUE);
    list->FitColumns();
    y -= line;
    MoveWindow(stackLabel, left, y, width, line, TRUE);
    MoveWindow(tree->Handle(), left, gap, width, std::max(y - 2 * gap, 0), TRUE);

    const bool clip = session->Open().IsClip();
    const int x = left + width + gap, right = client.right - gap;
    const int previewBottom = clip ? bottom - button - gap : bottom;
    MoveWindow(preview->Handle(), x, gap, std::max(right - x, 1), std::max(previewBottom - gap, 1), TRUE);
    const int timeWidth = style->Scale(130), clipWidth = style->Scale(64);
    int cursor = x;
    for (const HWND control : clipButtons) {
        MoveWindow(control, cursor, bottom - button, clipWidth, button, TRUE);
        cursor += clipWidth + gap;
    }
    MoveWindow(seekBar, cursor, bottom - button, std::max(right - timeWidth - cursor, 1), button, TRUE);
    MoveWindow(timeText, right - timeWidth, bottom - button + (button - line) / 2, timeWidth, line, TRUE);
    for (const HWND control : clipButtons)
        ShowWindow(control, clip ? SW_SHOW : SW_HIDE);
    ShowWindow(seekBar, clip ? SW_SHOW : SW_HIDE);
    ShowWindow(timeText, clip ? SW_SHOW : SW_HIDE);
}

void BrowseWindow::TakeNewStyle()
{
    auto fresh = std::make_unique<Style>();
    const auto font = reinterpret_cast<WPARAM>(fresh->Font());
    for (HWND child = GetWindow(hwnd, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        SendMessageW(child, WM_SETFONT, font, TRUE);
    SendMessageW(emptyPanel, WM_SETFONT, font, TRUE);
    // The parts keep a reference to the style object: it takes the new one's content.
    style->Swap(*fresh);
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
    ShowMedium();
}

void BrowseWindow::LoadStack(const std::filesystem::path& file)
{
    effects::EffectStack items = effects::LoadStackFile(file, session->Catalogue());
    ChangeStack([&](StackModel& stack) { stack.Replace(std::move(items)); });
}

void BrowseWindow::Save(const std::filesystem::path& file)
{
    session->Pause();
    const Medium& medium = session->Open();
    SaveOrder order;
    if (medium.IsClip())
        order.source = medium.File();
    else
        order.still = medium.Still();
    order.stack = effects::SwitchedOn(session->Stack().Items());
    order.target = file;
    const bool done = SaveDialog::Run(hwnd, *style, std::move(order));
    const std::wstring text = done ? L"Saved as " + file.native() : L"Saving was cancelled; nothing was written.";
    SendMessageW(status, SB_SETTEXTW, 0, reinterpret_cast<LPARAM>(text.c_str()));
}

void BrowseWindow::SetLanguage(LANGID language)
{
    panel->Close();
    session->SetLanguage(language);
    tree->Fill(session->Catalogue());
    tree->ShowFirst();
    ShowStack();
}

void BrowseWindow::AskOpen()
{
    if (const auto file = AskForFile(hwnd, FilePurpose::OpenMedium))
        Open(*file);
}

void BrowseWindow::AskSave()
{
    const bool clip = session->Open().IsClip();
    if (const auto file = AskForFile(hwnd, clip ? FilePurpose::SaveClip : FilePurpose::SavePicture))
        Save(*file);
}

void BrowseWindow::AskLoadStack()
{
    if (const auto file = AskForFile(hwnd, FilePurpose::OpenStack))
        LoadStack(*file);
}

void BrowseWindow::AskSaveStack()
{
    if (const auto file = AskForFile(hwnd, FilePurpose::SaveStack))
        effects::SaveStackFile(*file, session->Stack().Items());
}

void BrowseWindow::OnDrop(HDROP drop)
{
    std::wstring name(DragQueryFileW(drop, 0, nullptr, 0) + 1, L'\0');
    name.resize(DragQueryFileW(drop, 0, name.data(), static_cast<UINT>(name.size())));
    DragFinish(drop);
    SetForegroundWindow(hwnd);
    const std::filesystem::path file = name;
    if (_wcsicmp(file.extension().c_str(), L".txt") == 0)
        LoadStack(file);
    else
        Open(file);
}

void BrowseWindow::About()
{
    const std::wstring text =
        std::wstring(program) + L" " + Wide(VIXA_VERSION) + L"\n\n" + std::to_wstring(session->Catalogue().size()) +
        L" effects and " + std::to_wstring(languages.size()) + L" languages from\n" + session->LibraryFile().native() +
        L"\n\nChoose an effect on the left and set it below; the picture follows. Add puts a "
        L"further effect on the stack. Drag the divider to compare before and after.";
    MessageBoxW(hwnd, text.c_str(), L"About", MB_OK | MB_ICONINFORMATION);
}

} // namespace vixahost::browse
