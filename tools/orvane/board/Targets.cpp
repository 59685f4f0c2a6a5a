// From names to ports, by one search.
#include "tools/orvane/board/Targets.h"

#include "tools/orvane/board/Boards.h"
#include "tools/orvane/board/DeviceNames.h"
#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fmt/format.h>
#include <map>
#include <set>
#include <utility>

namespace OrvaneTool {
namespace {

constexpr std::size_t kMostTold = 12;

class Finding {
public:
    Finding(Context& context, const std::vector<std::string>& names) : context_(context) {
        boards_ = look(names);
        for (const Orvane::FoundBoard& board : boards_.list)
            bySerial_[board.serial] = &board;
        for (const std::string& name : names)
            isPattern(name) ? addMatches(name) : add(name);
        const bool patterns = std::any_of(names.begin(), names.end(), isPattern);
        targets.doubt = patterns ? boards_.doubt : "";
    }

    Targets targets;

private:
    Boards look(const std::vector<std::string>& names) {
        std::set<std::string> missing;
        bool patterns = false;
        for (const std::string& name : names)
            isPattern(name) ? void(patterns = true) : void(missing.insert(takenApart(name).board));
        Search search;
        search.what = names.size() == 1 ? names.front() : "boards";
        // Whoever is named has longer to answer: the search ends with the last of them.
        search.time = context_.searchTime.value_or(std::chrono::seconds(patterns ? 1 : 5));
        if (!patterns)
            search.enough = [&](const Orvane::FoundBoard& board, std::size_t) {
                missing.erase(board.serial);
                return missing.empty();
            };
        return lookForBoards(context_, search);
    }

    void add(const std::string& name) {
        if (!seen_.insert(name).second)
            return;
        const auto found = bySerial_.find(takenApart(name).board);
        if (found == bySerial_.end())
            return refuse(name, absent());
        const Orvane::FoundBoard& board = *found->second;
        const unsigned port = takenApart(name).port;
        if (std::find(board.ports.begin(), board.ports.end(), port) == board.ports.end())
            return refuse(name, "there are " + portsOf(board));
        targets.list.push_back({name,
                                board.address,
                                placeOf(board, port),
                                context_.rack().open(name, accessFromEnvironment(), context_.within()),
                                {}});
    }

    void addMatches(const std::string& pattern) {
        bool any = false;
        for (const auto& [serial, board] : bySerial_)
            for (const unsigned port : board->ports)
                if (const std::string name = fmt::format("{}:{}", serial, port); matches(name, pattern)) {
                    add(name);
                    any = true;
                }
        if (!any)
            refuse(pattern, absent());
    }

    void refuse(const std::string& name, const std::string& why) {
        targets.list.push_back(
            {name, "", 0, std::nullopt,
             std::make_exception_ptr(Failure(fmt::format("{}: open: device not found; {}", name, why)))});
    }

    static std::string portsOf(const Orvane::FoundBoard& board) {
        return fmt::format("{}:{}", board.serial, fmt::join(board.ports, fmt::format(", {}:", board.serial)));
    }

    unsigned placeOf(const Orvane::FoundBoard& wanted, unsigned port) const {
        std::size_t place = 0;
        for (const Orvane::FoundBoard& board : boards_.list) {
            if (&board == &wanted)
                return static_cast<unsigned>(place + static_cast<std::size_t>(std::count_if(
                                                         board.ports.begin(), board.ports.end(),
                                                         [&](unsigned each) { return each < port; })));
            place += board.ports.size();
        }
        return 0;
    }

    // What to do about a board that did not answer.
    std::string absent() const {
        std::string known;
        std::size_t told = 0;
        for (const auto& [serial, board] : bySerial_)
            if (told++ < kMostTold)
                known += (known.empty() ? "" : ", ") + portsOf(*board);
        if (told > kMostTold)
            known += fmt::format(" and those of {} more boards", told - kMostTold);
        if (!known.empty())
            return "there are " + known;
        if (context_.addresses.empty())
            return "no board of that name answers on the local networks (--address asks one directly)";
        return fmt::format("no board answers at {}", fmt::join(context_.addresses, ", "));
    }

    Context& context_;
    Boards boards_;
    std::map<std::string, const Orvane::FoundBoard*> bySerial_;
    std::set<std::string> seen_;
};

} // namespace

Targets findTargets(Context& context, const std::vector<std::string>& names) {
    return std::move(Finding(context, names).targets);
}

Target findTarget(Context& context, const std::string& name) {
    const std::vector<std::string> names = deviceNames(name, context.settings().aliases);
    if (names.size() != 1 || isPattern(names.front()))
        throw UsageError(fmt::format("'{}': one device is wanted here", name));
    Target target = std::move(findTargets(context, names).list.front());
    if (target.problem)
        std::rethrow_exception(target.problem);
    return target;
}

Orvane::Access accessFromEnvironment() {
    using Orvane::Access;
    struct Kind {
        const char* variable;
        Access (*make)(std::uint16_t);
    };
    static constexpr std::array<Kind, 3> kKinds{{{"EXCLUSIVE_KEY", Access::exclusive},
                                                 {"CONCURRENT_KEY", Access::shared},
                                                 {"SIMPLE_KEY", Access::simple}}};
    for (const Kind& kind : kKinds)
        if (const char* const key = std::getenv(kind.variable)) // NOLINT(concurrency-mt-unsafe)
            return kind.make(static_cast<std::uint16_t>(std::strtoul(key, nullptr, 0)));
    return Access::simple();
}

} // namespace OrvaneTool
