// A point or a span of stream time.
#pragma once

#include "framework/Platform.h"

inline constexpr LONGLONG UNITS = 10000000; // in a second: reference times count units of 100 ns

class CRefTime
{
public:
    REFERENCE_TIME m_time = 0;

    constexpr CRefTime() noexcept = default;
    constexpr CRefTime(REFERENCE_TIME time) noexcept : m_time(time) {}

    constexpr operator REFERENCE_TIME() const noexcept { return m_time; }
    constexpr CRefTime& operator+=(REFERENCE_TIME span) noexcept
    {
        m_time += span;
        return *this;
    }
    constexpr CRefTime& operator-=(REFERENCE_TIME span) noexcept
    {
        m_time -= span;
        return *this;
    }
    constexpr LONG Millisecs() const noexcept { return static_cast<LONG>(m_time / (UNITS / 1000)); }
    constexpr REFERENCE_TIME GetUnits() const noexcept { return m_time; }
};
