#include "tools/orvane/log/LogSummary.h"

#include <map>
#include <tuple>

namespace OrvaneTool {
namespace {

void account(RegisterHistory& history, const LogFile& log, std::size_t place,
             std::optional<std::uint64_t>& lastRead) {
    const LoggedAccess& access = log.accesses[place];
    history.accesses.push_back(place);
    ++(access.write ? history.writes : history.reads);
    if (access.write || !access.value)
        return;
    if (lastRead && *lastRead != *access.value) {
        ++history.changes;
        history.changedBits |= *lastRead ^ *access.value;
    }
    if (!lastRead)
        history.first = access.valueText();
    history.last = access.valueText();
    lastRead = access.value;
}

} // namespace

std::vector<RegisterHistory> historiesOf(const LogFile& log) {
    using Key = std::tuple<unsigned, unsigned, Space, unsigned, std::uint32_t>;
    std::map<Key, std::pair<RegisterHistory, std::optional<std::uint64_t>>> all;
    for (std::size_t place = 0; place < log.accesses.size(); ++place) {
        const LoggedAccess& access = log.accesses[place];
        const Key key{access.adapter, access.phy, access.reg.space, access.reg.mmd, access.reg.address};
        auto& [history, lastRead] = all.try_emplace(key).first->second;
        if (history.accesses.empty()) {
            history.adapter = access.adapter;
            history.phy = access.phy;
            history.reg = access.reg;
            history.first = history.last = "-";
        }
        account(history, log, place, lastRead);
    }
    std::vector<RegisterHistory> list;
    list.reserve(all.size());
    for (auto& [key, entry] : all)
        list.push_back(std::move(entry.first));
    return list;
}

} // namespace OrvaneTool
