// Walks the system's list of interface addresses.
#include "ov_sys/Interface/discovery/InterfaceLister.h"

#include "ov_sys/Interface/discovery/DottedAddress.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"

#include <cstring>
#include <ifaddrs.h>
#include <memory>

namespace Orvane {

unsigned unix_ipList(std::vector<AddressResponse>& out) {
    ifaddrs* first = nullptr;
    if (getifaddrs(&first) != 0) {
        Diagnostics::output("Cannot receive information about local addresses");
        return 0;
    }
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> list(first, freeifaddrs);
    unsigned count = 0;
    for (const ifaddrs* entry = list.get(); entry != nullptr; entry = entry->ifa_next) {
        if (entry->ifa_addr == nullptr || entry->ifa_addr->sa_family != AF_INET)
            continue;
        sockaddr_in address{};
        std::memcpy(&address, entry->ifa_addr, sizeof address);
        out.emplace_back(entry->ifa_name, dottedAddress(address.sin_addr));
        ++count;
    }
    return count;
}

unsigned InterfaceLister::ipList(std::vector<AddressResponse>& out) {
    return unix_ipList(out);
}

} // namespace Orvane
