// The effects that the library serves, one row each, and the tables that are made of the rows. The framework's factory
// templates (g_Templates) are one of them.
#pragma once

#include "catalogue/EffectRecord.h"
#include "framework/DirectShow.h"
#include "registration/Registration.h"

#include <vixavideofx/EffectParameters.h>

#include <span>

// What an effect is.
struct EffectRow
{
    const CLSID* classId;
    const wchar_t* name;       // English: the class's name in the registry and in the host's first category
    LPFNNewCOMObject create;   // makes the filter
    const wchar_t* alias;      // the identifier under which the host's second category lists the effect
    vixa::EffectRecord record; // what the catalogue answers
    // What a host may set by name: the public header's own description of the effect.
    std::span<const vixavideofx::ParameterDescription> parameters{};
};

// The factory template of a class, or null when it is not served. The templates have the rows' order, which is that of
// search and of registration.
CFactoryTemplate* FindEffect(REFCLSID classId) noexcept;

// What the catalogue answers for an effect of g_Templates; null for null.
const vixa::EffectRecord* RecordOf(const CFactoryTemplate* effect) noexcept;

// The entries of the host's second category, by rising alias.
std::span<const vixa::EffectAlias> EffectAliases() noexcept;
