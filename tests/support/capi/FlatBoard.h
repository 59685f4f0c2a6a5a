// A board for tests of the flat interface, whose devices and error state last as long as the process.
#pragma once

#include "simulator/lab/Lab.h"

#include <string>

namespace OrvaneTest {

// A simulated board with serial number and address of its own in this process, so that tests of one process
// do not meet each other's devices. Not yet known to the interface. All adapters are closed when it ends. To
// be a base of a test's fixture.
class FlatBoard {
protected:
    FlatBoard();
    ~FlatBoard();

    // The board's device of that port, in upper case.
    std::string device(int port) const;
    // The same as one that the interface knows, without a discovery; returns its adapter.
    unsigned knownAdapter(int port);
    // The same, opened.
    unsigned openAdapter(int port);

    OrvaneSim::Lab lab;
    OrvaneSim::Board& board;
};

} // namespace OrvaneTest
