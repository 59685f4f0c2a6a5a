// Registrations of a board's programs.
#include "simulator/board/PortMap.h"

#include <algorithm>

namespace OrvaneSim {

bool PortMap::set(const PortMapping& mapping) {
    const bool taken = std::any_of(mappings_.begin(), mappings_.end(), [&](const PortMapping& other) {
        return other.program == mapping.program && other.version == mapping.version &&
               other.protocol == mapping.protocol;
    });
    if (!taken)
        mappings_.push_back(mapping);
    return !taken;
}

bool PortMap::unset(std::uint32_t program, std::uint32_t version) {
    const auto end = std::remove_if(mappings_.begin(), mappings_.end(), [&](const PortMapping& mapping) {
        return mapping.program == program && mapping.version == version;
    });
    const bool found = end != mappings_.end();
    mappings_.erase(end, mappings_.end());
    return found;
}

std::uint32_t PortMap::port(std::uint32_t program, std::uint32_t version, std::uint32_t protocol) const {
    std::uint32_t anyVersion = 0;
    for (const PortMapping& mapping : mappings_) {
        if (mapping.program != program || mapping.protocol != protocol)
            continue;
        if (mapping.version == version)
            return mapping.port;
        anyVersion = mapping.port;
    }
    return anyVersion;
}

} // namespace OrvaneSim
