// orvane run, serve, metrics: hand their words to the Python package.
#include "tests/support/tools/Program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

TEST(OrvaneRun, HandsItsWordsToTheInterpreterAsTheyAre) {
    const Outcome outcome =
        orvane({"run", "--help", "sweep.py", "--tolerance", "eye=1 %"}, {{"ORVANE_PYTHON", "echo"}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, testing::StartsWith("-c import sys\n"));
    EXPECT_THAT(outcome.output, testing::EndsWith(" --help sweep.py --tolerance eye=1 %\n"));
}

TEST(OrvaneRun, HandsWordsOnThatAreVerbsHere) {
    const Outcome outcome =
        orvane({"run", "diff", "a.orvrun", "b.orvrun", "--tolerance", "eye=2"}, {{"ORVANE_PYTHON", "echo"}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, testing::EndsWith(" diff a.orvrun b.orvrun --tolerance eye=2\n"));
}

TEST(OrvaneServe, HandsItsWordsToItsOwnPartOfThePackage) {
    const Outcome outcome = orvane({"serve", "OV00*", "--write"}, {{"ORVANE_PYTHON", "echo"}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, testing::HasSubstr("from orvane.serve.__main__ import main\n"));
    EXPECT_THAT(outcome.output, testing::EndsWith(" OV00* --write\n"));
}

TEST(OrvaneMetrics, HandsItsWordsToItsOwnPartOfThePackage) {
    const Outcome outcome = orvane({"metrics", "--textfile", "orvane.prom"}, {{"ORVANE_PYTHON", "echo"}});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, testing::HasSubstr("from orvane.metrics.__main__ import main\n"));
    EXPECT_THAT(outcome.output, testing::EndsWith(" --textfile orvane.prom\n"));
}

TEST(OrvaneRun, HasTheStatusOfTheInterpreter) {
    EXPECT_EQ(orvane({"run", "show", "it.orvrun"}, {{"ORVANE_PYTHON", "false"}}), fails(1, ""));
}

TEST(OrvaneRun, WithoutAnInterpreterSaysWhatItNeeds) {
    EXPECT_EQ(orvane({"run", "sweep.py"}, {{"ORVANE_PYTHON", "/no/python"}}),
              fails(1, "orvane: run: /no/python: No such file or directory. It needs Python and its package "
                       "orvane (Debian: python3-orvane)\n"));
}

TEST(OrvaneRun, WithoutThePackageSaysWhatItNeeds) {
    const Outcome outcome =
        orvane({"run", "sweep.py"}, {{"ORVANE_PYTHON", "/usr/bin/python3"}, {"PYTHONPATH", "/no/folder"}});
    if (outcome.error.find("is missing") == std::string::npos)
        GTEST_SKIP() << "the package is installed here: " << outcome.error;
    EXPECT_EQ(outcome,
              fails(1, "orvane: run: the Python package orvane is missing for /usr/bin/python3 (Debian: "
                       "python3-orvane)\n"));
}

} // namespace
} // namespace OrvaneTest
