// The parameters of an effect by its class identifier: enough for a host to offer them by name. Needs C++20, as
// Effects.h does.
#pragma once

#include <vixavideofx/ClassIds.h>
#include <vixavideofx/Effects.h>

#include <span>

namespace vixavideofx {

struct EffectParameters
{
    GUID effect;
    std::span<const ParameterDescription> parameters;
};

// Every effect of the library.
#define VIXA_PARAMETERS_OF(name, description, ...) {CLSID_##name, parameters::description},
inline constexpr EffectParameters effectParameters[] = {VIXA_EFFECTS(VIXA_PARAMETERS_OF)};
#undef VIXA_PARAMETERS_OF

// Whether two identifiers are the same, also in constant expressions.
constexpr bool SameId(const GUID& a, const GUID& b)
{
    for (int i = 0; i < 8; ++i)
        if (a.Data4[i] != b.Data4[i])
            return false;
    return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3;
}

// The parameters of one effect; empty for an effect without settings and for an unknown class identifier.
constexpr std::span<const ParameterDescription> ParametersOf(const GUID& effect)
{
    for (const EffectParameters& row : effectParameters)
        if (SameId(row.effect, effect))
            return row.parameters;
    return {};
}

} // namespace vixavideofx
