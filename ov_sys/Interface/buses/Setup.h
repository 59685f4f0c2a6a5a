// The setup service of a board: pings and remote commands.
#pragma once

#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/PingRecord.h"
#include "ov_sys/Interface/sessions/SessionWrapper.h"

#include <string>

namespace Orvane {

// What a remote command left behind.
struct CommandResult {
    int exitCode;            // as the board's shell gave it
    std::string output;      // standard output, NUL characters kept
    std::string errorOutput; // standard error
};

namespace Setup {

// Stateless; any number of threads. Every method throws Exceptions::InvalidSession for a null or invalid
// session before anything is sent, and otherwise does, blocks and throws as the function of the same name in
// RPCSetup.h.
class ORVANE_API Setup {
public:
    virtual ~Setup();

    // As the functions of the same names in RPCSetup.h.
    int ping(SessionWrapper session);
    PingRecord getPingRecord(SessionWrapper session);
    // Fills `result` and returns 0; on an exception `result` is unchanged.
    int runCommand(SessionWrapper session, std::string command, unsigned timeoutSeconds,
                   CommandResult& result);
};

} // namespace Setup
} // namespace Orvane
