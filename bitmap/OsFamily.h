// Which operating-system family the process runs on, as flags.
#pragma once

namespace vixa::bitmap {

enum OsFamily : unsigned
{
    OsUnknown = 0,
    Os95 = 1,
    Os98 = 2,
    OsMe = 4,
    OsNt4 = 8,
    OsNt5Point0 = 16, // 5.0, and any later version whose minor number is 0
    OsNtLater = 32,   // a non-zero minor number
};
inline constexpr unsigned os9xFamily = Os95 | Os98 | OsMe;

// The family that a version belongs to. `platform` is 1 for the 9x line and 2 for NT, as the system reports it.
constexpr OsFamily OsFamilyOf(unsigned long platform, unsigned long major, unsigned long minor) noexcept
{
    if (platform == 1)
        return minor == 90 ? OsMe : minor > 0 ? Os98 : Os95;
    if (platform != 2)
        return OsUnknown;
    if (major < 5)
        return OsNt4;
    return minor == 0 ? OsNt5Point0 : OsNtLater;
}

// The family of this process's system, asked once. Windows only.
OsFamily SystemFamily() noexcept;

} // namespace vixa::bitmap
