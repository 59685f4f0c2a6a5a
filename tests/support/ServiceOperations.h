// Every operation of the bus services beside MDIO, with what it must put on the wire.
#pragma once

#include "ov_sys/Interface/sessions/SessionWrapper.h"
#include "tests/support/WireCall.h"

#include <string>
#include <vector>

namespace OrvaneTest {

using Bytes = std::vector<unsigned char>;
using Words = std::vector<unsigned int>;
using Json = nlohmann::ordered_json;

constexpr unsigned kI2cProgram = 0x2FFFFFF1;
constexpr unsigned kJtagProgram = 0x2FFFFFF3;
constexpr unsigned kGpioProgram = 0x2FFFFFF4;
constexpr unsigned kKeepAliveProgram = 0x2FFFFFF5;
constexpr unsigned kAdcProgram = 0x2FFFFFF6;
constexpr unsigned kThermalProgram = 0x2FFFFFF7;

// One operation, as the first call of a session.
struct ServiceOperation {
    std::string name;
    Json (*run)(Orvane::SessionWrapper session); // what it returned, null for nothing
    std::string service;                         // as the library and the board call it
    WireCall call;
    Json value; // what a board prepared by prepareDevices() answers
};

const std::vector<ServiceOperation>& serviceOperations();

// Gives the devices of `board` the states that the operations above meet, and forgets the requests that it
// took.
void prepareDevices(OrvaneSim::Board& board);

} // namespace OrvaneTest
