// A map as tables for people.
#include "ov_sys/maps/Content.h"
#include "ov_sys/maps/Numbers.h"

namespace Orvane {

namespace {

// Text that neither ends its cell nor is taken for markup.
std::string cell(std::string_view text) {
    std::string shown;
    for (const char c : text)
        if (static_cast<unsigned char>(c) < 0x20)
            shown += ' ';
        else if (std::string_view("|*_`<>[]\\").find(c) != std::string_view::npos)
            shown.append(1, '\\').append(1, c);
        else
            shown += c;
    return shown;
}

std::string meaningOf(const MapField& field) {
    std::string meaning = cell(field.text);
    if (field.isScaled)
        meaning += (meaning.empty() ? "x " : "; x ") + Maps::decimal(field.scale) +
                   (field.offset != 0 ? " + " + Maps::decimal(field.offset) : "") +
                   (field.unit.empty() ? "" : ' ' + cell(field.unit));
    for (const MapChoice& choice : field.choices)
        meaning += (meaning.empty() ? "" : "<br>") + std::to_string(choice.value) + ": " + cell(choice.name);
    return meaning;
}

std::string sectionOf(const MapRegister& reg) {
    std::string section = "\n## " + cell(reg.name()) + "\n\n" + reg.address().text() + ", " +
                          std::to_string(reg.width()) + " bits, " + nameOf(reg.access());
    if (reg.reset())
        section += ", reset " + Maps::hexadecimal(*reg.reset(), reg.width() / 4);
    if (!reg.isSafeToRead())
        section += ", not read by the way";
    section += ". " + cell(reg.text()) + '\n';
    if (reg.fields().empty())
        return section;
    section += "\n| bits | field | access | meaning |\n|---|---|---|---|\n";
    for (const DecodedField& each : RegisterMap::decode(reg, 0))
        section += "| " + each.field->bitsText() + " | " + cell(each.field->name) + " | " +
                   nameOf(each.field->access) + (each.field->sideEffects ? ", side effects" : "") + " | " +
                   meaningOf(*each.field) + " |\n";
    return section;
}

} // namespace

std::string RegisterMap::toMarkdown() const {
    std::string page = "# " + cell(name()) + "\n\n" + cell(text()) + '\n';
    for (const MapRegister* reg : inAddressOrder())
        page += sectionOf(*reg);
    return page;
}

} // namespace Orvane
