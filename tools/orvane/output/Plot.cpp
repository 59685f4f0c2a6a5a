// Values as characters of a grid.
#include "tools/orvane/output/Plot.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

// The row, from the top, of a value.
std::size_t rowOf(double value, const Axis& axis) {
    const double share = (value - axis.lowest) / (axis.highest - axis.lowest);
    const double row = (1 - std::clamp(share, 0.0, 1.0)) * (axis.rows - 1);
    return static_cast<std::size_t>(std::lround(row));
}

} // namespace

std::string plot(const std::vector<double>& values, const Axis& axis, double level) {
    const std::size_t columns = std::min<std::size_t>(values.size(), axis.columns);
    std::vector<std::string> lines(axis.rows, std::string(columns, ' '));
    if (!std::isnan(level))
        for (std::size_t column = 0; column < columns; column += 2)
            lines[rowOf(level, axis)][column] = '-';
    for (std::size_t column = 0; column < columns; ++column) {
        const auto at = [&](std::size_t place) {
            return values.begin() + static_cast<std::ptrdiff_t>(place * values.size() / columns);
        };
        const auto [lowest, highest] = std::minmax_element(at(column), at(column + 1));
        for (std::size_t row = rowOf(*highest, axis); row <= rowOf(*lowest, axis); ++row)
            lines[row][column] = '*';
    }

    std::string text;
    for (std::size_t row = 0; row < lines.size(); ++row) {
        const double share = 1 - static_cast<double>(row) / (axis.rows - 1);
        const double value = axis.lowest + share * (axis.highest - axis.lowest);
        const std::string& line = lines[row];
        text += fmt::format("{:8.{}f} |{}\n", value, axis.decimals,
                            line.substr(0, line.find_last_not_of(' ') + 1));
    }
    return text;
}

} // namespace OrvaneTool
