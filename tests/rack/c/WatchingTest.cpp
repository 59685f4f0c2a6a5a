// Events and counters, as a C program sees them.
#include "tests/support/rack/CRackOnBoard.h"
#include "tests/support/rack/LogFolder.h"

#include <cerrno>

namespace OrvaneTest {
namespace {

class CWatching : public testing::Test, protected CRackOnBoard {};

// What came to a callback, one line an event.
struct Heard {
    std::mutex mutex; // guards lines
    std::condition_variable came;
    std::vector<std::string> lines;

    static void callback(void* context, const orvane_event* event) {
        auto* const self = static_cast<Heard*>(context);
        const std::lock_guard<std::mutex> lock(self->mutex);
        self->lines.push_back(std::string(event->board) + ":" + std::to_string(event->port) + "/" +
                              std::to_string(event->phy) + " " + orvane_event_kind_text(event->kind));
        self->came.notify_all();
    }

    bool waitFor(const std::string& line) {
        std::unique_lock<std::mutex> lock(mutex);
        return came.wait_for(lock, 10s,
                             [&] { return std::find(lines.begin(), lines.end(), line) != lines.end(); });
    }
};

TEST_F(CWatching, EventsComeToTheCallback) {
    Heard heard;
    EXPECT_EQ(orvane_rack_on_event(rack, &Heard::callback, &heard, &failure), ORVANE_DONE);
    orvane_phy_open(phy, nullptr, nullptr);
    EXPECT_TRUE(heard.waitFor("BOARD7:1/3 opened"));
    board.forgetSessions();
    uint32_t value = 0;
    orvane_phy_read(phy, kRegister, nullptr, &value, nullptr);
    EXPECT_TRUE(heard.waitFor("BOARD7:1/3 lost"));
    EXPECT_TRUE(heard.waitFor("BOARD7:1/3 reopened"));
    orvane_phy_free(std::exchange(phy, nullptr));
    orvane_rack_free(std::exchange(rack, nullptr)); // before what the callback uses
}

TEST_F(CWatching, NoCallbackEndsTheEvents) {
    Heard heard;
    orvane_rack_on_event(rack, &Heard::callback, &heard, nullptr);
    EXPECT_EQ(orvane_rack_on_event(rack, nullptr, nullptr, &failure), ORVANE_DONE);
    orvane_phy_open(phy, nullptr, nullptr);
    orvane_phy_free(std::exchange(phy, nullptr));
    orvane_rack_free(std::exchange(rack, nullptr));
    EXPECT_EQ(heard.lines, std::vector<std::string>{});
}

TEST_F(CWatching, CountersNameBoardsProgramsAndLatencies) {
    uint32_t value = 0;
    for (int i = 0; i < 10; ++i)
        orvane_phy_read(phy, kRegister, nullptr, &value, nullptr);
    orvane_counters* counters = nullptr;
    ASSERT_EQ(orvane_rack_counters(rack, &counters, &failure), ORVANE_DONE);
    ASSERT_EQ(orvane_counters_size(counters), 1U);
    const orvane_board_counters* const counted = orvane_counters_at(counters, 0);
    EXPECT_STREQ(counted->board, kBoardName);
    EXPECT_EQ(counted->opens, 1U);
    EXPECT_EQ(counted->reopens, 0U);
    const auto* const end = counted->programs + counted->program_count;
    const auto* const mdio = std::find_if(counted->programs, end,
                                          [](const auto& one) { return std::string(one.program) == "mdio"; });
    ASSERT_NE(mdio, end);
    EXPECT_EQ(mdio->calls, 10U);
    EXPECT_EQ(mdio->succeeded, 10U);
    EXPECT_EQ(mdio->failed, 0U);
    EXPECT_GT(mdio->bytes_sent, 0U);
    EXPECT_GT(orvane_latency_percentile(mdio->latency, 50), 0.0);
    EXPECT_GE(orvane_latency_percentile(mdio->latency, 100), orvane_latency_percentile(mdio->latency, 50));
    EXPECT_EQ(orvane_counters_at(counters, 1), nullptr);
    orvane_counters_free(counters);
}

TEST_F(CWatching, LogGoesToAFile) {
    const LogFolder log;
    orvane_phy_open(phy, nullptr, nullptr);
    ASSERT_EQ(orvane_rack_log_to(rack, log.path.c_str(), &failure), ORVANE_DONE);
    orvane_phy_write(phy, kRegister, 7, nullptr, nullptr);
    EXPECT_EQ(orvane_rack_note(rack, "seven", &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_rack_end_log(rack, &failure), ORVANE_DONE);
    orvane_phy_write(phy, kRegister, 8, nullptr, nullptr);
    EXPECT_EQ(log.lines(), "0,3,MW,1E,C010,0007,TIME,BOARD7:1,done,,\n,,note,,,,TIME,,,seven,\n");
}

TEST_F(CWatching, LogGoesToAFunctionUntilItRefuses) {
    struct Sink {
        std::string text;
        int status = 0;
        static int take(void* context, const char* lines, std::size_t length) {
            auto* const self = static_cast<Sink*>(context);
            if (self->status == 0)
                self->text.append(lines, length);
            return self->status;
        }
    } sink;
    ASSERT_EQ(orvane_rack_log_to_sink(rack, &Sink::take, &sink, &failure), ORVANE_DONE);
    sink.text.clear();
    sink.status = ENOSPC;
    orvane_rack_note(rack, "lost", nullptr);
    sink.status = 0;
    orvane_rack_note(rack, "found", nullptr);
    orvane_rack_end_log(rack, nullptr);
    EXPECT_EQ(LogFolder::timeless(sink.text),
              ",,note,,,,TIME,,,1 lines are missing here: No space left on device,\n"
              ",,note,,,,TIME,,,found,\n");
}

TEST_F(CWatching, LogThatCannotBeIsRefused) {
    EXPECT_EQ(orvane_rack_log_to(rack, "/nowhere/log", &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_rack_log_to(nullptr, "log", &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_rack_log_to_sink(rack, nullptr, nullptr, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_rack_note(rack, nullptr, &failure), ORVANE_INVALID_ARGUMENT);
}

TEST_F(CWatching, NothingIsCountedWithoutARack) {
    EXPECT_EQ(orvane_rack_counters(nullptr, nullptr, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_counters_size(nullptr), 0U);
    EXPECT_EQ(orvane_latency_percentile(nullptr, 50), 0.0);
    EXPECT_STREQ(orvane_event_kind_text(99), "unknown event");
}

} // namespace
} // namespace OrvaneTest
