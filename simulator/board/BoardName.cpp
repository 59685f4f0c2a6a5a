// Names of a board.
#include "simulator/board/BoardName.h"

#include <algorithm>
#include <strings.h>

namespace OrvaneSim {

std::string BoardName::line() const {
    std::string text = firstWord;
    for (const std::string& device : devices)
        text += " " + device;
    return text;
}

bool BoardName::answersTo(const std::string& word) const {
    const auto same = [&](const std::string& name) { return ::strcasecmp(name.c_str(), word.c_str()) == 0; };
    return word.empty() || same(serial) || std::any_of(devices.begin(), devices.end(), same);
}

} // namespace OrvaneSim
