// The system's list of filters, with the component library held open as long as it is used.
#pragma once

#include "framework/CFactoryTemplate.h"

namespace vixa {

class FilterMapper
{
public:
    // Initialises the component library on this thread and creates the mapper; Status tells how that went.
    FilterMapper() noexcept;
    FilterMapper(const FilterMapper&) = delete;
    FilterMapper& operator=(const FilterMapper&) = delete;
    ~FilterMapper();

    HRESULT Status() const noexcept { return status; }

    // Enters a filter, replacing an older entry, or removes it. Removing what is not there is a success.
    HRESULT Enter(const AMOVIESETUP_FILTER& setup, bool registering) noexcept;

    // The whole of it for one filter.
    static HRESULT EnterOne(const AMOVIESETUP_FILTER& setup, bool registering) noexcept;

private:
    HRESULT EnterOld(const AMOVIESETUP_FILTER& setup) noexcept;

    bool initialised;
    ComPtr<IFilterMapper2> mapper2;
    ComPtr<IFilterMapper> mapper;
    HRESULT status; // initialised with the mappers, so after them
};

} // namespace vixa
