#include "catalogue/DescriptionObject.h"

#include "bitmap/ExportPicture.h"
#include "localisation/ModulePictures.h"
#include "localisation/Texts.h"

#include <exception>

namespace vixa {

HRESULT CheckTextRequest(LANGID language, const WCHAR* text, const ULONG* length) noexcept
{
    if (language != ModuleBase::GetLanguage())
        return E_FAIL;
    return text || length ? S_OK : E_INVALIDARG;
}

HRESULT AnswerText(UINT stringId, WCHAR* text, ULONG* length) noexcept
{
    try {
        HandOutText(LoadResString(stringId), text, length);
        return S_OK;
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
}

HRESULT AnswerImage(UINT imageId, BYTE* buffer, ULONG* size) noexcept
{
    ModulePictures pictures;
    return ExportPicture(pictures, imageId, buffer, size);
}

} // namespace vixa
