// A fault that a board is told to show.
#pragma once

#include <cstdint>
#include <string>

namespace OrvaneSim {

// What goes wrong, with which calls, how often. Faults wait in the order in which they were given; a call
// meets the first one that names it, has a count left and whose probability falls on it, and no other.
struct Fault {
    // Bytes of a reply are those of the RPC message, without the record mark that precedes it over TCP. What
    // says "TCP only" loses the reply over UDP.
    enum class Kind {
        LoseReply,        // executed, not answered
        LoseRequest,      // neither executed nor answered
        ResultCode,       // not executed, answered with the status `value`
        ReplyCount,       // executed, every list of the reply cut or filled (bytes 0xEE) to `value` elements
        DelayReply,       // executed at once, answered `value` milliseconds later
        DuplicateReply,   // executed, answered twice
        CloseConnection,  // not executed; a TCP connection ends, a datagram gets no answer
        Silent,           // neither executed nor answered; a probed connection stays open
        OverrideWord,     // executed, the first plain word of the reply beside its status becomes `value`
        ReorderReply,     // executed, answered after the client's next reply, `value` milliseconds later at
                          // most
        TruncateReply,    // executed, the reply cut to its first `value` bytes
        LengthenReply,    // executed, `value` made-up bytes behind the reply
        CorruptReply,     // executed, `value` bytes of the reply changed
        GarbageReply,     // executed, answered with `value` made-up bytes and nothing else
        ReplyBody,        // executed, answered with success and `bytes` in place of the encoded result
        WrongTransaction, // executed, answered under another transaction id
        WrongPort,        // executed, answered from another port; UDP only, lost over TCP
        RefuseProgram,    // not executed, answered that the program is unavailable
        CloseMidReply,    // executed; the connection ends after `value` bytes of the reply; TCP only
        HalfOpen,         // executed; after `value` bytes of the reply the connection is mute; TCP only
        TrickleReply,     // executed, answered byte by byte, `value` milliseconds apart; at once over UDP
    };

    // Program name as in `Request`, or "discovery" (multicast request) or "probe" (TCP probe); empty means
    // any program, the port mapper, discovery and probe not among them.
    std::string program;
    // Procedure name as in `Request`; empty means any.
    std::string procedure;
    Kind kind = Kind::LoseReply;
    // Number of calls that meet the fault; -1 for every one until `clearFaults`.
    int count = 1;
    std::int64_t value = 0;
    // Chance, 0 to 1, that a call meets the fault; drawn from the board's seed, so that a run repeats.
    double probability = 1;
    // For `ReplyBody`: the encoded result.
    std::string bytes{};
};

} // namespace OrvaneSim
