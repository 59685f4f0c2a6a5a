// Drives a general-purpose line and sees it at the input that the board wires to it.
#include <cstdio>
#include <exception>
#include <orvane/rack.hpp>

int main() {
    try {
        Orvane::Rack rack;
        const Orvane::GpioLines gpio = rack.open("OV0001:0").phy(3).gpio();
        gpio.enableOutput({0}, {1});
        for (const bool level : {true, false}) {
            gpio.write({0}, {level});
            std::printf("line 16 is %d\n", gpio.read({16}).at(0));
        }
        gpio.setDefault({0});
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
