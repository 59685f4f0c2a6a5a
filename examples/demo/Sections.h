// The sections of the demo, in the order in which it prints them. Each needs the ports of the one before.
#pragma once

#include "examples/demo/Report.h"

#include <optional>
#include <string>
#include <vector>

namespace Demo {

// A device of the library's list: one port of one board. The adapter is its position in the list.
struct Port {
    unsigned adapter = 0;
    std::string name;
    std::string address;
};

// The PHY on each port that the demo talks to.
constexpr unsigned kPhy = 3;

// Asks the local networks which boards there are; with an `address`, that address only.
std::vector<Port> listDevices(Report& report, const std::string& address);

// Opens the ports by name and reads the identifier registers of a PHY, which opens its session.
void openPorts(Report& report, const std::vector<Port>& ports);

void clause45(Report& report, const Port& port);
void clause22(Report& report, const Port& port);
void extension32(Report& report, const Port& port);

// Runs of writes and reads that the board executes in one round trip, in the three frame formats.
void mixedBlocks(Report& report, const Port& port);

// Two ports of one board, first in turn and then from a thread each.
void twoPorts(Report& report, const Port& first, const Port& second);

// GPIO, I2C, JTAG, ADC, thermal and command services of the board.
void boardServices(Report& report, const Port& port);

// The device by which the PHYs of an MDIO port are reached over SMBus; none when the board has none.
std::optional<Port> smbusSideOf(const Port& mdio, const std::vector<Port>& ports);

// A PHY's registers, written over MDIO and read by both ways; in both 32-bit protocols over SMBus.
void smbus(Report& report, const Port& mdio, const Port& smbus);

void closeAll(Report& report, const std::vector<Port>& ports);

} // namespace Demo
