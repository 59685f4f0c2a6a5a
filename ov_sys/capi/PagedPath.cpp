// MMD 28, reached through pages of MMD 4.
#include "ov_sys/capi/IndirectPaths.h"

namespace Orvane {
namespace {

constexpr unsigned kMmd = 4;
constexpr unsigned kPage = 0xC180;
constexpr unsigned kLastPagedAddress = 0x5FF;
constexpr unsigned kIndexed = 0x8000;

unsigned selectPage(const PlainAccess& phy, unsigned page) {
    const unsigned value = (phy.read(kMmd, kPage) & 0xFFF8U) | page;
    phy.write(kMmd, kPage, value);
    return value;
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

unsigned indexedRead(const PlainAccess& phy, unsigned address) {
    constexpr unsigned kSelector = 0xC20B;
    constexpr unsigned kLow = 0xC2EF;
    constexpr unsigned kHigh = 0xC2FF;
    const unsigned lane = address >> 8U & 0xFU;
    const unsigned index = address & 0xFFU;
    if (lane > 4 || index > 25)
        return 0;
    selectPage(phy, 0);
    phy.write(kMmd, kSelector, bitsReversed(lane << 5U | index));
    const unsigned low = phy.read(kMmd, kLow);
    return (phy.read(kMmd, kHigh) & 0xFU) << 8U | low;
}

} // namespace

void pagedWrite(const PlainAccess& phy, unsigned address) {
    constexpr unsigned kFirstRegister = 0xC200;
    if (address > kLastPagedAddress)
        return;
    const unsigned page = selectPage(phy, address >> 8U);
    phy.write(kMmd, kFirstRegister | (address & 0xFFU), page);
}

unsigned pagedRead(const PlainAccess& phy, unsigned address) {
    if ((address & kIndexed) != 0)
        return indexedRead(phy, address);
    if (address > kLastPagedAddress)
        return 0;
    return nibblesExchanged(selectPage(phy, address >> 8U));
}

} // namespace Orvane
