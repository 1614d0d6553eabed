#include "host/base/HostError.h"
#include "host/base/TargetFile.h"
#include "host/base/Text.h"
#include "host/commands/Commands.h"
#include "host/effects/DataPropertySet.h"
#include "host/effects/EffectCatalogue.h"
#include "host/effects/PanelWindow.h"
#include "host/media/PictureFile.h"

#include "host/base/Handles.h"

#include <cstring>

namespace vixahost::commands {

namespace {

// What a window shows, read back from its own surface.
media::Picture PictureOf(HWND window)
{
    RECT area = {};
    GetClientRect(window, &area);
    media::Picture picture(area.right, area.bottom);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = area.right;
    info.bmiHeader.biHeight = -area.bottom;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    const HDC screen = GetDC(window);
    const UniqueMemoryDC memory(CreateCompatibleDC(screen));
    void* bits = nullptr;
    const UniqueBitmap bitmap(CreateDIBSection(memory.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    bool done = false;
    if (bitmap) {
        const HGDIOBJ before = SelectObject(memory.get(), bitmap.get());
        done = BitBlt(memory.get(), 0, 0, area.right, area.bottom, screen, 0, 0, SRCCOPY) != FALSE;
        GdiFlush();
        if (done)
            std::memcpy(picture.pixels.data(), bits, picture.pixels.size());
        SelectObject(memory.get(), before);
    }
    ReleaseDC(window, screen);
    if (!done)
        throw FailedJob("The panel's window can't be read back (system error " + std::to_string(GetLastError()) + ").");
    for (std::size_t i = 3; i < picture.pixels.size(); i += 4)
        picture.pixels[i] = 255;
    return picture;
}

} // namespace

void PicturePanel(const PanelCommand& command)
{
    effects::EffectStep step(effects::FindEffect(command.effect));
    for (const std::string& setting : command.settings)
        step.Set(setting);
    // The language that the catalogue was last read in is the panel's.
    const effects::EffectLibrary library;
    const auto catalogue = effects::ReadCatalogue(library, command.language);
    const effects::CatalogueEntry& entry = effects::RequireEntry(catalogue, command.effect);
    const auto set = effects::DataPropertySet::Create(step.Block());

    effects::PanelWindow host(640, 480);
    HWND panel = nullptr;
    const HRESULT result =
        entry.info->ShowSettingsDialog(0, host.Handle(), effects::PanelWindow::changed, set.Get(), &panel);
    if (FAILED(result) || !panel)
        throw FailedJob("The panel of \"" + entry.englishName + "\" can't be opened (" + Show(result) + ").");
    // The host's window is as large as the panel, as a host would leave room for it.
    RECT area = {};
    GetWindowRect(panel, &area);
    SetWindowPos(host.Handle(), HWND_TOP, 0, 0, area.right - area.left, area.bottom - area.top, SWP_NOACTIVATE);
    SetWindowPos(panel, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_SHOWWINDOW);
    ShowWindow(host.Handle(), SW_SHOWNOACTIVATE);
    for (int i = 0; i < 20; ++i) {
        RedrawWindow(host.Handle(), nullptr, nullptr, RDW_ALLCHILDREN | RDW_UPDATENOW);
        effects::PanelWindow::Pump();
        Sleep(10);
    }
    TargetFile target(command.target);
    media::WritePicture(target.Temporary(), media::PictureFormat::Png, PictureOf(host.Handle()));
    target.Commit();
}

} // namespace vixahost::commands
