// The sink for diagnostic lines: what it is given, when it is called, and how it is taken back.
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "tests/support/WrittenText.h"

#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace Orvane::Diagnostics {
namespace {

using OrvaneTest::textWritten;
using OrvaneTest::WrittenText;
using std::chrono::system_clock;

struct Told {
    Level level;
    std::string board;
    system_clock::time_point time;
    std::string line;
};

class DiagnosticsSink : public testing::Test {
protected:
    ~DiagnosticsSink() override { setSink(nullptr); }

    // What one line looks like to a sink.
    template <class Work>
    static Told toldBy(Work work) {
        Told told{};
        setSink([&told](const Message& message) {
            told = {message.level, message.board, message.time, message.line};
        });
        work();
        setSink(nullptr);
        return told;
    }
};

TEST_F(DiagnosticsSink, GetsTheLineInPlaceOfTheStreams) {
    Told told{};
    const WrittenText written = textWritten([&] { told = toldBy([] { error("port ", 7); }); });
    EXPECT_EQ(told.line, "port 7");
    EXPECT_EQ(written.error + written.output, "");
}

TEST_F(DiagnosticsSink, IsGivenTheLevel) {
    EXPECT_EQ(toldBy([] { output("a"); }).level, Level::Information);
    EXPECT_EQ(toldBy([] { warning("a"); }).level, Level::Warning);
    EXPECT_EQ(toldBy([] { error("a"); }).level, Level::Error);
}

TEST_F(DiagnosticsSink, IsGivenTheTime) {
    const auto before = system_clock::now();
    const Told told = toldBy([] { error("a"); });
    EXPECT_GE(told.time, before);
    EXPECT_LE(told.time, system_clock::now());
}

TEST_F(DiagnosticsSink, GetsNoLineEndsBeforeOrBehindTheLine) {
    EXPECT_EQ(toldBy([] { error("\nError: one\ntwo\n"); }).line, "Error: one\ntwo");
    EXPECT_EQ(toldBy([] { error("\n"); }).line, "");
}

TEST_F(DiagnosticsSink, IsGivenNoBoardWhenNoneIsKnown) {
    EXPECT_EQ(toldBy([] { error("a"); }).board, "");
}

TEST_F(DiagnosticsSink, IsGivenTheBoardOfTheInnermostScope) {
    const std::string outer = "OV0001";
    const std::string inner = "OV0002";
    const BoardScope outerScope(outer);
    EXPECT_EQ(toldBy([&] {
                  const BoardScope innerScope(inner);
                  error("a");
              }).board,
              "OV0002");
    EXPECT_EQ(toldBy([] { error("a"); }).board, "OV0001");
}

TEST_F(DiagnosticsSink, KnowsTheBoardsOfThreadsApart) {
    const std::string board = "OV0001";
    const BoardScope scope(board);
    EXPECT_EQ(toldBy([] { std::thread([] { error("a"); }).join(); }).board, "");
}

TEST_F(DiagnosticsSink, MayThrow) {
    setSink([](const Message&) { throw std::runtime_error("of the application"); });
    const WrittenText written = textWritten([] { error("a"); });
    EXPECT_EQ(written.error, "");
}

TEST_F(DiagnosticsSink, WritesItsOwnLinesToTheStreams) {
    setSink([](const Message& message) { error("while telling ", message.line); });
    const WrittenText written = textWritten([] { error("a"); });
    EXPECT_EQ(written.error, "while telling a\n");
}

TEST_F(DiagnosticsSink, MayTakeItselfBack) {
    setSink([](const Message&) { setSink(nullptr); });
    error("for the sink");
    const WrittenText written = textWritten([] { error("for the stream"); });
    EXPECT_EQ(written.error, "for the stream\n");
}

TEST_F(DiagnosticsSink, IsDestroyedWhenItIsTakenBack) {
    const auto held = std::make_shared<int>(0);
    setSink([held](const Message&) {});
    EXPECT_EQ(held.use_count(), 2);
    setSink(nullptr);
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(DiagnosticsSink, IsDestroyedBehindTheCallInWhichItTookItselfBack) {
    const auto held = std::make_shared<int>(0);
    long during = 0;
    setSink([held, &during](const Message&) {
        setSink(nullptr);
        during = held.use_count();
    });
    error("a");
    EXPECT_EQ(during, 2);
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(DiagnosticsSink, HasEndedItsCallsWhenAnotherOneIsInPlace) {
    std::promise<void> entered;
    std::promise<void> goOn;
    std::atomic<bool> ended{false};
    setSink([&](const Message&) {
        entered.set_value();
        goOn.get_future().wait();
        ended = true;
    });
    std::thread teller([] { error("a"); });
    entered.get_future().wait();
    auto replaced = std::async(std::launch::async, [&] {
        setSink(nullptr);
        return ended.load();
    });
    EXPECT_EQ(replaced.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    goOn.set_value();
    EXPECT_TRUE(replaced.get());
    teller.join();
}

TEST_F(DiagnosticsSink, LosesNoLineWhileSinksAreExchanged) {
    constexpr int kThreads = 4;
    constexpr int kLines = 500;
    std::atomic<int> told{0};
    std::atomic<int> telling{kThreads};
    const auto count = [&told](const Message&) { ++told; };
    setSink(count);
    std::vector<std::thread> tellers;
    for (int teller = 0; teller < kThreads; ++teller)
        tellers.emplace_back([&] {
            for (int line = 0; line < kLines; ++line)
                error("a");
            --telling;
        });
    while (telling > 0)
        setSink(count);
    for (std::thread& teller : tellers)
        teller.join();
    EXPECT_EQ(told, kThreads * kLines);
}

} // namespace
} // namespace Orvane::Diagnostics
