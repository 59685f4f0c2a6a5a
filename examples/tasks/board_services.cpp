// What a board has beside its PHYs: an EEPROM, lines, a JTAG chain, a temperature forcing unit, commands.
#include <cstdio>
#include <exception>
#include <orvane/orvane.hpp>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;
using Session = Orvane::SessionWrapper;

// Byte registers (format 1) 0 to 5 of the device at 0x50 on bus 0.
void readEeprom(Session session) {
    const Bytes serial = Orvane::i2c.readReg(session, 0, 0x50, 0, 1, 6);
    std::printf("i2c      %s\n", std::string(serial.begin(), serial.end()).c_str());
}

// The board wires line 0 to line 16.
void driveLine(Session session) {
    Orvane::GPIO::GPIO gpio;
    gpio.enableOutput(session, {0}, {1});
    gpio.set(session, {0}, {1});
    std::printf("gpio     line 16 is %d\n", gpio.read(session, {16}).at(0));
    gpio.setDefault(session, {0});
}

// TMS takes the chain to Shift-DR; 32 data bits come out with the lowest first.
void readIdCode(Session session) {
    const std::string zeros(32, '0');
    const auto results = Orvane::JTAG::JTAG().shiftMulti(
        session, {"", zeros}, {"111110100", std::string(31, '0') + "1"}, {"", "10"});
    const std::string bits(results[1].rbegin(), results[1].rend());
    std::printf("jtag     id code 0x%08lX\n", std::stoul(bits, nullptr, 2));
}

void heat(Session session) {
    Orvane::Thermal::Thermal thermal;
    thermal.connect(session);
    thermal.setTemperature(session, 0, 85, 1);
    const auto reached = static_cast<double>(thermal.getSettledTemperature(session, 0));
    std::printf("thermal  %s\n", reached > 84 && reached < 86 ? "settled at 85" : "not settled");
    thermal.stopControl(session);
    thermal.disconnect(session);
}

void runCommand(Session session) {
    Orvane::CommandResult result{};
    Orvane::Setup::Setup().runCommand(session, "hostname", 5, result);
    std::printf("command  exit code %d, %s", result.exitCode, result.output.c_str());
}

} // namespace

int main() {
    try {
        Orvane::HWInterface boards;
        if (!boards.open("OV0001:0"))
            throw Orvane::Exceptions::NoDevice();
        const Session session(boards.getPhySession("OV0001:0", 3));
        readEeprom(session);
        driveLine(session);
        readIdCode(session);
        heat(session);
        runCommand(session);
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
