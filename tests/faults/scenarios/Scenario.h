// A fault run is a list of scenarios; each can be run alone, small or in full.
#pragma once

#include "tests/faults/scenarios/Report.h"

#include <cstdint>
#include <vector>

namespace OrvaneFaults {

struct Run {
    Report& report;
    std::uint64_t seed;
    bool full; // the sizes whose figures are published; otherwise seconds of everything

    // The size of something, by the kind of run.
    template <class Number>
    Number size(Number inFull, Number small) const {
        return full ? inFull : small;
    }
};

struct Scenario {
    const char* name;  // on the command line
    const char* claim; // what holds when it passes
    bool computes;     // all the time; otherwise it waits for most of it
    void (*run)(Run&);
};

// In the order in which they are begun.
const std::vector<Scenario>& scenarios();

void loss(Run& run);
void duplicatesAndOrder(Run& run);
void lateReplies(Run& run);
void strayDatagrams(Run& run);
void deadBoards(Run& run);
void refusals(Run& run);
void bounds(Run& run);
void races(Run& run);
void manyBoards(Run& run);
void exhaustion(Run& run);
void rackFaults(Run& run);

} // namespace OrvaneFaults
