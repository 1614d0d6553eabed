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

// The second category: an alias identifier, then the class identifier of the effect that it names.
constexpr const wchar_t* effectAliases[] = {
    L"{026C24CA-EB0A-4D82-B8F0-C1F398C3C1DF}",
    L"{C79C3183-D7F7-439A-98CC-33906A691708}", // Gamma correction
    L"{25AB171B-7AD5-4EA0-8727-9407A1CEFC5B}",
    L"{515C1C66-CE83-477C-8410-9B9F741F0FE8}", // Detect edges
    L"{524CFA6F-0CF2-46E6-B432-16C6C877BCEA}",
    L"{42C8ABF5-BDAC-44E0-8BAC-BFCCE5DF7E8F}", // Enhance edges
    L"{5772EFE8-D5CF-4417-B6AC-4BC723FA785C}",
    L"{E2CE4A0B-1E6A-426E-A90F-172F42528C90}", // Shift edges
    L"{608524BB-EF57-4D98-A0D9-F5BFA33D9B9F}",
    L"{6D3696B9-4159-496A-B63F-C7B7813E85BA}", // Enhance details
    L"{8DA26896-133D-46DE-B6B4-43B0BEE29CFC}",
    L"{90B1000C-CA2B-4E99-8D06-E03C2725CC51}", // Filter color
    L"{8EADD68F-9807-4B75-A38A-024F0FDFD306}",
    L"{17277343-32E3-4AE3-A9E3-4AA8B2320F49}", // Enhance focus
    L"{B01EBCAF-D816-4FD0-AB0A-0F2D7BE51A94}",
    L"{488284B2-D3CE-48D1-B7AD-A23541D20453}", // Soften filter
    L"{BB887A10-AEC5-4F42-AE26-2BBEE40111E1}",
    L"{6A596DA3-A318-46BF-B42F-E8D3CC136AF5}", // Emboss
    L"{C32282F0-86A3-444F-B709-CCD51A59D647}",
    L"{095F369D-4B9A-409F-85FC-EAF9F677FA1A}", // Multiply pixel
    L"{C9918D84-ACB5-47A6-B24C-A4FD4131D485}",
    L"{87727703-0185-4245-85E1-E8539183FF04}", // Invert color
    L"{DEEC2D5C-B87A-41E8-AECC-942BEFB32E0B}",
    L"{B6C70017-D66B-435A-B534-56971D9DC17B}", // Light edges
    L"{E9523F94-F971-422A-9AD5-578D5AEA1969}",
    L"{DDBE68A3-F53E-4E2D-B5AF-578F4302C032}", // Add pixel
    nullptr,
};

// One value per template row. A row that is dealt with here must not be entered with the filter mapper, which has no
// business with effects: its setup pointer is cleared, and the server registration finds nothing to enter.
HRESULT effectsPass(CRegistrySxs& location, Direction direction)
{
    HRESULT result = S_OK;
    for (int i = 0; i < g_cTemplates; ++i) {
        CFactoryTemplate& row = g_Templates[i];
        wchar_t classId[39];
        StringFromGUID2(*row.m_ClsID, classId, static_cast<int>(std::size(classId)));
        if (direction == Direction::Unregister)
            location.DeleteValue(effectsCategory, classId); // it may not be there
        else if (!location.SetStringValue(effectsCategory, classId, row.m_Name)) {
            result = SELFREG_E_CLASS;
            continue;
        }
        row.m_pAMovieSetup_Filter = nullptr;
    }
    return result;
}

// Nothing depends on the second category: whatever happens here, the effects are registered.
void aliasPass(CRegistrySxs& location, Direction direction)
{
    if (!location.CreateSubKey(aliasCategory))
        return;
    for (const wchar_t* const* pair = effectAliases; *pair; pair += 2) {
        if (direction == Direction::Register)
            location.SetStringValue(aliasCategory, pair[0], pair[1]);
        else
            location.DeleteValue(aliasCategory, pair[0]);
    }
}

HRESULT categoryPass(const char* documentText, Direction direction)
{
    CRegistrySxs location(sxs::LOCAL_MACHINE, documentText);
    if (!location.Resolved() || !location.CreateSubKey(effectsCategory))
        return SELFREG_E_CLASS;
    const HRESULT result = effectsPass(location, direction);
    aliasPass(location, direction);
    return result;
}

} // namespace

HRESULT RegisterLibrary(const char* documentText) noexcept
{
    const HRESULT result = categoryPass(documentText, Direction::Register);
    return result == S_OK ? AMovieDllRegisterServer2(TRUE) : result;
}

HRESULT UnregisterLibrary(const char* documentText) noexcept
{
    const HRESULT result = categoryPass(documentText, Direction::Unregister);
    return result == S_OK ? AMovieDllRegisterServer2(FALSE) : result;
}

} // namespace vixa
