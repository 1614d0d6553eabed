#include "catalogue/SingleEnumPropertySetInfo.h"

#include <new>

SingleEnumPropertySetInfo::SingleEnumPropertySetInfo(const vixa::EnumDescription& d)
    : DescriptionObject(L"SingleEnumPropertySetInfo", d.imageId, d.nameId), count_(d.count),
      firstChoiceId_(d.firstChoiceId)
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
    *count = count_;
    return S_OK;
}

HRESULT SingleEnumPropertySetInfo::GetItemName(LANGID language, long index, WCHAR* text, ULONG* length) noexcept
{
    const HRESULT check = vixa::checkTextRequest(language, text, length);
    if (FAILED(check))
        return check;
    if (index < 0 || static_cast<ULONG>(index) >= count_)
        return E_INVALIDARG;
    return vixa::answerText(firstChoiceId_ + static_cast<UINT>(index), text, length);
}
