// Gives each board a name and an address that the process has not seen.
#include "tests/support/capi/FlatBoard.h"

#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"

#include <orvane/orvane.h>
#include <vector>

namespace OrvaneTest {
namespace {

OrvaneSim::BoardOptions nextBoard() {
    static int number = 0;
    ++number;
    OrvaneSim::BoardOptions options;
    options.serial = "FLAT" + std::to_string(number);
    options.address = "10.83.7." + std::to_string(number);
    return options;
}

} // namespace

FlatBoard::FlatBoard() : board(lab.add(nextBoard())) {}

FlatBoard::~FlatBoard() {
    HW_Close();
}

std::string FlatBoard::device(int port) const {
    return board.serial() + ":" + std::to_string(port);
}

unsigned FlatBoard::knownAdapter(int port) {
    Orvane::AddressResponse found("host " + device(port), board.address());
    std::vector<Orvane::AddressResponse*> records{&found};
    HW_Interface_Object.updateSimpleDeviceList(records);
    return static_cast<unsigned>(HW_Interface_Object.deviceIndex(device(port)));
}

unsigned FlatBoard::openAdapter(int port) {
    const unsigned adapter = knownAdapter(port);
    HW_OpenAdapter(adapter);
    return adapter;
}

} // namespace OrvaneTest
