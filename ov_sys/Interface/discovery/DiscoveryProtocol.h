// What discovery puts on the wire, by multicast and over TCP alike.
#pragma once

#include <cstddef>
#include <string>

namespace Orvane::DiscoveryProtocol {

inline constexpr char kGroup[] = "239.255.255.38";
inline constexpr int kPort = 12345;
inline constexpr char kRequest[] = "ZRDISCOVER?";

// A reply carries at most this many bytes of text.
inline constexpr std::size_t kReplyLimit = 255;

// The request for the boards that answer to `boardType`; it is sent without a terminator.
inline std::string request(const std::string& boardType) {
    return kRequest + boardType;
}

} // namespace Orvane::DiscoveryProtocol
