// Switching the transaction log on and off.
#include "tests/support/capi/FlatInterface.h"
#include "tests/support/WrittenText.h"

#include <cstdio>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>

namespace OrvaneTest {
namespace {

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

std::string contentOf(std::FILE* file) {
    std::fflush(file);
    std::rewind(file);
    char text[4096];
    return {text, std::fread(text, 1, sizeof text, file)};
}

bool isOpen(int descriptor) {
    return fcntl(descriptor, F_GETFD) != -1;
}

// Starts and ends with logging off.
class LogStream : public testing::Test {
protected:
    LogStream() { HW_DisableLogging(0); }
    ~LogStream() override { HW_DisableLogging(0); }

    static void expectOff() {
        EXPECT_EQ(HW_log, nullptr);
        EXPECT_EQ(loggingToFile, 0);
    }
};

TEST_F(LogStream, IsNoneUntilItIsEnabled) {
    expectOff();
    EXPECT_EQ(isLoggingInitialized, 0);
}

TEST_F(LogStream, OfTheCallerBeginsWithTheHeader) {
    const File file(std::tmpfile());
    HW_EnableLogging(file.get());
    EXPECT_EQ(HW_log, file.get());
    EXPECT_EQ(loggingToFile, 1);
    EXPECT_EQ(contentOf(file.get()), kHeader);
}

TEST_F(LogStream, OnStandardOutputBeginsWithTheHeader) {
    const WrittenText text = textWritten([] {
        HW_EnableLoggingStdout();
        EXPECT_EQ(HW_log, stdout);
        EXPECT_EQ(loggingToFile, 0);
        HW_Logging_MDIOWrite(0, 3, 1, 0, 0x1234);
        std::fflush(stdout);
    });
    EXPECT_EQ(text.output, std::string(kHeader) + "0,3,MW,01,0000,1234\n");
    EXPECT_EQ(text.error, "");
}

TEST_F(LogStream, OnStandardErrorBeginsWithTheHeader) {
    const WrittenText text = textWritten([] {
        HW_EnableLoggingStderr();
        EXPECT_EQ(HW_log, stderr);
        EXPECT_EQ(loggingToFile, 0);
        HW_Logging_MDIORead(0, 3, 1, 0, 0x1234);
    });
    EXPECT_EQ(text.error, std::string(kHeader) + "0,3,MR,01,0000,1234\n");
    EXPECT_EQ(text.output, "");
}

TEST_F(LogStream, ThatIsNullLeavesLoggingOff) {
    const WrittenText text = textWritten([] { HW_EnableLogging(nullptr); });
    EXPECT_EQ(text.output + text.error, "");
    EXPECT_EQ(HW_log, nullptr);
    EXPECT_EQ(loggingToFile, 1);
}

TEST_F(LogStream, ThatIsNullIsNotClosed) {
    HW_EnableLogging(nullptr);
    HW_DisableLogging(1);
    expectOff();
}

TEST_F(LogStream, OfTheCallerIsClosedWhenAsked) {
    std::FILE* file = std::tmpfile();
    const int descriptor = fileno(file);
    HW_EnableLogging(file);
    HW_DisableLogging(1);
    EXPECT_FALSE(isOpen(descriptor));
    expectOff();
}

TEST_F(LogStream, OfTheCallerIsClosedForAnyValueButZero) {
    std::FILE* file = std::tmpfile();
    const int descriptor = fileno(file);
    HW_EnableLogging(file);
    HW_DisableLogging(-2);
    EXPECT_FALSE(isOpen(descriptor));
}

TEST_F(LogStream, OfTheCallerStaysOpenOtherwise) {
    const File file(std::tmpfile());
    HW_EnableLogging(file.get());
    HW_DisableLogging(0);
    EXPECT_TRUE(isOpen(fileno(file.get())));
    expectOff();
}

TEST_F(LogStream, OnStandardOutputIsNotClosed) {
    const WrittenText text = textWritten([] {
        HW_EnableLoggingStdout();
        HW_DisableLogging(1);
        std::printf("still open");
        std::fflush(stdout);
    });
    EXPECT_EQ(text.output, std::string(kHeader) + "still open");
    expectOff();
}

TEST_F(LogStream, OnStandardErrorIsNotClosed) {
    const WrittenText text = textWritten([] {
        HW_EnableLoggingStderr();
        HW_DisableLogging(1);
        std::fprintf(stderr, "still open");
    });
    EXPECT_EQ(text.error, std::string(kHeader) + "still open");
}

TEST_F(LogStream, ThatIsReplacedStaysOpenAndGetsNoMore) {
    const File first(std::tmpfile());
    const File second(std::tmpfile());
    HW_EnableLogging(first.get());
    HW_EnableLogging(second.get());
    HW_Logging_MDIOWrite(0, 3, 1, 0, 0x1234);
    EXPECT_EQ(contentOf(first.get()), kHeader);
    EXPECT_EQ(contentOf(second.get()), std::string(kHeader) + "0,3,MW,01,0000,1234\n");
    EXPECT_EQ(loggingToFile, 1);
}

TEST_F(LogStream, ThatIsReplacedByAStandardStreamStaysOpenAndTheNewOneIsNotClosed) {
    const File first(std::tmpfile());
    HW_EnableLogging(first.get());
    const WrittenText text = textWritten([] {
        HW_EnableLoggingStderr();
        HW_DisableLogging(1);
    });
    EXPECT_EQ(text.error, kHeader);
    EXPECT_TRUE(isOpen(fileno(first.get())));
}

TEST_F(LogStream, WritesItsHeaderAgainWhenAsked) {
    const File file(std::tmpfile());
    HW_EnableLogging(file.get());
    HW_Logging_WriteColumnHeaders();
    EXPECT_EQ(contentOf(file.get()), std::string(kHeader) + kHeader);
}

TEST_F(LogStream, TakesFreeTextWhateverItsLevelAndCategory) {
    LogInMemory log;
    HW_Log(4, 2, "%s-%u-%04X", "text", 7U, 0xABU);
    HW_Log(-1, 99, "|plain");
    EXPECT_EQ(log.text(), "text-7-00AB|plain");
}

TEST_F(LogStream, TakesMessagesAsLines) {
    LogInMemory log;
    HW_LogMsg("%d percent");
    HW_LogMsg("");
    EXPECT_EQ(log.text(), "%d percent\n\n");
}

TEST_F(LogStream, SurvivesAMessageThatIsNull) {
    LogInMemory log;
    HW_LogMsg(nullptr);
    EXPECT_EQ(log.text().back(), '\n');
}

// What has reached a fully buffered file by now.
std::string written(int descriptor) {
    char text[256];
    const ssize_t size = pread(descriptor, text, sizeof text, 0);
    return {text, size > 0 ? static_cast<std::size_t>(size) : 0};
}

TEST_F(LogStream, IsFlushedByAMessageOnly) {
    const File file(std::tmpfile());
    HW_EnableLogging(file.get());
    HW_Logging_MDIOWrite(0, 3, 1, 0, 0x1234);
    HW_Log(4, 2, "text\n");
    EXPECT_EQ(written(fileno(file.get())), "");
    HW_LogMsg("message");
    EXPECT_EQ(written(fileno(file.get())), std::string(kHeader) + "0,3,MW,01,0000,1234\ntext\nmessage\n");
}

TEST_F(LogStream, InitialisationDoesNothing) {
    const WrittenText text = textWritten([] { HW_Logging_Initialize(); });
    EXPECT_EQ(text.output + text.error, "");
    EXPECT_EQ(isLoggingInitialized, 0);
    expectOff();
}

TEST_F(LogStream, ThatIsOffTakesNeitherTextNorHeader) {
    const WrittenText text = textWritten([] {
        HW_Log(4, 2, "%d", 1);
        HW_LogMsg("message");
        HW_LogMsg(nullptr);
        HW_Logging_WriteColumnHeaders();
        std::fflush(stdout);
    });
    EXPECT_EQ(text.output + text.error, "");
}

TEST_F(LogStream, ThatCannotBeWrittenIsIgnored) {
    const File full(std::fopen("/dev/full", "w"));
    ASSERT_NE(full, nullptr);
    HW_EnableLogging(full.get());
    HW_LogMsg("message");
    EXPECT_EQ(HW_log, full.get());
}

} // namespace
} // namespace OrvaneTest
