// What a load finds wrong, collected so that everything is told at once.
#pragma once

#include <orvane/maps.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvane::Maps {

// Where in a file something stands.
struct Position {
    std::string file;
    unsigned line = 0;
    std::string path;
};

// A name for a message: cut at 80 bytes, with '?' for what is no printable ASCII.
std::string printable(std::string_view text);

// Keeps the first problems and counts the rest.
class Problems {
public:
    static constexpr std::size_t kKept = 200;

    // Takes anything that has a position(), or a Position; makes it and the message only as long as they are
    // kept.
    template <class Place>
    void add(const Place& place, std::string message) {
        if (list_.size() < kKept)
            keep(positionOf(place), std::move(message));
        else
            ++more_;
    }
    bool empty() const { return list_.empty(); }
    // Whether another problem would only be counted.
    bool full() const { return list_.size() == kKept; }
    // Throws MapError with them, unless there are none.
    void throwIfAny();

private:
    static Position positionOf(const Position& place) { return place; }
    template <class Place>
    static Position positionOf(const Place& place) {
        return place.position();
    }
    void keep(Position position, std::string message);

    std::vector<MapProblem> list_;
    std::size_t more_ = 0;
};

} // namespace Orvane::Maps
