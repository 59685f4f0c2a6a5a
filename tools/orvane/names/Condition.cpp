// Parsing and judging of conditions.
#include "tools/orvane/names/Condition.h"

#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/output/Errors.h"

#include <array>
#include <fmt/format.h>
#include <utility>
#include <vector>

namespace OrvaneTool {
namespace {

using Relation = Condition::Relation;

// Longer ones first.
constexpr std::array<std::pair<const char*, Relation>, 6> kRelations{{{"==", Relation::Equal},
                                                                      {"!=", Relation::Unequal},
                                                                      {"<=", Relation::BelowOrEqual},
                                                                      {">=", Relation::AboveOrEqual},
                                                                      {"<", Relation::Below},
                                                                      {">", Relation::Above}}};

std::uint64_t valueOf(const Asked& asked, const std::string& word) {
    if (asked.field == nullptr)
        return number(word, largestValue(asked.reg.space), "the value");
    if (const Orvane::MapChoice* const choice = asked.field->choice(std::string_view(word)))
        return choice->value;
    return number(word, (std::uint64_t{1} << asked.field->width) - 1, asked.field->name);
}

} // namespace

Condition Condition::parse(const std::string& text, const KnownMaps& maps, Space space) {
    for (const auto& [sign, relation] : kRelations) {
        const std::size_t at = text.find(sign);
        if (at == std::string::npos)
            continue;
        std::vector<std::string> leftOut;
        const std::vector<Asked> asked = maps.parse(text.substr(0, at), space, 1, leftOut);
        if (asked.size() != 1)
            throw UsageError(fmt::format("'{}' is not about one register or field", text));
        return {text, asked.front(), relation,
                valueOf(asked.front(), text.substr(at + std::string_view(sign).size()))};
    }
    throw UsageError(fmt::format("'{}' is no condition: it is NAME==VALUE, or with != < <= > or >=", text));
}

bool Condition::holds(std::uint32_t held) const {
    const std::uint64_t now = asked.field != nullptr ? asked.field->extract(held) : held;
    switch (relation) {
    case Relation::Equal:
        return now == value;
    case Relation::Unequal:
        return now != value;
    case Relation::Below:
        return now < value;
    case Relation::BelowOrEqual:
        return now <= value;
    case Relation::Above:
        return now > value;
    case Relation::AboveOrEqual:
        break;
    }
    return now >= value;
}

} // namespace OrvaneTool
