// An IPv4 address with a port.
#pragma once

#include <arpa/inet.h>
#include <cstdint>
#include <netinet/in.h>
#include <optional>
#include <string>

namespace Orvane::RackLink {

// Dotted text of an address in network byte order.
inline std::string dotted(in_addr_t address) {
    char text[INET_ADDRSTRLEN] = "";
    const in_addr raw{address};
    inet_ntop(AF_INET, &raw, text, sizeof text);
    return text;
}

// The address, in network byte order, that a dotted text names.
inline std::optional<in_addr_t> parseDotted(const std::string& text) {
    in_addr raw{};
    if (inet_pton(AF_INET, text.c_str(), &raw) != 1)
        return std::nullopt;
    return raw.s_addr;
}

// `port` in the host's byte order.
inline sockaddr_in endpoint(in_addr_t address, std::uint16_t port) noexcept {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(port);
    place.sin_addr.s_addr = address;
    return place;
}

} // namespace Orvane::RackLink
