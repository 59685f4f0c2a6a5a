// The members of Phy that know names.
#include "ov_sys/names/Named.h"
#include "ov_sys/names/Paging.h"
#include "ov_sys/names/Selection.h"
#include "ov_sys/names/Snapshot.h"

#include <memory>
#include <string>
#include <utility>

namespace Orvane {
namespace {

using namespace Names;

std::uint64_t bitsWith(const MapRegister& reg, MapAccess access) {
    std::uint64_t bits = reg.fields().empty() && reg.access() == access ? ~std::uint64_t{0} : 0;
    for (const MapField& field : reg.fields())
        bits |= field.access == access ? field.mask : 0;
    return bits;
}

// What brings the register's rw bits back, and does nothing else: a snapshot tells nothing of write-only
// bits.
std::uint64_t restoring(const Snapshot::Value& saved) {
    const MapRegister& reg = *saved.reg;
    const std::uint64_t writeOnly = bitsWith(reg, MapAccess::wo);
    const std::uint64_t kept =
        saved.value & ~(bitsWith(reg, MapAccess::w1c) | bitsWith(reg, MapAccess::selfClearing) | writeOnly);
    return kept | (reg.reset().value_or(0) & writeOnly);
}

// The bits that a restore is about.
std::uint64_t restorable(const MapRegister& reg) {
    return bitsWith(reg, MapAccess::rw);
}

} // namespace

void Phy::use(const RegisterMap& map) const {
    setMap(std::make_shared<const RegisterMap>(map));
}

RegisterMap Phy::map() const {
    const auto used = usedMap();
    return used ? *used : RegisterMap::ieee8023();
}

Named Phy::operator[](std::string_view name) const {
    const RegisterMap known = map();
    try {
        return {*this, known, known.at(name)};
    } catch (const MapError& error) {
        throw refusal("find", std::string(name.substr(0, 128)), error.what());
    }
}

std::vector<DecodedRegister>
Phy::decode(const std::vector<std::pair<RegisterAddress, std::uint32_t>>& values) const {
    const RegisterMap known = map();
    std::vector<DecodedRegister> decoded;
    decoded.reserve(values.size());
    for (const auto& [address, value] : values) {
        const MapRegister* const reg = known.find(mapAddress(address));
        decoded.push_back({reg, value, reg ? RegisterMap::decode(*reg, value) : std::vector<DecodedField>{}});
    }
    return decoded;
}

Snapshot Phy::snapshot(const Scope& scope, const Within& within) const {
    Snapshot taken;
    taken.map = map();
    Selection selection;
    try {
        selection = select(taken.map, scope);
    } catch (const MapError& error) {
        throw refusal("snapshot", {}, error.what());
    }
    taken.leftOut = std::move(selection.leftOut);
    Registers registers;
    for (const MapRegister* const each : selection.registers)
        (isReachable(*each) ? registers : taken.leftOut).push_back(each);
    if (registers.empty())
        return taken;
    const Budget budget(within);
    const auto read = [&] {
        NamedBatch batch(readSelects(*this, registers, budget.left()));
        std::vector<Batch::Reading> readings;
        for (const MapRegister* const each : registers)
            readings.push_back(batch.read(*each));
        const BatchResult result = run(batch.finish(), budget.leftFor(registers));
        for (std::size_t i = 0; i < registers.size(); ++i)
            taken.values.push_back({registers[i], result[readings[i]]});
    };
    anyPaged(registers) ? together(read, within) : read();
    return taken;
}

std::vector<Snapshot::Value> toRestore(const Snapshot& snapshot) {
    std::vector<Snapshot::Value> wanted;
    for (const Snapshot::Value& each : snapshot.values)
        if (restorable(*each.reg) != 0 && !each.reg->hasSideEffects())
            wanted.push_back({each.reg, restoring(each)});
    return wanted;
}

Restored Phy::restore(const Snapshot& snapshot, const Within& within) const {
    const std::vector<Snapshot::Value> wanted = toRestore(snapshot);
    Registers registers;
    for (const Snapshot::Value& each : wanted)
        registers.push_back(each.reg);
    Restored restored;
    if (registers.empty())
        return restored;
    const Budget budget(within);
    together(
        [&] {
            NamedBatch batch(readSelects(*this, registers, budget.left()));
            for (const Snapshot::Value& each : wanted)
                batch.write(*each.reg, static_cast<std::uint32_t>(each.value));
            std::vector<Batch::Reading> readings;
            for (const MapRegister* const each : registers)
                readings.push_back(batch.read(*each));
            const BatchResult result = run(batch.finish(), budget.leftFor(registers));
            Snapshot asked{snapshot.map, {}, {}};
            Snapshot found{snapshot.map, {}, {}};
            for (std::size_t i = 0; i < wanted.size(); ++i) {
                const std::uint64_t mask = restorable(*registers[i]);
                asked.values.push_back({registers[i], wanted[i].value & mask});
                found.values.push_back({registers[i], result[readings[i]] & mask});
            }
            restored.written = wanted.size();
            restored.notTaken = diff(asked, found);
        },
        within);
    return restored;
}

} // namespace Orvane
