// Captures samples of an analogue input.
#include <cstdio>
#include <exception>
#include <orvane/rack.hpp>
#include <vector>

int main() {
    try {
        Orvane::Rack rack;
        const Orvane::AdcCapture adc = rack.open("OV0001:0").phy(3).adc();
        adc.initialize();
        adc.setChannelMask(1); // channel 0
        adc.start();
        const std::vector<std::uint8_t> samples = adc.data(8);
        adc.stop();
        for (const std::uint8_t sample : samples)
            std::printf("%d\n", sample);
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
