// The wall clock of the test's process, to be set back.
#pragma once

namespace OrvaneTest {

// From its making until it goes, the system clock shows an hour less. One at a time; any thread.
class WallClockSetBack {
public:
    WallClockSetBack();
    WallClockSetBack(const WallClockSetBack&) = delete;
    WallClockSetBack& operator=(const WallClockSetBack&) = delete;
    ~WallClockSetBack();
};

} // namespace OrvaneTest
