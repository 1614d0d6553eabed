#include "host/browse/MenuPainter.h"

#include "host/browse/Style.h"

#include <algorithm>

namespace vixahost::browse {

namespace {

constexpr WORD checkMark = 32760; // OBM_CHECK
constexpr LANGID thai = MAKELANGID(LANG_THAI, SUBLANG_DEFAULT);

std::wstring TextOf(HMENU menu, UINT place)
{
    std::wstring text(static_cast<std::size_t>(GetMenuStringW(menu, place, nullptr, 0, MF_BYPOSITION)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(
        GetMenuStringW(menu, place, text.data(), static_cast<int>(text.size()), MF_BYPOSITION)));
    return text;
}

// What stands on the left, and the keys on the right.
struct Halves
{
    explicit Halves(const std::wstring& text) : label(text.substr(0, text.find(L'\t')))
    {
        if (label.size() < text.size())
            keys = text.substr(label.size() + 1);
    }
    std::wstring label, keys;
};

SIZE SizeOf(HFONT font, const std::wstring& text)
{
    const UniqueScreenDC screen(GetDC(nullptr));
    const HGDIOBJ old = SelectObject(screen.get(), font);
    RECT box = {};
    DrawTextW(screen.get(), text.c_str(), -1, &box, DT_SINGLELINE | DT_CALCRECT);
    SelectObject(screen.get(), old);
    return {box.right, box.bottom};
}

// Room for a mark, an arrow or the space between label and keys.
int MarkWidth()
{
    return GetSystemMetrics(SM_CXMENUCHECK);
}

} // namespace

void MenuPainter::Take(HMENU menu)
{
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    const LOGFONTW chosen = FontFor(metrics.lfMenuFont, thai);
    every = DarkColours();
    if (!every && chosen.lfCharSet == metrics.lfMenuFont.lfCharSet)
        return; // the system has all letters
    own.reset(CreateFontIndirectW(&metrics.lfMenuFont));
    other.reset(CreateFontIndirectW(&chosen));
    TakeItems(menu, true);
}

bool MenuPainter::Lacks(const std::wstring& text)
{
    return std::any_of(text.begin(), text.end(), [](wchar_t letter) { return letter >= 0x0E00 && letter < 0x0E80; });
}

void MenuPainter::TakeItems(HMENU menu, bool isBar)
{
    const auto count = static_cast<UINT>(GetMenuItemCount(menu));
    std::vector<std::wstring> texts;
    for (UINT i = 0; i < count; ++i) {
        texts.push_back(TextOf(menu, i));
        if (const HMENU below = GetSubMenu(menu, static_cast<int>(i)))
            TakeItems(below, false);
    }
    if (!every && std::none_of(texts.begin(), texts.end(), Lacks))
        return;
    for (UINT i = 0; i < count; ++i) {
        MENUITEMINFOW info = {};
        info.cbSize = sizeof info;
        info.fMask = MIIM_FTYPE | MIIM_DATA;
        if (!GetMenuItemInfoW(menu, i, TRUE, &info) || (info.fType & MFT_SEPARATOR))
            continue;
        auto item = std::make_unique<Item>();
        item->text = texts[i];
        item->font = Lacks(texts[i]) ? other.get() : own.get();
        item->inBar = isBar;
        item->spoken = {MSAA_MENU_SIG, static_cast<DWORD>(item->text.size()), item->text.data()};
        info.fType |= MFT_OWNERDRAW;
        info.dwItemData = reinterpret_cast<ULONG_PTR>(item.get());
        items.push_back(std::move(item));
        SetMenuItemInfoW(menu, i, TRUE, &info);
    }
}

const MenuPainter::Item* MenuPainter::ItemAt(ULONG_PTR data)
{
    return reinterpret_cast<const Item*>(data);
}

bool MenuPainter::Measure(MEASUREITEMSTRUCT& wanted) const
{
    const Item* const item = wanted.CtlType == ODT_MENU ? ItemAt(wanted.itemData) : nullptr;
    if (!item)
        return false;
    const Halves halves(item->text);
    const SIZE label = SizeOf(item->font, halves.label);
    wanted.itemWidth = static_cast<UINT>(label.cx);
    wanted.itemHeight = static_cast<UINT>(std::max<int>(label.cy + 4, GetSystemMetrics(SM_CYMENUSIZE)));
    if (!item->inBar)
        wanted.itemWidth += static_cast<UINT>(SizeOf(own.get(), halves.keys).cx + 4 * MarkWidth());
    return true;
}

bool MenuPainter::Draw(const DRAWITEMSTRUCT& drawing) const
{
    const Item* const item = drawing.CtlType == ODT_MENU ? ItemAt(drawing.itemData) : nullptr;
    if (!item)
        return false;
    const HDC dc = drawing.hDC;
    const bool chosen = (drawing.itemState & ODS_SELECTED) != 0;
    RECT box = drawing.rcItem;
    const int ground = chosen ? COLOR_HIGHLIGHT : item->inBar ? COLOR_MENUBAR : COLOR_MENU;
    FillRect(dc, &box, GetSysColorBrush(ground));
    const COLORREF colour = GetSysColor((drawing.itemState & ODS_GRAYED) ? COLOR_GRAYTEXT
                                        : chosen                         ? COLOR_HIGHLIGHTTEXT
                                                                         : COLOR_MENUTEXT);
    SetTextColor(dc, colour);
    SetBkMode(dc, TRANSPARENT);
    const Halves halves(item->text);
    const HGDIOBJ old = SelectObject(dc, item->font);
    constexpr UINT line = DT_SINGLELINE | DT_VCENTER;
    const UINT prefix = (drawing.itemState & ODS_NOACCEL) ? DT_HIDEPREFIX : 0;
    if (item->inBar) {
        DrawTextW(dc, halves.label.c_str(), -1, &box, line | DT_CENTER | prefix);
    } else {
        if (drawing.itemState & ODS_CHECKED) {
            // The system's mark is black on white; a copy takes the colours of text and ground.
            const UniqueBitmap mark(LoadBitmapW(nullptr, MAKEINTRESOURCEW(checkMark)));
            BITMAP size = {};
            GetObjectW(mark.get(), sizeof size, &size);
            const UniqueMemoryDC source(CreateCompatibleDC(dc));
            const HGDIOBJ none = SelectObject(source.get(), mark.get());
            SetBkColor(dc, GetSysColor(ground));
            BitBlt(dc, box.left + 2, (box.top + box.bottom - size.bmHeight) / 2, size.bmWidth, size.bmHeight,
                   source.get(), 0, 0, SRCCOPY);
            SelectObject(source.get(), none);
        }
        box.left += MarkWidth() + 4;
        DrawTextW(dc, halves.label.c_str(), -1, &box, line | prefix);
        SelectObject(dc, own.get());
        box.right -= MarkWidth() + 4;
        DrawTextW(dc, halves.keys.c_str(), -1, &box, line | DT_RIGHT);
    }
    SelectObject(dc, old);
    return true;
}

std::optional<UINT> MenuPainter::ItemOf(HMENU menu, wchar_t key)
{
    const auto upper = [](wchar_t letter) {
        CharUpperBuffW(&letter, 1);
        return letter;
    };
    for (UINT i = 0, count = static_cast<UINT>(std::max(GetMenuItemCount(menu), 0)); i < count; ++i) {
        MENUITEMINFOW info = {};
        info.cbSize = sizeof info;
        info.fMask = MIIM_FTYPE | MIIM_DATA;
        if (!GetMenuItemInfoW(menu, i, TRUE, &info) || !(info.fType & MFT_OWNERDRAW) || !info.dwItemData)
            continue;
        const std::wstring& text = ItemAt(info.dwItemData)->text;
        const std::size_t mark = text.find(L'&');
        if (mark != std::wstring::npos && mark + 1 < text.size() && upper(text[mark + 1]) == upper(key))
            return i;
    }
    return std::nullopt;
}

} // namespace vixahost::browse
