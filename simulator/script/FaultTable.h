// The names of faults, in one table for the command line, lab files, time lines and the documentation.
#pragma once

#include "simulator/board/Fault.h"

#include <cstdint>
#include <string>
#include <vector>

namespace OrvaneSim {

// What one named fault is made of.
struct FaultForm {
    const char* name;
    Fault::Kind kind;
    // Name of the member that sets the fault's value, null when it has none to set.
    const char* valueName;
    std::int64_t fallback; // the value when it is not said
    std::int64_t lowest;
    std::int64_t highest;
    // The program and procedure that it is for when none is said; null when the user may say.
    const char* program;
    const char* procedure;
    // What the board then does, for help texts.
    const char* effect;
};

// Every named fault, general ones first.
const std::vector<FaultForm>& faultForms();

// The form of a name, null when there is none.
const FaultForm* faultForm(const std::string& name);

// The general form of a kind.
const FaultForm& faultForm(Fault::Kind kind);

} // namespace OrvaneSim
