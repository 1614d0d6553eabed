// Filters that would pass samples, or questions, round in a ring.
#pragma once

#include "framework/Platform.h"

#include <atomic>

namespace vixa {

// Whether samples that come in at `input` could come out at `output`, so that connecting the two would close a ring:
// `input` belongs to the filter of `output` or to one that stands upstream of it. Asks the filters on the way for their
// pins. Throws std::bad_alloc.
bool WouldCloseARing(IPin* output, IPin* input);

// Marks a pin while it asks its neighbour on behalf of somebody else. A pin that is asked by the thread that is asking
// through it already is part of a ring and must answer for itself.
class Asking
{
public:
    using Mark = std::atomic<DWORD>; // the asking thread; 0: none

    explicit Asking(Mark& pin) noexcept : mark(pin)
    {
        const DWORD self = GetCurrentThreadId();
        DWORD asker = 0;
        // A second thread asks without a mark of its own: it finds the first one's gone on its next way round.
        marked = mark.compare_exchange_strong(asker, self);
        again = !marked && asker == self;
    }
    Asking(const Asking&) = delete;
    Asking& operator=(const Asking&) = delete;
    ~Asking()
    {
        if (marked)
            mark = 0;
    }

    bool Again() const noexcept { return again; }

private:
    Mark& mark;
    bool marked;
    bool again;
};

} // namespace vixa
