#include "sxs/CVixaSXSError.h"

#include "sxs/Platform.h"

#include <cstdio>
#include <cstring>

const char* CVixaSXSError::what() const noexcept
{
    static char text[1024];
    const int head = std::snprintf(text, sizeof text, "CVixaSXSError 0x%.8X -> 0x%.8X [ ", static_cast<unsigned>(code),
                                   static_cast<unsigned>(area));
    vixa::sxs::SystemMessage(code, std::span(text).subspan(static_cast<std::size_t>(head)));
    std::strncat(text, " ]", sizeof text - 1 - std::strlen(text));
    return text;
}
