// Keeps as many questions under way as descriptors allow, until each has an end.
#include "ov_sys/rack/search/Asking.h"

#include "ov_sys/Interface/discovery/DiscoveryProtocol.h"
#include "ov_sys/rack/link/Drive.h"
#include "ov_sys/rack/link/Endpoint.h"
#include "ov_sys/rack/link/Probe.h"

#include <algorithm>
#include <list>

namespace Orvane::RackSearch {
namespace {

using namespace RackLink;

constexpr std::size_t kTogether = 256;
constexpr std::chrono::seconds kPatience{2};

struct Question {
    Question(in_addr_t asked, TimePoint now)
        : whom(asked), end(now + kPatience), probe(endpoint(asked, DiscoveryProtocol::kPort)) {}

    in_addr_t whom;
    TimePoint end;
    Probe probe;
};

// Waits for an answer, or for the first of them to have waited long enough.
void waitForOne(const std::list<Question>& open, const Limits& limits) {
    std::vector<pollfd> entries;
    entries.reserve(open.size() + 1);
    for (const Question& one : open)
        entries.push_back(one.probe.watch());
    const std::size_t count = entries.size();
    entries.push_back({});
    waitFor(entries.data(), count, limits, std::min(limits.end, open.front().end));
}

} // namespace

Trouble askAt(const std::vector<in_addr_t>& addresses, const std::function<void(const Answer&)>& told,
              Limits& limits) {
    std::list<Question> open;
    const auto ended = [&](Question& one) {
        const Probe::State state = one.probe.step();
        if (state == Probe::State::Answered)
            told({one.whom, one.probe.answer()});
        return state != Probe::State::Waiting || limits.now >= one.end;
    };
    for (auto next = addresses.begin(); next != addresses.end() || !open.empty();) {
        limits.now = Clock::now();
        if (limits.cancelled())
            return FailureKind::Cancelled;
        if (limits.now >= limits.end)
            break;
        for (; next != addresses.end() && open.size() < kTogether; ++next)
            open.emplace_back(*next, limits.now);
        open.remove_if(ended);
        if (!open.empty())
            waitForOne(open, limits);
    }
    return {};
}

} // namespace Orvane::RackSearch
