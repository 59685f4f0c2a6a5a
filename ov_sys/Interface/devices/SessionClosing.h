// Closes many sessions at once.
#pragma once

#include "ov_sys/Interface/devices/SimpleSessionEntry.h"

namespace Orvane {

// Closes every session of the list as PhySession::close() does; its close request is sent once. Boards are
// told side by side, by up to 64 threads that end with the call; the sessions of one board in their order in
// the list, unless the board takes longer than 100 ms over one of them. Blocks for 4 s at most for what is
// under way on the sessions, and then 2 s for boards that do not answer (for each 64 of their sessions). What
// another thread still calls through ends in an error. Throws nothing.
void closeSideBySide(const SharedSessions& sessions) noexcept;

} // namespace Orvane
