// The browser's main window.
#pragma once

#include "host/base/Window.h"
#include "host/browse/EffectTree.h"
#include "host/browse/FileDialogs.h"
#include "host/browse/Menu.h"
#include "host/browse/MenuPainter.h"
#include "host/browse/PanelHost.h"
#include "host/browse/Presets.h"
#include "host/browse/PreviewPane.h"
#include "host/browse/Session.h"
#include "host/browse/StackList.h"
#include "host/browse/Style.h"
#include "host/browse/UserFiles.h"

#include <shellapi.h>

#include <atomic>
#include <functional>
#include <memory>

namespace vixahost::browse {

// Made and used on one thread, in which COM must be running. Ends the thread's message loop when it is closed.
class BrowseWindow : public Window
{
public:
    // `size` in pixels; zero as the system likes. Throws HostError.
    explicit BrowseWindow(SIZE size);
    ~BrowseWindow() override;

    Session& Work() noexcept { return *session; }
    // These throw HostError and leave everything as it was.
    void Open(const std::filesystem::path& file);
    void LoadStack(const std::filesystem::path& file);
    void Save(const std::filesystem::path& file);
    void SetLanguage(LANGID language);

    // Brings everything that shows the stack up to date; after a change that was made through Work.
    void ShowStack();

    // Hands a message to the window's keys and controls before it is dispatched; true when that was all.
    bool Translate(MSG& message);

    // How long it took from the panel's last change to the picture on the screen, in milliseconds; 0 before the first.
    double Latency() const noexcept { return latency; }
    // True while a change has not reached the screen yet.
    bool Pending() const { return session->Busy() || shownNumber != session->Latest().number; }
    // Opens a page of the documents in a program that shows it; false when there is none. At first the system does.
    std::function<bool(const std::filesystem::path& page)> openPage;

    // The panel's child window of the library, for those who drive the window from outside.
    HWND Panel() const noexcept { return panel->Panel(); }

private:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnFault(const char* message) noexcept override;
    void OnCreate();
    void OnCommand(int command);
    void SetColours(int command);
    LRESULT OnNotify(const NMHDR& header);
    void OnDrop(HDROP drop);
    void OnSeekBar();
    void OnPanelChanged(const std::vector<std::int32_t>& block);
    void ShowResult();
    void NewMenu();
    void ShowTexts();
    bool OnNumbered(int command);
    void OnChosen(std::size_t index);

    void ShowPanel();
    void ShowTitle();
    void ShowMedium();
    void ShowPosition();
    void ShowStatus();
    void UpdateMenu();
    void LayOut();
    int LayOutClip(const RECT& area);
    void TakeNewStyle();
    void ShowFocus() const;

    template <typename Function>
    void ChangeStack(Function change);

    void AskOpen();
    void AskSave();
    void AskLoadStack();
    void AskSaveStack();
    void AskSavePreset();
    bool MayReplace(const std::filesystem::path& file);
    bool MayClose();
    // What questions are written in where the system's font lacks letters, else null.
    HFONT OwnFont() const noexcept { return style->ReplacesSystemFont() ? style->Font() : nullptr; }
    // A file to save to, where nothing is replaced that the user wants to keep; none when the user has cancelled.
    std::optional<std::filesystem::path> AskTarget(FilePurpose purpose, std::filesystem::path suggestion);
    void SaveStack(const std::filesystem::path& file);
    // Says something in the status line until the next thing is done.
    void Tell(const std::wstring& text);
    void ShowHelp();
    void About();

    std::unique_ptr<Style> style;
    Texts texts;
    std::unique_ptr<Session> session;
    std::atomic<bool> resultPosted = false;
    std::uint64_t shownNumber = 0;
    LARGE_INTEGER changedAt = {}; // 0: nothing is being timed
    double latency = 0;

    std::unique_ptr<EffectTree> tree;
    std::unique_ptr<StackList> list;
    std::unique_ptr<PanelHost> panel;
    std::unique_ptr<PreviewPane> preview;
    HWND stackLabel = nullptr, panelLabel = nullptr, emptyPanel = nullptr, seekBar = nullptr, timeText = nullptr,
         status = nullptr;
    std::vector<HWND> stackButtons, clipButtons;
    MenuContent menuContent;
    MenuPainter menuPainter;
    RecentFiles recent;
    std::vector<std::filesystem::path> ownPresets, opened; // what was opened since the window was
    effects::EffectStack savedStack;                       // as the stack was begun, loaded or saved
    std::wstring told;                                     // what the status line says
    std::vector<int> statusParts;                          // right edges, as the status line has them
    int timesWidth = 0;                                    // pixels, of the last of them
    HACCEL keys = nullptr;
    HWND lastFocus = nullptr; // the control that had the keys last
};

} // namespace vixahost::browse
