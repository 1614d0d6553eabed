// __uuidof finds every interface's identifier, and the one that IID_... is. Compiling this is the test.
#include <vixavideofx/VixaVideoFX.h>

namespace {

constexpr bool Same(const GUID& a, const GUID& b)
{
    for (int i = 0; i < 8; ++i)
        if (a.Data4[i] != b.Data4[i])
            return false;
    return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3;
}

static_assert(Same(__uuidof(IEffectInfo), IID_IEffectInfo), "");
static_assert(Same(__uuidof(IEffectFilter), IID_IEffectFilter), "");
static_assert(Same(__uuidof(IInstructionCeiling), IID_IInstructionCeiling), "");
static_assert(Same(__uuidof(IEffectChaining), IID_IEffectChaining), "");
static_assert(Same(__uuidof(ISingleValuePropertySetInfo), IID_ISingleValuePropertySetInfo), "");
static_assert(Same(__uuidof(ISingleEnumPropertySetInfo), IID_ISingleEnumPropertySetInfo), "");

} // namespace
