// A map as a C header of constants.
#include "ov_sys/maps/Content.h"
#include "ov_sys/maps/Members.h"
#include "ov_sys/maps/Numbers.h"

#include <cctype>
#include <unordered_set>

namespace Orvane {

namespace {

// Upper case, with '_' for each run of what no identifier holds.
std::string macroOf(std::string_view text) {
    std::string macro;
    for (const char c : text)
        if (std::isalnum(static_cast<unsigned char>(c)) != 0 && static_cast<unsigned char>(c) < 0x80)
            macro += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        else if (!macro.empty() && macro.back() != '_')
            macro += '_';
    while (!macro.empty() && macro.back() == '_')
        macro.pop_back();
    return macro;
}

// Text that cannot end the comment that it stands in.
std::string commentOf(std::string_view text) {
    std::string comment;
    for (const char c : text)
        if (static_cast<unsigned char>(c) < 0x20)
            comment += ' ';
        else if (c == '/' && !comment.empty() && comment.back() == '*')
            comment += " /";
        else if (c == '*' && !comment.empty() && comment.back() == '/')
            comment += " *";
        else
            comment += c;
    return comment;
}

class Header {
public:
    explicit Header(std::string prefix) : prefix_(std::move(prefix)) {}

    void add(const MapRegister& reg) {
        text_ += "\n/* " + reg.name() + " at " + reg.address().text() +
                 (reg.text().empty() ? "" : ": " + commentOf(reg.text())) + " */\n";
        const std::string name = macroOf(reg.name());
        if (reg.address().space == MapSpace::c45)
            define(name + "_MMD", std::to_string(reg.address().mmd));
        define(name + "_ADDRESS", number(reg.address().number));
        if (reg.address().page >= 0)
            define(name + "_PAGE", std::to_string(reg.address().page));
        if (reg.reset())
            define(name + "_RESET_VALUE", number(*reg.reset()));
        for (const MapField& field : reg.fields())
            add(name + '_' + macroOf(field.name), field);
    }

    std::string text() && { return std::move(text_); }

private:
    static std::string number(std::uint64_t value) {
        return Maps::hexadecimal(value, 4) + (value > 0xFFFFFFFF ? "ULL" : "U");
    }

    // A field in pieces has a mask and, where they are named, values in place; a shift would say nothing.
    void add(const std::string& name, const MapField& field) {
        define(name + "_MASK", number(field.mask));
        if (field.bits.size() == 1)
            define(name + "_SHIFT", std::to_string(field.bits.front().low));
        for (const MapChoice& choice : field.choices)
            define(name + "_IS_" + macroOf(choice.name), number(field.insert(0, choice.value)));
    }

    // Names that come out the same keep apart by a number.
    void define(const std::string& name, const std::string& value) {
        std::string unique = prefix_ + '_' + name;
        for (unsigned i = 2; !known_.insert(unique).second; ++i)
            unique = prefix_ + '_' + name + '_' + std::to_string(i);
        text_ += "#define " + unique + ' ' + value + '\n';
    }

    std::string prefix_;
    std::string text_;
    std::unordered_set<std::string> known_;
};

} // namespace

std::string RegisterMap::toCHeader(std::string_view prefix) const {
    if (!Maps::isIdentifier(prefix))
        throw MapError("the prefix of a C header has to be an identifier");
    Header header{std::string(prefix)};
    for (const MapRegister& reg : registers())
        header.add(reg);
    const std::string guard = std::string(prefix) + "_REGISTERS_H";
    return "/* Registers of the map " + name() + (text().empty() ? "" : ": " + commentOf(text())) +
           " */\n#ifndef " + guard + "\n#define " + guard + '\n' + std::move(header).text() + "\n#endif\n";
}

} // namespace Orvane
