#include "host/browse/StackList.h"

#include "host/base/Text.h"

#include <algorithm>

namespace vixahost::browse {

StackList::StackList(HWND parent, int id, const Style& look) : style(look)
{
    list = CreateControl(WC_LISTVIEWW, L"Stack",
                         WS_VISIBLE | WS_TABSTOP | LVS_REPORT | LVS_NOCOLUMNHEADER | LVS_SINGLESEL | LVS_SHOWSELALWAYS,
                         parent, id, look, WS_EX_CLIENTEDGE);
    constexpr DWORD looks = LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER;
    ListView_SetExtendedListViewStyleEx(list, looks, looks);
    LVCOLUMNW column = {};
    column.mask = LVCF_WIDTH;
    column.cx = style.Scale(150);
    ListView_InsertColumn(list, 0, &column);
    ListView_InsertColumn(list, 1, &column);
}

void StackList::FitColumns()
{
    RECT client = {};
    GetClientRect(list, &client);
    int names = style.Scale(80);
    for (int row = 0; row < ListView_GetItemCount(list); ++row) {
        wchar_t name[200] = {};
        ListView_GetItemText(list, row, 0, name, 200);
        names = std::max(names, style.Width(name));
    }
    const int first = std::min<int>(names + style.Scale(26), client.right / 2); // with a box and space around
    if (ListView_GetColumnWidth(list, 0) == first && ListView_GetColumnWidth(list, 1) == client.right - first)
        return;
    ListView_SetColumnWidth(list, 0, first);
    ListView_SetColumnWidth(list, 1, client.right - first);
}

void StackList::SetText(int row, int column, const std::wstring& text)
{
    wchar_t old[200] = {};
    ListView_GetItemText(list, row, column, old, 200);
    if (text != old)
        ListView_SetItemText(list, row, column, const_cast<wchar_t*>(text.c_str()));
}

void StackList::Show(const effects::EffectStack& items, std::size_t selected,
                     const std::vector<effects::CatalogueEntry>& catalogue)
{
    showing = true;
    while (ListView_GetItemCount(list) > static_cast<int>(items.size()))
        ListView_DeleteItem(list, ListView_GetItemCount(list) - 1);
    for (std::size_t i = 0; i < items.size(); ++i) {
        const int row = static_cast<int>(i);
        const effects::CatalogueEntry* const entry = effects::FindEntry(catalogue, items[i].classId);
        if (row >= ListView_GetItemCount(list)) {
            LVITEMW item = {};
            item.mask = LVIF_TEXT;
            item.iItem = row;
            item.pszText = const_cast<wchar_t*>(L"");
            ListView_InsertItem(list, &item);
        }
        SetText(row, 0, entry ? entry->name : std::wstring());
        SetText(row, 1, Wide(effects::SettingsText(items[i])));
        ListView_SetCheckState(list, row, items[i].on);
        const UINT state = i == selected ? LVIS_SELECTED | LVIS_FOCUSED : 0;
        if (ListView_GetItemState(list, row, LVIS_SELECTED | LVIS_FOCUSED) != state)
            ListView_SetItemState(list, row, state, LVIS_SELECTED | LVIS_FOCUSED);
    }
    FitColumns();
    if (selected < items.size())
        ListView_EnsureVisible(list, static_cast<int>(selected), FALSE);
    showing = false;
}

LRESULT StackList::OnNotify(const NMHDR& header)
{
    if (header.code != LVN_ITEMCHANGED || showing)
        return 0;
    const auto& change = reinterpret_cast<const NMLISTVIEW&>(header);
    const UINT turned = change.uNewState ^ change.uOldState;
    const auto row = static_cast<std::size_t>(change.iItem);
    if ((turned & LVIS_STATEIMAGEMASK) && (change.uOldState & LVIS_STATEIMAGEMASK) && onSwitched)
        onSwitched(row, ListView_GetCheckState(list, change.iItem) != 0);
    else if ((turned & change.uNewState & LVIS_SELECTED) && onSelected)
        onSelected(row);
    return 0;
}

} // namespace vixahost::browse
