// Whether this process runs on the board itself.
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "tests/support/TemporaryRoot.h"
#include "tests/support/WrittenText.h"

#include <fstream>
#include <gtest/gtest.h>

namespace Orvane {
namespace {

using namespace OrvaneTest;

struct Verdict {
    bool local;
    WrittenText written;
};

Verdict verdictOf(const char* connectionName, const char* fileText) {
    BoardConnection connection(connectionName);
    Verdict verdict{};
    verdict.written = textWritten([&] {
        TemporaryRoot root;
        if (fileText != nullptr)
            root.addFile("boardInfo", "name", fileText);
        verdict.local = connection.isLocal();
    });
    return verdict;
}

TEST(BoardConnectionIsLocal, IsFalseWithAMessageWithoutTheFile) {
    const Verdict verdict = verdictOf("board7", nullptr);
    EXPECT_FALSE(verdict.local);
    EXPECT_EQ(verdict.written.error, "Couldn't read local board file: /boardInfo/name\n");
    EXPECT_EQ(verdict.written.output, "");
}

TEST(BoardConnectionIsLocal, MakesNoFile) {
    BoardConnection connection("board7");
    textWritten([&] {
        TemporaryRoot root;
        root.addFile("boardInfo", "other", "board7");
        EXPECT_FALSE(connection.isLocal());
        EXPECT_FALSE(std::ifstream("/boardInfo/name"));
    });
}

TEST(BoardConnectionIsLocal, IsTrueAtTheFirstWordThatIsTheBoardsName) {
    const Verdict verdict = verdictOf("board7", "x board7 y\n");
    EXPECT_TRUE(verdict.local);
    EXPECT_EQ(verdict.written.output, "  X != BOARD7\n  BOARD7 == BOARD7\n");
    EXPECT_EQ(verdict.written.error, "");
}

TEST(BoardConnectionIsLocal, IsFalseWhenNoWordMatches) {
    const Verdict verdict = verdictOf("board7", "board70  board\n");
    EXPECT_FALSE(verdict.local);
    EXPECT_EQ(verdict.written.output, "  BOARD70 != BOARD7\n  BOARD != BOARD7\n");
}

TEST(BoardConnectionIsLocal, ReadsTheFirstLineOnly) {
    const Verdict verdict = verdictOf("board7", "other\nboard7\n");
    EXPECT_FALSE(verdict.local);
    EXPECT_EQ(verdict.written.output, "  OTHER != BOARD7\n");
}

TEST(BoardConnectionIsLocal, SplitsAtBlanksOnly) {
    const Verdict verdict = verdictOf("board7", "x\tboard7");
    EXPECT_FALSE(verdict.local);
    EXPECT_EQ(verdict.written.output, "  X\tBOARD7 != BOARD7\n");
}

TEST(BoardConnectionIsLocal, IsFalseAndSilentForAnEmptyFile) {
    const Verdict verdict = verdictOf("", "");
    EXPECT_FALSE(verdict.local);
    EXPECT_EQ(verdict.written.output, "");
    EXPECT_EQ(verdict.written.error, "");
}

} // namespace
} // namespace Orvane
