// The page that orvane export writes: dumps, logs and data sets.
#include "tests/support/tools/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using testing::HasSubstr;

constexpr const char* kDumpHead =
    "# orvane dump 2\n# version 1\n# date 2026-11-22T02:08:33Z\n"
    "# device OV0001:0\n# address 10.83.0.1\n# phy 3\n# space c45\n# ranges 1.2+2\n";

struct OrvaneExport : testing::Test {
    Folder folder;
    const std::string page = folder.path("page.html");

    std::string dump(const std::string& name, const std::string& values) const {
        return folder.write(name, kDumpHead + values);
    }

    // An interpreter that prints this and ends with that status.
    std::string python(const std::string& printed, int status) const {
        const std::string path = folder.write("python", "#!/bin/sh\ncat <<'END'\n" + printed +
                                                            "\nEND\nexit " + std::to_string(status) + "\n");
        shellOutput("chmod +x " + path);
        return path;
    }

    std::string dataSet() const {
        return folder.write("sweep.orvrun", std::string("SQLite format 3\0 and the rest", 30));
    }
};

TEST_F(OrvaneExport, OfDumpsHasEachRegisterWithItsValuesAndFields) {
    EXPECT_EQ(orvane({"export", dump("a.dump", "1.0x0002 0x0A5C\n1.0x0009 0x0001 0x00FF\n"),
                      dump("b.dump", "1.0x0002 0x0A5D\n"), "--html", page}),
              prints(""));
    const std::string content = folder.content("page.html");
    EXPECT_THAT(content,
                HasSubstr(R"({"title":"a.dump, b.dump","parts":[{"kind":"dumps","title":"a.dump, b.dump",)"
                          R"("dumps":[{"file":"a.dump","date":"2026-11-22T02:08:33Z","device":"OV0001:0",)"
                          R"("address":"10.83.0.1","phy":3,"identifier":""},{"file":"b.dump",)"));
    EXPECT_THAT(content, HasSubstr(R"({"address":"1.0x0002","values":["0x0A5C","0x0A5D"],"name":"PMA.ID1",)"
                                   R"("fields":[)"));
    EXPECT_THAT(content, HasSubstr(R"({"address":"1.0x0009","values":["0x0001",null],"mask":"0x00FF")"));
}

TEST_F(OrvaneExport, OfSeveralKindsHasAPartForEachUnderTheTitleThatWasAskedFor) {
    const std::string log = folder.write("s.csv", "0,3,MR,01,0002,0A5C\n");
    EXPECT_EQ(orvane({"export", dump("a.dump", "1.0x0002 0x0A5C\n"), log, dataSet(), "--html", page,
                      "--title", "<b>Monday</b>"},
                     {{"ORVANE_PYTHON", python(R"({"summary":{"name":"</script>"}})", 0)}}),
              prints(""));
    const std::string content = folder.content("page.html");
    EXPECT_THAT(content, HasSubstr(R"({"title":"\u003cb>Monday\u003c/b>","parts":[{"kind":"dumps",)"));
    EXPECT_THAT(content, HasSubstr(R"({"kind":"log","title":"s.csv","accesses":[[0,0,"0x0A5C"]],)"));
    EXPECT_THAT(content, HasSubstr(R"({"kind":"run","title":"sweep.orvrun","told":)"
                                   R"({"summary":{"name":"\u003c/script>"}}}]})"));
}

TEST_F(OrvaneExport, OfADataSetThatCannotBeReadSaysWhyAndLeavesNoPage) {
    const std::string file = dataSet();
    EXPECT_EQ(orvane({"export", file, "--html", page}, {{"ORVANE_PYTHON", python("it is no data set", 1)}}),
              fails(1, "orvane: " + file + ": it is no data set\n"));
    EXPECT_EQ(orvane({"export", file, "--html", page}, {{"ORVANE_PYTHON", python("Hello", 0)}}),
              fails(1, "orvane: " + file + ": the Python package orvane is of another version\n"));
    EXPECT_EQ(orvane({"export", file, "--html", page}, {{"ORVANE_PYTHON", "/no/python"}}),
              fails(1, "orvane: " + file +
                           ": /no/python: No such file or directory. It needs Python and its package orvane "
                           "(Debian: python3-orvane)\n"));
    EXPECT_FALSE(folder.has("page.html"));
}

TEST_F(OrvaneExport, OfAFileThatIsNothingOfTheKindLeavesNoPage) {
    const std::string good = dump("a.dump", "1.0x0002 0x0A5C\n");
    const std::string broken = dump("b.dump", "1.0x0002 purple\n");
    EXPECT_EQ(orvane({"export", good, broken, "--html", page}).status, 1);
    EXPECT_EQ(orvane({"export", good, folder.path("none"), "--html", page}),
              fails(1, "orvane: " + folder.path("none") + ": cannot read: No such file or directory\n"));
    EXPECT_FALSE(folder.has("page.html"));
}

TEST_F(OrvaneExport, OverwritesNoPageUnasked) {
    const std::string good = dump("a.dump", "1.0x0002 0x0A5C\n");
    folder.write("page.html", "mine");
    EXPECT_EQ(orvane({"export", good, "--html", page}),
              fails(1, "orvane: " + page + ": it exists; --force overwrites it\n"));
    EXPECT_EQ(folder.content("page.html"), "mine");
    EXPECT_EQ(orvane({"export", good, "--html", page, "--force"}), prints(""));
    EXPECT_THAT(folder.content("page.html"), HasSubstr("PMA.ID1"));
}

} // namespace
} // namespace OrvaneTest
