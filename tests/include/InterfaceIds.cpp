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

#define SAME_ID(name) static_assert(Same(__uuidof(name), IID_##name), #name)
SAME_ID(IEffectInfo);
SAME_ID(IEffectFilter);
SAME_ID(IInstructionCeiling);
SAME_ID(IEffectChaining);
SAME_ID(ISingleValuePropertySetInfo);
SAME_ID(ISingleEnumPropertySetInfo);

} // namespace
