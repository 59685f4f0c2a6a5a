// The ports that a command works on.
#pragma once

#include "tools/orvane/board/Context.h"

#include <exception>
#include <optional>
#include <orvane/rack.hpp>
#include <string>
#include <vector>

namespace OrvaneTool {

// What a name of a device came to.
struct Target {
    std::string name;                 // OV0001:0, or a pattern that nothing matches
    std::string address;              // of the board
    unsigned adapter = 0;             // its place in the list of all that answered
    std::optional<Orvane::Port> port; // empty: there is none
    std::exception_ptr problem;       // then: why, a Failure

    bool isSmbus() const { return port && port->number() >= 10; }
};

struct Targets {
    std::vector<Target> list; // in the order of the names, those of a pattern by board and port
    std::string doubt;        // why a pattern may match more; empty: it does not
};

// Looks for the boards of all names, which deviceNames() gave, at the same time. No session is opened. Blocks
// as lookForBoards() does, but for no longer than it takes until all that are named in full have answered.
// Throws Orvane::Failure and Interrupted.
Targets findTargets(Context& context, const std::vector<std::string>& names);

// The one port of a command that works on one. Throws UsageError for what is no single name, and the target's
// Failure.
Target findTarget(Context& context, const std::string& name);

// How sessions are opened, as the environment says (EXCLUSIVE_KEY, CONCURRENT_KEY, SIMPLE_KEY).
Orvane::Access accessFromEnvironment();

} // namespace OrvaneTool
