#include "host/browse/PanelHost.h"

#include "host/base/HostError.h"
#include "host/base/ResultCode.h"
#include "host/base/Text.h"

#include <commctrl.h>

#include <climits>

namespace vixahost::browse {

PanelHost::PanelHost(HWND parent) : PanelWindow(10, 10, parent)
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
    ShowWindow(panel, SW_SHOW);
    NameSliders();
}

// A slider shows no text of its own: for who hears the window it is called as the label above it.
void PanelHost::NameSliders() const
{
    const auto isA = [](HWND control, const wchar_t* kind) {
        wchar_t name[30] = {};
        GetClassNameW(control, name, 30);
        return _wcsicmp(name, kind) == 0;
    };
    for (HWND slider = GetWindow(panel, GW_CHILD); slider; slider = GetWindow(slider, GW_HWNDNEXT)) {
        if (!isA(slider, TRACKBAR_CLASSW))
            continue;
        RECT place = {}, nearest = {0, LONG_MIN, 0, 0};
        GetWindowRect(slider, &place);
        for (HWND label = GetWindow(panel, GW_CHILD); label; label = GetWindow(label, GW_HWNDNEXT)) {
            RECT above = {};
            GetWindowRect(label, &above);
            if (!isA(label, WC_STATICW) || above.top >= place.top || above.top <= nearest.top ||
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
