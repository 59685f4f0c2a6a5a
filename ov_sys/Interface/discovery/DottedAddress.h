// IPv4 addresses as text.
#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <string>

namespace Orvane {

// As inet_ntoa, without a buffer that calls share.
inline std::string dottedAddress(const in_addr& address) {
    char text[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &address, text, sizeof text);
    return text;
}

} // namespace Orvane
