// The root of every component object: it keeps the module's live-object count.
#pragma once

#include "framework/Platform.h"

// Counts up when constructed and down when destroyed, atomically; any thread. A module may unload at zero.
class CBaseObject
{
public:
    // The name serves only a person with a debugger; it is neither read nor kept.
    explicit CBaseObject(LPCTSTR name = nullptr) noexcept;
    CBaseObject(const CBaseObject&) = delete;
    CBaseObject& operator=(const CBaseObject&) = delete;
    ~CBaseObject();

    // How many objects of this module live now.
    static LONG ObjectsActive() noexcept;

private:
    static LONG m_cObjects;
};
