// The map of IEEE 802.3 beside the constants of <linux/mii.h> and <linux/mdio.h>, which others wrote: each
// has to agree with the register, mask or value that linux-constants.txt names for it, or stands there with
// the reason why not.
#include "tests/support/maps/LinuxConstants.h"

#include <fstream>
#include <gtest/gtest.h>
#include <orvane/maps.hpp>
#include <sstream>

namespace OrvaneTest {
namespace {

using namespace Orvane;

struct Line {
    std::string kind;
    std::string rest;
};

std::map<std::string, Line> linesOfTheList() {
    std::map<std::string, Line> lines;
    std::ifstream file(ORVANE_LINUX_CONSTANTS);
    for (std::string name, kind, rest; file >> name >> kind && std::getline(file >> std::ws, rest);)
        EXPECT_TRUE(lines.insert({name, {kind, rest}}).second) << name << " is listed twice";
    return lines;
}

LinuxConstants constantsOfTheHeaders() {
    LinuxConstants constants;
    constants.read("/usr/include/linux/mii.h");
    constants.read("/usr/include/linux/mdio.h");
    return constants;
}

// What the map has for "FIELD FIELD...", as one mask.
std::uint64_t maskOf(const std::string& fields) {
    std::istringstream names(fields);
    std::uint64_t mask = 0;
    for (std::string name; names >> name;)
        mask |= RegisterMap::ieee8023().at(name).field->mask;
    return mask;
}

// What the map has for "FIELD CHOICE", as a register's value.
std::uint64_t valueOf(const std::string& text) {
    const std::size_t space = text.find(' ');
    const MapField& field = *RegisterMap::ieee8023().at(text.substr(0, space)).field;
    const MapChoice* const choice = field.choice(std::string_view(text).substr(space + 1));
    if (choice == nullptr)
        throw MapError("there is no value " + text);
    return field.insert(0, choice->value);
}

std::uint64_t mapsValue(const Line& line) {
    const RegisterMap& map = RegisterMap::ieee8023();
    if (line.kind == "register")
        return map.at(line.rest).reg->address().number;
    if (line.kind == "mmd")
        return map.match(line.rest + ".*").at(0).reg->address().mmd;
    if (line.kind == "mask")
        return maskOf(line.rest);
    if (line.kind == "high-mask") // the second of two registers in one number
        return maskOf(line.rest) << 16U;
    if (line.kind == "value")
        return valueOf(line.rest);
    throw MapError("'" + line.kind + "' is nothing to compare with");
}

TEST(LinuxConstants, EachAgreesWithTheMapOrIsListedWithTheReason) {
    const LinuxConstants constants = constantsOfTheHeaders();
    const auto lines = linesOfTheList();
    unsigned agreed = 0;
    for (const std::string& name : constants.names()) {
        const auto found = lines.find(name);
        if (found == lines.end()) {
            ADD_FAILURE() << name << " is not listed";
        } else if (found->second.kind == "not:") {
            EXPECT_GT(found->second.rest.size(), 10U) << name << " has no reason";
        } else {
            EXPECT_EQ(constants.value(name).value(), mapsValue(found->second)) << name;
            ++agreed;
        }
    }
    EXPECT_GE(agreed, 330U);
}

TEST(LinuxConstants, TheListHasNoneThatTheHeadersDoNotHave) {
    const LinuxConstants constants = constantsOfTheHeaders();
    for (const auto& [name, line] : linesOfTheList())
        EXPECT_EQ(std::count(constants.names().begin(), constants.names().end(), name), 1) << name;
}

TEST(LinuxConstants, AreReadFromTheHeadersAsTheCompilerDoes) {
    const LinuxConstants constants = constantsOfTheHeaders();
    EXPECT_GE(constants.names().size(), 437U);
    EXPECT_EQ(constants.value("MDIO_CTRL1_SPEED2_5G"), 0x2058U);
    EXPECT_EQ(constants.value("MDIO_DEVS_VEND2"), 0x80000000U);
    EXPECT_EQ(constants.value("BMCR_SPEED10"), 0U);
}

} // namespace
} // namespace OrvaneTest
