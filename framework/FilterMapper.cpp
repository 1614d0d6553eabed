#include "framework/FilterMapper.h"

namespace vixa {

namespace {

template <typename Interface>
HRESULT Create(REFCLSID classId, REFIID riid, ComPtr<Interface>& object) noexcept
{
    return CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, riid,
                            reinterpret_cast<void**>(object.ReleaseAndGetAddressOf()));
}

} // namespace

FilterMapper::FilterMapper() noexcept
    : m_initialised(SUCCEEDED(CoInitialize(nullptr))),
      m_status(Create(CLSID_FilterMapper2, IID_IFilterMapper2, m_mapper2))
{
    if (FAILED(m_status))
        m_status = Create(CLSID_FilterMapper, IID_IFilterMapper, m_mapper);
}

FilterMapper::~FilterMapper()
{
    m_mapper2.Reset();
    m_mapper.Reset();
    CoFreeUnusedLibraries();
    // A thread that had been initialised in the other mode keeps that.
    if (m_initialised)
        CoUninitialize();
}

HRESULT FilterMapper::Enter(const AMOVIESETUP_FILTER& setup, bool registering) noexcept
{
    if (FAILED(m_status))
        return m_status;
    if (m_mapper2)
        m_mapper2->UnregisterFilter(nullptr, nullptr, *setup.clsID);
    else
        m_mapper->UnregisterFilter(*setup.clsID);
    if (!registering)
        return S_OK;
    if (!m_mapper2)
        return EnterOld(setup);
    REGFILTER2 filter = {};
    filter.dwVersion = 1;
    filter.dwMerit = setup.dwMerit;
    filter.cPins = setup.nPins;
    filter.rgPins = setup.lpPin;
    return m_mapper2->RegisterFilter(*setup.clsID, setup.strName, nullptr, nullptr, nullptr, &filter);
}

// The first mapper takes a filter piece by piece.
HRESULT FilterMapper::EnterOld(const AMOVIESETUP_FILTER& setup) noexcept
{
    HRESULT result = m_mapper->RegisterFilter(*setup.clsID, setup.strName, setup.dwMerit);
    for (UINT i = 0; SUCCEEDED(result) && i < setup.nPins; ++i) {
        const AMOVIESETUP_PIN& pin = setup.lpPin[i];
        result = m_mapper->RegisterPin(*setup.clsID, pin.strName, pin.bRendered, pin.bOutput, pin.bZero, pin.bMany,
                                       pin.clsConnectsToFilter ? *pin.clsConnectsToFilter : CLSID_NULL,
                                       pin.strConnectsToPin);
        for (UINT k = 0; SUCCEEDED(result) && k < pin.nMediaTypes; ++k)
            result = m_mapper->RegisterPinType(*setup.clsID, pin.strName, *pin.lpMediaType[k].clsMajorType,
                                               *pin.lpMediaType[k].clsMinorType);
    }
    return result;
}

HRESULT FilterMapper::EnterOne(const AMOVIESETUP_FILTER& setup, bool registering) noexcept
{
    return FilterMapper().Enter(setup, registering);
}

} // namespace vixa
