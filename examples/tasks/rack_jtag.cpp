// Reads the identification of the last device of a JTAG chain.
#include <cstdio>
#include <exception>
#include <orvane/rack.hpp>
#include <string>
#include <vector>

int main() {
    try {
        Orvane::Rack rack;
        const Orvane::JtagChain jtag = rack.open("OV0001:0").phy(3).jtag();
        // TMS takes the chain to Shift-DR; 32 bits come out, the lowest first.
        const std::string zeros(32, '0');
        const std::vector<std::string> results =
            jtag.shift({{"", "111110100", ""}, {zeros, std::string(31, '0') + "1", "10"}});
        const std::string bits(results[1].rbegin(), results[1].rend());
        std::printf("id code 0x%08lX\n", std::stoul(bits, nullptr, 2));
        std::printf("longest shift %u bytes\n", jtag.maxBytes());
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
