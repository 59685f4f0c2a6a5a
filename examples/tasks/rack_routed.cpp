// Reaches a SerDes register by the firmware and by the bridge.
#include <cstdio>
#include <exception>
#include <orvane/rack.hpp>

int main() {
    try {
        Orvane::Rack rack;
        const Orvane::Phy phy = rack.open("OV0001:0").phy(3);
        phy.routed().write({27, 0x0010}, 0x1234); // by the firmware
        Orvane::RegisterPaths paths;
        paths.byFirmware.serdes = false; // by the bridge
        std::printf("0x%04X\n", phy.routed(paths).read({27, 0x0010}));
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
