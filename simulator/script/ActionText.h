// Actions as JSON objects, the same for the command line, lab files and time lines.
#pragma once

#include "simulator/board/Action.h"
#include "simulator/script/JsonReader.h"

#include <string>
#include <vector>

namespace OrvaneSim {

// Name, members and effect of an action that is no fault.
struct ActionForm {
    const char* name;
    // Its members as a user may write them, for help texts.
    const char* members;
    const char* effect;
    // Members that the command line takes without their names, in this order.
    std::vector<const char*> unnamed;
};

// Every action but the faults, which stand in `faultForms`.
const std::vector<ActionForm>& actionForms();

// Members that the command line takes without their names for an action, in order; none for a name that is
// not known.
std::vector<std::string> unnamedMembers(const std::string& action);

// Reads the members of an action whose name has been read already. Throws ScriptError for a name that there
// is not and for members that are wrong; whether all members were asked for is the caller's to check.
Action readAction(const std::string& name, ObjectReader& object);

// Reads an action whose name is the member "action".
Action readAction(ObjectReader& object);

// A fault as an object that `readAction` reads.
Json faultText(const Fault& fault);

// A register and its value as an object, numbers in hexadecimal; and back.
Json registerText(const RegisterValue& value);
RegisterValue readRegister(ObjectReader& object, bool withValue = true);

} // namespace OrvaneSim
