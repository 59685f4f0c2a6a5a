// Lists the host's own IPv4 interfaces.
#pragma once

#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "ov_sys/Interface/foundation/Export.h"

#include <vector>

namespace Orvane {

// Appends a record of interface name and dotted address for every IPv4 address of the host, in the system's
// order, loop-back and interfaces that are down included, and returns how many it appended. When the system
// cannot tell, writes "Cannot receive information about local addresses" to the standard output stream and
// returns 0. Any thread.
ORVANE_API unsigned unix_ipList(std::vector<AddressResponse>& out);

// The lister as a class, for callers that expect one.
class ORVANE_API InterfaceLister {
public:
    // unix_ipList().
    static unsigned ipList(std::vector<AddressResponse>& out);
};

} // namespace Orvane
