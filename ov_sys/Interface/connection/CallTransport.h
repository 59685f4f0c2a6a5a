// The two ways in which a call reaches a board: datagrams and a stream.
#pragma once

#include "ov_sys/Interface/connection/CallMessage.h"
#include "ov_sys/Interface/foundation/Deadline.h"

namespace Orvane {

// Carries calls over one socket, which stays its owner's. One call at a time; the caller sees to that.
class CallTransport {
public:
    CallTransport() = default;
    virtual ~CallTransport() = default;
    CallTransport(const CallTransport&) = delete;
    CallTransport& operator=(const CallTransport&) = delete;

    // Sends the request once and waits until its own reply is there and decoded, or `deadline` passes;
    // whatever else arrives is dropped. The outcome, also in `error`: RPC_CANTENCODEARGS, RPC_CANTSEND,
    // RPC_CANTRECV (these two with the errno), RPC_TIMEDOUT, or what CallMessage::decodeFrom() says. Raises
    // no signal, changes no signal mask. Without memory nothing is sent (RPC_CANTENCODEARGS with ENOMEM), or
    // the reply not taken (RPC_CANTDECODERES with ENOMEM); later calls are none the worse for it.
    virtual clnt_stat call(const CallMessage& message, const Deadline& deadline, rpc_err& error) noexcept = 0;

    // Whether a call could get an answer: the far end has not closed the connection, and nothing that was
    // sent or received in part is in the way. Does not block.
    virtual bool isUsable() const noexcept = 0;
};

} // namespace Orvane
