// Looks values up, decodes them, and compares them field by field.
#include "ov_sys/names/Snapshot.h"

#include "ov_sys/maps/Numbers.h"

#include <algorithm>

namespace Orvane {
namespace {

std::string hexadecimal(const MapRegister& reg, std::uint64_t value) {
    return Maps::hexadecimal(value, reg.width() / 4);
}

DecodedField decodedField(const MapField& field, std::uint64_t raw) {
    return {&field, raw, field.number(raw), field.scaled(raw), field.choice(raw)};
}

void addChanges(const MapRegister& reg, std::uint64_t before, std::uint64_t after,
                std::vector<FieldChange>& changes) {
    std::uint64_t unnamed = Maps::lowBits(reg.width());
    for (const MapField& field : reg.fields()) {
        unnamed &= ~field.mask;
        if (((before ^ after) & field.mask) != 0)
            changes.push_back({&reg, &field, field.extract(before), field.extract(after)});
    }
    if (((before ^ after) & unnamed) != 0)
        changes.push_back({&reg, nullptr, before & unnamed, after & unnamed});
}

} // namespace

const Snapshot::Value* Snapshot::find(std::string_view name) const noexcept {
    const auto found = std::find_if(values.begin(), values.end(),
                                    [&](const Value& each) { return each.reg->name() == name; });
    return found == values.end() ? nullptr : &*found;
}

std::vector<DecodedRegister> Snapshot::decoded() const {
    std::vector<DecodedRegister> all;
    all.reserve(values.size());
    for (const Value& each : values)
        all.push_back({each.reg, each.value, RegisterMap::decode(*each.reg, each.value)});
    return all;
}

std::string FieldChange::name() const {
    return MapReference{reg, field}.name();
}

std::string FieldChange::text() const {
    if (field == nullptr)
        return name() + ": " + hexadecimal(*reg, before) + " -> " + hexadecimal(*reg, after);
    return name() + ": " + decodedField(*field, before).valueText() + " -> " +
           decodedField(*field, after).valueText();
}

std::vector<FieldChange> diff(const Snapshot& before, const Snapshot& after) {
    std::vector<const Snapshot::Value*> known(after.map.size(), nullptr);
    for (const Snapshot::Value& each : before.values)
        if (const MapRegister* const same = after.map.find(each.reg->name()))
            known[static_cast<std::size_t>(same - after.map.registers().data())] = &each;
    std::vector<FieldChange> changes;
    for (const Snapshot::Value& each : after.values)
        if (const auto* const earlier =
                known[static_cast<std::size_t>(each.reg - after.map.registers().data())])
            addChanges(*each.reg, earlier->value, each.value, changes);
    return changes;
}

} // namespace Orvane
