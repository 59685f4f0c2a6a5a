// Any number of boards, as a program of today wants them.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/rack/Access.h"
#include "ov_sys/rack/Counters.h"
#include "ov_sys/rack/Event.h"
#include "ov_sys/rack/Port.h"

#include <map>
#include <memory>
#include <string>

namespace Orvane {

namespace RackCore {
class RackState;
}

// Opens ports of boards and keeps sessions alive by one thread of its own. Prints nothing. Any thread. It
// must outlive the use of what it gave out.
class ORVANE_API Rack {
public:
    // Throws std::bad_alloc and std::system_error.
    Rack();
    ~Rack();
    Rack(const Rack&) = delete;
    Rack& operator=(const Rack&) = delete;

    // A port by its name, board serial number and port number: "OV0001:0", in any letter case. Its board must
    // be known. Does not block; no session is opened yet. Throws Failure (InvalidArgument, NoSuchPort).
    Port open(const std::string& name, Access access = Access::simple());

    // Makes a board known, or tells where it is now. `address` is dotted IPv4 text. Does not block. Throws
    // Failure (InvalidArgument).
    void know(const std::string& board, const std::string& address);

    // Replaces the callback; an empty one ends the events. See EventCallback.
    void onEvent(EventCallback callback);

    // Counts of each board that was opened, by its serial number. Stops nothing.
    std::map<std::string, BoardCounters> counters() const;

private:
    std::shared_ptr<RackCore::RackState> state_;
};

} // namespace Orvane
