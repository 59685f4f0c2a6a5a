// Decoded fields as rows.
#include "tools/orvane/names/FieldTable.h"

#include "tools/orvane/board/Bits.h"

namespace OrvaneTool {
namespace {

std::vector<Column> columns(bool compares, bool manyPlaces) {
    std::vector<Column> all{{"", manyPlaces ? "DEVICE" : ""},
                            {"", manyPlaces ? "PHY" : "", true},
                            {"", "ADDRESS"},
                            {"", "VALUE"},
                            {"", "REGISTER"},
                            {"", "BITS"},
                            {"", "FIELD"},
                            {"", "MEANING"}};
    if (compares)
        all.push_back({"", "BEFORE"});
    return all;
}

} // namespace

std::string meaningOf(const Orvane::DecodedField& field) {
    const std::string note = field.note();
    return field.valueText() + (note.empty() ? "" : ": " + note);
}

Orvane::DecodedField decodedField(const Orvane::MapField& field, std::uint64_t value) {
    const std::uint64_t raw = field.extract(value);
    return {&field, raw, field.number(raw), field.scaled(raw), field.choice(raw)};
}

FieldTable::FieldTable(const Stream& stream, bool compares, bool manyPlaces)
    : stream_(stream), compares_(compares), table_(columns(compares, manyPlaces)) {}

void FieldTable::printAll(Stream& stream, bool compares, bool manyPlaces,
                          const std::function<void(FieldTable&)>& produce) {
    FieldTable table(stream, compares, manyPlaces);
    printRows(stream, columns(compares, manyPlaces), [&](const std::function<void(const Row&)>& take) {
        table.take_ = &take;
        produce(table);
    });
}

void FieldTable::setPlace(const std::string& device, unsigned phy) {
    device_ = device;
    phy_ = phy;
}

void FieldTable::add(const Asked& asked, std::uint64_t value, std::optional<std::uint64_t> before,
                     bool onlyChanged) {
    bool isFirst = true;
    if (asked.mapped != nullptr)
        for (const Orvane::DecodedField& each : Orvane::RegisterMap::decode(*asked.mapped, value)) {
            if (asked.field != nullptr && each.field != asked.field)
                continue;
            const Orvane::DecodedField earlier = decodedField(*each.field, before.value_or(value));
            if (onlyChanged && earlier.raw == each.raw)
                continue;
            addRow(asked, value, &each, before ? &earlier : nullptr, isFirst);
            isFirst = false;
        }
    if (isFirst && (!onlyChanged || before != value))
        addRow(asked, value, nullptr, nullptr, true);
}

void FieldTable::addRow(const Asked& asked, std::uint64_t value, const Orvane::DecodedField* decoded,
                        const Orvane::DecodedField* before, bool isFirst) {
    const bool changed = before != nullptr && before->raw != decoded->raw;
    Row row(5, Cell(""));
    if (isFirst)
        row = {device_, std::to_string(phy_), asked.reg.text(),
               hexCell(stream_, static_cast<std::uint32_t>(value), asked.reg.space),
               asked.mapped != nullptr ? asked.mapped->name() : ""};
    if (decoded == nullptr) {
        row.insert(row.end(), 3, Cell(""));
    } else {
        const std::string meaning = meaningOf(*decoded);
        row.insert(row.end(), {decoded->field->bitsText(), decoded->field->name,
                               Cell(meaning, meaning,
                                    stream_.painted(changed ? Colour::Yellow : Colour::None, meaning))});
    }
    if (compares_)
        row.emplace_back(changed ? before->valueText() : "");
    take_ != nullptr ? (*take_)(row) : table_.add(std::move(row));
}

} // namespace OrvaneTool
