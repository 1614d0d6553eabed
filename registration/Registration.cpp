#include "registration/Registration.h"

#include "framework/DllEntry.h"
#include "sxs/CRegistrySxs.h"

#include <olectl.h>

namespace vixa {
namespace {

enum class Direction
{
    Register,
    Unregister
};

constexpr const wchar_t* effectsCategory = L"Effects";
constexpr const wchar_t* aliasCategory = L"Effects7";

// A class identifier as the registry has it: in braces, upper-case.
struct ClassText
{
    explicit ClassText(REFCLSID classId) noexcept
    {
        StringFromGUID2(classId, characters, static_cast<int>(std::size(characters)));
    }
    wchar_t characters[39];
};

// One value per template row. The filter mapper has no business with effects: a row that is dealt with here loses its
// filter setup, should it have one, so that the server registration finds nothing to enter.
HRESULT EffectsPass(CRegistrySxs& location, Direction direction)
{
    HRESULT result = S_OK;
    for (CFactoryTemplate& row : g_Templates) {
        const ClassText classId(*row.m_ClsID);
        if (direction == Direction::Unregister)
            location.DeleteValue(effectsCategory, classId.characters); // it may not be there
        else if (!location.SetStringValue(effectsCategory, classId.characters, row.m_Name)) {
            result = SELFREG_E_CLASS;
            continue;
        }
        row.m_pAMovieSetup_Filter = nullptr;
    }
    return result;
}

// Nothing depends on the second category: whatever happens here, the effects are registered.
void AliasPass(CRegistrySxs& location, std::span<const EffectAlias> aliases, Direction direction)
{
    if (!location.CreateSubKey(aliasCategory))
        return;
    for (const EffectAlias& entry : aliases) {
        if (direction == Direction::Register)
            location.SetStringValue(aliasCategory, entry.alias, ClassText(*entry.effect).characters);
        else
            location.DeleteValue(aliasCategory, entry.alias);
    }
}

HRESULT CategoryPass(std::span<const EffectAlias> aliases, const char* documentText, Direction direction)
{
    CRegistrySxs location(sxs::LOCAL_MACHINE, documentText);
    if (!location.Resolved() || !location.CreateSubKey(effectsCategory))
        return SELFREG_E_CLASS;
    const HRESULT result = EffectsPass(location, direction);
    AliasPass(location, aliases, direction);
    return result;
}

} // namespace

HRESULT RegisterLibrary(std::span<const EffectAlias> aliases, const char* documentText) noexcept
{
    const HRESULT result = CategoryPass(aliases, documentText, Direction::Register);
    return result == S_OK ? AMovieDllRegisterServer2(TRUE) : result;
}

HRESULT UnregisterLibrary(std::span<const EffectAlias> aliases, const char* documentText) noexcept
{
    const HRESULT result = CategoryPass(aliases, documentText, Direction::Unregister);
    return result == S_OK ? AMovieDllRegisterServer2(FALSE) : result;
}

} // namespace vixa
