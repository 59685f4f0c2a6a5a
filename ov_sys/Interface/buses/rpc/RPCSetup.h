// The setup service's calls: opening and closing sessions, pings and remote commands.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/PingRecord.h"

#include <string>

namespace Orvane {

class BoardConnection;
class PhySession;

namespace Setup {

namespace RPC {

// Opens the session on its board in the mode that its MdioExclusive asks for, and stores the id, sequence and
// key that the board gave. Returns the board's key. Blocks and throws as DO_RPC_OPEN.
ORVANE_API unsigned int openConnection(PhySession& session);

// Tells the board that the session ends and forgets its id. Failures are reported, not thrown. Blocks for 2 s
// at most, after a call that another thread has under way on the setup client.
ORVANE_API void closeConnection(PhySession& session);

// Pings the board, session or not; returns the round trip in whole milliseconds. Throws as
// BoardConnection::testServer().
ORVANE_API int ping(BoardConnection& connection);

// Validates the session with a ping on the setup client; returns the elapsed whole milliseconds. Throws as
// DO_RPC_VALIDATION; a ping that recovery could not save returns like a good one.
ORVANE_API int ping(PhySession& session);

// A copy of the session's ping record.
ORVANE_API PingRecord getPingRecord(PhySession& session);

// Runs a shell command on the board for at most `timeoutSeconds` and stores its exit status and its two
// outputs, embedded NUL characters kept. Returns 0. Blocks for the command; throws as DO_RPC_REMOTE_EXEC, the
// setup client's time-out then staying that of the command.
ORVANE_API int runCommand(PhySession& session, std::string const& command, unsigned int timeoutSeconds,
                          int& exitCode, std::string& output, std::string& errorOutput);

} // namespace RPC

// As RPC::openConnection() and RPC::closeConnection().
ORVANE_API unsigned int openConnection(PhySession& session);
ORVANE_API void closeConnection(PhySession& session);

} // namespace Setup
} // namespace Orvane
