// Steps as frames and as lines of a log.
#include "tests/support/capi/Steps.h"

#include <cstdio>

namespace OrvaneTest {

Steps operator+(Steps first, const Steps& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::vector<std::string> framesOf(const Frame& phy, const Steps& steps) {
    std::vector<std::string> frames;
    frames.reserve(steps.size());
    for (const Step& step : steps)
        frames.push_back(step.write ? phy.write(step.mmd, step.reg, step.value)
                                    : phy.read(step.mmd, step.reg));
    return frames;
}

std::string logOf(unsigned adapter, unsigned phy, const Steps& steps) {
    std::string log;
    for (const Step& step : steps) {
        char line[64];
        std::snprintf(line, sizeof line, "%u,%u,%s,%02X,%04X,%04X\n", adapter, phy, step.write ? "MW" : "MR",
                      step.mmd, step.reg, step.value);
        log += line;
    }
    return log;
}

Steps mailboxWrite(unsigned mmd, unsigned address, unsigned value) {
    return {wrote(30, 0xC47F, 0), wrote(30, 0xC47C, address), wrote(30, 0xC47D, value),
            wrote(30, 0xC47E, 0x200U | mmd), read(30, 0xC47F, 1)};
}

Steps mailboxRead(unsigned mmd, unsigned address, unsigned value) {
    return {wrote(30, 0xC47F, 0), wrote(30, 0xC47C, address), wrote(30, 0xC47E, 0x100U | mmd),
            read(30, 0xC47F, 1), read(30, 0xC47D, value)};
}

} // namespace OrvaneTest
