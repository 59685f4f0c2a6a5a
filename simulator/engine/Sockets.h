// IPv4 end points and the sockets that boards are reached through.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <cstdint>
#include <netinet/in.h>
#include <string>

namespace OrvaneSim {

// The end point of dotted `address` and `port` (host byte order). Throws std::invalid_argument for a text
// that is no IPv4 address.
sockaddr_in endPoint(const std::string& address, std::uint16_t port);

// The dotted address of an end point.
std::string addressText(const sockaddr_in& point);

// A non-blocking UDP socket bound to `point`. Throws std::system_error naming the end point.
Orvane::FileDescriptor openUdp(const sockaddr_in& point);

// A non-blocking TCP socket listening at `point`. Throws std::system_error naming the end point.
Orvane::FileDescriptor openTcpListener(const sockaddr_in& point);

// The local port of a bound socket, in host byte order.
std::uint16_t localPort(const Orvane::FileDescriptor& socket);

// Sets an integer socket option. Throws std::system_error.
void setOption(const Orvane::FileDescriptor& socket, int level, int option, int value);

// Raises this process's soft limit of open descriptors to its hard limit, for many boards in one process.
void raiseDescriptorLimit();

} // namespace OrvaneSim
