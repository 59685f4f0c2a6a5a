// Reaches one PHY over MDIO and over SMBus, where it is the device of port 10.
#include <cstdio>
#include <exception>
#include <orvane/rack.hpp>

int main() {
    try {
        Orvane::Rack rack;
        const Orvane::Phy mdio = rack.open("OV0001:0").phy(3);
        const Orvane::Phy smbus = rack.open("OV0001:10").phy(3); // I2C bus 0
        const Orvane::RegisterAddress word = Orvane::ext32(0x80005000);
        mdio.write({1, 0xC040}, 0x5EB5);
        mdio.write(word, 0xB0A710AD);
        std::printf("16 bits          0x%04X\n", smbus.read({1, 0xC040}));
        std::printf("32 bits, paged   0x%08X\n", smbus.read(word));
        smbus.setSmbusProtocol(Orvane::SmbusProtocol::Direct32);
        std::printf("32 bits, direct  0x%08X\n", smbus.read(word));
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
