// Where the library's diagnostic lines go: to the standard streams, or to a function of the application's.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <chrono>
#include <functional>

namespace Orvane::Diagnostics {

// How much a line matters.
enum class Level : int {
    Information = 0, // on the standard output stream without a sink; the others on the standard error stream
    Warning = 1,
    Error = 2
};

// One line and what is known about it. The texts end with a zero and are the library's: they last until the
// sink returns.
struct Message {
    Level level;
    const char* board; // the name of the board that it is about, in upper case; empty when that is not known
    std::chrono::system_clock::time_point time;
    const char* line; // without line ends before and behind it; a few have one inside
};

// Gets each line, in the thread that has it to tell, which may be one of the library's own and may hold locks
// of the library: keep it short. Several threads may be in it at once. What it throws is dropped. It may call
// the library; lines of such calls go to the standard streams.
using Sink = std::function<void(const Message&)>;

// Makes `sink` get every line in place of the standard streams; an empty one brings these back. Returns when
// the former sink is no longer running and has been destroyed, except inside of a sink, where it does not
// wait. Whatever a sink refers to must outlive it: take it back before. Any thread; throws std::bad_alloc.
ORVANE_API void setSink(Sink sink);

} // namespace Orvane::Diagnostics
