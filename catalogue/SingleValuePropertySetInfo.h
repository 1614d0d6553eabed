// Describes a parameter that is one number.
#pragma once

#include "catalogue/DescriptionObject.h"

namespace vixa {

struct ValueDescription
{
    double minimum, maximum;
    double step;   // 0.0 allowed
    UINT formatId; // string: printf-style format of one double, trusted no further than vixa::FormatValue; 0: no text
    UINT imageId;  // bitmap
    UINT nameId;   // string
    double defaultValue = 0;
};

} // namespace vixa

class SingleValuePropertySetInfo final : public vixa::DescriptionObject<ISingleValuePropertySetInfo>
{
public:
    // With a count of 0; null when memory is short.
    static SingleValuePropertySetInfo* New(const vixa::ValueDescription& description) noexcept;

    HRESULT STDMETHODCALLTYPE GetRange(double* minimum, double* maximum, double* step) noexcept override;
    HRESULT STDMETHODCALLTYPE FormatValue(LANGID language, double value, WCHAR* text, ULONG* length) noexcept override;

private:
    explicit SingleValuePropertySetInfo(const vixa::ValueDescription& description);

    const vixa::ValueDescription range;
};
