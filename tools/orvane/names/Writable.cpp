// Accesses of fields, taken for a restore.
#include "tools/orvane/names/Writable.h"

namespace OrvaneTool {
namespace {

using Kind = Orvane::MapAccess;

std::uint32_t bitsWith(const Orvane::MapRegister& reg, Kind access) {
    std::uint64_t bits = reg.fields().empty() && reg.access() == access ? ~std::uint64_t{0} : 0;
    for (const Orvane::MapField& field : reg.fields())
        bits |= field.access == access ? field.mask : 0;
    return static_cast<std::uint32_t>(bits);
}

} // namespace

Restoring restoring(const Asked& asked, std::uint32_t value) {
    const std::uint32_t all = largestValue(asked.reg.space);
    if (asked.mapped == nullptr)
        return {value, all};
    const Orvane::MapRegister& reg = *asked.mapped;
    if (!reg.isReadable() || reg.hasSideEffects())
        return {};
    const std::uint32_t writeOnly = bitsWith(reg, Kind::wo);
    const std::uint32_t kept =
        value & ~(bitsWith(reg, Kind::w1c) | bitsWith(reg, Kind::selfClearing) | writeOnly);
    return {kept | (static_cast<std::uint32_t>(reg.reset().value_or(0)) & writeOnly),
            bitsWith(reg, Kind::rw) & all};
}

} // namespace OrvaneTool
