// Dumps beside PHYs.
#include "tools/orvane/names/DumpedPhy.h"

#include "tools/orvane/board/Identifier.h"
#include "tools/orvane/output/Errors.h"

#include <fmt/format.h>

namespace OrvaneTool {

void requireSameKind(const Dump& dump, const std::string& file, const Orvane::Phy& phy,
                     const std::string& place, const Orvane::Within& within) {
    if (dump.header.identifier.empty())
        return;
    const std::string here = identifierOf(phy, dump.header.space, within).value_or(dump.header.identifier);
    if (here != dump.header.identifier)
        throw Failure(fmt::format("{}: {} is of a PHY {}, this one is {} (--force takes it all the same)",
                                  place, file, dump.header.identifier, here));
}

std::vector<Asked> registersOf(const Dump& dump, const KnownMaps& maps, bool sideEffects,
                               std::vector<std::string>& leftOut) {
    std::vector<Asked> list;
    for (const auto& [reg, value] : dump.values) {
        const Orvane::MapRegister* const mapped = maps.find(reg);
        if (mapped != nullptr && !sideEffects && !mapped->isSafeToRead())
            leftOut.push_back(mapped->name());
        else
            list.push_back({reg, mapped});
    }
    return list;
}

} // namespace OrvaneTool
