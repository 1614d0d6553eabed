#include "host/browse/EffectTree.h"

namespace vixahost::browse {

namespace {
constexpr LPARAM groupItem = -1;
}

EffectTree::EffectTree(HWND parent, int id, const Style& look) : style(look)
{
    tree = CreateControl(WC_TREEVIEWW, L"Effects",
                         WS_VISIBLE | WS_TABSTOP | TVS_HASBUTTONS | TVS_LINESATROOT | TVS_HASLINES | TVS_SHOWSELALWAYS |
                             TVS_DISABLEDRAGDROP,
                         parent, id, look, WS_EX_CLIENTEDGE);
}

void EffectTree::Fill(const std::vector<effects::CatalogueEntry>& catalogue)
{
    filling = true;
    TreeView_DeleteAllItems(tree);
    icons = MakeIcons(catalogue, style.Scale(22), style.Scale(21));
    TreeView_SetImageList(tree, icons.get(), TVSIL_NORMAL);
    TreeView_SetItemHeight(tree, style.Scale(22));
    items.clear();
    HTREEITEM group = nullptr;
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        const effects::CatalogueEntry& entry = catalogue[i];
        TVINSERTSTRUCTW insert = {};
        insert.hInsertAfter = TVI_LAST;
        insert.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_IMAGE | TVIF_SELECTEDIMAGE | TVIF_STATE;
        insert.item.stateMask = TVIS_BOLD | TVIS_EXPANDED;
        if (!group || entry.groupId != catalogue[i - 1].groupId) {
            insert.hParent = TVI_ROOT;
            insert.item.pszText = const_cast<wchar_t*>(entry.group.c_str());
            insert.item.lParam = groupItem;
            insert.item.iImage = insert.item.iSelectedImage = I_IMAGENONE;
            insert.item.state = TVIS_BOLD | TVIS_EXPANDED;
            group = TreeView_InsertItem(tree, &insert);
        }
        insert.hParent = group;
        insert.item.pszText = const_cast<wchar_t*>(entry.name.c_str());
        insert.item.lParam = static_cast<LPARAM>(i);
        insert.item.iImage = insert.item.iSelectedImage = static_cast<int>(i);
        insert.item.state = 0;
        items.push_back(TreeView_InsertItem(tree, &insert));
        TreeView_Expand(tree, group, TVE_EXPAND);
    }
    filling = false;
}

int EffectTree::FullHeight() const
{
    RECT outer = {}, inner = {};
    GetWindowRect(tree, &outer);
    GetClientRect(tree, &inner);
    return static_cast<int>(TreeView_GetCount(tree)) * TreeView_GetItemHeight(tree) + (outer.bottom - outer.top) -
           inner.bottom;
}

void EffectTree::ShowFirst()
{
    TreeView_EnsureVisible(tree, TreeView_GetRoot(tree));
}

void EffectTree::Select(std::size_t entry)
{
    if (entry >= items.size() || TreeView_GetSelection(tree) == items[entry])
        return;
    filling = true;
    TreeView_SelectItem(tree, items[entry]);
    filling = false;
}

LRESULT EffectTree::OnNotify(const NMHDR& header) const
{
    if (header.code != TVN_SELCHANGEDW || filling)
        return 0;
    const auto& change = reinterpret_cast<const NMTREEVIEWW&>(header);
    if (change.itemNew.lParam != groupItem && onChosen)
        onChosen(static_cast<std::size_t>(change.itemNew.lParam));
    return 0;
}

} // namespace vixahost::browse
