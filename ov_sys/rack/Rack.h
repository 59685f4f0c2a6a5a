// Any number of boards, as a program of today wants them.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/rack/Access.h"
#include "ov_sys/rack/Counters.h"
#include "ov_sys/rack/Discovery.h"
#include "ov_sys/rack/Event.h"
#include "ov_sys/rack/Port.h"
#include "ov_sys/rack/Within.h"

#include <map>
#include <memory>
#include <string>

namespace Orvane {

namespace RackCore {
class RackState;
}

// Finds boards, opens their ports, keeps sessions alive by one thread of its own. Prints nothing. Any thread.
// It must outlive the use of what it gave out.
class ORVANE_API Rack {
public:
    // Throws std::bad_alloc and std::system_error.
    Rack();
    ~Rack();
    Rack(const Rack&) = delete;
    Rack& operator=(const Rack&) = delete;

    // A port by its name, board serial number and port number: "OV0001:0", in any letter case. A board that
    // is not known yet is looked for until it answers or the time is over; no session is opened yet. Throws
    // Failure (InvalidArgument, NoSuchPort, Unreachable, Cancelled).
    Port open(const std::string& name, Access access = Access::simple(), const Within& within = {});

    // Every board that answers on the networks of this host, which are known then. Listens for the whole time
    // and asks again and again; programs of this host that search at the same time all get the same answers.
    // Throws Failure (Unreachable, Cancelled).
    Discovery discover(const Within& within = Orvane::within(std::chrono::seconds(1)));

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
