// A process that examines the library tells how it crashed before it ends.
#pragma once

#include <windows.h>

namespace vixahost::validate {

// From now on a crash on any thread ends the process with status 3, after `tell` was called on that thread with
// something like "access violation at VixaVideoFX.dll+0x1234, reading from address 0x00000000". `tell` must not
// allocate, because the heap may be what is broken, and has little of the stack. Called once, by one thread.
//
// What counts as a crash: a fault that nobody handles; and, at once, a fault in this program, in the watched module, in
// the C run-time library that both call, or where no module is. Systems may swallow those that happen inside a window
// procedure. What the system's other modules do to probe an address is theirs to handle.
void WatchForCrashes(void (*tell)(const char* words)) noexcept;

// What tells a person: writes the words as a line to standard output.
void SayCrash(const char* words);

// The module under examination; null when it has gone. Any thread.
void WatchModule(HMODULE module) noexcept;

} // namespace vixahost::validate
