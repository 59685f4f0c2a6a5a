// The ping of a board that needs no session.
#pragma once

#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/foundation/Export.h"

namespace Orvane {

// Sends `value` to the board through `client` (a setup client) and stores the board's answer in `*result`. A
// connection that the board has closed is made again first, to the same port; while another call is under way
// on the client, the ping goes over a second connection, and only if that gets no answer waits for its turn.
// Blocks for twice the client's time-out at most, and for twice that and the other calls where there are any.
// Throws Exceptions::DeviceConnection when the call fails and Exceptions::InvalidRPCClient when the client is
// not connected, each after a line on the standard error stream.
ORVANE_API void DO_RPC_BOARD_PING(int value, int* result, RPCClient* client);

// Pings the board with the value 123 and returns the round trip in whole milliseconds. Blocks and throws as
// DO_RPC_BOARD_PING.
int pingBoard(RPCClient& setupClient);

} // namespace Orvane
