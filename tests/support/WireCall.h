// A recorded request in the form in which tests compare it: everything that is on the wire.
#pragma once

#include <orvane/lab.h>
#include <orvane/lab_json.h>

#include <ostream>
#include <string>
#include <vector>

namespace OrvaneTest {

constexpr unsigned kSetupProgram = 0x2FFFFFF0;
constexpr unsigned kMdioProgram = 0x2FFFFFF2;

// One call of version 1 of a program. The members of the argument are compared in wire order.
struct WireCall {
    unsigned program;
    unsigned procedure;
    nlohmann::ordered_json arguments;
};

bool operator==(const WireCall& left, const WireCall& right);
std::ostream& operator<<(std::ostream& out, const WireCall& call);

// A call of the MDIO program.
WireCall mdioCall(unsigned procedure, nlohmann::ordered_json arguments);

// The recorded requests of `program` ("mdio", "setup"; empty: of all), in the order in which they came. One
// of another version than 1 or by another transport than its program's (TCP for setup and adc, else UDP)
// counts as a call of program 0.
std::vector<WireCall> wireCalls(const OrvaneSim::Board& board, const std::string& program = "");

} // namespace OrvaneTest
