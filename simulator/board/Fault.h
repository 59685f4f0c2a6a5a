// A fault that a board is told to show.
#pragma once

#include <cstdint>
#include <string>

namespace OrvaneSim {

/// What goes wrong, with which calls, how often. Faults wait in the order in which they were given; a call
/// meets the first one that names it and has a count left, and no other.
struct Fault {
    enum class Kind {
        LoseReply,       ///< executed, not answered
        LoseRequest,     ///< neither executed nor answered
        ResultCode,      ///< not executed, answered with the status `value`
        ReplyCount,      ///< executed, every list of the reply cut or filled (bytes 0xEE) to `value` elements
        DelayReply,      ///< executed at once, answered `value` milliseconds later
        DuplicateReply,  ///< executed, answered twice
        CloseConnection, ///< not executed; a TCP connection ends, a datagram gets no answer
        Silent,          ///< neither executed nor answered; a probed connection stays open
        OverrideWord,    ///< executed, the first plain word of the reply beside its status becomes `value`
    };

    /// Program name as in `Request`, or "discovery" (multicast request) or "probe" (TCP probe); empty means
    /// any program, the port mapper, discovery and probe not among them.
    std::string program;
    /// Procedure name as in `Request`; empty means any.
    std::string procedure;
    Kind kind = Kind::LoseReply;
    /// Number of calls that meet the fault; -1 for every one until `clearFaults`.
    int count = 1;
    std::int64_t value = 0;
};

} // namespace OrvaneSim
