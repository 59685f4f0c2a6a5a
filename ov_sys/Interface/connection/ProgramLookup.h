// Asks a board's port mapper where a program is, within bounded time.
#pragma once

#include "ov_sys/Interface/foundation/Deadline.h"
#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <netinet/in.h>

namespace Orvane {

// Stores the port that the port mapper (port 111) at `board` names as the port of `board`. Otherwise false,
// with the reason in this thread's rpc_createerr as clnt_create() would put it: RPC_PROGNOTREGISTERED,
// RPC_TIMEDOUT, RPC_CANTRECV and so on; RPC_SYSTEMERROR with the errno when a stream cannot be had. A
// datagram is sent again each half second, four times at most: one that is lost is not a dead board. Any
// thread; may throw std::bad_alloc.
bool findByDatagram(unsigned long program, unsigned long version, sockaddr_in& board);
bool findByStream(unsigned long program, unsigned long version, const Deadline& deadline, sockaddr_in& board);

// A stream to `board`, or nothing with the reason in rpc_createerr.
FileDescriptor openStream(const sockaddr_in& board, const Deadline& deadline) noexcept;

} // namespace Orvane
