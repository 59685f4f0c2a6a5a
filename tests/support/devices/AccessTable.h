// What the tables of register accesses of the devices share.
#pragma once

#include "tests/support/Place.h"

namespace OrvaneTest {

// The ports beside the border between MDIO and SMBus.
constexpr int kLastMdioPort = 9;
constexpr int kFirstSmbusPort = 10;

// For an access that returns nothing.
template <class Work>
unsigned nothing(Work work) {
    work();
    return 0;
}

} // namespace OrvaneTest
