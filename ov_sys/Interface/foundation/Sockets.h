// Thin wrappers over TCP sockets.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

// None of these throws; all are safe in any thread, given that each socket has one user at a time.
namespace Orvane {

// A new IPv4 stream socket, which the caller closes with close_socket() and programs that the process starts
// do not inherit. On failure writes "socket failed with error: " and the text of errno to the standard error
// stream and returns -1.
ORVANE_API int create_tcp_socket();

// Connects to the dotted IPv4 address `ip` (not null) and `port`, of which the low 16 bits count. Returns
// what connect() returns, with its errno; blocks as the socket's mode has it.
ORVANE_API int connect_socket(int socket, const char* ip, int port);

// Closes the socket; ignores -1.
ORVANE_API void close_socket(int socket);

// The text of the current errno, in English whatever the locale, never null. It stays valid until the calling
// thread's next call.
ORVANE_API const char* get_last_error();

} // namespace Orvane
