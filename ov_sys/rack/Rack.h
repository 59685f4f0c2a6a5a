// Any number of boards, as a program of today wants them.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/rack/Port.h"
#include "ov_sys/rack/values/Access.h"
#include "ov_sys/rack/values/Counters.h"
#include "ov_sys/rack/values/Discovery.h"
#include "ov_sys/rack/values/Event.h"
#include "ov_sys/rack/values/LogSink.h"
#include "ov_sys/rack/values/Within.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane {

namespace RackCore {
class RackState;
}

// What became of one name of Rack::openAll(). A plain value.
struct OpenedPort {
    std::string name;               // as it was given; a pattern's is that of the port, "OV0001:0"
    std::optional<Port> port;       // empty when there is no such port
    std::optional<Failure> failure; // the first thing that went wrong with it; the port may still be used
};

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

    // Ports by their names, all together: in each, '*', '?' and "[...]" stand for what they do in file names,
    // so that "OV*:0" is port 0 of every such board that answers within a second. The sessions of `phys` are
    // opened on all of them at the same time. The results are in the order of the names, those of a pattern
    // in alphabetical order and without those that came before; no failure of one costs another. `within`
    // limits the call as a whole. Throws std::system_error when there is no descriptor left.
    std::vector<OpenedPort> openAll(const std::vector<std::string>& names,
                                    const std::vector<unsigned>& phys = {}, Access access = Access::simple(),
                                    const Within& within = {});
    // Closes every session of this rack, all at the same time; their next use opens them again. What could
    // not be told to its board is in the result; it is closed here all the same. Throws as openAll().
    std::vector<Failure> closeAll(const Within& within = {});

    // Every board that answers on the networks of this host, which are known then. Listens for the whole time
    // and asks again and again; programs of this host that search at the same time all get the same answers.
    // Throws Failure (Unreachable, Cancelled).
    Discovery discover(const Within& within = Orvane::within(std::chrono::seconds(1)));
    // The same, but it ends as soon as `enough` says so, which is called on this thread for each board when
    // it has answered. What it throws leaves the call.
    Discovery discover(const std::function<bool(const FoundBoard&)>& enough, const Within& within);
    // The boards at these addresses (dotted IPv4 text), which are known then. Each is asked by TCP, many at
    // the same time, and nothing is sent anywhere else; who does not answer within two seconds is left out.
    // Throws Failure (InvalidArgument, Cancelled).
    Discovery ask(const std::vector<std::string>& addresses, const Within& within = {});

    // Makes a board known, or tells where it is now. `address` is dotted IPv4 text. Does not block. Throws
    // Failure (InvalidArgument).
    void know(const std::string& board, const std::string& address);

    // Replaces the callback; an empty one ends the events. Waits for the former one while it runs, unless it
    // is called from it: what it uses may end then. See EventCallback.
    void onEvent(EventCallback callback);

    // From now on every access of this rack leaves a line in that file, at its end, until endLog() or another
    // log: registers, services, and what happens to sessions; docs/rack.md has the columns. The file is made
    // if need be, and several programs may write to the same one. A line is written when its access has
    // ended, before the call returns, and takes as long as the file takes. A log that fails costs no access:
    // it is told once as an event, and the log tells how many lines are missing. Throws Failure
    // (InvalidArgument) for a file that cannot be opened; the former log goes on then.
    void logTo(const std::string& path);
    // The same to a function.
    void logTo(LogSink sink);
    // When it returns, nothing is written any more.
    void endLog();
    // A line of the caller's own, at its place in the log. Without a log it is nothing.
    void note(std::string_view text);

    // Counts of each board that was opened, by its serial number. Stops nothing.
    std::map<std::string, BoardCounters> counters() const;

private:
    std::shared_ptr<RackCore::RackState> state_;
};

} // namespace Orvane
