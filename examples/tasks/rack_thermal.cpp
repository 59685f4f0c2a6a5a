// Heats a channel, waits until it has settled, and lets it go whatever happens.
#include <cstdio>
#include <exception>
#include <orvane/rack.hpp>

using namespace std::chrono_literals;

int main() {
    try {
        Orvane::Rack rack;
        const Orvane::ThermalControl thermal = rack.open("OV0001:0").phy(3).thermal();
        const struct LetGo {
            const Orvane::ThermalControl& thermal;
            ~LetGo() {
                try {
                    thermal.disconnect(); // ends control, too
                } catch (const Orvane::Failure& failure) {
                    std::fprintf(stderr, "still controlled: %s\n", failure.what());
                }
            }
        } letGo{thermal};
        thermal.connect();
        thermal.setTemperature(0, 85, 1); // 1: begin
        const float celsius = thermal.settledTemperature(0, Orvane::within(10min));
        std::printf("settled at %.0f\n", celsius);
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
