// The two devices of a simulated board as adapters 0 and 1.
#pragma once

#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "simulator/lab/Lab.h"

#include <vector>

namespace OrvaneTest {

// The adapter that tests use when either would do; the device of port 1.
constexpr unsigned kAdapter = 1;

// An interface that knows the devices of `board` without a discovery.
struct AdaptersOf {
    explicit AdaptersOf(const OrvaneSim::Board& board) {
        Orvane::AddressResponse found(board.nameLine(), board.address());
        std::vector<Orvane::AddressResponse*> records{&found};
        devices.updateSimpleDeviceList(records);
    }

    Orvane::HWInterface devices;
};

// A board 01A2 with the devices 01A2:0 and 01A2:1, both closed. To be a base of a test's fixture.
class AdaptersOnBoard {
protected:
    OrvaneSim::Lab lab;
    OrvaneSim::Board& board = lab.add();
    AdaptersOf adapters{board};
    Orvane::HWInterface& devices = adapters.devices;
};

} // namespace OrvaneTest
