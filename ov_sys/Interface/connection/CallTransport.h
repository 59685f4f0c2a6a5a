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
    // no signal, changes no signal mask. May throw std::bad_alloc.
    virtual clnt_stat call(const CallMessage& message, const Deadline& deadline, rpc_err& error) = 0;
};

} // namespace Orvane
