// Describes a parameter that is one choice out of a list.
#pragma once

#include "catalogue/DescriptionObject.h"

namespace vixa {

struct EnumDescription
{
    ULONG count;
    UINT firstChoiceId; // string of choice 0; choice i has firstChoiceId + i
    UINT imageId;       // bitmap
    UINT nameId;        // string
    long defaultIndex = 0;
};

} // namespace vixa

class SingleEnumPropertySetInfo final : public vixa::DescriptionObject<ISingleEnumPropertySetInfo>
{
public:
    // With a count of 0; null when memory is short.
    static SingleEnumPropertySetInfo* New(const vixa::EnumDescription& description) noexcept;

    HRESULT STDMETHODCALLTYPE GetCount(ULONG* count) noexcept override;
    HRESULT STDMETHODCALLTYPE GetItemName(LANGID language, long index, WCHAR* text, ULONG* length) noexcept override;

private:
    explicit SingleEnumPropertySetInfo(const vixa::EnumDescription& description);

    const vixa::EnumDescription choices;
};
