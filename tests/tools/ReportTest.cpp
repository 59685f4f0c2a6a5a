// The page that orvane log --html writes, as a browser shows it.
#include "tests/support/tools/Program.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kLog = "0,3,MW,1E,C010,CAFE\n0,3,MR,1E,C010,CAFE\n0,3,MR,1E,C010,CAFF\n"
                             "0,4,MR,01,0002,0A5C\n0,3,MW,80004000,DEADBEEF\nlink <b>up</b> </script>\n";

struct OrvaneReport : testing::Test {
    Folder folder;

    void SetUp() override {
        EXPECT_EQ(orvane({"log", folder.write("session.csv", kLog), "--html", folder.path("report.html")}),
                  prints(""));
    }

    // Runs the browser, which is in the test's private network as well.
    std::string browse(const std::string& what) const {
        return shellOutput("timeout 100 chromium --headless --no-sandbox --disable-gpu --no-first-run"
                           " --disable-background-networking --disable-component-update --disable-sync"
                           " --user-data-dir=" +
                           folder.path("profile") + " " + what + " file://" + folder.path("report.html") +
                           " 2>/dev/null");
    }
};

#define NEEDS_CHROMIUM()                                                                                     \
    if (shellOutput("command -v chromium").empty())                                                          \
    GTEST_SKIP() << "the Debian package chromium is not installed"

TEST_F(OrvaneReport, ReferencesNothingOutsideItself) {
    const std::string page = folder.content("report.html");
    EXPECT_THAT(page, StartsWith("<!DOCTYPE html>"));
    EXPECT_THAT(page, Not(HasSubstr("src=")));
    EXPECT_THAT(page, Not(HasSubstr("<link rel=\"stylesheet")));
    EXPECT_THAT(page, HasSubstr("content=\"default-src 'none'; script-src 'sha256-"));
    EXPECT_THAT(page, HasSubstr("link \\u003cb>up\\u003c/b> \\u003c/script>"));
}

TEST_F(OrvaneReport, IsPlainAsciiWhateverStandsInTheLog) {
    const std::string log = folder.write("odd.csv", "0,3,MR,1E,C010,CAFE\n\xE2\x80\xA8 \xFF\n");
    EXPECT_EQ(orvane({"log", log, "--html", folder.path("odd.html")}), prints(""));
    const std::string page = folder.content("odd.html");
    EXPECT_THAT(page, HasSubstr("\"note\",\"\\u2028 \\ufffd\""));
    EXPECT_TRUE(std::all_of(page.begin(), page.end(), [](char each) { return each >= 0; }));
}

TEST_F(OrvaneReport, HasTheNamesAndFieldsOfRegistersThatAMapHas) {
    const std::string map =
        folder.write("wren.json", R"({"format": "orvane-map-1", "name": "wren", "registers": {
        "CONTROL": {"at": "30.0xC010", "fields": {"SPEED": {"bits": "6,13", "values": {"2": "1000 Mb/s"}},
                    "LEVEL": {"bits": "11:8", "signed": true, "scale": 0.5, "unit": "V", "text": "of <b>it</b>"}}}}})");
    EXPECT_EQ(orvane({"log", folder.path("session.csv"), "--html", folder.path("named.html"), "--map", map}),
              prints(""));
    EXPECT_THAT(
        folder.content("named.html"),
        HasSubstr(
            R"("name":"CONTROL","fields":[)"
            R"({"name":"LEVEL","text":"of \u003cb>it\u003c/b>","bits":[[11,8]],"signed":true,"scaled":true,)"
            R"("scale":0.5,"offset":0,"unit":"V","choices":[]},)"
            R"({"name":"SPEED","text":"","bits":[[6,6],[13,13]],"signed":false,"scaled":false,"scale":1,)"
            R"("offset":0,"unit":"","choices":[[2,"1000 Mb/s"]]}])"));
}

TEST_F(OrvaneReport, ShowsFieldsAndTheirHistory) {
    NEEDS_CHROMIUM();
    const std::string map =
        folder.write("wren.json", R"({"format": "orvane-map-1", "name": "wren", "registers": {
        "CONTROL": {"at": "30.0xC010", "fields": {"LED": "0: Lights the LED", "MODE": {"bits": "7:6", "values": {"3": "both"}}}}}})");
    ASSERT_EQ(orvane({"log", folder.path("session.csv"), "--html", folder.path("report.html"), "--map", map,
                      "--force"}),
              prints(""));
    const std::string page = browse("--dump-dom");
    EXPECT_THAT(page, HasSubstr("<th scope=\"row\">MODE</th><td class=\"\">both</td><td class=\"\"></td>"));
    EXPECT_THAT(
        page,
        HasSubstr("<th scope=\"row\">LED</th><td class=\"changed\">1</td><td class=\"\">1 change</td>"));
    EXPECT_THAT(page, HasSubstr("<span class=\"changed\">LED 1 was 0</span>"));
}

TEST_F(OrvaneReport, ShowsTotalsRegistersAndTheHistoryThatChangedMost) {
    NEEDS_CHROMIUM();
    const std::string page = browse("--dump-dom");
    EXPECT_THAT(page, HasSubstr("<title>session.csv - Orvane</title>"));
    EXPECT_THAT(page, HasSubstr("<b>5</b> <span>accesses</span>"));
    EXPECT_THAT(page, HasSubstr("<b>2</b> <span>writes</span>"));
    EXPECT_THAT(page, HasSubstr("<b>1</b> <span>changed between reads</span>"));
    EXPECT_THAT(page, HasSubstr("<code>0x80004000</code></button></td><td></td><td class=\"number\">0</td>"
                                "<td class=\"number\">1</td>"));
    EXPECT_THAT(page, HasSubstr("<code>1.0x0002</code></button></td><td>PMA.ID1</td>"));
    EXPECT_THAT(page, HasSubstr("<h2>30.0xC010</h2><p class=\"soft\">on PHY 3 of adapter 0</p>"));
    EXPECT_THAT(page, HasSubstr("<code class=\"changed\">0xCAFF</code>"));
    EXPECT_THAT(page, HasSubstr("<span class=\"\">1</span><span class=\"changed\">1</span></span></td>"));
    EXPECT_THAT(page, HasSubstr("link &lt;b&gt;up&lt;/b&gt; &lt;/script&gt;</td>"));
}

TEST_F(OrvaneReport, ShowsServicesAndNotesInTheirPlacesOfALogWithTimes) {
    const std::string log = folder.write(
        "timed.log", "adapter,phy,op,mmd,address,value,time,port,outcome,arguments,result\n"
                     "0,3,MR,1E,C010,CAFE,2026-11-22T02:08:33.000001Z,OV0001:0,done,,\n"
                     "0,3,gpio.read,,,,2026-11-22T02:08:33.000002Z,OV0001:0,done,lines=03,states=01\n"
                     ",,note,,,,2026-11-22T02:08:33.000003Z,,,link up,\n");
    ASSERT_EQ(orvane({"log", log, "--html", folder.path("timed.html")}), prints(""));
    const std::string page = folder.content("timed.html");
    EXPECT_THAT(page, HasSubstr(R"("accesses":[[0,0,"0xCAFE","2026-11-22T02:08:33.000001Z"]])"));
    EXPECT_THAT(page, HasSubstr(R"("registers":[{"device":"OV0001:0",)"));
    EXPECT_THAT(
        page,
        HasSubstr(R"("timeline":[[1,"2026-11-22T02:08:33.000002Z","OV0001:0","gpio.read","lines=03",)"
                  R"("states=01","done"],[1,"2026-11-22T02:08:33.000003Z","","note","link up","",""]])"));
}

TEST_F(OrvaneReport, CanBeDrawn) {
    NEEDS_CHROMIUM();
    browse("--window-size=800,600 --screenshot=" + folder.path("page.png"));
    EXPECT_THAT(folder.content("page.png"), StartsWith("\x89PNG"));
}

} // namespace
} // namespace OrvaneTest
