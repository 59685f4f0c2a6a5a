// Execution of queued MDIO accesses: the one request, the values, and what is left in the queue.
#include "ov_sys/Interface/buses/MdioAsync.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/MdioOperations.h"
#include "tests/support/NamedParam.h"
#include "tests/support/SessionOnBoard.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace OrvaneTest {
namespace {

using Orvane::SessionWrapper;
using Orvane::Exceptions::AccessDenied;
using Orvane::Exceptions::InvalidSession;
using Orvane::MDIO::MdioAsync;
using OrvaneSim::Fault;
using OrvaneSim::Space;
using testing::ElementsAre;
using testing::IsEmpty;

struct Format {
    std::string name;
    Words (MdioAsync::*execute)(SessionWrapper session);
    unsigned procedure;
    Space space;
    unsigned int prefix; // of the address words
};

const Format kFormats[] = {
    {"Clause45", &MdioAsync::execute, 9, Space::C45, 0x25000000},
    {"Clause22", &MdioAsync::execute_c22, 13, Space::C22, 0x25000000},
    {"Extension32", &MdioAsync::execute_c22_32bit, 20, Space::Ext32, 0},
};

class MdioQueueExecution : public testing::TestWithParam<Format>, protected SessionOnBoard {
protected:
    Words execute() { return (queue.*GetParam().execute)(&session); }
    void setRegister(unsigned address, unsigned value) {
        board.setRegister(GetParam().space, 1, 5, address, value);
    }
    // The address word of a register of this session.
    unsigned int word(unsigned address) const { return GetParam().prefix | address; }
    WireCall block(unsigned call, const Words& data, const Words& writes, const Words& reads,
                   const Words& runs) const {
        return mdioCall(GetParam().procedure, mixedParam(identity(call), data, writes, reads, runs));
    }

    MdioAsync queue;
};

INSTANTIATE_TEST_SUITE_P(In, MdioQueueExecution, testing::ValuesIn(kFormats), NamedParam{});

TEST_P(MdioQueueExecution, OfReadsAndAWriteSendsTheirRuns) {
    queue.read(0x10);
    queue.read(0x11);
    queue.write(0x12, 0x77);
    queue.read(0x13);
    execute();
    EXPECT_THAT(wireCalls(board), ElementsAre(block(0, {0x77}, {word(0x12)},
                                                    {word(0x10), word(0x11), word(0x13)}, {0, 2, 1, 1})));
}

TEST_P(MdioQueueExecution, ReturnsTheValuesOfTheReadsInOrder) {
    setRegister(0x10, 0xAAAA);
    setRegister(0x11, 0xBBBB);
    queue.read(0x10);
    queue.read(0x11);
    queue.write(0x12, 0x77);
    queue.read(0x12);
    EXPECT_EQ(execute(), (Words{0xAAAA, 0xBBBB, 0x77}));
}

TEST_P(MdioQueueExecution, OfWritesOnlyReturnsNothingAfterOneCall) {
    queue.write(0x10, 1);
    queue.write(0x11, 2);
    EXPECT_THAT(execute(), IsEmpty());
    EXPECT_THAT(wireCalls(board), ElementsAre(block(0, {1, 2}, {word(0x10), word(0x11)}, {}, {2})));
}

TEST_P(MdioQueueExecution, OfAnEmptyQueueMakesNoCall) {
    EXPECT_THAT(execute(), IsEmpty());
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

TEST_P(MdioQueueExecution, OfAnEmptyQueueNeedsNoSession) {
    EXPECT_THAT((queue.*GetParam().execute)(nullptr), IsEmpty());
}

TEST_P(MdioQueueExecution, LeavesAnEmptyQueueThatCountsAWriteRun) {
    queue.read(0x10);
    execute();
    EXPECT_FALSE(queue.haveQueued());
    EXPECT_TRUE(queue.lastWasWrite);
    queue.write(0x11, 1);
    queue.read(0x12);
    execute();
    EXPECT_THAT(wireCalls(board), ElementsAre(block(0, {}, {}, {word(0x10)}, {0, 1}),
                                              block(1, {1}, {word(0x11)}, {word(0x12)}, {1, 1})));
}

TEST_P(MdioQueueExecution, SendsTheTopByteOfAddressesAsItsFormatWants) {
    queue.write(0xFFE00001, 7);
    queue.read(0xFFE00002);
    execute();
    const bool masked = GetParam().space != Space::Ext32;
    EXPECT_THAT(wireCalls(board), ElementsAre(block(0, {7}, {masked ? 0x25E00001 : 0xFFE00001},
                                                    {masked ? 0x25E00002 : 0xFFE00002}, {1, 1})));
}

TEST_P(MdioQueueExecution, CountsTheOpenRunOfAClearedQueueIn) {
    queue.write(0x10, 1);
    queue.clear();
    queue.read(0x11);
    execute();
    EXPECT_THAT(wireCalls(board), ElementsAre(block(0, {}, {}, {word(0x11)}, {1, 1})));
}

TEST_P(MdioQueueExecution, OfAQueueFinalizedInTheMiddleSendsItsRunsAsTheyAre) {
    queue.read(0x10);
    queue.finalize();
    queue.read(0x11);
    execute();
    EXPECT_THAT(wireCalls(board), ElementsAre(block(0, {}, {}, {word(0x10), word(0x11)}, {0, 1, 1})));
}

TEST_P(MdioQueueExecution, ThatFailsKeepsTheFinalizedQueue) {
    queue.write(0x10, 1);
    queue.read(0x11);
    board.inject({"mdio", "", Fault::Kind::ResultCode, 1, -13});
    EXPECT_THROW(execute(), AccessDenied);
    EXPECT_EQ(queue.runs, (Words{1, 1}));
    EXPECT_EQ(queue.currentRun, 0U);
    EXPECT_FALSE(queue.lastWasWrite);
    EXPECT_EQ(queue.readAddresses, Words{0x11});
}

TEST_P(MdioQueueExecution, ThatFailedCanBeRepeated) {
    queue.write(0x10, 1);
    queue.read(0x11);
    EXPECT_THROW((queue.*GetParam().execute)(nullptr), InvalidSession);
    setRegister(0x11, 0xBEEF);
    EXPECT_EQ(execute(), Words{0xBEEF});
    EXPECT_THAT(wireCalls(board), ElementsAre(block(0, {1}, {word(0x10)}, {word(0x11)}, {1, 1})));
}

TEST_P(MdioQueueExecution, ThatFailedCountsWhatIsQueuedNextInARunOfTheOtherKind) {
    queue.write(0x10, 1);
    queue.read(0x11);
    EXPECT_THROW((queue.*GetParam().execute)(nullptr), InvalidSession);
    queue.read(0x12);
    queue.finalize();
    EXPECT_EQ(queue.runs, (Words{1, 1, 1})); // the third run is one of writes
    queue.write(0x13, 2);
    queue.finalize();
    EXPECT_EQ(queue.runs,
              (Words{1, 1, 1, 0, 1})); // the fifth as well, the write behind an empty run of reads
}

TEST_P(MdioQueueExecution, ThatFailedIsForgottenByClearing) {
    queue.write(0x10, 1);
    queue.read(0x11);
    EXPECT_THROW((queue.*GetParam().execute)(nullptr), InvalidSession);
    queue.clear();
    queue.read(0x12);
    execute();
    EXPECT_THAT(wireCalls(board), ElementsAre(block(0, {}, {}, {word(0x12)}, {0, 1})));
}

TEST_P(MdioQueueExecution, HoldsTheQueueUntilTheBoardHasAnswered) {
    constexpr int kAnswerAfterMs = 1500;
    board.inject({"mdio", "", Fault::Kind::DelayReply, 1, kAnswerAfterMs});
    queue.read(0x10);
    std::thread executing([&] { execute(); });
    board.waitFor([](const OrvaneSim::Request& request) { return request.program == "mdio"; });
    const bool locked = queue.queueMutex.try_lock();
    if (locked)
        queue.queueMutex.unlock();
    executing.join();
    EXPECT_FALSE(locked);
}

TEST_P(MdioQueueExecution, TakesWhatOtherThreadsQueueMeanwhile) {
    constexpr unsigned kReads = 200;
    setRegister(0x10, 0xAAAA);
    std::thread queueing([&] {
        for (unsigned i = 0; i < kReads; ++i)
            queue.read(0x10);
    });
    Words values;
    const auto take = [&] {
        const Words some = execute();
        values.insert(values.end(), some.begin(), some.end());
    };
    for (int i = 0; i < 20; ++i)
        take();
    queueing.join();
    take();
    EXPECT_EQ(values, Words(kReads, 0xAAAA));
}

class MdioQueueExecutionDeathTest : public testing::Test, protected SessionOnBoard {};

TEST_F(MdioQueueExecutionDeathTest, AbortsForWriteAddressesWithoutTheirData) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    MdioAsync queue;
    queue.blockWrite({0x10, 0x11}, {});
    EXPECT_EXIT(queue.execute(&session), testing::KilledBySignal(SIGABRT),
                testing::HasSubstr("ov_sys/Interface/buses/rpc/RPCMDIO: Assertion "
                                   "`writeAddresses.size() == writeData.size()' failed.\n"));
}

} // namespace
} // namespace OrvaneTest
