// Reads, decodes and writes a register or a field, and refuses what cannot be.
#include "ov_sys/names/Named.h"

#include "ov_sys/maps/Numbers.h"
#include "ov_sys/names/Paging.h"

#include <utility>

namespace Orvane {
namespace {

using namespace Names;

// Does `work`, and says of what fails which register it was about.
template <class Work>
auto about(const MapReference& what, const char* operation, Work work) {
    try {
        return work();
    } catch (const Failure& failure) {
        FailureDetails details = failure.details();
        details.operation = operation;
        details.location = what.name() + " (" + what.reg->address().text() + ")";
        throw Failure(std::move(details));
    }
}

// Bits that a write of one field leaves as they were: not those where a 0 does nothing, and a 1 would.
std::uint64_t keptBits(const MapRegister& reg, const MapField& written) {
    std::uint64_t kept = Maps::lowBits(reg.width()) & ~written.mask;
    for (const MapField& each : reg.fields())
        if (each.access == MapAccess::w1c || each.access == MapAccess::selfClearing)
            kept &= ~each.mask;
    return kept;
}

// Of the bits to be kept, those that a read tells; of write-only ones what they hold after a reset.
std::uint64_t toldBits(const MapRegister& reg) {
    std::uint64_t told = ~std::uint64_t{0};
    for (const MapField& each : reg.fields())
        told &= isReadable(each.access) ? ~std::uint64_t{0} : ~each.mask;
    return told;
}

std::vector<std::uint32_t> readTimes(const Phy& phy, const MapReference& what, std::size_t times,
                                     const Budget& budget) {
    const Registers one{what.reg};
    std::vector<std::uint32_t> values;
    const auto read = [&] {
        NamedBatch batch(readSelects(phy, one, budget.left()));
        std::vector<Batch::Reading> readings;
        for (std::size_t i = 0; i < times; ++i)
            readings.push_back(batch.read(*what.reg));
        const BatchResult result = phy.run(batch.finish(), budget.leftFor(one));
        for (const Batch::Reading& each : readings)
            values.push_back(result[each]);
    };
    about(what, "read", [&] { anyPaged(one) ? phy.together(read, budget.left()) : read(); });
    return values;
}

// The register's value with its field replaced, and of the other bits what is to be kept.
std::uint64_t replaced(const Phy& phy, const MapReference& what, std::uint64_t raw, const Budget& budget) {
    const MapRegister& reg = *what.reg;
    const std::uint64_t kept = keptBits(reg, *what.field);
    const std::uint64_t told = kept & toldBits(reg);
    std::uint64_t rest = reg.reset().value_or(0) & kept & ~told;
    if (told != 0)
        rest |= readTimes(phy, what, 1, budget)[0] & told;
    return what.field->insert(rest, raw);
}

void writeRegister(const Phy& phy, const MapRegister& reg, std::uint64_t value, const Budget& budget) {
    NamedBatch batch(readSelects(phy, {&reg}, budget.left()));
    batch.write(reg, static_cast<std::uint32_t>(value));
    const BatchResult result = phy.run(batch.finish(), budget.leftFor({&reg}));
    if (!result.complete())
        throw Failure(*result.failure());
}

} // namespace

Named::Named(Phy phy, RegisterMap map, MapReference what)
    : phy_(std::move(phy)), map_(std::move(map)), what_(what) {}

std::uint64_t Named::read(const Within& within) const {
    checkReadable("read");
    const std::uint64_t value = readTimes(phy_, what_, 1, Budget(within))[0];
    return what_.field == nullptr ? value : what_.field->extract(value);
}

double Named::scaled(const Within& within) const {
    return field("read").scaled(read(within));
}

std::string Named::text(const Within& within) const {
    const std::uint64_t raw = read(within);
    if (what_.field == nullptr)
        return Maps::hexadecimal(raw, what_.reg->width() / 4);
    const MapField& one = *what_.field;
    const DecodedField decoded{&one, raw, one.number(raw), one.scaled(raw), one.choice(raw)};
    const std::string note = decoded.note();
    return decoded.valueText() + (note.empty() ? "" : ": " + note);
}

Named::Twice Named::twice(const Within& within) const {
    checkReadable("read");
    const auto values = readTimes(phy_, what_, 2, Budget(within));
    const auto raw = [&](std::uint64_t value) { return what_.field ? what_.field->extract(value) : value; };
    return {raw(values[0]), raw(values[1])};
}

void Named::write(std::uint64_t raw, const Within& within) const {
    checkWritable(raw);
    const Budget budget(within);
    const auto write = [&] {
        writeRegister(phy_, *what_.reg, what_.field ? replaced(phy_, what_, raw, budget) : raw, budget);
    };
    about(what_, "write", [&] { phy_.together(write, within); });
}

void Named::write(std::string_view choice, const Within& within) const {
    const MapChoice* const found = field("write").choice(choice);
    if (found == nullptr)
        refuse("write", "It has no value '" + std::string(choice.substr(0, 128)) + "'.");
    write(found->value, within);
}

void Named::writeScaled(double value, const Within& within) const {
    try {
        write(field("write").rawOf(value), within);
    } catch (const MapError& error) {
        refuse("write", error.what());
    }
}

void Named::refuse(const char* operation, std::string why) const {
    throw phy_.refusal(operation, name(), std::move(why));
}

const MapField& Named::field(const char* operation) const {
    if (what_.field == nullptr)
        refuse(operation, "It is a whole register: name a field of it.");
    return *what_.field;
}

void Named::checkReadable(const char* operation) const {
    if (!isReachable(*what_.reg))
        refuse(operation, "No board reaches it: it is wider than 32 bits, or an SMBus device's own.");
    if (what_.field ? !isReadable(what_.field->access) : !what_.reg->isReadable())
        refuse(operation, "It is write-only: a read tells nothing.");
}

void Named::checkWritable(std::uint64_t raw) const {
    if (!isReachable(*what_.reg))
        refuse("write", "No board reaches it: it is wider than 32 bits, or an SMBus device's own.");
    const MapAccess access = what_.field ? what_.field->access : what_.reg->access();
    if (what_.field ? !isWritable(access) : !what_.reg->isWritable())
        refuse("write", std::string("Nothing can be written to it: its access is ") + nameOf(access) + ".");
    const unsigned width = what_.field ? what_.field->width : what_.reg->width();
    if (raw > Maps::lowBits(width))
        refuse("write", Maps::hexadecimal(raw) + " does not fit: it has " + std::to_string(width) +
                            (width == 1 ? " bit." : " bits."));
}

} // namespace Orvane
