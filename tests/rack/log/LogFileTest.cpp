// A log's file when it is full, taken away, or somebody else's, too.
#include "ov_sys/rack/log/LogFile.h"

#include "tests/support/rack/LogFolder.h"

#include <csignal>
#include <fcntl.h>
#include <future>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace OrvaneTest {
namespace {

using Orvane::FileDescriptor;
using Orvane::RackLog::LogFile;

struct RackLogFile : testing::Test, protected LogFolder {};

int errorOf(LogFile& file, const std::string& lines) {
    try {
        file.append(lines);
        return 0;
    } catch (const std::system_error& problem) {
        return problem.code().value();
    }
}

// Files of this process get no longer.
void allowFiles(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
}

TEST_F(RackLogFile, GrowsAtItsEnd) {
    LogFile(path).append("first\n");
    LogFile again(path);
    EXPECT_FALSE(again.empty());
    again.append("second\n");
    EXPECT_EQ(text(), "first\nsecond\n");
}

TEST_F(RackLogFile, IsMade) {
    umask(022);
    EXPECT_TRUE(LogFile(path).empty());
    EXPECT_EQ(text(), "");
    struct stat about {};
    stat(path.c_str(), &about);
    EXPECT_EQ(about.st_mode & 0777U, 0644U);
}

TEST_F(RackLogFile, LeavesTheSignalsOfTheThreadAsTheyAre) {
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    pthread_sigmask(SIG_SETMASK, &blocked, nullptr);
    LogFile(path).append("line\n");
    sigset_t after;
    pthread_sigmask(SIG_BLOCK, nullptr, &after);
    EXPECT_EQ(sigismember(&after, SIGUSR1), 1);
    EXPECT_EQ(sigismember(&after, SIGPIPE), 0);
}

TEST_F(RackLogFile, ThatCannotBeOpenedIsRefused) {
    EXPECT_THROW(LogFile("/"), std::system_error);
    EXPECT_THROW(LogFile(folder + "/nowhere/log"), std::system_error);
}

TEST_F(RackLogFile, HoldsNoPieceOfALineThatDidNotFit) {
    LogFile file(path);
    file.append("whole\n");
    allowFiles(9);
    EXPECT_EQ(errorOf(file, "too long\n"), EFBIG);
    EXPECT_EQ(text(), "whole\n");
    allowFiles(RLIM_INFINITY);
    file.append("next\n");
    EXPECT_EQ(text(), "whole\nnext\n");
}

TEST_F(RackLogFile, OnAFullDiskSaysSo) {
    LogFile file("/dev/full");
    EXPECT_EQ(errorOf(file, "line\n"), ENOSPC);
}

// A pipe with room for a page, and its reader.
struct SmallPipe {
    FileDescriptor reader;
    explicit SmallPipe(const std::string& path) {
        mkfifo(path.c_str(), 0600);
        open(path);
        fcntl(reader.get(), F_SETPIPE_SZ, 4096);
    }
    void open(const std::string& path) {
        reader = FileDescriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
        fcntl(reader.get(), F_SETFL, 0);
    }
    std::string read(std::size_t bytes) const {
        std::string text(bytes, '\0');
        text.resize(static_cast<std::size_t>(std::max<ssize_t>(::read(reader.get(), text.data(), bytes), 0)));
        return text;
    }
};

TEST_F(RackLogFile, WithoutReaderRaisesNoSignal) {
    SmallPipe pipe(path);
    LogFile file(path);
    pipe.reader.reset();
    sigset_t others; // which are pending, and the program's own
    sigemptyset(&others);
    for (const int one : {SIGUSR2, SIGALRM}) {
        sigaddset(&others, one);
        pthread_sigmask(SIG_BLOCK, &others, nullptr);
        raise(one);
    }
    EXPECT_EQ(errorOf(file, "line\n"), EPIPE);
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
    sigset_t blocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
    EXPECT_EQ(sigismember(&blocked, SIGPIPE), 0);
    pipe.open(path);
    file.append("next\n"); // of which nothing was cut
    EXPECT_EQ(pipe.read(100), "next\n");
}

TEST_F(RackLogFile, ThatCannotBeShortenedHasTheCutLineMarked) {
    SmallPipe pipe(path);
    LogFile file(path);
    auto writing = std::async(std::launch::async, [&] { return errorOf(file, std::string(100000, 'x')); });
    EXPECT_EQ(pipe.read(1), "x");
    pipe.reader.reset();
    EXPECT_EQ(writing.get(), EPIPE);
    pipe.open(path);
    EXPECT_EQ(pipe.read(8192), std::string(4095, 'x'));
    file.append("next\n");
    EXPECT_EQ(pipe.read(100), "#cut\nnext\n");
}

} // namespace
} // namespace OrvaneTest
