// clnt_create() for a board that may be switched off, restarting or out of reach.
#pragma once

#include <rpc/rpc.h>
#include <string>

namespace Orvane {

// Asks the port mapper at `host` for the program and makes a handle, which the caller destroys; null with the
// reason in this thread's rpc_createerr, as clnt_create() puts it, when that fails or something does not
// answer within two seconds. `host` is dotted IPv4 text; a name is left to clnt_create(), without bound.
// `protocol` is "udp" or "tcp". Any thread; raises no signal; may throw std::bad_alloc.
//
// clnt_create() of libtirpc 1.3 does the same in four steps: look-up, socket, connection, handle. Only the
// last is safe to leave to it: its look-up waits 15 s for a lost datagram and a minute or more for silence,
// all signals masked, and frees memory twice when a port mapper that it knows refuses or descriptors run out.
CLIENT* createHandle(const std::string& host, unsigned long program, unsigned long version,
                     const std::string& protocol);

} // namespace Orvane
