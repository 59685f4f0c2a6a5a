// Drawing in place, and lines of changes.
#include "tools/orvane/watch/Display.h"

#include "tools/orvane/board/Bits.h"
#include "tools/orvane/names/FieldTable.h"
#include "tools/orvane/names/RegisterRecord.h"

#include <algorithm>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

std::string placeOf(const WatchedPhy& phy) {
    return fmt::format("{} PHY {}", phy.device, phy.phy);
}

} // namespace

void Display::show(unsigned long sample, const std::vector<WatchedPhy>& phys) {
    if (!records_.isText())
        for (const WatchedPhy& each : phys)
            putChanges(sample, each);
    else if (draws(phys))
        redraw(sample, phys);
    else
        for (const WatchedPhy& each : phys)
            printChanges(sample, each, phys.size() > 1);
    out_.flush();
}

void Display::putChanges(unsigned long sample, const WatchedPhy& phy) {
    if (phy.gap) {
        Record gap("gap");
        gap.device(phy.device).phy(phy.phy).put("sequence", sample);
        phy.gap->addTo(gap);
        records_.put(gap);
    }
    for (const Watched& each : phy.registers) {
        if (!phy.firstNow && each.changed == 0)
            continue;
        const Space space = each.asked.reg.space;
        Record record = registerRecord(phy.device, phy.phy, each.asked);
        record.put("sequence", sample).put("value", hexCell(out_, each.value, space));
        if (!phy.firstNow)
            record.put("before", hexCell(out_, each.value ^ each.changed, space))
                .put("changes", each.changes);
        if (fields_)
            putFields(record, each.asked, each.value,
                      phy.firstNow ? std::nullopt : std::optional<std::uint64_t>(each.value ^ each.changed));
        records_.put(record);
    }
}

void Display::scroll(Key key, unsigned long sample, const std::vector<WatchedPhy>& phys) {
    const std::size_t last = rows_ > room() ? rows_ - room() : 0;
    const std::size_t page = std::max<std::size_t>(room(), 1);
    const std::size_t up = key == Key::Up ? 1 : key == Key::PageUp ? page : key == Key::Home ? rows_ : 0;
    const std::size_t down = key == Key::Down ? 1 : key == Key::PageDown ? page : key == Key::End ? rows_ : 0;
    top_ = std::min(top_ - std::min(up, top_) + down, last);
    if (draws(phys))
        redraw(sample, phys);
    out_.flush();
}

// What does not fit on the screen cannot be drawn over.
bool Display::draws(const std::vector<WatchedPhy>& phys) const {
    std::size_t count = 0;
    for (const WatchedPhy& each : phys)
        count += each.registers.size();
    return out_.isTerminal() && (canScroll_ || count + 2 < out_.height());
}

std::size_t Display::room() const {
    constexpr std::size_t kAround = 3; // title, head and the cursor's line
    return out_.height() > kAround ? out_.height() - kAround : 1;
}

void Display::redraw(unsigned long sample, const std::vector<WatchedPhy>& phys) {
    if (lines_ > 0)
        out_.print("\033[{}A\033[J", lines_);
    std::string away;
    for (const WatchedPhy& each : phys) {
        if (each.gap)
            out_.print("{}: {}\n", placeOf(each), each.gap->text()); // stays above
        if (!each.away.empty())
            away += fmt::format(", {} is away: {}", placeOf(each), each.away);
    }
    const bool many = phys.size() > 1;
    FieldTable fields(out_, true, many);
    Table values({{"", many ? "DEVICE" : ""},
                  {"", many ? "PHY" : "", true},
                  {"", "ADDRESS"},
                  {"", "VALUE"},
                  {"", "BITS"},
                  {"", "CHANGES", true}});
    for (const WatchedPhy& each : phys) {
        fields.setPlace(each.device, each.phy);
        for (const Watched& one : each.registers) {
            const Space space = one.asked.reg.space;
            const std::uint32_t marked = one.marked();
            const std::string changes = std::to_string(one.changes);
            fields.add(one.asked, one.value, one.value ^ one.changed);
            values.add(
                {each.device,
                 std::to_string(each.phy),
                 one.asked.reg.text(),
                 hexCell(out_, one.value, space, marked),
                 bitsCell(out_, one.value, space, marked),
                 {changes, one.changes, out_.painted(marked != 0 ? Colour::Yellow : Colour::None, changes)}});
        }
    }
    rows_ = fields_ ? fields.size() : values.size();
    top_ = std::min(top_, rows_ > room() ? rows_ - room() : 0);
    const std::size_t shown = std::min(rows_ - top_, room());
    out_.print("{}, sample {}{}{}\n", title_, sample,
               shown < rows_ ? fmt::format(", rows {} to {} of {}", top_ + 1, top_ + shown, rows_) : "",
               away);
    lines_ = 1 + (fields_ ? fields.printPart(out_, top_, shown) : values.printPart(out_, top_, shown));
}

// Everything at first, then what changed.
void Display::printChanges(unsigned long sample, const WatchedPhy& phy, bool many) {
    const std::string before =
        many ? fmt::format("{} {} {}", sample, phy.device, phy.phy) : std::to_string(sample);
    if (phy.gap)
        out_.print("{} {}\n", before, phy.gap->text());
    for (const Watched& each : phy.registers) {
        const Space space = each.asked.reg.space;
        if (!phy.firstNow && each.changed == 0)
            continue;
        out_.print("{} {} {}", before, each.asked.reg.text(), hexText(each.value, space));
        if (!phy.firstNow)
            out_.print(" was {}, change {}", hexText(each.value ^ each.changed, space), each.changes);
        out_.write("\n");
        if (fields_)
            printFields(before, each, phy.firstNow);
    }
}

// Those that changed, at first all of them.
void Display::printFields(const std::string& before, const Watched& each, bool first) {
    if (each.asked.mapped == nullptr)
        return;
    for (const Orvane::DecodedField& field : Orvane::RegisterMap::decode(*each.asked.mapped, each.value)) {
        const bool changed = (field.field->mask & each.changed) != 0;
        if ((!first && !changed) || (each.asked.field != nullptr && field.field != each.asked.field))
            continue;
        out_.print("{} {}.{} {}{}\n", before, each.asked.mapped->name(), field.field->name, meaningOf(field),
                   first ? "" : " was " + decodedField(*field.field, each.value ^ each.changed).valueText());
    }
}

} // namespace OrvaneTool
