// Scenarios that run at the same time, for most of them do little but wait.
#pragma once

#include "tests/faults/scenarios/Scenario.h"

#include <functional>
#include <vector>

namespace OrvaneFaults {

// Runs each scenario in a process of its own, which `run` is to give a network and whose exit status it
// returns: those that wait all at once, those that compute one after the other beside them. Shows what each
// said when it has ended, and returns how many did not end with status 0. To be called while this process
// has one thread and no children.
int runSideBySide(const std::vector<const Scenario*>& chosen, const std::function<int(const Scenario&)>& run);

} // namespace OrvaneFaults
