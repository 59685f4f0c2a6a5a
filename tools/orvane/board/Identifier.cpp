// Reading of a PHY's identifier.
#include "tools/orvane/board/Identifier.h"

#include <fmt/format.h>

namespace OrvaneTool {

std::optional<std::string> identifierOf(const Orvane::Phy& phy, Space space, const Orvane::Within& within) {
    const Orvane::RegisterAddress first =
        space == Space::C22 ? Orvane::clause22(2) : Orvane::RegisterAddress{1, 2};
    try {
        const std::vector<std::uint32_t> words = phy.read(first, 2, within);
        return fmt::format("0x{:04X}{:04X}", words[0], words[1]);
    } catch (const Orvane::Failure& failure) {
        if (failure.kind() == Orvane::FailureKind::BoardError)
            return std::nullopt;
        throw;
    }
}

std::optional<std::string> identifierIfThere(const Orvane::Phy& phy, const Orvane::Within& within) {
    for (const Space space : {Space::C45, Space::C22}) {
        try {
            const std::string identifier = identifierOf(phy, space, within).value_or("");
            if (!identifier.empty() && identifier != "0xFFFFFFFF" && identifier != "0x00000000")
                return identifier;
        } catch (const Orvane::Failure& failure) {
            if (failure.kind() != Orvane::FailureKind::InvalidArgument) // no Clause 22 over SMBus
                throw;
        }
    }
    return std::nullopt;
}

} // namespace OrvaneTool
