// The thirteen effects that the library serves, as the framework's factory templates (g_Templates, g_cTemplates).
#pragma once

#include "framework/DirectShow.h"

// The row of an effect, or null. The rows' order is the order of search and of registration.
CFactoryTemplate* FindEffect(REFCLSID clsid) noexcept;
