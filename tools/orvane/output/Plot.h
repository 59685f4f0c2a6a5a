// Curves made of characters.
#pragma once

#include <string>
#include <vector>

namespace OrvaneTool {

struct Axis {
    double lowest;
    double highest;
    unsigned columns; // of the curve; each shows the range of its values when there are more than that
    unsigned rows;
    int decimals; // of the numbers beside it
};

// Lines of text: the values from left to right, with the axis on the left. Values outside are at the edge.
// `level`, when it is not NaN, is a dashed line.
std::string plot(const std::vector<double>& values, const Axis& axis, double level);

} // namespace OrvaneTool
