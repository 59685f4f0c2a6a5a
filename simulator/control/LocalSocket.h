// Unix domain sockets of labs: where they are and how they are reached.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <string>
#include <sys/un.h>
#include <vector>

namespace OrvaneSim {

constexpr const char* kLocalPrefix = "orvane-sim-";
constexpr const char* kLocalSuffix = ".sock";

// The folders where control sockets are looked for, the preferred one first.
std::vector<std::string> localFolders();

// The address of a path. Throws std::runtime_error for one that is too long for a socket.
sockaddr_un localPlace(const std::string& path);

// A connection to a path; none, and errno, when nobody serves there or nobody takes it within 5 s.
Orvane::FileDescriptor connectLocal(const std::string& path);

// Whether the other end of a connection is served by this user or by root, who are believed.
bool isOurs(const Orvane::FileDescriptor& connection);

} // namespace OrvaneSim
