// Reads the words of an answer, and refuses what is none.
#include "ov_sys/rack/search/Announcement.h"

#include "ov_sys/rack/link/Endpoint.h"
#include "ov_sys/rack/link/PortName.h"
#include "ov_sys/rack/values/Failure.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <tuple>

namespace Orvane::RackSearch {
namespace {

using RackLink::PortName;

// A board that gives its type only has one port, of that name.
constexpr const char* kTypeWord = "ORVANE";

bool isPrintable(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

using Ports = std::map<std::string, std::set<unsigned>>;

bool readPorts(const std::string& name, Ports& ports, std::string& kind) {
    std::istringstream words(name);
    std::string word;
    words >> kind; // its devices follow
    if (PortName::upper(name) == kTypeWord)
        ports[kTypeWord].insert(0);
    while (words >> word) {
        const std::optional<PortName> port = PortName::read(word);
        if (!port)
            return false;
        ports[port->board].insert(port->port);
    }
    return !ports.empty();
}

} // namespace

std::vector<FoundBoard> boardsOf(const Answer& answer) {
    const std::size_t bar = answer.text.find('|');
    Ports ports;
    std::string kind;
    if (bar == std::string::npos || !isPrintable(answer.text) ||
        !readPorts(answer.text.substr(bar + 1), ports, kind))
        return {};
    std::vector<FoundBoard> boards;
    for (const auto& [serial, numbers] : ports)
        boards.push_back({serial, RackLink::dotted(answer.from), {numbers.begin(), numbers.end()}, kind});
    return boards;
}

Discovery discoveryOf(const std::set<Answer>& answers) {
    Discovery found;
    for (const Answer& answer : answers) {
        const std::vector<FoundBoard> boards = boardsOf(answer);
        found.malformed += boards.empty() ? 1U : 0U;
        found.boards.insert(found.boards.end(), boards.begin(), boards.end());
    }
    const auto place = [](const FoundBoard& one) { return std::tie(one.serial, one.address); };
    std::sort(found.boards.begin(), found.boards.end(),
              [&](const FoundBoard& a, const FoundBoard& b) { return place(a) < place(b); });
    found.boards.erase(
        std::unique(found.boards.begin(), found.boards.end(),
                    [&](const FoundBoard& a, const FoundBoard& b) { return place(a) == place(b); }),
        found.boards.end());
    return found;
}

} // namespace Orvane::RackSearch
