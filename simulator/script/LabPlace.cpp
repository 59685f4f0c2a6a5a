// Ranges of addresses.
#include "simulator/script/LabPlace.h"

#include <arpa/inet.h>
#include <cstdint>
#include <ifaddrs.h>
#include <memory>
#include <optional>

namespace OrvaneSim {
namespace {

std::optional<std::uint32_t> numberOf(const std::string& address) {
    in_addr raw{};
    if (::inet_pton(AF_INET, address.c_str(), &raw) != 1)
        return std::nullopt;
    return ntohl(raw.s_addr);
}

std::string numbered(const std::string& network, unsigned number) {
    return network + std::to_string(number / 256) + "." + std::to_string(number % 256);
}

bool isOwn(std::uint32_t address) {
    ifaddrs* first = nullptr;
    if (::getifaddrs(&first) != 0)
        return false;
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> owner(first, ::freeifaddrs);
    for (const ifaddrs* entry = first; entry; entry = entry->ifa_next)
        if (entry->ifa_addr && entry->ifa_addr->sa_family == AF_INET &&
            ntohl(reinterpret_cast<const sockaddr_in*>(entry->ifa_addr)->sin_addr.s_addr) == address)
            return true;
    return false;
}

class PrivatePlace : public LabPlace {
    bool contains(const std::string& address) const override {
        const auto number = numberOf(address);
        return number && *number > 0x0A530000 && *number <= 0x0A537FFF;
    }
    std::string defaultAddress(unsigned number) const override { return numbered("10.83.", number); }
    const char* text() const override { return "10.83.0.1 to 10.83.127.255"; }
};

class LoopbackPlace : public LabPlace {
    bool contains(const std::string& address) const override {
        const auto number = numberOf(address);
        return number && (*number >> 24 == 127 || isOwn(*number));
    }
    // 127.0.0.1 is left alone.
    std::string defaultAddress(unsigned number) const override { return numbered("127.0.", number + 1); }
    const char* text() const override { return "127.0.0.0/8 and this machine's addresses"; }
};

} // namespace

const LabPlace& privatePlace() {
    static const PrivatePlace place;
    return place;
}

const LabPlace& loopbackPlace() {
    static const LoopbackPlace place;
    return place;
}

} // namespace OrvaneSim
