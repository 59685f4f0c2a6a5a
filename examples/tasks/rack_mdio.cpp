// Walks through words of the 32-bit extension by their address register, and sets switches of the bus.
#include <cstdio>
#include <exception>
#include <orvane/rack.hpp>

int main() {
    try {
        Orvane::Rack rack;
        const Orvane::Phy phy = rack.open("OV0001:0").phy(3);
        const Orvane::MdioBus mdio = phy.mdio();
        mdio.setPreambleCount(32);
        mdio.flush();
        phy.write(Orvane::ext32(0x1000), 1); // sets the address
        mdio.writeNext(2);
        mdio.writeNext(3);
        std::printf("here   %u\n", mdio.readCurrent());
        std::printf("0x1004 %u\n", phy.read(Orvane::ext32(0x1004)));
        std::printf("next   %u\n", mdio.readNext()); // of 0x1004
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
