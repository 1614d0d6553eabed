// The application name that the host program's manifest gives.
#pragma once

#include "sxs/Platform.h"

#include <string>

namespace vixa::sxs {

using ProgramPathQuery = decltype(&ProgramPath);

// The running program's path with ".manifest" appended. Throws CVixaSXSError in AREA_REQUEST: the system's code when
// the path can't be had, 8 when it fills the buffer, 13 when the ending doesn't fit into the buffer any more.
std::wstring ManifestPath(ProgramPathQuery query = ProgramPath);

// The name attribute of the assemblyIdentity element below the root element assembly. Empty for a text that doesn't
// parse, isn't safe to parse, or lacks the element or the attribute. A name that isn't UTF-8 throws CVixaSXSError in
// AREA_TEXT.
std::wstring ManifestName(const std::string& text);

// The name in the manifest beside the running program; empty when there is none, or none that can be read.
std::wstring HostApplicationName(ProgramPathQuery query = ProgramPath);

} // namespace vixa::sxs
