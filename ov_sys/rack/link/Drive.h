// Runs calls on one board by the thread that makes them.
#pragma once

#include "ov_sys/rack/link/BoardLink.h"
#include "ov_sys/rack/link/Limits.h"

#include <cstddef>

namespace Orvane::RackLink {

// Starts the calls in order and returns when all of them are done. Waits for the board's turn, and runs the
// hooks of sessions that had to be opened again. Throws what a hook throws, and std::bad_alloc; the calls are
// then done, too. Blocks until limits.end at most.
void drive(BoardLink& link, Call* const* calls, std::size_t count, Limits& limits);

// The same for one call; returns how it ended.
Trouble drive(BoardLink& link, Call& call, Limits& limits);

// The turn for an operation of several calls, or why it is not to be had.
Trouble takeTurn(BoardLink& link, const Limits& limits);

// Waits for the link, the cancellation (which may be null) or `end`, whichever is first. Whether anything but
// a datagram has come.
bool waitFor(const BoardLink& link, const Cancellation* cancellation, TimePoint now, TimePoint end);

// Waits for that time, if neither cancellation nor end of the limits comes before.
void pause(Limits& limits, Clock::duration time);

// Waits for the entries, the cancellation or `until`, whichever is first. There is room for one entry more.
void waitFor(pollfd* entries, std::size_t count, const Limits& limits, TimePoint until);

// Runs the hook of a session that was opened again, if it is due. Throws what the hook throws; it stays due
// then.
void runHook(BoardLink& link, Session& session);

// Runs the hook that the link's next call waits for, if any.
void runHooks(BoardLink& link);

} // namespace Orvane::RackLink
