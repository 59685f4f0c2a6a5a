// XML as files have it: bounds, escapes, encodings, and numbers between blanks.
#include "tests/support/maps/ImportedText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using testing::ElementsAre;

TEST(Xml, WithADocumentTypeAtItsBeginningIsRefused) {
    EXPECT_EQ(importError("<!DOCTYPE device><device/>"), ":1: has a document type, which may hide anything");
}

TEST(Xml, Has200000ElementsAndAttributesAtMost) {
    const std::string most = "\n<node id='T'>" + times(99998, "<a b=''/>") + "<a/>";
    EXPECT_EQ(importError(most + "</node>"), "none");
    EXPECT_EQ(importError(most + "<a/></node>"), ":1: has more elements and attributes than 200000");
}

TEST(Xml, HasTextsWithEscapesAndWithout_AndInstructionsToOthersAreNoElements) {
    const RegisterMap map =
        importText("<device><peripherals><peripheral><name>P</name><registers><register><name>R</name>"
                   "<description>&lt;a&gt; &amp;</description></register><?register x?>"
                   "<register><name>S</name><addressOffset> 8\n</addressOffset>"
                   "<description><![CDATA[b < c]]></description></register>"
                   "</registers></peripheral></peripherals></device>")
            .map;
    EXPECT_THAT(linesOf(map), ElementsAre("P.R ext32:0x00000000", "P.S ext32:0x00000008"));
    EXPECT_EQ(map.find("P.R")->text(), "<a> &");
    EXPECT_EQ(map.find("P.S")->text(), "b < c");
}

TEST(Xml, OfAnotherEncodingBecomesUtf8) {
    const RegisterMap map = importText("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n"
                                       "<node id='T' description='\xB5s'/>")
                                .map;
    EXPECT_EQ(map.text(), "\xC2\xB5s");
}

} // namespace
} // namespace OrvaneTest
