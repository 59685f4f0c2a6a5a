// The selection of a page, or of a lane and an index, and the access behind it.
#include "ov_sys/routing/Pages.h"

namespace Orvane::Routing {
namespace {

constexpr unsigned kMmd = 4;
constexpr unsigned kPage = 0xC180;
constexpr unsigned kLastPagedAddress = 0x5FF;
constexpr unsigned kIndexed = 0x8000;

// The page register's new value.
Value selectPage(Access& phy, unsigned page) {
    const Value before = phy.read(kMmd, kPage);
    if (!before)
        return std::nullopt;
    const unsigned value = (*before & 0xFFF8U) | page;
    return phy.write(kMmd, kPage, value) ? Value(value) : std::nullopt;
}

unsigned nibblesExchanged(unsigned byte) {
    return (byte & 0xFU) << 4U | (byte >> 4U & 0xFU);
}

unsigned bitsReversed(unsigned byte) {
    unsigned reversed = 0;
    for (unsigned bit = 0; bit < 8; ++bit)
        reversed |= (byte >> bit & 1U) << (7U - bit);
    return reversed;
}

Value readIndexed(Access& phy, unsigned address) {
    constexpr unsigned kSelector = 0xC20B;
    constexpr unsigned kLow = 0xC2EF;
    constexpr unsigned kHigh = 0xC2FF;
    const unsigned lane = address >> 8U & 0xFU;
    const unsigned index = address & 0xFFU;
    if (lane > 4 || index > 25)
        return zeroAfter(phy, {Trouble::UnknownPagedAddress, 0, address});
    if (!selectPage(phy, 0) || !phy.write(kMmd, kSelector, bitsReversed(lane << 5U | index)))
        return std::nullopt;
    const Value low = phy.read(kMmd, kLow);
    const Value high = low ? phy.read(kMmd, kHigh) : std::nullopt;
    return high ? Value((*high & 0xFU) << 8U | *low) : std::nullopt;
}

} // namespace

bool writePaged(Access& phy, unsigned address) {
    constexpr unsigned kFirstRegister = 0xC200;
    if (address > kLastPagedAddress)
        return phy.goesOnAfter({Trouble::UnknownPagedAddress, 0, address});
    const Value page = selectPage(phy, address >> 8U);
    // The page, not the caller's value: docs/limits.md, "Odd on purpose".
    return page && phy.write(kMmd, kFirstRegister | (address & 0xFFU), *page);
}

Value readPaged(Access& phy, unsigned address) {
    if ((address & kIndexed) != 0)
        return readIndexed(phy, address);
    if (address > kLastPagedAddress)
        return zeroAfter(phy, {Trouble::UnknownPagedAddress, 0, address});
    const Value page = selectPage(phy, address >> 8U);
    return page ? Value(nibblesExchanged(*page)) : std::nullopt;
}

} // namespace Orvane::Routing
