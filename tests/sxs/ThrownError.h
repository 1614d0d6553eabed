// The code and area of the CVixaSXSError that a call throws.
#pragma once

#include "sxs/CVixaSXSError.h"

#include <gtest/gtest.h>

#include <utility>

template <typename Call>
std::pair<long, unsigned long> ThrownBy(Call call)
{
    try {
        call();
    } catch (const CVixaSXSError& error) {
        return {error.GetCode(), error.GetArea()};
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

inline std::pair<long, unsigned long> ErrorIn(long code, unsigned long area)
{
    return {code, area};
}
