// Where a board's programs are served.
#pragma once

#include <cstdint>
#include <vector>

namespace OrvaneSim {

// One registration of a port mapper. `protocol` is IPPROTO_TCP or IPPROTO_UDP, `port` in host byte order.
struct PortMapping {
    std::uint32_t program = 0;
    std::uint32_t version = 0;
    std::uint32_t protocol = 0;
    std::uint32_t port = 0;
};

// The registrations of one board's port mapper. Belongs to the loop's thread.
class PortMap {
public:
    // Adds a registration; false when program, version and protocol have one already.
    bool set(const PortMapping& mapping);

    // Removes a program version on every protocol; false when there was none.
    bool unset(std::uint32_t program, std::uint32_t version);

    // The port of a program, of the wanted version if that is registered, else of any; 0 for none.
    std::uint32_t port(std::uint32_t program, std::uint32_t version, std::uint32_t protocol) const;

    const std::vector<PortMapping>& all() const { return mappings_; }
    void clear() { mappings_.clear(); }

private:
    std::vector<PortMapping> mappings_;
};

} // namespace OrvaneSim
