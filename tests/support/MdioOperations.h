// Every operation of the MDIO facade, with what it must put on the wire.
#pragma once

#include "ov_sys/Interface/sessions/SessionWrapper.h"
#include "tests/support/WireCall.h"

#include <string>
#include <vector>

namespace OrvaneTest {

using Words = std::vector<unsigned int>;

// Argument records, members in wire order.
nlohmann::ordered_json readParam(unsigned int handle, const Words& addresses);
nlohmann::ordered_json writeParam(unsigned int handle, const Words& addresses, const Words& values);
nlohmann::ordered_json mixedParam(unsigned int handle, const Words& writeData, const Words& writeAddresses,
                                  const Words& readAddresses, const Words& runs);

// One operation, as the first call of a session with PHY address 5 and device index 1.
struct MdioOperation {
    std::string name;
    Words (*run)(Orvane::SessionWrapper session); // what it returned, nothing for a write
    unsigned procedure;
    nlohmann::ordered_json arguments;
    Words values; // what a board prepared by prepareRegisters() answers
};

const std::vector<MdioOperation>& mdioOperations();

// Gives the registers that the reads above address the values that they expect.
void prepareRegisters(OrvaneSim::Board& board);

} // namespace OrvaneTest
