// Names that maps allow, addresses that are free, and the text of it all in the source form.
#include "ov_sys/maps/Draft.h"

#include "ov_sys/Interface/foundation/Utf8.h"
#include "ov_sys/maps/BlockForm.h"
#include "ov_sys/maps/JsonText.h"
#include "ov_sys/maps/Loader.h"
#include "ov_sys/maps/Members.h"
#include "ov_sys/maps/Numbers.h"
#include "ov_sys/maps/PlaceForm.h"
#include "ov_sys/maps/Problems.h"

#include <algorithm>
#include <cctype>

namespace Orvane::Maps {

namespace {

constexpr std::size_t kMostReports = 1000;

// A text of the source form: well-formed, without runs of blanks, not too long.
std::string textOf(std::string_view text, std::size_t longest = 1024) {
    std::string kept;
    for (const char c : text)
        if (static_cast<unsigned char>(c) > ' ')
            kept += c;
        else if (!kept.empty() && kept.back() != ' ')
            kept += ' ';
    kept.resize(std::min(kept.size(), longest));
    while (!kept.empty() && (!isUtf8(kept) || kept.back() == ' '))
        kept.pop_back();
    return kept;
}

void writeField(JsonText& json, const DraftField& field) {
    MapField form;
    form.bits = field.bits;
    if (field.choices.empty()) {
        json.member(field.name, form.bitsText() + ' ' + nameOf(field.access) +
                                    (field.sideEffects ? " side-effects: " : ": ") + textOf(field.text));
        return;
    }
    json.open(field.name);
    json.member("bits", form.bitsText());
    json.member("access", nameOf(field.access));
    if (field.sideEffects)
        json.flag("side-effects");
    json.member("text", textOf(field.text));
    json.open("values");
    for (const MapChoice& choice : field.choices)
        json.member(std::to_string(choice.value), choice.name);
    json.close();
    json.close();
}

void writeRegister(JsonText& json, const DraftRegister& reg) {
    json.open(reg.name);
    json.member("at", reg.address.text());
    if (reg.count > 0) {
        json.raw("count", std::to_string(reg.count));
        json.raw("stride", std::to_string(reg.stride));
    }
    json.raw("width", std::to_string(reg.width));
    if (reg.reset)
        json.member("reset", hexadecimal(*reg.reset));
    json.member("access", nameOf(reg.access));
    if (reg.sideEffects)
        json.flag("side-effects");
    json.member("text", textOf(reg.text));
    if (!reg.fields.empty()) {
        json.open("fields");
        for (const DraftField& field : reg.fields)
            writeField(json, field);
        json.close();
    }
    json.close();
}

// The registers from `first` to `last`, which lie in the same blocks down to `depth` and are sorted by their
// path.
using Registers = std::vector<DraftRegister>::const_iterator;
void writeBlocks(JsonText& json, Registers first, Registers last, std::size_t depth) {
    const auto inner =
        std::find_if(first, last, [&](const DraftRegister& each) { return each.path.size() > depth; });
    if (first != inner) {
        json.open("registers");
        for (auto each = first; each != inner; ++each)
            writeRegister(json, *each);
        json.close();
    }
    if (inner == last)
        return;
    json.open("blocks");
    for (auto begin = inner; begin != last;) {
        const auto end = std::find_if(
            begin, last, [&](const DraftRegister& each) { return each.path[depth] != begin->path[depth]; });
        json.open(begin->path[depth]);
        writeBlocks(json, begin, end, depth + 1);
        json.close();
        begin = end;
    }
    json.close();
}

std::uint64_t allNumbers(const DraftRegister& reg) {
    const std::uint64_t extent = extentOf(reg.address.space, reg.width);
    return reg.count == 0 ? extent : (std::uint64_t{reg.count} - 1) * reg.stride + extent;
}

// Roughly what a register takes in the source form.
std::size_t sizeOf(const DraftRegister& reg) {
    std::size_t bytes = 150 + reg.text.size();
    for (const DraftField& field : reg.fields) {
        bytes += 30 + field.name.size() + field.text.size();
        for (const MapChoice& choice : field.choices)
            bytes += 15 + choice.name.size();
    }
    return bytes;
}

} // namespace

std::string identifierOf(std::string_view name) {
    std::string made;
    for (const char c : name.substr(0, 60))
        made += std::isalnum(static_cast<unsigned char>(c)) != 0 && static_cast<unsigned char>(c) < 0x80
                    ? c
                    : '_';
    return made.empty() || (made[0] >= '0' && made[0] <= '9') ? '_' + made : made;
}

std::string DraftRegister::fullName() const {
    std::string full;
    for (const std::string& block : path)
        full += block + '.';
    return full + name;
}

std::optional<MapAddress> Draft::addressOf(std::uint64_t bytes, unsigned line, const std::string& what) {
    const std::uint32_t unit = options_.addressUnit != 0           ? options_.addressUnit
                               : options_.space == MapSpace::ext32 ? 1
                                                                   : 2;
    const std::uint64_t number = bytes / unit;
    const std::uint64_t last = lastNumber(options_.space);
    if (bytes % unit != 0 || number > last || options_.base > last - number) {
        report(line, what,
               hexadecimal(bytes) + " is no address of the space " + nameOf(options_.space) + "; left out");
        return std::nullopt;
    }
    return MapAddress{options_.space, options_.mmd, static_cast<std::uint32_t>(options_.base + number)};
}

std::uint32_t Draft::strideOf(std::uint64_t bytes) const {
    const std::uint32_t unit = options_.addressUnit != 0           ? options_.addressUnit
                               : options_.space == MapSpace::ext32 ? 1
                                                                   : 2;
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(bytes / unit, 0xFFFFFFFF));
}

bool Draft::isTaken(const DraftRegister& reg) {
    std::string block;
    bool isNameTaken = names_.count(reg.fullName()) > 0 || blocks_.count(reg.fullName()) > 0;
    for (const std::string& each : reg.path) {
        block += block.empty() ? each : '.' + each;
        isNameTaken = isNameTaken || names_.count(block) > 0;
    }
    if (isNameTaken) {
        report(reg.line, reg.fullName(), "its name is taken; left out");
        return true;
    }
    const std::uint64_t last = reg.address.number + allNumbers(reg) - 1;
    auto next = places_.upper_bound(reg.address);
    const bool runsInto = next != places_.end() && next->first.space == reg.address.space &&
                          next->first.mmd == reg.address.mmd && next->first.number <= last;
    const bool liesIn = next != places_.begin() && (--next)->first.space == reg.address.space &&
                        next->first.mmd == reg.address.mmd && next->second >= reg.address.number;
    if (runsInto || liesIn || last > lastNumber(reg.address.space)) {
        report(reg.line, reg.fullName(), "its place at " + reg.address.text() + " is taken; left out");
        return true;
    }
    places_[reg.address] = last;
    names_.insert(reg.fullName());
    for (std::size_t dot = reg.fullName().find('.'); dot != std::string::npos;
         dot = reg.fullName().find('.', dot + 1))
        blocks_.insert(reg.fullName().substr(0, dot));
    return false;
}

void Draft::keepFields(DraftRegister& reg) {
    std::set<std::string> names;
    std::uint64_t used = 0;
    std::vector<DraftField> kept;
    for (DraftField& field : reg.fields) {
        field.name = identifierOf(field.name);
        std::uint64_t mask = 0;
        for (const MapBits& piece : field.bits)
            mask |= lowBits(piece.high - piece.low + 1U) << piece.low;
        if ((mask & ~lowBits(reg.width)) != 0 || (mask & used) != 0 || mask == 0 ||
            !names.insert(field.name).second) {
            report(reg.line, reg.fullName() + '.' + field.name,
                   mask == 0 ? "has no bits; left out"
                             : "its name or bits are taken or beyond the register; left out");
            continue;
        }
        used |= mask;
        kept.push_back(std::move(field));
    }
    reg.fields = std::move(kept);
}

void Draft::add(DraftRegister reg) {
    elements_ += std::max(reg.count, 1U);
    bytes_ += sizeOf(reg);
    if (elements_ > kMostRegisters || bytes_ > JsonBudget{}.bytes)
        throw MapError(std::vector<MapProblem>{
            {file_, reg.line, {}, "becomes more than a map may have: 131072 registers and 8 MiB"}});
    reg.name = identifierOf(reg.name);
    const bool isNarrow = reg.address.space == MapSpace::c45 || reg.address.space == MapSpace::c22;
    if (isNarrow && reg.width > 16) {
        report(reg.line, reg.fullName(),
               "has " + std::to_string(reg.width) + " bits, where registers have 16; left out");
        return;
    }
    if (isTaken(reg))
        return;
    keepFields(reg);
    if (reg.reset && *reg.reset > lowBits(reg.width)) {
        report(reg.line, reg.fullName(), "its reset is wider than itself; left out");
        reg.reset.reset();
    }
    registers_.push_back(std::move(reg));
}

void Draft::report(unsigned line, const std::string& path, std::string message) {
    if (reports_.size() < kMostReports)
        reports_.push_back({file_, line, printable(path), std::move(message)});
    else
        ignore("further reports");
}

void Draft::ignore(const std::string& kind) {
    if (ignored_.size() < kMostReports || ignored_.count(kind) > 0)
        ++ignored_[kind];
}

ImportedMap Draft::finish(const std::string& name, const std::string& text) {
    std::stable_sort(registers_.begin(), registers_.end(),
                     [](const DraftRegister& a, const DraftRegister& b) { return a.path < b.path; });
    JsonText json;
    json.open();
    json.member("format", "orvane-map-1");
    json.member("name", identifierOf(name));
    json.member("text", textOf(text));
    writeBlocks(json, registers_.begin(), registers_.end(), 0);
    json.close();
    for (const auto& [kind, count] : ignored_)
        reports_.push_back(
            {file_, 0, {}, printable(kind) + ": " + std::to_string(count) + " not carried over"});
    return {Loader(MapOptions{}).parse(json.text(), file_ + " (made into a map)"), std::move(reports_)};
}

} // namespace Orvane::Maps
