// The exception of the shared-install subsystem.
#pragma once

#include <cstdint>
#include <exception>

namespace vixa::sxs {

// Where an error arose.
enum Area : std::uint32_t
{
    AREA_DOCUMENT = 0x10000,    // the configuration document's content
    AREA_LOOKUP = 0x20000,      // the lookup state: no document, no product line
    AREA_APPLICATION = 0x30000, // an application without a registry subkey
    AREA_REQUEST = 0x40000,     // the request itself, and the reading of the host's manifest
    AREA_REGISTRY = 0x50000,    // the registry
    AREA_TEXT = 0x70000,        // text conversion from UTF-8
};

// The system error numbers that the subsystem itself raises; all others come from the system.
enum Code : std::int32_t
{
    CODE_INVALID_FUNCTION = 1,
    CODE_PATH_NOT_FOUND = 3,
    CODE_NOT_ENOUGH_MEMORY = 8,
    CODE_INVALID_BLOCK = 9,
    CODE_INVALID_ACCESS = 12,
    CODE_INVALID_DATA = 13,
    CODE_UNSUPPORTED_TYPE = 1630,
};

} // namespace vixa::sxs

class CVixaSXSError : public std::exception
{
public:
    // systemError: a system error number; where: one of vixa::sxs::Area.
    CVixaSXSError(std::int32_t systemError, std::uint32_t where) noexcept : code(systemError), area(where) {}

    std::int32_t GetCode() const noexcept { return code; }
    std::uint32_t GetArea() const noexcept { return area; }

    // "CVixaSXSError 0x%.8X -> 0x%.8X [ text ]" with code, area and the system's message for the code in the user's
    // language, on one line (empty when there is none). The result stands in one buffer of 1024 characters that belongs
    // to the process, is cut after 1023, and is overwritten by the next call, whichever object or thread makes it.
    const char* what() const noexcept override;

private:
    std::int32_t code;
    std::uint32_t area;
};
