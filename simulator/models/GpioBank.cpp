// Levels of the general-purpose lines.
#include "simulator/models/GpioBank.h"

namespace OrvaneSim {

bool GpioBank::level(std::size_t number) const {
    const Line& line = lines_[number];
    if (line.enabled)
        return line.output;
    if (line.source < kLines && lines_[line.source].enabled)
        return lines_[line.source].output;
    return line.outside;
}

void GpioBank::setDefault(std::size_t line) {
    lines_[line].output = false;
    lines_[line].enabled = false;
}

void GpioBank::reset() {
    for (std::size_t line = 0; line < kLines; ++line)
        setDefault(line);
}

} // namespace OrvaneSim
