#include "bitmap/OsFamily.h"

#include <windows.h>

namespace vixa::bitmap {

OsFamily SystemFamily() noexcept
{
    static const OsFamily family = [] {
        OSVERSIONINFOW version = {};
        version.dwOSVersionInfoSize = sizeof version;
        return GetVersionExW(&version)
                   ? OsFamilyOf(version.dwPlatformId, version.dwMajorVersion, version.dwMinorVersion)
                   : OsUnknown;
    }();
    return family;
}

} // namespace vixa::bitmap
