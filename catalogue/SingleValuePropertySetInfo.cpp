#include "catalogue/SingleValuePropertySetInfo.h"

#include "localisation/Texts.h"
#include "localisation/ValueText.h"

#include <exception>
#include <new>

SingleValuePropertySetInfo::SingleValuePropertySetInfo(const vixa::ValueDescription& d)
    : DescriptionObject(L"SingleValuePropertySetInfo", d.imageId, d.nameId), range(d)
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
        *minimum = range.minimum;
    if (maximum)
        *maximum = range.maximum;
    if (step)
        *step = range.step;
    return S_OK;
}

HRESULT SingleValuePropertySetInfo::FormatValue(LANGID language, double value, WCHAR* text, ULONG* length) noexcept
{
    const HRESULT check = vixa::CheckTextRequest(language, text, length);
    if (FAILED(check))
        return check;
    try {
        const std::wstring result = vixa::FormatValue(vixa::LoadResString(range.formatId), value);
        if (!result.empty())
            vixa::HandOutText(result, text, length);
        else if (length)
            *length = 0;
        return S_OK;
    } catch (const std::exception&) {
        return E_OUTOFMEMORY;
    }
}
