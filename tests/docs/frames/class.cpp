// Around a fragment that uses the class interface: `boards`, `adapter` and `session` are those of OV0001:0.
#include <chrono>
#include <cstdio>
#include <exception>
#include <iostream>
#include <orvane/orvane.hpp>
#include <string>
#include <thread>
#include <vector>

static void sample(Orvane::HWInterface& boards, unsigned adapter, Orvane::SessionWrapper session) {
    (void)boards, (void)adapter, (void)session;
    // SAMPLE
}

int main() {
    try {
        Orvane::HWInterface boards;
        if (!boards.open("OV0001:0"))
            return 2;
        const auto adapter = static_cast<unsigned>(boards.deviceIndex("OV0001:0"));
        sample(boards, adapter, boards.getPhySession("OV0001:0", 3));
        return 0;
    } catch (const std::exception& problem) {
        std::cerr << "failed: " << problem.what() << '\n';
        return 1;
    }
}
