// How problems become one text, and one exception.
#include "ov_sys/maps/Problems.h"

#include <algorithm>

namespace Orvane {

std::string MapProblem::text() const {
    std::string place = file;
    if (line > 0)
        place.append(place.empty() ? "line " : ":").append(std::to_string(line));
    if (!place.empty())
        place += ": ";
    if (!path.empty())
        place += path + ": ";
    return place + message;
}

MapError::MapError(std::string message)
    : MapError(std::vector<MapProblem>{{{}, 0, {}, std::move(message)}}) {}

MapError::MapError(std::vector<MapProblem> problems) : problems_(std::move(problems)) {
    for (const MapProblem& each : problems_)
        text_.append(text_.empty() ? "" : "\n").append(each.text());
}

MapError::~MapError() = default;

const char* MapError::what() const noexcept {
    return text_.c_str();
}

namespace Maps {

std::string printable(std::string_view text) {
    constexpr std::size_t kLongest = 80;
    std::string shown(text.substr(0, kLongest));
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return text.size() > kLongest ? shown + "..." : shown;
}

void Problems::keep(Position position, std::string message) {
    list_.push_back({std::move(position.file), position.line, std::move(position.path), std::move(message)});
}

void Problems::throwIfAny() {
    if (list_.empty())
        return;
    if (more_ > 0)
        list_.push_back({{}, 0, {}, "and " + std::to_string(more_) + " more"});
    throw MapError(std::move(list_));
}

} // namespace Maps
} // namespace Orvane
