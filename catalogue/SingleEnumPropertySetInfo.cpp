#include "catalogue/SingleEnumPropertySetInfo.h"

#include <new>

SingleEnumPropertySetInfo::SingleEnumPropertySetInfo(const vixa::EnumDescription& d)
    : DescriptionObject(L"SingleEnumPropertySetInfo", d.imageId, d.nameId), choices(d)
{
}

SingleEnumPropertySetInfo* SingleEnumPropertySetInfo::New(const vixa::EnumDescription& description) noexcept
{
    return new (std::nothrow) SingleEnumPropertySetInfo(description);
}

HRESULT SingleEnumPropertySetInfo::GetCount(ULONG* count) noexcept
{
    if (!count)
        return E_INVALIDARG;
    *count = choices.count;
    return S_OK;
}

HRESULT SingleEnumPropertySetInfo::GetItemName(LANGID language, long index, WCHAR* text, ULONG* length) noexcept
{
    const HRESULT check = vixa::CheckTextRequest(language, text, length);
    if (FAILED(check))
        return check;
    if (index < 0 || static_cast<ULONG>(index) >= choices.count)
        return E_INVALIDARG;
    return vixa::AnswerText(choices.firstChoiceId + static_cast<UINT>(index), text, length);
}
