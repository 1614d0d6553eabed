// Where and how a process crashed, for its last words.
#pragma once

#include <windows.h>

namespace vixahost::validate {

// "access violation at VixaVideoFX.dll+0x1234, reading from address 0x00000000". Allocates nothing, because the heap
// may be what is broken, and needs little of the stack; the text is the process's only one.
const char* CrashWords(const EXCEPTION_RECORD& record) noexcept;

} // namespace vixahost::validate
