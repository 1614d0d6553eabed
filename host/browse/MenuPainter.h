// Draws menus whose letters the system's menu font lacks, and all of them under dark colours, where the system may draw
// what is disabled as bright as the rest, and doubled.
#pragma once

#include "host/base/Handles.h"

#include <windows.h>

#include <oleacc.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vixahost::browse {

// Looks after one window's menu. It must live as long as that menu is shown. One thread.
class MenuPainter
{
public:
    // The bar and those menus below it that need it are drawn here from now on; what they say is told to who reads them
    // to their user.
    void Take(HMENU menu);

    // What WM_MEASUREITEM and WM_DRAWITEM ask; false when it is not about an item of these.
    bool Measure(MEASUREITEMSTRUCT& wanted) const;
    bool Draw(const DRAWITEMSTRUCT& drawing) const;
    // The place of the item of a drawn menu that a key chooses.
    static std::optional<UINT> ItemOf(HMENU menu, wchar_t key);

private:
    struct Item
    {
        MSAAMENUINFO spoken = {}; // first, as screen readers look for it there
        std::wstring text;        // with its access key and, behind a tab, its keys
        HFONT font = nullptr;     // the painter's
        bool inBar = false;
    };
    static const Item* ItemAt(ULONG_PTR data);
    static bool Lacks(const std::wstring& text);
    void TakeItems(HMENU menu, bool isBar);

    UniqueFont own, other; // the system's, and the one with the letters that it lacks
    bool every = false;    // whether all items are drawn here
    std::vector<std::unique_ptr<Item>> items;
};

} // namespace vixahost::browse
