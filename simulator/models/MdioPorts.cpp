// Sparse storage of PHY registers and the paths to them.
#include "simulator/models/MdioPorts.h"

#include "simulator/models/MappedRegisters.h"
#include "simulator/models/RegisterPaths.h"

#include <map>

namespace OrvaneSim {
namespace {

constexpr std::uint32_t kIndirectControl = 13;
constexpr std::uint32_t kIndirectData = 14;

std::uint64_t phyKey(PhyAddress where) {
    return (std::uint64_t{where.device & 0xFFU} << 8) | (where.phy & 0x1FU);
}

// The part of an address that a frame of the space carries.
std::uint32_t significant(Space space, std::uint32_t address) {
    switch (space) {
    case Space::C45:
        return address & 0x1FFFFF;
    case Space::C22:
        return address & 0x1F;
    case Space::Ext32:
        break;
    }
    return address;
}

std::uint64_t registerKey(PhyAddress where, Space space, std::uint32_t address) {
    return (static_cast<std::uint64_t>(space) << 56) | (phyKey(where) << 32) | significant(space, address);
}

RegisterValue registerOf(std::uint64_t key, std::uint32_t value) {
    return {static_cast<Space>(key >> 56), static_cast<unsigned>(key >> 40) & 0xFFU,
            static_cast<unsigned>(key >> 32) & 0x1FU, static_cast<std::uint32_t>(key), value};
}

} // namespace

MdioPorts::MdioPorts()
    : paths_(std::make_unique<RegisterPaths>()), mapped_(std::make_unique<MappedRegisters>()) {}

MdioPorts::~MdioPorts() = default;

std::uint32_t MdioPorts::identifier(PhyAddress where) const {
    const auto own = identifiers_.find(phyKey(where));
    return own != identifiers_.end() ? own->second : kIdentifier;
}

inline std::uint32_t MdioPorts::initialValue(PhyAddress where, Space space, std::uint32_t address) const {
    const std::uint32_t number = significant(space, address) & 0xFFFF;
    if (space == Space::Ext32 || (number & 0xFFFE) != 2)
        return 0;
    return number == 2 ? identifier(where) >> 16 : identifier(where) & 0xFFFF;
}

std::uint32_t MdioPorts::peek(PhyAddress where, Space space, std::uint32_t address) const {
    if (const auto* cell = mapped_->find(*this, where, space, significant(space, address)))
        return cell->value();
    return unmapped(where, space, address);
}

std::uint32_t MdioPorts::unmapped(PhyAddress where, Space space, std::uint32_t address) const {
    const auto* const written = registers_.find(registerKey(where, space, address));
    return written != nullptr ? *written : initialValue(where, space, address);
}

void MdioPorts::poke(PhyAddress where, Space space, std::uint32_t address, std::uint32_t value) {
    const std::uint32_t fitting = space == Space::Ext32 ? value : value & 0xFFFF;
    if (auto* cell = mapped_->find(*this, where, space, significant(space, address)))
        cell->set(fitting);
    else
        registers_.set(registerKey(where, space, address), fitting);
}

void MdioPorts::map(PhyAddress where, std::uint32_t identifier,
                    const std::vector<MappedRegister>& registers) {
    mapped_->remove(where);
    identifiers_[phyKey(where)] = identifier;
    for (MappedRegister each : registers) {
        each.reset = each.reset.value_or(initialValue(where, each.space, each.address));
        const std::uint64_t key = registerKey(where, each.space, each.address);
        const auto* const written = registers_.find(key);
        const bool goesOn = written != nullptr && !each.page;
        mapped_->add(where, each, goesOn ? *written : *each.reset);
        if (goesOn)
            registers_.erase(key);
    }
}

std::vector<RegisterValue> MdioPorts::written() const {
    std::map<std::uint64_t, std::uint32_t> sorted(registers_.all().begin(), registers_.all().end());
    for (const RegisterValue& each : mapped_->values())
        sorted[registerKey({each.device, each.phy}, each.space, each.address)] = each.value;
    std::vector<RegisterValue> values;
    values.reserve(sorted.size());
    for (const auto& [key, value] : sorted)
        values.push_back(registerOf(key, value));
    return values;
}

void MdioPorts::replace(const std::vector<RegisterValue>& values) {
    registers_.clear();
    mapped_->reset();
    for (const RegisterValue& each : values) {
        const PhyAddress where{each.device, each.phy};
        if (auto* const cell = mapped_->find(*this, where, each.space, significant(each.space, each.address)))
            cell->hold(each.value);
        else
            poke(where, each.space, each.address, each.value);
    }
}

std::uint32_t& MdioPorts::indirectAddress(PhyAddress where) {
    const std::uint32_t mmd = peek(where, Space::C22, kIndirectControl) & 0x1F;
    return indirectAddresses_[(phyKey(where) << 5) | mmd];
}

bool MdioPorts::reachesIndirectData(PhyAddress where, Space space, std::uint32_t address) const {
    return space == Space::C22 && significant(space, address) == kIndirectData &&
           (peek(where, Space::C22, kIndirectControl) >> 14) != 0;
}

std::uint32_t MdioPorts::indirectRegister(PhyAddress where) {
    const std::uint32_t mmd = peek(where, Space::C22, kIndirectControl) & 0x1F;
    return (mmd << 16) | indirectAddress(where);
}

void MdioPorts::advanceIndirect(PhyAddress where, bool written) {
    const std::uint32_t function = peek(where, Space::C22, kIndirectControl) >> 14;
    if (function == 2 || (function == 3 && written))
        indirectAddress(where) = (indirectAddress(where) + 1) & 0xFFFF;
}

std::uint32_t MdioPorts::read(PhyAddress where, Space space, std::uint32_t address) {
    if (space == Space::Ext32)
        currentAddresses_[phyKey(where)] = address;
    if (space == Space::C45)
        paths_->beforeRead({*this, where}, significant(space, address));
    if (!reachesIndirectData(where, space, address)) {
        auto* const cell = mapped_->find(*this, where, space, significant(space, address));
        return cell != nullptr ? cell->read() : unmapped(where, space, address);
    }
    const std::uint32_t value = read(where, Space::C45, indirectRegister(where));
    advanceIndirect(where, false);
    return value;
}

void MdioPorts::read(PhyAddress where, Space space, const std::uint32_t* addresses, std::size_t count,
                     std::uint32_t* values) {
    const bool plain = space == Space::C45 && mapped_->empty();
    const std::uint64_t phy = registerKey(where, space, 0);
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t address = significant(space, addresses[i]);
        const bool usual = plain && !RegisterPaths::mayNotice(address) && !registers_.mayHold(phy | address);
        values[i] = usual ? initialValue(where, space, address) : read(where, space, addresses[i]);
    }
}

void MdioPorts::write(PhyAddress where, Space space, std::uint32_t address, std::uint32_t value) {
    if (space == Space::Ext32)
        currentAddresses_[phyKey(where)] = address;
    if (reachesIndirectData(where, space, address)) {
        write(where, Space::C45, indirectRegister(where), value);
        advanceIndirect(where, true);
        return;
    }
    if (auto* const cell = mapped_->find(*this, where, space, significant(space, address)))
        cell->write(value);
    else
        poke(where, space, address, value);
    if (space == Space::C45)
        paths_->afterWrite({*this, where}, significant(space, address));
    if (space == Space::C22 && significant(space, address) == kIndirectData)
        indirectAddress(where) = value & 0xFFFF;
}

std::uint32_t MdioPorts::currentAddress(PhyAddress where) const {
    const auto found = currentAddresses_.find(phyKey(where));
    return found != currentAddresses_.end() ? found->second : 0;
}

} // namespace OrvaneSim
