// Ctrl-C as a question that a running job asks now and then.
#pragma once

namespace vixahost {

// From now on Ctrl-C, Ctrl-Break and closing the terminal no longer end the process but set the flag.
void CatchInterrupts();

// True once the user wants the job to end. Any thread.
bool Interrupted() noexcept;

} // namespace vixahost
