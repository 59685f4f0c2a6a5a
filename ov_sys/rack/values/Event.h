// What happens to boards and sessions, told to whoever wants to know.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <chrono>
#include <functional>
#include <iosfwd>
#include <string>

namespace Orvane {

// Something that happened. A plain value.
struct Event {
    // What happened.
    enum class Kind { Opened, Lost, Retried, Moved, Reopened, PingLost, Closed, LogFailed };
    // How much it matters.
    enum class Level { Debug, Info, Warning };

    std::chrono::system_clock::time_point time; // when
    std::string board;                          // serial number; empty: none of the boards
    int port = -1;                              // -1: the board as a whole
    int phy = -1;                               // -1: none
    Kind kind = Kind::Opened;
    Level level = Level::Info;
    std::string text; // details, e.g. the board's new address; may be empty
};

// In words, e.g. "ping lost". Never null.
ORVANE_API const char* toText(Event::Kind kind) noexcept;

// "OV0001:0 PHY 3: reopened" on one line, without its end.
ORVANE_API std::ostream& operator<<(std::ostream& out, const Event& event);

// Called on the rack's own thread, one event at a time and in order, under no lock of the library's. It may
// use the rack and must not throw.
using EventCallback = std::function<void(const Event&)>;

} // namespace Orvane
