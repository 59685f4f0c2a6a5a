// Reads a board's EEPROM over I2C and writes to it.
#include <cstdio>
#include <exception>
#include <orvane/rack.hpp>
#include <string>
#include <vector>

int main() {
    try {
        Orvane::Rack rack;
        const Orvane::I2cBus i2c = rack.open("OV0001:0").phy(3).i2c();
        // Bus 0, device 0x50: from register 0 on, whose number has one byte.
        const std::vector<std::uint8_t> serial = i2c.readRegister(0, 0x50, 0, 1, 6);
        std::printf("serial   %s\n", std::string(serial.begin(), serial.end()).c_str());
        i2c.write(0, 0x50, {0x40, 0xCA, 0xFE}); // the register number goes first
        const std::vector<std::uint8_t> bytes = i2c.readRegister(0, 0x50, 0x40, 1, 2);
        std::printf("written  %02X%02X\n", bytes.at(0), bytes.at(1));
        // Several transfers, on any bus, in one call.
        const std::vector<std::uint8_t> both = i2c.readBlock({{0, 0x50, 0, 1, 2}, {0, 0x50, 0x40, 1, 2}});
        std::printf("block    %c%c %02X%02X\n", both.at(0), both.at(1), both.at(2), both.at(3));
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
