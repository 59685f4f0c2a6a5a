// Values that users write, fitted into registers and fields.
#include "tools/orvane/names/FieldChange.h"

#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/output/Errors.h"

#include <fmt/format.h>

namespace OrvaneTool {

std::uint32_t valueFor(const Asked& asked, const std::string& word) {
    const std::string name = asked.byName ? Orvane::MapReference{asked.mapped, asked.field}.name() : "";
    if (asked.field == nullptr) {
        if (asked.byName && !asked.mapped->isWritable())
            throw UsageError(fmt::format("nothing can be written to {}", name));
        return numberAs<std::uint32_t>(word, largestValue(asked.reg.space), "the value");
    }
    if (!Orvane::isWritable(asked.field->access))
        throw UsageError(fmt::format("nothing can be written to {}: its access is {}", name,
                                     Orvane::nameOf(asked.field->access)));
    if (const Orvane::MapChoice* const choice = asked.field->choice(std::string_view(word)))
        return static_cast<std::uint32_t>(choice->value);
    const std::uint64_t most = (std::uint64_t{1} << asked.field->width) - 1;
    return numberAs<std::uint32_t>(word, most, name);
}

std::uint32_t changedBy(const Asked& asked, std::uint32_t before, std::uint32_t raw) {
    std::uint64_t kept = before;
    for (const Orvane::MapField& each : asked.mapped->fields())
        if (each.access == Orvane::MapAccess::w1c || each.access == Orvane::MapAccess::selfClearing)
            kept &= ~each.mask;
    return static_cast<std::uint32_t>(asked.field->insert(kept, raw));
}

} // namespace OrvaneTool
