// Tells what happens to a session, and what was counted of its calls.
#include <cstdio>
#include <exception>
#include <iostream>
#include <orvane/rack.hpp>

int main() {
    try {
        Orvane::BoardCounters counted;
        {
            Orvane::Rack rack;
            rack.onEvent([](const Orvane::Event& event) {       // on the rack's own thread
                if (event.level != Orvane::Event::Level::Debug) // repeats
                    std::cout << event << '\n';
            });
            const Orvane::Phy phy = rack.open("OV0001:0").phy(3);
            for (unsigned i = 0; i < 100; ++i)
                phy.read({1, 2});
            counted = rack.counters().at("OV0001");
            phy.close();
        } // the last events have come
        const Orvane::ProgramCounters& mdio = counted.programs.at("mdio");
        std::printf("%lu of %lu calls succeeded\n", mdio.succeeded, mdio.calls);
        std::printf("half of them within %s\n",
                    mdio.latency.percentile(50).count() < 100000 ? "0.1 s" : "more");
        return 0;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "failed: %s\n", problem.what());
        return 1;
    }
}
