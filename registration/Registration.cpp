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

HRESULT CategoryPass(std::span<const EffectAlias> aliases, Scope scope, const char* documentText, Direction direction)
{
    CRegistrySxs location(scope == Scope::User ? sxs::CURRENT_USER : sxs::LOCAL_MACHINE, documentText);
    if (!location.Resolved() || !location.CreateSubKey(effectsCategory))
        return SELFREG_E_CLASS;
    const HRESULT result = EffectsPass(location, direction);
    AliasPass(location, aliases, direction);
    return result;
}

HRESULT EnterForMachine(std::span<const EffectAlias> aliases, const char* documentText, Direction direction)
{
    const HRESULT result = CategoryPass(aliases, Scope::Machine, documentText, direction);
    return result == S_OK ? AMovieDllRegisterServer2(direction == Direction::Register) : result;
}

HRESULT EnterForUser(std::span<const EffectAlias> aliases, const char* documentText, Direction direction)
{
    if (direction == Direction::Unregister) {
        RegisterServerForUser(false);
        // The two widths have class keys of their own and one list of effects.
        return OtherWidthServesUser() ? S_OK : CategoryPass(aliases, Scope::User, documentText, direction);
    }
    const HRESULT result = CategoryPass(aliases, Scope::User, documentText, direction);
    return result == S_OK ? RegisterServerForUser(true) : result;
}

HRESULT Enter(std::span<const EffectAlias> aliases, Scope scope, const char* documentText, Direction direction)
{
    return scope == Scope::User ? EnterForUser(aliases, documentText, direction)
                                : EnterForMachine(aliases, documentText, direction);
}

} // namespace

HRESULT RegisterLibrary(std::span<const EffectAlias> aliases, Scope scope, const char* documentText) noexcept
{
    return Enter(aliases, scope, documentText, Direction::Register);
}

HRESULT UnregisterLibrary(std::span<const EffectAlias> aliases, Scope scope, const char* documentText) noexcept
{
    return Enter(aliases, scope, documentText, Direction::Unregister);
}

} // namespace vixa
