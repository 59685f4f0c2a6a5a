// Decoded fields as rows.
#include "tools/orvane/names/FieldTable.h"

#include "tools/orvane/board/Bits.h"

namespace OrvaneTool {
namespace {

std::vector<Column> columns(bool compares, bool manyPlaces) {
    std::vector<Column> all{{"", ""},
                            {"", "", true},
                            {"address", "ADDRESS"},
                            {"value", "VALUE"},
                            {"register", "REGISTER"},
                            {"bits", "BITS"},
                            {"field", "FIELD"},
                            {"raw", ""},
                            {"meaning", "MEANING"},
                            {"note", ""}};
    if (manyPlaces) {
        all[0] = {"device", "DEVICE"};
        all[1] = {"phy", "PHY", true};
    }
    if (compares)
        all.push_back({"before", "BEFORE"});
    return all;
}

} // namespace

std::string meaningOf(const Orvane::DecodedField& field) {
    const std::string note = field.note();
    return field.valueText() + (note.empty() ? "" : ": " + note);
}

FieldTable::FieldTable(const Stream& stream, Format format, bool compares, bool manyPlaces)
    : stream_(stream), format_(format), compares_(compares), table_(columns(compares, manyPlaces)) {}

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
            const std::uint64_t raw = before ? each.field->extract(*before) : each.raw;
            if (onlyChanged && raw == each.raw)
                continue;
            const Orvane::DecodedField earlier{each.field, raw, each.field->number(raw),
                                               each.field->scaled(raw), each.field->choice(raw)};
            addRow(asked, value, &each, before ? &earlier : nullptr, isFirst);
            isFirst = false;
        }
    if (isFirst && (!onlyChanged || before != value))
        addRow(asked, value, nullptr, nullptr, true);
}

void FieldTable::addRow(const Asked& asked, std::uint64_t value, const Orvane::DecodedField* decoded,
                        const Orvane::DecodedField* before, bool isFirst) {
    const bool shown = isFirst || format_ != Format::Text;
    const auto own = [&](const std::string& text) { return shown ? Cell(text) : Cell("", nullptr); };
    const auto number = static_cast<std::uint32_t>(value);
    Row row{own(device_), shown ? Cell(std::to_string(phy_), phy_) : Cell("", nullptr), own(asked.reg.text()),
            shown ? hexCell(stream_, number, asked.reg.space) : Cell("", nullptr),
            own(asked.mapped != nullptr ? asked.mapped->name() : "")};
    if (decoded == nullptr) {
        row.insert(row.end(), {"", "", Cell("", nullptr), "", ""});
    } else {
        const std::string meaning = format_ == Format::Text ? meaningOf(*decoded) : decoded->valueText();
        const bool changed = before != nullptr && before->raw != decoded->raw;
        row.insert(row.end(),
                   {decoded->field->bitsText(), decoded->field->name,
                    Cell(std::to_string(decoded->raw), decoded->raw),
                    Cell(meaning, meaning, stream_.painted(changed ? Colour::Yellow : Colour::None, meaning)),
                    decoded->note()});
    }
    if (compares_)
        row.push_back(before != nullptr && before->raw != decoded->raw ? Cell(before->valueText())
                                                                       : Cell("", nullptr));
    table_.add(std::move(row));
}

} // namespace OrvaneTool
