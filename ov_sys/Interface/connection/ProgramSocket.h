// Finds a program on a board and opens the socket over which it is called, within bounded time.
#pragma once

#include "ov_sys/Interface/foundation/Deadline.h"
#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <netinet/in.h>
#include <string>

namespace Orvane {

// Where a program is called: the board's address with the program's port, and the transport's kind.
struct ProgramPlace {
    sockaddr_in address;
    bool overStream; // TCP, otherwise UDP
};

struct ProgramSocket {
    ProgramPlace place;
    FileDescriptor socket;
};

// Asks the port mapper of `host`, dotted IPv4 text or a name, for the program and opens its socket, both
// within two seconds; a datagram is sent again each half second, for one that is lost is not a dead board. A
// name takes, before that, what the system's resolver takes; one that is not known is RPC_UNKNOWNHOST.
// `protocol` is "udp" or "tcp", anything else is RPC_UNKNOWNPROTO. Without a socket the reason is in this
// thread's rpc_createerr, as clnt_create() would put it. Any thread; raises no signal, throws nothing.
ProgramSocket openProgram(const std::string& host, unsigned long program, unsigned long version,
                          const std::string& protocol) noexcept;

// A socket that is connected to the place, so that it takes nothing from elsewhere, and closed in programs
// that this one executes; none, with errno, when that cannot be had in time. Any thread, throws nothing.
FileDescriptor openSocket(const ProgramPlace& place, const Deadline& deadline) noexcept;

} // namespace Orvane
