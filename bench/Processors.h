// Which processors the two sides of a measurement run on: as a board and a host do, they share none. Left to
// itself, the scheduler puts both processes on one processor or on two and changes its mind every few
// seconds.
#pragma once

#include <cstddef>
#include <sched.h>

namespace OrvaneBench {

enum class Side { Boards, Host };

// Keeps the calling thread, and the threads and processes that it starts later, to one side's processors: the
// boards have the last of those that may be used, the host has the others. With one processor they share it.
inline void keepToProcessorsOf(Side side) {
    cpu_set_t usable;
    if (sched_getaffinity(0, sizeof usable, &usable) != 0 || CPU_COUNT(&usable) < 2)
        return;
    std::size_t last = CPU_SETSIZE - 1;
    while (!CPU_ISSET(last, &usable))
        --last;
    cpu_set_t own;
    CPU_ZERO(&own);
    CPU_SET(last, &own);
    if (side == Side::Host)
        CPU_XOR(&own, &usable, &own);
    sched_setaffinity(0, sizeof own, &own);
}

} // namespace OrvaneBench
