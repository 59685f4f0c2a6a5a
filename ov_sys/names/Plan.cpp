// Names the registers that operations reach, turning pages as they do.
#include "ov_sys/names/Plan.h"

#include "ov_sys/maps/Numbers.h"
#include "ov_sys/names/NamedBatch.h"

#include <algorithm>
#include <map>

namespace Orvane {
namespace {

// Finds the registers that operations reach, turning pages as they do.
class Reader {
public:
    explicit Reader(const RegisterMap& map) : map_(map) {
        for (const MapRegister& each : map.registers())
            if (const auto page = each.page())
                pages_[each.address().number].push_back(&each);
    }

    const MapRegister* find(const Batch::Operation& one) const {
        if (const MapRegister* const any = map_.find(mapAddress(one.address)))
            return any;
        const auto candidates = pages_.find(one.address.number);
        if (candidates != pages_.end())
            for (const MapRegister* const each : candidates->second)
                if (addressOf(*each) == one.address && isTurnedTo(*each))
                    return each;
        return nullptr;
    }

    void wrote(const MapRegister& reg, std::uint32_t value) { held_[&reg] = value; }

private:
    bool isTurnedTo(const MapRegister& reg) const {
        const auto page = reg.page();
        const auto held = held_.find(page->select);
        if (held == held_.end())
            return false;
        return (page->field ? page->field->extract(held->second) : held->second) == page->value;
    }

    const RegisterMap& map_;
    std::map<std::uint32_t, std::vector<const MapRegister*>> pages_; // by their numbers
    std::map<const MapRegister*, std::uint32_t> held_;
};

std::string valuesText(const MapRegister& reg, std::uint32_t value) {
    std::string text;
    for (const DecodedField& each : RegisterMap::decode(reg, value))
        text += (text.empty() ? ": " : ", ") + each.field->name + ' ' + each.valueText();
    return text;
}

std::string lineOf(const Batch::Operation& one, const MapRegister* reg) {
    std::string line = one.writes ? "write " : "read  ";
    line += toText(one.address);
    if (one.writes)
        line += ' ' + Maps::hexadecimal(one.value, one.address.limit() > 0xFFFF ? 8 : 4);
    if (reg == nullptr)
        return line;
    constexpr std::size_t kNames = 24; // column of the names
    line.resize(std::max(line.size() + 2, kNames), ' ');
    return line + reg->name() + (one.writes ? valuesText(*reg, one.value) : "");
}

} // namespace

std::string plan(const Batch& batch, const RegisterMap& map) {
    Reader reader(map);
    std::string text;
    for (const Batch::Operation& one : batch.operations()) {
        const MapRegister* const reg = reader.find(one);
        text += lineOf(one, reg) + '\n';
        if (one.writes && reg != nullptr)
            reader.wrote(*reg, one.value);
    }
    return text;
}

} // namespace Orvane
