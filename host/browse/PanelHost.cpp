#include "host/browse/PanelHost.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"
#include "host/browse/Style.h"

#include <commctrl.h>

#include <climits>

namespace vixahost::browse {

namespace {

bool IsA(HWND control, const wchar_t* kind)
{
    wchar_t name[30] = {};
    GetClassNameW(control, name, 30);
    return _wcsicmp(name, kind) == 0;
}

struct TooltipSearch
{
    HWND panel, found = nullptr;
};

BOOL CALLBACK FindTooltip(HWND window, LPARAM data)
{
    auto& search = *reinterpret_cast<TooltipSearch*>(data);
    TTTOOLINFOW first = {};
    first.cbSize = sizeof first;
    if (IsA(window, TOOLTIPS_CLASSW) && SendMessageW(window, TTM_ENUMTOOLSW, 0, reinterpret_cast<LPARAM>(&first)) &&
        first.hwnd == search.panel)
        search.found = window;
    return search.found == nullptr;
}

// The tooltip that speaks for the panel's controls, of this thread's, or null.
HWND TooltipOf(HWND panel)
{
    TooltipSearch search = {panel};
    EnumThreadWindows(GetCurrentThreadId(), FindTooltip, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

} // namespace

PanelHost::PanelHost(HWND parent, const Texts& language) : PanelWindow(10, 10, parent), texts(language)
{
    onChange = [this](WPARAM, LPARAM) {
        if (onNewBlock && set)
            onNewBlock(set->Block());
    };
}

PanelHost::~PanelHost()
{
    Close();
}

void PanelHost::Open(const effects::CatalogueEntry& entry, const std::vector<std::int32_t>& block)
{
    if (panel && IsWindow(panel) && IsEqualGUID(classId, entry.classId)) {
        set->SetData(block.data(), static_cast<int>(block.size() * sizeof(std::int32_t)));
        Show();
        return;
    }
    Close();
    info = entry.info;
    classId = entry.classId;
    set = effects::DataPropertySet::Create(block);
    Show();
}

void PanelHost::Show()
{
    const HRESULT result = ShowPanel(*info.Get(), set.Get(), &panel);
    if (FAILED(result))
        throw FailedJob("The library can't open the effect's settings: " + Explain(result) + ".");
    // The keys that move between controls reach into the panel.
    SetWindowLongPtrW(panel, GWL_EXSTYLE, GetWindowLongPtrW(panel, GWL_EXSTYLE) | WS_EX_CONTROLPARENT);
    ReplaceFont();
    ShowWindow(panel, SW_SHOW);
    NameSliders();
}

void PanelHost::ReplaceFont()
{
    LOGFONTW own = {};
    if (font || !GetObjectW(reinterpret_cast<HFONT>(SendMessageW(panel, WM_GETFONT, 0, 0)), sizeof own, &own))
        return;
    const LOGFONTW chosen = FontFor(own, texts.Language());
    if (chosen.lfCharSet == own.lfCharSet)
        return;
    font.reset(CreateFontIndirectW(&chosen));
    const auto handle = reinterpret_cast<LPARAM>(font.get());
    EnumChildWindows(panel, GiveFont, handle);
    if (const HWND tooltip = TooltipOf(panel))
        GiveFont(tooltip, handle);
}

// A slider shows no text of its own: for who hears the window it is called as the label above it.
void PanelHost::NameSliders() const
{
    for (HWND slider = GetWindow(panel, GW_CHILD); slider; slider = GetWindow(slider, GW_HWNDNEXT)) {
        if (!IsA(slider, TRACKBAR_CLASSW))
            continue;
        RECT place = {}, nearest = {0, LONG_MIN, 0, 0};
        GetWindowRect(slider, &place);
        for (HWND label = GetWindow(panel, GW_CHILD); label; label = GetWindow(label, GW_HWNDNEXT)) {
            RECT above = {};
            GetWindowRect(label, &above);
            if (!IsA(label, WC_STATICW) || above.top >= place.top || above.top <= nearest.top ||
                above.left > (place.left + place.right) / 2)
                continue;
            nearest = above;
            wchar_t text[100] = {};
            GetWindowTextW(label, text, 100);
            SetWindowTextW(slider, text);
        }
    }
}

void PanelHost::Close()
{
    if (panel && IsWindow(panel))
        DestroyWindow(panel);
    panel = nullptr;
    font.reset(); // the panel's tooltip, which had it too, went with the panel
    info.Reset();
    set.Reset();
    classId = {};
}

void PanelHost::Reset()
{
    if (!info)
        return;
    info->SetDefaults(set.Get());
    Show();
    if (onNewBlock)
        onNewBlock(set->Block());
}

SIZE PanelHost::PanelSize() const noexcept
{
    RECT rectangle = {};
    if (panel)
        GetWindowRect(panel, &rectangle);
    return {rectangle.right - rectangle.left, rectangle.bottom - rectangle.top};
}

} // namespace vixahost::browse
