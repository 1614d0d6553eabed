// The table of the classes that a module serves, and what the module does with it as a whole.
#pragma once

#include "framework/CUnknown.h"

#include <span>

// How a filter would be entered with the filter mapper.
using AMOVIESETUP_MEDIATYPE = REGPINTYPES;
using AMOVIESETUP_PIN = REGFILTERPINS;
struct AMOVIESETUP_FILTER
{
    const CLSID* clsID;
    const WCHAR* strName;
    DWORD dwMerit;
    UINT nPins;
    const AMOVIESETUP_PIN* lpPin;
};

// Makes an object without a reference, or answers null and a failure code. The code is S_OK on entry.
using LPFNNewCOMObject = CUnknown*(CALLBACK*)(IUnknown* outer, HRESULT* result);
// Told of the module's loading (TRUE) and unloading (FALSE).
using LPFNInitRoutine = void(CALLBACK*)(BOOL loading, const CLSID* classId);

// One served class. Every pointer but the name and the class identifier may be null.
struct CFactoryTemplate
{
    const WCHAR* m_Name;
    const CLSID* m_ClsID;
    LPFNNewCOMObject m_lpfnNew;
    LPFNInitRoutine m_lpfnInit;
    const AMOVIESETUP_FILTER* m_pAMovieSetup_Filter;

    bool IsClassID(REFCLSID classId) const noexcept { return IsEqualCLSID(*m_ClsID, classId) != FALSE; }
    CUnknown* CreateInstance(IUnknown* outer, HRESULT* result) const { return m_lpfnNew(outer, result); }
};

// The module's table. The module that links the framework's entry routine or registration defines it.
extern const std::span<CFactoryTemplate> g_Templates;
