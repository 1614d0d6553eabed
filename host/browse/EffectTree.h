// The library's effects in their groups.
#pragma once

#include "host/browse/EffectIcons.h"
#include "host/browse/Style.h"

#include <functional>

namespace vixahost::browse {

// Wraps the system's tree control. The frame hands on the control's notifications.
class EffectTree
{
public:
    EffectTree(HWND parent, int id, const Style& look);

    // Pixels that show everything without scrolling, where nothing is folded.
    int FullHeight() const;
    HWND Handle() const noexcept { return tree; }
    // Fills the tree anew; nothing is selected then.
    void Fill(const std::vector<effects::CatalogueEntry>& catalogue);
    // Scrolls to the beginning; for a tree that was filled before it had its size.
    void ShowFirst();
    // Without a call to onChosen.
    void Select(std::size_t entry);

    // Called with the entry's index when the user has chosen an effect.
    std::function<void(std::size_t)> onChosen;
    LRESULT OnNotify(const NMHDR& header) const;

private:
    const Style& style;
    HWND tree = nullptr;
    UniqueImageList icons;
    std::vector<HTREEITEM> items; // of the catalogue's entries
    bool filling = false;
};

} // namespace vixahost::browse
