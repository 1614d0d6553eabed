// Result codes in words.
#pragma once

#include <windows.h>

#include <string>

namespace vixahost {

// "VFW_E_TYPE_NOT_ACCEPTED (0x8004022A)"; a code without a known name as "0x8899000C".
std::string Show(HRESULT result);

// The same with a sentence behind it, "...: the media type is not accepted"; for a code that this host has no words
// for, in those of the system if it has any.
std::string Explain(HRESULT result);

// What GetLastError told: "system error 32: another program has the file open", on one line.
std::string ExplainError(DWORD error);

// A number as "0xC0000005".
std::string ShowHex(DWORD number);

} // namespace vixahost
