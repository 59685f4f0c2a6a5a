// What becomes a map from another kind of file: texts, addresses and effects.
#include "tests/support/maps/ImportedText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using testing::ElementsAre;

TEST(Draft, KeepsTheFirst1024BytesOfTheTextsOfMapsAndFields) {
    const std::string text = "<description>" + std::string(1025, 'x') + "</description>";
    const RegisterMap map =
        importText(
            "<device>" + text + "<peripherals><peripheral><name>P</name><registers><register>" +
            "<name>R</name><fields><field><name>PLAIN</name><lsb>0</lsb><msb>0</msb>" + text +
            "</field><field><name>NAMED</name><lsb>1</lsb><msb>1</msb>" + text +
            "<enumeratedValues><enumeratedValue><name>on</name><value>1</value></enumeratedValue>"
            "</enumeratedValues></field></fields></register></registers></peripheral></peripherals></device>")
            .map;
    const std::string kept(1024, 'x');
    EXPECT_EQ(map.text(), kept);
    EXPECT_EQ(map.at("P.R.PLAIN").field->text, kept);
    EXPECT_EQ(map.at("P.R.NAMED").field->text, kept);
}

TEST(Draft, LeavesOutAnAddressThatRunsOverBehindTheBase) {
    ImportOptions options;
    options.base = 0x10;
    const auto linesAt = [&](const std::string& address) {
        const ImportedMap imported =
            importText("<device><peripherals><peripheral><name>P</name><baseAddress>" + address +
                           "</baseAddress><registers><register><name>R</name></register></registers>"
                           "</peripheral></peripherals></device>",
                       options);
        std::vector<std::string> lines = linesOf(imported.map);
        for (const std::string& report : reportsOf(imported))
            lines.push_back(report);
        return lines;
    };
    EXPECT_THAT(linesAt("0xFFFFFFEC"), ElementsAre("P.R ext32:0xFFFFFFFC"));
    for (const char* address : {"0xFFFFFFF0", "0x100000000", "0xFFFFFFFFFFFFFFF8"})
        EXPECT_THAT(linesAt(address), ElementsAre(std::string("1 P.R: ") + address +
                                                  " is no address of the space ext32; left out"));
}

TEST(Draft, FieldsHaveSideEffectsWhereTheFileSaysSo) {
    const ImportedMap imported = importText(
        "<device><peripherals><peripheral><name>P</name><registers><register><name>R</name><fields>"
        "<field><name>A</name><lsb>0</lsb><msb>0</msb></field>"
        "<field><name>B</name><lsb>1</lsb><msb>1</msb><readAction>set</readAction></field>"
        "</fields></register></registers></peripheral></peripherals></device>");
    EXPECT_FALSE(imported.map.at("P.R.A").field->sideEffects);
    EXPECT_TRUE(imported.map.at("P.R.B").field->sideEffects);
    const ImportedMap table = importText("register,address,field,bits\nR,7.1,F,0\n");
    EXPECT_FALSE(table.map.at("R.F").field->sideEffects);
}

} // namespace
} // namespace OrvaneTest
