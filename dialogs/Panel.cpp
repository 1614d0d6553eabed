#include "dialogs/Panel.h"

#include "localisation/Texts.h"

#include <commctrl.h>

#include <array>

namespace vixa {

std::wstring ownText(HINSTANCE library, UINT id)
{
    std::array<wchar_t, 255> buffer{};
    const int length = LoadStringW(library, id, buffer.data(), static_cast<int>(buffer.size()));
    return {buffer.data(), static_cast<std::size_t>(length)};
}

std::wstring panelText(HINSTANCE library, UINT id)
{
    std::wstring text = LoadResString(id);
    return text.empty() ? ownText(library, id) : text;
}

std::wstring positionText(int position)
{
    return std::to_wstring(position);
}

bool settlesValue(WPARAM scrollRequest)
{
    const WORD request = LOWORD(scrollRequest);
    return request != TB_THUMBPOSITION && request != TB_THUMBTRACK;
}

} // namespace vixa
