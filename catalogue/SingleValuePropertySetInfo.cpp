#include "catalogue/SingleValuePropertySetInfo.h"

#include "localisation/Texts.h"
#include "localisation/ValueText.h"

#include <exception>
#include <new>

SingleValuePropertySetInfo::SingleValuePropertySetInfo(const vixa::ValueDescription& d)
    : DescriptionObject(L"SingleValuePropertySetInfo", d.imageId, d.nameId), minimum_(d.minimum), maximum_(d.maximum),
      step_(d.step), formatId_(d.formatId)
{
}

SingleValuePropertySetInfo* SingleValuePropertySetInfo::New(const vixa::ValueDescription& description) noexcept
{
    return new (std::nothrow) SingleValuePropertySetInfo(description);
}

HRESULT SingleValuePropertySetInfo::GetRange(double* minimum, double* maximum, double* step) noexcept
{
    if (!minimum && !maximum && !step)
        return E_INVALIDARG;
    if (minimum)
        *minimum = minimum_;
    if (maximum)
        *maximum = maximum_;
    if (step)
        *step = step_;
    return S_OK;
}

HRESULT SingleValuePropertySetInfo::FormatValue(LANGID language, double value, WCHAR* text, ULONG* length) noexcept
{
    const HRESULT check = vixa::checkTextRequest(language, text, length);
    if (FAILED(check))
        return check;
    try {
        const std::wstring result = vixa::FormatValue(vixa::LoadResString(formatId_), value);
        if (!result.empty())
            vixa::HandOutText(result, text, length);
        else if (length)
            *length = 0;
        return S_OK;
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
}
