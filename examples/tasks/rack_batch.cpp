// Writes and reads many registers of a PHY in few calls.
#include <cstdio>
#include <exception>
#include <orvane/rack.hpp>
#include <vector>

int main() {
    try {
        Orvane::Rack rack;
        const Orvane::Phy phy = rack.open("OV0001:0").phy(3);
        Orvane::Batch batch;
        for (std::uint32_t i = 0; i < 64; ++i)
            batch.write({30, 0xC100 + i}, 0xC000 + i);
        const auto last = batch.read({30, 0xC13F});
        const auto all = batch.read({30, 0xC100}, 64);
        const Orvane::BatchResult done = phy.run(batch);
        std::printf("%zu operations, 0x%04X\n", done.size(), done[last]);
        const std::vector<std::uint32_t> values = done[all];
        std::printf("0x%04X to 0x%04X\n", values.front(), values.back());
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
