// Does what the control socket is asked for.
#pragma once

#include "simulator/lab/Lab.h"
#include "simulator/script/JsonReader.h"

#include <string>
#include <vector>

namespace OrvaneSim {

// A verb of the control socket that is no action, for help texts.
struct QueryForm {
    const char* name;
    const char* members;
    const char* effect;
    std::vector<const char*> unnamed;
};
const std::vector<QueryForm>& queryForms();

// Asks and changes the boards of a lab. One request at a time; any thread but the lab's.
class LabControl {
public:
    // `lab` must outlive the object.
    explicit LabControl(Lab& lab) : lab_(lab) {}

    // Answers one line of the protocol with one: {"ok": true} and what was asked for as "result", or
    // {"ok": false} and the reason as "error". Never throws.
    std::string answer(const std::string& line);

private:
    Json perform(const Json& request);
    std::vector<Board*> meant(const std::string& board);

    Lab& lab_;
};

} // namespace OrvaneSim
