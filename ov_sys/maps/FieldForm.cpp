// Fields in their short form and their long one, bit ranges and choices.
#include "ov_sys/maps/FieldForm.h"

#include "ov_sys/maps/Members.h"
#include "ov_sys/maps/Numbers.h"
#include "ov_sys/maps/Problems.h"

#include <algorithm>

namespace Orvane::Maps {

namespace {

constexpr MapAccess kAccesses[] = {MapAccess::ro,           MapAccess::rw,           MapAccess::wo,
                                   MapAccess::w1c,          MapAccess::selfClearing, MapAccess::latchingLow,
                                   MapAccess::latchingHigh, MapAccess::clearOnRead,  MapAccess::reserved};

// The text before the first separator, which goes with it.
std::string_view cutFrom(std::string_view& text, std::string_view separator) {
    const std::size_t at = text.find(separator);
    const std::string_view cut = text.substr(0, at);
    text.remove_prefix(at == std::string_view::npos ? text.size() : at + separator.size());
    return cut;
}

bool readPiece(std::string_view text, MapField& field) {
    const bool isRange = text.find(':') != std::string_view::npos;
    const auto high = numberIn(cutFrom(text, ":"));
    const auto low = isRange ? numberIn(text) : high;
    if (!high || !low || *high > 63 || *low > *high)
        return false;
    field.bits.push_back({static_cast<std::uint8_t>(*high), static_cast<std::uint8_t>(*low)});
    return true;
}

void readBits(std::string_view text, const JsonValue& place, MapField& field, Problems& problems) {
    std::string problem = takeBits(text, field);
    if (!problem.empty())
        problems.add(place, std::move(problem));
}

void readAccess(std::string_view word, const JsonValue& place, MapField& field, Problems& problems) {
    if (const auto access = accessOf(word))
        field.access = *access;
    else
        problems.add(place, "'" + printable(word) + "' is no access");
}

void readShortForm(const JsonValue& value, MapField& field, Problems& problems) {
    std::string_view text = value.text;
    std::string_view head = cutFrom(text, ": ");
    if (!text.empty())
        field.text = text;
    readBits(cutFrom(head, " "), value, field, problems);
    while (!head.empty()) {
        const std::string_view word = cutFrom(head, " ");
        if (word == "side-effects")
            field.sideEffects = true;
        else
            readAccess(word, value, field, problems);
    }
}

void readMeaning(const Members& members, MapField& field) {
    field.isSigned = members.flag("signed").value_or(field.isSigned);
    if (const auto scale = members.decimal("scale"); scale && *scale != 0)
        field.scale = *scale;
    else if (scale)
        members.refuse("scale", "must not be 0");
    field.offset = members.decimal("offset").value_or(field.offset);
    field.unit = members.string("unit").value_or(field.unit);
    field.isScaled = field.scale != 1 || field.offset != 0 || !field.unit.empty();
    if (!field.choices.empty() && field.isScaled)
        members.refuse("values", "cannot go with a scale, an offset or a unit");
}

void readLongForm(const JsonValue& value, const Enumerations& enumerations, MapField& field,
                  Problems& problems) {
    const Members members(
        value, {"bits", "access", "side-effects", "text", "values", "signed", "scale", "offset", "unit"},
        problems);
    if (const JsonValue* const bits = field.bits.empty() ? members.need("bits") : members.find("bits"))
        readBits(bits->text, *bits, field, problems);
    if (const auto word = members.string("access"))
        readAccess(*word, *members.find("access"), field, problems);
    field.sideEffects = members.flag("side-effects").value_or(field.sideEffects);
    field.text = members.string("text", kLongestText).value_or(field.text);
    if (const JsonValue* const values = members.find("values")) {
        const auto named =
            values->kind == JsonValue::Kind::string ? enumerations.find(values->text) : enumerations.end();
        if (values->kind != JsonValue::Kind::string)
            field.choices = readChoices(*values, problems);
        else if (named == enumerations.end())
            problems.add(*values, "names no enumeration of this file");
        else
            field.choices = named->second;
    }
    readMeaning(members, field);
}

} // namespace

std::string takeBits(std::string_view text, MapField& field) {
    field.bits.clear();
    field.mask = 0;
    field.width = 0;
    std::string_view left = text;
    bool isMore = true;
    while (isMore) {
        isMore = left.find(',') != std::string_view::npos;
        if (readPiece(cutFrom(left, ","), field))
            continue;
        field.bits.clear();
        return "'" + printable(text) + R"(' are no bits: "15", "15:12" and "13,6" are, up to 63)";
    }
    bool isTwice = false;
    for (const MapBits& piece : field.bits) {
        const unsigned width = piece.high - piece.low + 1U;
        const std::uint64_t mask = lowBits(width) << piece.low;
        isTwice = isTwice || (field.mask & mask) != 0;
        field.mask |= mask;
        field.width += width;
    }
    return isTwice ? "has a bit twice" : "";
}

std::optional<MapAccess> accessOf(std::string_view word) {
    for (const MapAccess each : kAccesses)
        if (word == nameOf(each))
            return each;
    return std::nullopt;
}

std::vector<MapChoice> readChoices(const JsonValue& value, Problems& problems) {
    std::vector<MapChoice> choices;
    if (value.kind != JsonValue::Kind::object)
        problems.add(value, "has to be an object of values and their names, or the name of an enumeration");
    for (const JsonValue& each : value) {
        const auto number = numberIn(each.key);
        if (!number)
            problems.add(each, "is no whole number");
        else if (each.kind != JsonValue::Kind::string || each.text.empty() || each.text.size() > kLongestWord)
            problems.add(each, "has to be a string of 1 to 200 bytes");
        else
            choices.push_back({*number, std::string(each.text)});
    }
    std::stable_sort(choices.begin(), choices.end(),
                     [](const MapChoice& a, const MapChoice& b) { return a.value < b.value; });
    for (std::size_t i = 1; i < choices.size(); ++i)
        if (choices[i].value == choices[i - 1].value)
            problems.add(value, "has two names for " + std::to_string(choices[i].value));
    return choices;
}

void readField(const JsonValue& value, const Enumerations& enumerations, MapField& field,
               Problems& problems) {
    if (value.kind == JsonValue::Kind::string || value.kind == JsonValue::Kind::number)
        readShortForm(value, field, problems);
    else
        readLongForm(value, enumerations, field, problems);
}

} // namespace Orvane::Maps
