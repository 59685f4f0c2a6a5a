// The frames in which every call of a session runs: retries, recovery and the board's verdict.
#pragma once

#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/connection/StubCall.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/rpc_protocol/Codec.h"
#include "ov_sys/Interface/rpc_protocol/KeptMembers.h"
#include "ov_sys/Interface/rpc_protocol/Records.h"
#include "ov_sys/Interface/sessions/PhySession.h"

#include <optional>
#include <rpc/rpc.h>
#include <string>

namespace Orvane {

namespace Frames {

// Throws Exceptions::InvalidSession unless the session is usable or becomes valid while it is waited for.
ORVANE_API void requireUsable(PhySession& session);

// One attempt on the handle that `client` has when it is this thread's turn. No status, and nothing was sent,
// when the session ended while other threads had theirs: one after the other would find the board silent.
template <class Param, class Result>
std::optional<clnt_stat> attempt(clnt_stat (*stub)(Param, Result, CLIENT*), const Param& param, Result result,
                                 const PhySession& session, RPCClient& client) {
    return callStubIf([&session] { return session.isValid(); }, stub, param, result, client);
}

// What follows a transport error of attempt number `attempt` (from 0): normal return means that the call is
// to be repeated. Attempt 5 retrieves the connection, attempt 7 is the last; both are met exactly or not at
// all.
ORVANE_API void recover(PhySession& session, clnt_stat status, unsigned long attempt,
                        const std::string& clientName);

// Brings a result record back to what it was before the call: what XDR allocated is freed, a buffer that the
// caller had put there stays, whether it was announced to the decoder or not.
template <class Record>
void restore(Record& result, const Record& initial) {
    if constexpr (IsWireRecord<Record>::value)
        freeUnlessInitial(xdrProcedure<Record>, &result, &initial, sizeof result);
    result = initial;
}

} // namespace Frames

// Calls `stub` on the session's client `id` and repeats it until the board's result code is 0 (or a retryable
// one on a session that became invalid); then callSequence has grown by one. `Result` is the pointer type;
// the caller owns the record and frees what XDR allocated in it. Blocks for the answers' time-outs and the
// recovery between them. Throws Exceptions::InvalidRPCClient, InvalidSession, AccessDenied, Standard, and
// what the recovery lets through. Any number of threads.
template <class Param, class Result>
void DO_RPC(clnt_stat (*stub)(Param, Result, CLIENT*), Param param, Result result, PhySession& session,
            BoardConnection::clientId id) {
    RPCClient& client = *session.connection->getClient(id);
    if (client.client == nullptr) {
        client.update();
        if (client.client == nullptr)
            throw Exceptions::InvalidRPCClient(client.name);
    }
    Frames::requireUsable(session);
    const auto initial = *result;
    for (unsigned long attempt = 0;; ++attempt) {
        const std::optional<clnt_stat> status = Frames::attempt(stub, param, result, session, client);
        if (!status)
            session.onSessionFatalError();
        if (*status != RPC_SUCCESS) {
            Frames::recover(session, *status, attempt, client.name);
        } else {
            session.setLastResult(result->error);
            if (result->error == 0 || !session.onRPCResultError(result->error, client.name)) {
                ++session.callSequence;
                return;
            }
        }
        Frames::restore(*result, initial);
    }
}

// The frame of pings: waits while the session is busy, repeats an answer that came during the busy time, and
// returns silently when recovery fails; pingSequence has grown by one after a good ping. Throws what
// PhySession::onRPCResultError() throws. There is no limit to the attempts, but the keep-alive thread's end
// when it was asked to.
template <class Param, class Result>
void DO_RPC_VALIDATION(clnt_stat (*stub)(Param, Result, CLIENT*), Param id, Result result,
                       PhySession& session, BoardConnection::clientId clientId) {
    constexpr unsigned int kWaitMs = 65000;
    RPCClient& client = *session.connection->getClient(clientId);
    for (;;) {
        std::optional<clnt_stat> status;
        session.waitForSessionNotBusy();
        if (session.keepAliveEnds())
            return;
        do
            status = Frames::attempt(stub, id, result, session, client);
        while (session.getSessionState() == PhySession::SESSION_BUSY && session.waitForSessionNotBusy() == 0);
        if (!status)
            return;
        if (*status == RPC_SUCCESS) {
            if (!session.onRPCResultError(result->error, client.name)) {
                ++session.pingSequence;
                return;
            }
        } else if (session.keepAliveEnds() || !session.onRPCCallError(*status, client.name) ||
                   session.waitForErrorHandling(kWaitMs) != 0) {
            return;
        }
    }
}

// Opens a session on the board: up to six tries, a second apart, while the board answers with a code. Throws
// Exceptions::InvalidRPCClient (client not connected), DeviceConnection (transport), AccessDenied (codes -1,
// -13, -28) or Standard (any other code). Blocks for 5 s and the answers' time-outs at most.
ORVANE_API void DO_RPC_OPEN(Open_Param param, Open_Result* result, PhySession& session,
                            BoardConnection::clientId id);

// Tells the board that the session ends. Failures are reported, not thrown; the board's code is not looked
// at.
ORVANE_API void DO_RPC_CLOSE(Close_Param param, Simple_Result* result, PhySession& session,
                             BoardConnection::clientId id);

// Runs a command on the board, the session being busy for `timeoutSeconds` meanwhile. A command that timed
// out on the board (-110) is run again without limit; everything else as DO_RPC, but an unconnected client is
// not updated.
ORVANE_API void DO_RPC_REMOTE_EXEC(Command_Param param, Command_Result* result, PhySession& session,
                                   BoardConnection::clientId id, int timeoutSeconds);

} // namespace Orvane
