#include "host/browse/Menu.h"

#include "host/base/Handles.h"
#include "host/browse/Ids.h"

#include <algorithm>
#include <new>
#include <span>
#include <utility>

namespace vixahost::browse {

namespace {

struct Item
{
    UINT command = 0; // 0: a line between groups
    UINT text = 0;    // 0: the label, which is the same in every language
    const wchar_t* keys = L"";
    const wchar_t* label = L"";
};

constexpr Item fileItems[] = {{IDM_OPEN, IDT_OPEN, L"Ctrl+O"},
                              {IDM_RECENT, IDT_RECENT},
                              {IDM_SAVE, IDT_SAVE, L"Ctrl+S"},
                              {},
                              {IDM_LOAD_STACK, IDT_LOAD_STACK, L"Ctrl+L"},
                              {IDM_SAVE_STACK, IDT_SAVE_STACK, L"Ctrl+Shift+S"},
                              {},
                              {IDM_EXIT, IDT_EXIT, L"Alt+F4"}};
constexpr Item editItems[] = {{IDM_UNDO, IDT_UNDO, L"Ctrl+Z"},
                              {IDM_REDO, IDT_REDO, L"Ctrl+Y"},
                              {},
                              {IDM_ADD, IDT_ADD_STEP, L"Ctrl+Ins"},
                              {IDM_REMOVE, IDT_REMOVE_STEP, L"Ctrl+Del"},
                              {IDM_UP, IDT_MOVE_UP, L"Ctrl+Up"},
                              {IDM_DOWN, IDT_MOVE_DOWN, L"Ctrl+Down"},
                              {IDM_SWITCH, IDT_SWITCHED_ON, L"Ctrl+E"},
                              {},
                              {IDM_RESET, IDT_RESET, L"Ctrl+R"}};
constexpr Item viewItems[] = {{IDM_DIVIDER_MIDDLE, IDT_BOTH, L"Ctrl+1"},
                              {IDM_DIVIDER_RIGHT, IDT_ONLY_BEFORE, L"Ctrl+2"},
                              {IDM_DIVIDER_LEFT, IDT_ONLY_AFTER, L"Ctrl+3"},
                              {IDM_COMPARE, IDT_COMPARE, L"Ctrl+B"},
                              {},
                              {IDM_FIT, IDT_FIT, L"Ctrl+0"},
                              {IDM_ACTUAL_SIZE, 0, L"Ctrl+4", L"100 %"},
                              {IDM_ZOOM_IN, IDT_ZOOM_IN, L"Ctrl++"},
                              {IDM_ZOOM_OUT, IDT_ZOOM_OUT, L"Ctrl+-"},
                              {IDM_ENLARGE, IDT_ENLARGE}};
constexpr Item clipItems[] = {{IDM_PLAY, IDT_PLAY, L"Ctrl+P"},
                              {IDM_STEP_FORWARD, IDT_STEP_FORWARD, L"Ctrl+Right"},
                              {IDM_STEP_BACK, IDT_STEP_BACK, L"Ctrl+Left"},
                              {IDM_TO_START, IDT_TO_START, L"Ctrl+Home"},
                              {},
                              {IDM_COLOURS_BY_SIZE, IDT_COLOURS_BY_SIZE},
                              {IDM_BT601, 0, L"", L"BT.601"},
                              {IDM_BT709, 0, L"", L"BT.709"},
                              {},
                              {IDM_LIMITED_RANGE, IDT_LIMITED_RANGE},
                              {IDM_FULL_RANGE, IDT_FULL_RANGE}};
constexpr Item helpItems[] = {{IDM_EFFECT_HELP, IDT_EFFECT_HELP, L"F1"}, {IDM_ABOUT, IDT_ABOUT}};

bool HasLetterKey(wchar_t letter)
{
    const bool thai = letter >= 0x0E00 && letter < 0x0E80, eastern = letter >= 0x2E80;
    return IsCharAlphaNumericW(letter) && !thai && !eastern;
}

// Names from files stand as they are.
std::wstring Literal(const std::wstring& text)
{
    std::wstring literal;
    for (const wchar_t letter : text)
        literal += letter == L'&' ? std::wstring(L"&&") : std::wstring(1, letter);
    return literal;
}

using UniqueMenu = UniqueHandle<HMENU, DestroyMenu>;

UniqueMenu Made(HMENU menu)
{
    if (!menu)
        throw std::bad_alloc();
    return UniqueMenu(menu);
}

void Append(const UniqueMenu& menu, UINT flags, UINT_PTR target, const std::wstring& text)
{
    if (!AppendMenuW(menu.get(), flags, target, text.c_str()))
        throw std::bad_alloc();
}

class Builder
{
public:
    explicit Builder(const Texts& language) : texts(language) {}

    UniqueMenu Popup(std::span<const Item> items) const
    {
        UniqueMenu menu = Made(CreatePopupMenu());
        std::wstring used;
        for (const Item& item : items) {
            if (item.command == 0) {
                Append(menu, MF_SEPARATOR, 0, {});
                continue;
            }
            const std::wstring text = item.text ? Keyed(item.text, used) : std::wstring(item.label);
            // Letters of a linked font may be drawn wider than they were measured, and a system's gap can be small.
            const std::wstring keys = *item.keys ? std::wstring(L"  \t") + item.keys : std::wstring();
            Append(menu, MF_STRING, item.command, text + keys);
        }
        return menu;
    }

    // `menu` goes into `bar` under a text of its own.
    void Enter(const UniqueMenu& bar, UINT text, UniqueMenu menu)
    {
        Append(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(menu.get()), Keyed(text, barKeys));
        static_cast<void>(menu.release()); // the bar's
    }

    std::wstring Keyed(UINT text, std::wstring& used) const { return WithAccessKey(texts(text), Texts()(text), used); }

private:
    const Texts& texts;
    std::wstring barKeys;
};

} // namespace

std::wstring WithAccessKey(std::wstring text, const std::wstring& english, std::wstring& used)
{
    const auto take = [&](wchar_t letter) {
        const auto key = static_cast<wchar_t>(
            reinterpret_cast<UINT_PTR>(CharUpperW(reinterpret_cast<LPWSTR>(static_cast<UINT_PTR>(letter)))));
        if (!HasLetterKey(letter) || used.find(key) != std::wstring::npos)
            return false;
        used += key;
        return true;
    };
    for (std::size_t i = 0; i < text.size(); ++i)
        if (take(text[i]))
            return text.insert(i, 1, L'&');
    const auto free = std::find_if(english.begin(), english.end(), take);
    if (free == english.end())
        return text;
    const std::size_t dots = text.find(L"...");
    return text.insert(std::min(dots, text.size()), std::wstring(L"(&") + used.back() + L")");
}

HMENU MakeMenu(const Texts& texts, const MenuContent& content)
{
    Builder builder(texts);
    UniqueMenu bar = Made(CreateMenu()), file = builder.Popup(fileItems), recent = Made(CreatePopupMenu());
    for (std::size_t i = 0; i < content.recent.size(); ++i)
        Append(recent, MF_STRING, IDM_RECENT_FILE + i,
               L"&" + std::to_wstring(i + 1) + L" " + Literal(content.recent[i].native()));
    wchar_t label[100] = {};
    GetMenuStringW(file.get(), IDM_RECENT, label, 100, MF_BYCOMMAND);
    if (!ModifyMenuW(file.get(), IDM_RECENT, MF_BYCOMMAND | MF_POPUP | (content.recent.empty() ? MF_GRAYED : 0u),
                     reinterpret_cast<UINT_PTR>(recent.get()), label))
        throw std::bad_alloc();
    static_cast<void>(recent.release()); // the file menu's
    builder.Enter(bar, IDT_FILE, std::move(file));
    builder.Enter(bar, IDT_EDIT, builder.Popup(editItems));
    builder.Enter(bar, IDT_VIEW, builder.Popup(viewItems));

    UniqueMenu presets = Made(CreatePopupMenu());
    std::wstring used;
    for (std::size_t i = 0; i < content.presets.size(); ++i) {
        if (i == content.shipped)
            Append(presets, MF_SEPARATOR, 0, {});
        Append(presets, MF_STRING, IDM_PRESET + i, Literal(content.presets[i]));
    }
    Append(presets, MF_SEPARATOR, 0, {});
    Append(presets, MF_STRING, IDM_SAVE_PRESET, builder.Keyed(IDT_SAVE_PRESET, used));
    builder.Enter(bar, IDT_PRESETS, std::move(presets));
    builder.Enter(bar, IDT_CLIP, builder.Popup(clipItems));

    UniqueMenu languages = Made(CreatePopupMenu());
    for (std::size_t i = 0; i < content.languages.size(); ++i)
        Append(languages, i > 0 && i % 14 == 0 ? MF_STRING | MF_MENUBARBREAK : MF_STRING, IDM_LANGUAGE + i,
               content.languages[i].name);
    builder.Enter(bar, IDT_LANGUAGE, std::move(languages));
    builder.Enter(bar, IDT_HELP, builder.Popup(helpItems));
    return bar.release();
}

} // namespace vixahost::browse
