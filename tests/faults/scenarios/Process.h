// What this process holds, so that a run can show that it gives back what it took.
#pragma once

#include "tests/faults/scenarios/Report.h"

#include <cstddef>
#include <string>

namespace OrvaneFaults {

struct Holdings {
    std::size_t descriptors = 0;
    std::size_t threads = 0;
    std::size_t heapBytes = 0;     // given out by malloc; 0 under a sanitizer, whose malloc is another
    std::size_t residentBytes = 0; // of the process

    static Holdings now();
};

// States that since `before` no descriptor, no thread and at most `slackBytes` of heap were added; what
// boards in this process have yet to close is waited for.
void expectFlat(Report& report, const std::string& during, const Holdings& before,
                std::size_t slackBytes = 256 * 1024);

} // namespace OrvaneFaults
