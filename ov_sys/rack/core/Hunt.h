// A search for boards that are missing, by who has other things to do.
#pragma once

#include "ov_sys/rack/search/Search.h"
#include "ov_sys/rack/values/Discovery.h"

#include <functional>
#include <set>
#include <string>
#include <utility>

namespace Orvane::RackCore {

// Ends when all have answered, or after a second. One thread; never blocks.
class Hunt {
public:
    // `found` is told of each board as soon as it answers.
    Hunt(std::set<std::string> names, std::function<void(const FoundBoard&)> found)
        : names_(std::move(names)),
          found_(std::move(found)),
          search_([this](const RackSearch::Answer& answer) { return take(answer); }) {}
    Hunt(const Hunt&) = delete;
    Hunt& operator=(const Hunt&) = delete;

    // As of Search; true at the end.
    bool step() { return search_.step(limits_); }
    std::size_t watch(pollfd* entries) const noexcept { return search_.watch(entries); }
    RackLink::TimePoint wake() const noexcept { return search_.wake(limits_); }

private:
    bool take(const RackSearch::Answer& answer) {
        for (const FoundBoard& one : RackSearch::boardsOf(answer))
            if (names_.erase(one.serial) != 0)
                found_(one);
        return names_.empty();
    }

    std::set<std::string> names_;
    const std::function<void(const FoundBoard&)> found_;
    const Within within_ = within(std::chrono::seconds(1));
    RackLink::Limits limits_{within_};
    RackSearch::Search search_;
};

} // namespace Orvane::RackCore
