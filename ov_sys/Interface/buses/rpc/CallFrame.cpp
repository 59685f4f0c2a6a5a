// The frames of an opening, a closing and a remote command, and what all frames share.
#include "ov_sys/Interface/buses/rpc/CallFrame.h"

#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/HWIHelper.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

#include <cerrno>

namespace Orvane {
namespace {

void connectForOpening(RPCClient& client) {
    if (client.client != nullptr)
        return;
    Diagnostics::error("Opening session error. Updating client: ", client.name);
    client.update();
    if (client.client != nullptr)
        return;
    Diagnostics::error("Opening session terminated. Invalid Setup RPC client");
    throw Exceptions::InvalidRPCClient(client.name);
}

[[noreturn]] void refuseOpening(RPCretCode_t code) {
    if (code == -EACCES || code == -ENOSPC || code == -EPERM)
        throw Exceptions::AccessDenied();
    Diagnostics::error("Error opening connection: ", code);
    throw Exceptions::Standard("Error opening connection");
}

int secondsToMs(int seconds) {
    return static_cast<int>(static_cast<unsigned int>(seconds) * 1000U);
}

} // namespace

void Frames::requireUsable(PhySession& session) {
    constexpr unsigned int kWaitMs = 65000;
    if (!session.isValid() && session.waitForSessionValidation(kWaitMs) != 0)
        throw Exceptions::InvalidSession();
}

void Frames::recover(PhySession& session, clnt_stat status, unsigned long attempt,
                     const std::string& clientName) {
    constexpr unsigned long kWarningAttempt = 5;
    constexpr unsigned long kLastAttempt = 7;
    if (attempt == kLastAttempt)
        session.onRPCCallFatalError(status);
    if (attempt == kWarningAttempt)
        session.onRPRetryWarning();
    else if (!session.onRPCCallError(status, clientName))
        session.onRPCCallFatalError(status);
    if (!session.isValid())
        session.onSessionFatalError();
}

void DO_RPC_OPEN(Open_Param param, Open_Result* result, PhySession& session, BoardConnection::clientId id) {
    constexpr int kTries = 6;
    constexpr int kPauseMs = 1000;
    const Diagnostics::BoardScope board(session.connection->name);
    RPCClient& client = *session.connection->getClient(id);
    connectForOpening(client);
    for (int tries = 1;; ++tries) {
        const clnt_stat status = callStub(open_connection_1, param, result, client);
        if (status != RPC_SUCCESS) {
            Diagnostics::error("Open session RPC failed with error: ", static_cast<int>(status));
            throw Exceptions::DeviceConnection();
        }
        session.setLastResult(result->error);
        if (result->error == 0)
            return;
        if (tries == kTries)
            refuseOpening(result->error);
        HWIHelper::mSleep(kPauseMs);
    }
}

void DO_RPC_CLOSE(Close_Param param, Simple_Result* result, PhySession& session,
                  BoardConnection::clientId id) {
    const Diagnostics::BoardScope board(session.connection->name);
    const std::shared_ptr<RPCHandle> handle = session.connection->getClient(id)->pin();
    if (!handle) {
        Diagnostics::error("Closing connection terminated. Invalid Setup RPC client");
        return;
    }
    const clnt_stat status = callOnHandle(close_connection_1, param, result, handle.get());
    if (status != RPC_SUCCESS)
        Diagnostics::error("Close connection returned: ", static_cast<int>(status));
}

void DO_RPC_REMOTE_EXEC(Command_Param param, Command_Result* result, PhySession& session,
                        BoardConnection::clientId id, int timeoutSeconds) {
    RPCClient& client = *session.connection->getClient(id);
    if (client.client == nullptr)
        throw Exceptions::InvalidRPCClient(client.name);
    Frames::requireUsable(session);
    const Command_Result initial = *result;
    for (unsigned long attempt = 0;;) {
        session.setSessionBusy(secondsToMs(timeoutSeconds));
        const std::optional<clnt_stat> status =
            Frames::attempt(execute_command_1, param, result, session, client);
        if (!status)
            session.onSessionFatalError();
        session.resetSessionBusy();
        if (*status != RPC_SUCCESS) {
            Frames::recover(session, *status, attempt, client.name);
            ++attempt;
        } else if (session.setLastResult(result->error); result->error != -ETIMEDOUT) {
            if (!session.onRPCResultError(result->error, client.name)) {
                ++session.callSequence;
                return;
            }
            ++attempt;
        }
        Frames::restore(*result, initial);
    }
}

} // namespace Orvane
