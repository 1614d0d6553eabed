#include "framework/CBaseObject.h"

LONG CBaseObject::m_cObjects = 0;

CBaseObject::CBaseObject(LPCTSTR) noexcept
{
    InterlockedIncrement(&m_cObjects);
}

CBaseObject::~CBaseObject()
{
    InterlockedDecrement(&m_cObjects);
}

LONG CBaseObject::ObjectsActive() noexcept
{
    return InterlockedCompareExchange(&m_cObjects, 0, 0);
}
