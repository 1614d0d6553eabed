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
    : initialised(SUCCEEDED(CoInitialize(nullptr))), status(Create(CLSID_FilterMapper2, IID_IFilterMapper2, mapper2))
{
    if (FAILED(status))
        status = Create(CLSID_FilterMapper, IID_IFilterMapper, mapper);
}

FilterMapper::~FilterMapper()
{
    mapper2.Reset();
    mapper.Reset();
    CoFreeUnusedLibraries();
    // A thread that had been initialised in the other mode keeps that.
    if (initialised)
        CoUninitialize();
}

HRESULT FilterMapper::Enter(const AMOVIESETUP_FILTER& setup, bool registering) noexcept
{
    if (FAILED(status))
        return status;
    if (mapper2)
        mapper2->UnregisterFilter(nullptr, nullptr, *setup.clsID);
    else
        mapper->UnregisterFilter(*setup.clsID);
    if (!registering)
        return S_OK;
    if (!mapper2)
        return EnterOld(setup);
    REGFILTER2 filter = {};
    filter.dwVersion = 1;
    filter.dwMerit = setup.dwMerit;
    filter.cPins = setup.nPins;
    filter.rgPins = setup.lpPin;
    return mapper2->RegisterFilter(*setup.clsID, setup.strName, nullptr, nullptr, nullptr, &filter);
}

// The first mapper takes a filter piece by piece.
HRESULT FilterMapper::EnterOld(const AMOVIESETUP_FILTER& setup) noexcept
{
    HRESULT result = mapper->RegisterFilter(*setup.clsID, setup.strName, setup.dwMerit);
    for (UINT i = 0; SUCCEEDED(result) && i < setup.nPins; ++i) {
        const AMOVIESETUP_PIN& pin = setup.lpPin[i];
        result =
            mapper->RegisterPin(*setup.clsID, pin.strName, pin.bRendered, pin.bOutput, pin.bZero, pin.bMany,
                                pin.clsConnectsToFilter ? *pin.clsConnectsToFilter : CLSID_NULL, pin.strConnectsToPin);
        for (UINT k = 0; SUCCEEDED(result) && k < pin.nMediaTypes; ++k)
            result = mapper->RegisterPinType(*setup.clsID, pin.strName, *pin.lpMediaType[k].clsMajorType,
                                             *pin.lpMediaType[k].clsMinorType);
    }
    return result;
}

HRESULT FilterMapper::EnterOne(const AMOVIESETUP_FILTER& setup, bool registering) noexcept
{
    return FilterMapper().Enter(setup, registering);
}

} // namespace vixa
