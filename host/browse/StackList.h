// The stack of effects as a list with a box to switch each on and off.
#pragma once

#include "host/browse/EffectIcons.h"
#include "host/browse/Style.h"
#include "host/effects/EffectStack.h"

#include <functional>

namespace vixahost::browse {

// Wraps the system's list control. The frame hands on the control's notifications.
class StackList
{
public:
    StackList(HWND parent, int id, const Style& look);

    HWND Handle() const noexcept { return list; }
    // Shows the steps; calls nothing back.
    void Show(const effects::EffectStack& items, std::size_t selected,
              const std::vector<effects::CatalogueEntry>& catalogue);
    // After the control has got another width.
    void FitColumns();

    std::function<void(std::size_t)> onSelected;
    std::function<void(std::size_t, bool)> onSwitched;
    LRESULT OnNotify(const NMHDR& header);

private:
    void SetText(int row, int column, const std::wstring& text);

    const Style& style;
    HWND list = nullptr;
    bool showing = false;
};

} // namespace vixahost::browse
