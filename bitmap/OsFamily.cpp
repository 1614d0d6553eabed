#include "bitmap/OsFamily.h"

#include <windows.h>

namespace vixa::bitmap {

OsFamily osFamily() noexcept
{
    static const OsFamily family = [] {
        OSVERSIONINFOW version = {};
        version.dwOSVersionInfoSize = sizeof version;
        return GetVersionExW(&version)
                   ? osFamilyOf(version.dwPlatformId, version.dwMajorVersion, version.dwMinorVersion)
                   : OsUnknown;
    }();
    return family;
}

} // namespace vixa::bitmap
