// The sessions that the process has on its boards, seen from beside the threads that use them.
#pragma once

namespace OrvaneTool {

// Whether a device is open, and so may have sessions.
bool haveSessions();

// Asks the boards to close every session of the process, over connections of its own, while other threads may
// be inside calls on them.
void closeSessionsFromOutside();

} // namespace OrvaneTool
