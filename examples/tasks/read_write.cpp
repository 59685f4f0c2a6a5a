// Reads and writes registers of a PHY in all three forms: Clause 45, Clause 22 and the 32-bit extension.
#include <cstdio>
#include <exception>
#include <orvane/orvane.hpp>

int main(int argc, char** argv) {
    constexpr unsigned phy = 3;
    constexpr unsigned mmd = 1;
    try {
        Orvane::HWInterface boards; // closes every session when it goes
        const char* name = argc > 1 ? argv[1] : "OV0001:0";
        const auto adapter = static_cast<unsigned>(boards.deviceNumber(name, "")); // throws NoDevice
        boards.openAdapter(adapter);

        std::printf("Clause 45        identifier %04X%04X\n", boards.readAdapter(adapter, phy, mmd, 2),
                    boards.readAdapter(adapter, phy, mmd, 3));
        boards.writeAdapter(adapter, phy, mmd, 0xC010, 0x1234);
        std::printf("Clause 45        MMD 1 register 0xC010 is 0x%04X\n",
                    boards.readAdapter(adapter, phy, mmd, 0xC010));
        boards.writeAdapter_c22(adapter, phy, 16, 0x2210);
        std::printf("Clause 22        register 16 is 0x%04X\n", boards.readAdapter_c22(adapter, phy, 16));
        boards.write32Adapter(adapter, phy, 0x001E0100, 0x5A445B5A);
        std::printf("32-bit extension address 0x001E0100 is 0x%08X\n",
                    boards.read32Adapter(adapter, phy, 0x001E0100));
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
