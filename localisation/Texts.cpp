#include "localisation/Texts.h"

namespace vixa {

ModuleBase* TextModule() noexcept
{
    return ModuleBase::Modules().empty() ? nullptr : ModuleBase::Modules().front();
}

std::wstring LoadResString(UINT id)
{
    const ModuleBase* module = TextModule();
    return module ? module->LoadResString(id) : std::wstring();
}

std::wstring LoadResStringIn(LANGID language, UINT id)
{
    const ModuleBase* module = TextModule();
    return module ? module->LoadResStringIn(language, id) : std::wstring();
}

void HandOutText(std::wstring_view text, WCHAR* buffer, ULONG* length) noexcept
{
    if (buffer) {
        text.copy(buffer, text.size());
        buffer[text.size()] = L'\0';
    }
    if (length)
        *length = static_cast<ULONG>(text.size()) + 1;
}

} // namespace vixa
