// The boundary at which exceptions become result codes.
#pragma once

#include "framework/Platform.h"

#include <new>
#include <utility>

namespace vixa {

// Runs what a derived class, or this framework, may throw in; nothing leaves a component entry but its answer.
template <typename Call>
HRESULT Answered(Call&& call) noexcept
{
    try {
        return std::forward<Call>(call)();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (...) {
        return E_UNEXPECTED;
    }
}

} // namespace vixa
