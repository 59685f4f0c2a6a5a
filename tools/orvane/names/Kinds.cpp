// Identifiers of PHYs, and words made into registers.
#include "tools/orvane/names/Kinds.h"

#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/output/Errors.h"

#include <fmt/format.h>
#include <map>
#include <optional>
#include <sstream>

namespace OrvaneTool {
namespace {

constexpr std::size_t kMostNamesTold = 8;

} // namespace

void tellLeftOut(Stream& err, std::vector<std::string> names) {
    if (names.empty())
        return;
    const std::size_t more = names.size() > kMostNamesTold ? names.size() - kMostNamesTold : 0;
    names.resize(names.size() - more);
    err.print(
        "orvane: left out, for a read changes them or tells nothing: {}{} (--side-effects reads them)\n",
        fmt::format("{}", fmt::join(names, " ")), more > 0 ? fmt::format(" and {} more", more) : "");
    err.flushIfPossible();
}

Kinds::Kinds(Context& context) : context_(context) {
    maps_.push_back(std::make_unique<KnownMaps>(context));
}

const KnownMaps& Kinds::unasked(const std::string& identifier) {
    if (wantsIdentifiers() && !identifier.empty()) {
        maps_.front()->identify(
            numberAs<std::uint32_t>(identifier, 0xFFFFFFFF, "the identifier of the dump"));
    } else if (wantsIdentifiers()) {
        Stream& err = context_.console.err;
        err.write("orvane: no board is asked, so maps that are chosen by the PHY's identifier are left out "
                  "(--phy-identifier says which PHY it is)\n");
        err.flushIfPossible();
    }
    return maps(0);
}

void Kinds::sort(Places& places) {
    kinds_.assign(places.size(), 0);
    if (!wantsIdentifiers())
        return;
    std::vector<std::uint32_t> identifiers(places.size());
    places.run("identify", [&](std::size_t place, const Orvane::Phy& phy) {
        const std::vector<std::uint32_t> words = phy.read({1, 2}, 2, context_.within());
        identifiers[place] = words[0] << 16U | words[1];
    });
    std::map<std::uint32_t, std::size_t> known;
    for (std::size_t place = 0; place < places.size(); ++place) {
        if (!places.isGood(place))
            continue;
        const auto [entry, isNew] = known.emplace(identifiers[place], known.size());
        if (isNew && entry->second > 0)
            maps_.push_back(std::make_unique<KnownMaps>(context_));
        if (isNew)
            maps_[entry->second]->identify(identifiers[place]);
        kinds_[place] = entry->second;
    }
}

std::vector<Asked> askedFor(Context& context, const KnownMaps& maps, const RegisterOptions& options,
                            const std::vector<std::string>& words) {
    std::vector<Asked> all;
    std::vector<std::string> leftOut;
    for (const std::string& word : words) {
        std::istringstream list(word);
        for (std::string each; std::getline(list, each, ',');) {
            const std::vector<Asked> some = maps.parse(each, options.space(), options.distance(), leftOut);
            all.insert(all.end(), some.begin(), some.end());
        }
    }
    tellLeftOut(context.console.err, leftOut);
    if (all.empty())
        throw UsageError("every register was left out: nothing is left to do");
    return all;
}

} // namespace OrvaneTool
