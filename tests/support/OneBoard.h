// A lab with one simulated board, for tests that need no more.
#pragma once

#include "ov_sys/Interface/foundation/AddressResponse.h"
#include <orvane/lab.h>

#include <string>
#include <vector>

namespace OrvaneTest {

// Name of the board, as its serial number and as the library shows it.
constexpr const char* kBoardSerial = "board7";
constexpr const char* kBoardName = "BOARD7";

// Nobody answers at the first address, which refuses everything, nor at the second, which does not exist.
constexpr const char* kRefusingAddress = "10.83.100.1";
constexpr const char* kSilentAddress = "10.83.200.1";

struct OneBoard {
    OrvaneSim::Lab lab;
    OrvaneSim::Board& board;

    explicit OneBoard(const std::string& serial = kBoardSerial);
    // The board as discovery would report it.
    Orvane::AddressResponse record() const;
    // Adds a fault of the named procedure.
    void inject(OrvaneSim::Fault::Kind kind, const std::string& program, const std::string& procedure,
                int count = 1, std::int64_t value = 0);
    // How often a procedure was asked for, faults included.
    std::size_t count(const std::string& procedure) const;
    // Numbers of the programs that the port mapper was asked for, in order, repetitions in a row left out.
    std::vector<unsigned long> programsLookedUp() const;
};

} // namespace OrvaneTest
