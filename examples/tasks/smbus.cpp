// Reads one PHY over MDIO and over SMBus, where it is the device of port 10 and up.
#include <cstdio>
#include <exception>
#include <orvane/orvane.hpp>

int main() {
    constexpr unsigned phy = 3;
    constexpr unsigned address = 0x80005000;
    try {
        Orvane::HWInterface boards;
        const auto mdio = static_cast<unsigned>(boards.deviceNumber("OV0001:0", ""));
        const auto smbus = static_cast<unsigned>(boards.deviceNumber("OV0001:10", "")); // I2C bus 0
        boards.openAdapter(mdio);
        boards.openAdapter(smbus);

        boards.writeAdapter(mdio, phy, 1, 0xC040, 0x5EB5);
        boards.write32Adapter(mdio, phy, address, 0xB0A710AD);
        std::printf("16 bits          0x%04X\n", boards.readAdapter(smbus, phy, 1, 0xC040));
        boards.setDeviceParameters(smbus, 0, Orvane::Paged16);
        std::printf("32 bits, paged   0x%08X\n", boards.read32Adapter(smbus, phy, address));
        boards.setDeviceParameters(smbus, 0, Orvane::Direct32);
        std::printf("32 bits, direct  0x%08X\n", boards.read32Adapter(smbus, phy, address));
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
