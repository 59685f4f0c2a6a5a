// A map as one file of the source form.
#include "ov_sys/maps/Content.h"
#include "ov_sys/maps/JsonText.h"
#include "ov_sys/maps/Numbers.h"

namespace Orvane {

namespace {

using Maps::JsonText;

std::string distance(std::uint32_t number) {
    return Maps::hexadecimal(number, 4);
}

void writeChoices(JsonText& json, const std::vector<MapChoice>& choices) {
    json.open("values");
    for (const MapChoice& each : choices)
        json.member(std::to_string(each.value), each.name);
    json.close();
}

// In short where that says all.
void writeField(JsonText& json, const MapField& field, MapAccess usual) {
    if (field.choices.empty() && !field.isScaled && !field.isSigned) {
        std::string line = field.bitsText();
        if (field.access != usual)
            line.append(" ").append(nameOf(field.access));
        if (field.sideEffects)
            line += " side-effects";
        json.member(field.name, field.text.empty() ? line : line + ": " + field.text);
        return;
    }
    json.open(field.name);
    json.member("bits", field.bitsText());
    if (field.access != usual)
        json.member("access", nameOf(field.access));
    if (field.sideEffects)
        json.flag("side-effects");
    if (!field.text.empty())
        json.member("text", field.text);
    if (field.isSigned)
        json.flag("signed");
    if (field.scale != 1)
        json.raw("scale", Maps::decimal(field.scale));
    if (field.offset != 0)
        json.raw("offset", Maps::decimal(field.offset));
    if (!field.unit.empty())
        json.member("unit", field.unit);
    if (!field.choices.empty())
        writeChoices(json, field.choices);
    json.close();
}

void writePlace(JsonText& json, const Maps::Place& place) {
    json.member("at", place.isRelative ? distance(place.address.number) : place.address.text());
}

void writeRepetition(JsonText& json, const Maps::Repetition& repetition) {
    if (!repetition.isArray)
        return;
    json.raw("count", std::to_string(repetition.count));
    if (repetition.stride != 0)
        json.member("stride", Maps::hexadecimal(repetition.stride));
}

void writeRegister(JsonText& json, const Maps::RegisterDeclaration& reg) {
    const MapDefinition& definition = *reg.definition;
    json.open(reg.name);
    writePlace(json, reg.at);
    writeRepetition(json, reg.repetition);
    json.raw("width", std::to_string(definition.width));
    if (definition.reset)
        json.member("reset", Maps::hexadecimal(*definition.reset, definition.width / 4));
    if (definition.access != MapAccess::rw)
        json.member("access", nameOf(definition.access));
    if (definition.sideEffects)
        json.flag("side-effects");
    if (!definition.text.empty())
        json.member("text", definition.text);
    if (!definition.fields.empty()) {
        json.open("fields");
        for (const MapField& field : definition.fields)
            writeField(json, field, definition.access);
        json.close();
    }
    json.close();
}

void writeContent(JsonText& json, const Maps::BlockDeclaration& block);

void writeBlock(JsonText& json, const Maps::BlockDeclaration& block) {
    json.open(block.name);
    if (block.at)
        writePlace(json, *block.at);
    writeRepetition(json, block.repetition);
    if (block.page) {
        json.open("page");
        json.member("select", block.page->select);
        json.raw("value", std::to_string(block.page->value));
        if (block.page->step != 0)
            json.raw("step", std::to_string(block.page->step));
        json.close();
    }
    if (!block.text.empty())
        json.member("text", block.text);
    writeContent(json, block);
    json.close();
}

void writeContent(JsonText& json, const Maps::BlockDeclaration& block) {
    if (!block.registers.empty()) {
        json.open("registers");
        for (const Maps::RegisterDeclaration& each : block.registers)
            writeRegister(json, each);
        json.close();
    }
    if (!block.blocks.empty()) {
        json.open("blocks");
        for (const auto& each : block.blocks)
            writeBlock(json, *each);
        json.close();
    }
}

} // namespace

std::string RegisterMap::toJson() const {
    JsonText json;
    json.open();
    json.member("format", "orvane-map-1");
    json.member("name", name().empty() ? "map" : name());
    if (!text().empty())
        json.member("text", text());
    if (!identifiers().empty()) {
        std::string list;
        for (const MapIdentifier& each : identifiers())
            list += (list.empty() ? "\"" : ", \"") + Maps::hexadecimal(each.value, 8) + '/' +
                    Maps::hexadecimal(each.mask, 8) + '"';
        json.raw("identifiers", '[' + list + ']');
    }
    writeContent(json, content_->root);
    json.close();
    return json.text();
}

} // namespace Orvane
