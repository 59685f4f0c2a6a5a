// Opening and closing of many ports together.
#include "ov_sys/rack/core/PortState.h"
#include "ov_sys/rack/core/RackState.h"
#include "ov_sys/rack/Flight.h"
#include "ov_sys/rack/link/Drive.h"
#include "ov_sys/rack/link/PortName.h"
#include "ov_sys/rack/Rack.h"
#include "ov_sys/rack/search/Search.h"

#include <algorithm>
#include <fnmatch.h>
#include <set>
#include <utility>

namespace Orvane {

using RackLink::Limits;
using RackLink::PortName;
using RackLink::Trouble;

namespace {

bool isPattern(const std::string& name) {
    return name.find_first_of("*?[") != std::string::npos;
}

// What is left of a call's time.
Within leftOf(const Limits& limits) {
    Within left = limits.within;
    left.time = std::max<std::chrono::nanoseconds>(limits.end - RackLink::Clock::now(), {});
    return left;
}

// The ports of one call, from names to handles.
class Openings {
public:
    Openings(RackCore::RackState& rack, Access access, const Within& within)
        : rack_(rack), access_(access), limits_(within) {}

    // Replaces patterns by what answers to them.
    void expand(const std::vector<std::string>& names) {
        Discovery found;
        Trouble trouble;
        if (std::any_of(names.begin(), names.end(), isPattern)) {
            Within brief = limits_.within;
            brief.time = std::min<std::chrono::nanoseconds>(brief.time, std::chrono::seconds(1));
            Limits some(brief);
            trouble = rack_.search(some, found);
        }
        for (const std::string& name : names)
            if (!isPattern(name))
                add(name);
            else if (!match(PortName::upper(name), found))
                fail(name, RackLink::notFound(trouble ? trouble : FailureKind::NoSuchPort, "open", {}));
    }

    // Opens the sessions of those PHYs: on boards that are known, and on the others as they are found.
    void open(const std::vector<unsigned>& phys) {
        std::set<std::string> unknown;
        for (const Wanted& one : wanted_)
            if (!attach(one, phys))
                unknown.insert(one.port.board);
        const Trouble trouble = unknown.empty() ? Trouble{} : search(std::move(unknown), phys);
        for (const Wanted& one : wanted_)
            if (OpenedPort& result = results[one.result]; !result.port)
                result.failure =
                    RackLink::notFound(trouble ? trouble : FailureKind::NoSuchPort, "open", one.port);
        flight_.wait();
        for (const auto& [result, opening] : openings_)
            if (opening.failure())
                note(results[result], *opening.failure());
    }

    std::vector<OpenedPort> results;

private:
    struct Wanted {
        PortName port;
        std::size_t result;
    };

    // False when nobody knows where the board is.
    bool attach(const Wanted& one, const std::vector<unsigned>& phys) {
        std::shared_ptr<RackCore::Board> board = rack_.find(one.port.board);
        if (!board)
            return false;
        OpenedPort& result = results[one.result];
        result.port = Port(std::make_shared<RackCore::PortState>(std::move(board), one.port.port, access_));
        for (const unsigned id : phys)
            try {
                openings_.emplace_back(one.result, flight_.open(result.port->phy(id), leftOf(limits_)));
            } catch (const Failure& failure) { // a PHY that the port cannot have
                note(result, failure);
            }
        return true;
    }

    Trouble search(std::set<std::string> names, const std::vector<unsigned>& phys) {
        RackSearch::Search search([&](const RackSearch::Answer& answer) {
            const std::vector<FoundBoard> boards = RackSearch::boardsOf(answer);
            rack_.learn(boards);
            for (const FoundBoard& board : boards)
                if (names.erase(board.serial) != 0)
                    for (const Wanted& one : wanted_)
                        if (one.port.board == board.serial)
                            attach(one, phys);
            return names.empty();
        });
        while (!search.step(limits_)) {
            flight_.step();
            pollfd entries[RackSearch::Search::kMostWatched + 2] = {{flight_.descriptor(), POLLIN, 0}};
            const std::size_t count = 1 + search.watch(entries + 1);
            RackLink::waitFor(entries, count, limits_, search.wake(limits_));
        }
        return search.trouble();
    }

    static void note(OpenedPort& port, const Failure& failure) {
        if (!port.failure)
            port.failure = failure;
    }

    void fail(const std::string& name, const Failure& failure) {
        results.push_back({name, std::nullopt, failure});
    }

    void add(const std::string& name) {
        try {
            wanted_.push_back({PortName::parse(name, "open"), results.size()});
            results.push_back({name, std::nullopt, std::nullopt});
        } catch (const Failure& failure) {
            fail(name, failure);
        }
    }

    // Whether any port that answered is so called.
    bool match(const std::string& pattern, const Discovery& found) {
        bool any = false;
        for (const FoundBoard& board : found.boards)
            for (const unsigned port : board.ports) {
                const std::string name = board.serial + ":" + std::to_string(port);
                if (fnmatch(pattern.c_str(), name.c_str(), 0) != 0)
                    continue;
                any = true;
                const auto same = [&](const OpenedPort& one) { return PortName::upper(one.name) == name; };
                if (std::none_of(results.begin(), results.end(), same))
                    add(name);
            }
        return any;
    }

    RackCore::RackState& rack_;
    const Access access_;
    Limits limits_;
    Flight flight_;
    std::vector<Wanted> wanted_;
    std::vector<std::pair<std::size_t, Pending<bool>>> openings_; // of which result
};

} // namespace

std::vector<OpenedPort> Rack::openAll(const std::vector<std::string>& names,
                                      const std::vector<unsigned>& phys, Access access,
                                      const Within& within) {
    Openings openings(*state_, access, within);
    openings.expand(names);
    openings.open(phys);
    return std::move(openings.results);
}

std::vector<Failure> Rack::closeAll(const Within& within) {
    Flight flight;
    std::vector<Pending<bool>> closings;
    for (const std::shared_ptr<RackCore::Board>& board : state_->all())
        for (std::shared_ptr<RackCore::OpenSession>& session : board->sessions())
            closings.push_back(flight.close(Phy(std::move(session)), within));
    flight.wait();
    std::vector<Failure> failures;
    for (const Pending<bool>& one : closings)
        if (one.failure())
            failures.push_back(*one.failure());
    return failures;
}

} // namespace Orvane
