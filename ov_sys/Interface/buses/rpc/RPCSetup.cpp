// The records of the setup service's calls, and what a session keeps of them.
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"

#include "ov_sys/Interface/buses/rpc/CallFrame.h"
#include "ov_sys/Interface/buses/rpc/WireResult.h"
#include "ov_sys/Interface/foundation/Stopwatch.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

#include <vector>

namespace Orvane::Setup {
namespace {

Open_Param openParam(MdioExclusive const& mode) {
    Open_Param param{};
    param.sessionId = mode.key;
    param.byte1 = mode.exclusive;
    param.byte2 = mode.simple;
    param.byte3 = mode.shared == 0 ? 1 : 0;
    param.byte4 = mode.reserved;
    param.int1 = static_cast<int>(mode.deviceIndex);
    param.int2 = mode.phyAddress;
    return param;
}

template <class Counted, class Pointer>
std::string textOf(Counted length, Pointer characters) {
    return length == 0 ? std::string() : std::string(characters, length);
}

} // namespace

unsigned int RPC::openConnection(PhySession& session) {
    Open_Result result{};
    DO_RPC_OPEN(openParam(session.mdio), &result, session, BoardConnection::SETUP);
    const unsigned int id = result.word1;
    const unsigned int key = result.sessionId;
    session.initSessionInfo(id, static_cast<unsigned short>(result.word3));
    ++session.callSequence;
    session.mdio.key = static_cast<unsigned short>(key);
    return key;
}

void RPC::closeConnection(PhySession& session) {
    const Close_Param param{session.identityWord(), session.mdio.key};
    session.initSessionInfo(0, 0);
    session.connection->getClient(BoardConnection::SETUP)->resetTimeout();
    Simple_Result result{};
    DO_RPC_CLOSE(param, &result, session, BoardConnection::SETUP);
}

int RPC::ping(BoardConnection& connection) {
    return connection.testServer();
}

int RPC::ping(PhySession& session) {
    const Stopwatch stopwatch;
    Simple_Result result{};
    DO_RPC_VALIDATION(pingclient_1, ID_Param{session.pingIdentityWord()}, &result, session,
                      BoardConnection::SETUP);
    return static_cast<int>(stopwatch.elapsedMs());
}

PingRecord RPC::getPingRecord(PhySession& session) {
    return {session.pingRecordType, session.pingRecordSamples};
}

int RPC::runCommand(PhySession& session, std::string const& command, unsigned int timeoutSeconds,
                    int& exitCode, std::string& output, std::string& errorOutput) {
    std::vector<char> text(command.c_str(), command.c_str() + command.size() + 1);
    Command_Param param{};
    param.handle = session.identityWord();
    param.command = {static_cast<u_int>(text.size()), text.data()};
    param.word1 = timeoutSeconds;
    WireResult<Command_Result> result;
    RPCClient& client = *session.connection->getClient(BoardConnection::SETUP);
    client.setTimeout(static_cast<long>(timeoutSeconds), 0);
    DO_RPC_REMOTE_EXEC(param, result.get(), session, BoardConnection::SETUP,
                       static_cast<int>(timeoutSeconds));
    client.resetTimeout();
    exitCode = result->status;
    output = textOf(result->output1.output1_len, result->output1.output1_val);
    errorOutput = textOf(result->output2.output2_len, result->output2.output2_val);
    return 0;
}

unsigned int openConnection(PhySession& session) {
    return RPC::openConnection(session);
}

void closeConnection(PhySession& session) {
    RPC::closeConnection(session);
}

} // namespace Orvane::Setup
