// Replies that are longer or shorter than what was asked for, and callers' lists that do not fit each other.
#include "ov_sys/Interface/buses/MDIO.h"
#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "tests/support/CannedReplies.h"
#include "tests/support/MdioOperations.h"
#include "tests/support/NamedParam.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::mdio;
using Orvane::SessionWrapper;
using OrvaneSim::Fault;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::KilledBySignal;

// The text of a failed check of the MDIO calls.
std::string failedCheck(const std::string& condition) {
    return "ov_sys/Interface/buses/rpc/RPCMDIO: Assertion `" + condition + "' failed.\n";
}

class MdioReply : public testing::Test, protected SessionOnBoard {
protected:
    MdioReply() {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        prepareRegisters(board);
    }
    // The next reply of the MDIO service has that many elements.
    void answerWith(std::int64_t count) { board.inject({"mdio", "", Fault::Kind::ReplyCount, 1, count}); }
};

using MdioReplyDeathTest = MdioReply;

TEST_F(MdioReplyDeathTest, OfNoValueAbortsASingleRead) {
    answerWith(0);
    EXPECT_EXIT(mdio.read(&session, 0x1E0001), KilledBySignal(SIGABRT),
                HasSubstr(failedCheck("result.data.data_len == 1")));
}

TEST_F(MdioReplyDeathTest, OfTwoValuesAbortsASingleClause22Read) {
    answerWith(2);
    EXPECT_EXIT(mdio.read_c22(&session, 0x11), KilledBySignal(SIGABRT),
                HasSubstr(failedCheck("result.data.data_len == 1")));
}

TEST_F(MdioReplyDeathTest, OfManyValuesAbortsASingle32BitRead) {
    answerWith(1000);
    EXPECT_EXIT(mdio.read_c22_zrExt32(&session, 0x1E0001), KilledBySignal(SIGABRT),
                HasSubstr(failedCheck("result.data.data_len == 1")));
}

TEST_F(MdioReplyDeathTest, WithOneValueTooManyAbortsAListRead) {
    answerWith(3);
    EXPECT_EXIT(mdio.blockRead(&session, {1, 2}), KilledBySignal(SIGABRT),
                HasSubstr(failedCheck("result.data.data_len == readData.size()")));
}

TEST_F(MdioReplyDeathTest, WithOneValueTooFewAbortsAListRead) {
    answerWith(1);
    EXPECT_EXIT(mdio.blockRead(&session, {1, 2}), KilledBySignal(SIGABRT),
                HasSubstr(failedCheck("result.data.data_len == readData.size()")));
}

TEST_F(MdioReplyDeathTest, WithAValueAbortsAListReadOfNothing) {
    answerWith(1);
    EXPECT_EXIT(mdio.blockRead(&session, {}), KilledBySignal(SIGABRT),
                HasSubstr(failedCheck("result.data.data_len == readData.size()")));
}

TEST_F(MdioReplyDeathTest, ThatEchoesAnotherPreambleCountAborts) {
    board.inject({"mdio", "mdio_setpreamblecount", Fault::Kind::OverrideWord, 1, 33});
    EXPECT_EXIT(mdio.setPreambleCount(&session, 32), KilledBySignal(SIGABRT),
                HasSubstr(failedCheck("result.value == params.value")));
}

using MdioListsDeathTest = MdioReply;

TEST_F(MdioListsDeathTest, OfDifferentLengthsAbortAListWrite) {
    EXPECT_EXIT(mdio.blockWrite(&session, {1, 2}, {1}), KilledBySignal(SIGABRT),
                HasSubstr(failedCheck("addresses.size() == data.size()")));
}

TEST_F(MdioListsDeathTest, OfThreeWriteAddressesAndTwoDataWordsAbortAMixedBlock) {
    EXPECT_EXIT(mdio.mixedBlock(&session, {1, 2, 3}, {1, 2}, {}, {3}), KilledBySignal(SIGABRT),
                HasSubstr(failedCheck("writeAddresses.size() == writeData.size()")));
}

TEST_F(MdioListsDeathTest, AreCheckedBeforeTheClauseOfAMixedBlock) {
    EXPECT_EXIT(Orvane::MDIO::RPC::mixedBlockExecute(session, {1}, {}, {}, {1},
                                                     static_cast<Orvane::MDIO::MDIO_clause>(7)),
                KilledBySignal(SIGABRT), HasSubstr(failedCheck("writeAddresses.size() == writeData.size()")));
}

// A mixed block in each frame format, reading the two prepared registers.
struct MixedBlock {
    std::string name;
    Words (*readTwo)(SessionWrapper session);
    Words (*readNothing)(SessionWrapper session);
    Words values;
};

const MixedBlock kMixedBlocks[] = {
    {"Clause45",
     [](SessionWrapper s) {
         return mdio.mixedBlock(s, {}, {}, {0x1E0001, 0x1E0002}, {0, 2});
     },
     [](SessionWrapper s) { return mdio.mixedBlock(s, {3}, {4}, {}, {1}); },
     {0x4501, 0x4502}},
    {"Clause22",
     [](SessionWrapper s) {
         return mdio.mixedBlock_c22(s, {}, {}, {0x11, 0x12}, {0, 2});
     },
     [](SessionWrapper s) { return mdio.mixedBlock_c22(s, {3}, {4}, {}, {1}); },
     {0x2211, 0x2212}},
    {"Extension32",
     [](SessionWrapper s) {
         return mdio.mixedBlock_c22_32bit(s, {}, {}, {0x1E0001, 0xFF000002}, {0, 2});
     },
     [](SessionWrapper s) { return mdio.mixedBlock_c22_32bit(s, {3}, {4}, {}, {1}); },
     {0x32000001, 0x32000002}},
};

class MdioMixedReply : public MdioReply, public testing::WithParamInterface<MixedBlock> {};

INSTANTIATE_TEST_SUITE_P(In, MdioMixedReply, testing::ValuesIn(kMixedBlocks), NamedParam{});

TEST_P(MdioMixedReply, WithMoreValuesThanAskedForLosesTheSurplus) {
    answerWith(500);
    EXPECT_EQ(GetParam().readTwo(&session), GetParam().values);
}

TEST_P(MdioMixedReply, WithFewerValuesThanAskedForLeavesTheRestZero) {
    answerWith(1);
    EXPECT_EQ(GetParam().readTwo(&session), (Words{GetParam().values[0], 0}));
}

TEST_P(MdioMixedReply, WithoutValuesLeavesAllZero) {
    answerWith(0);
    EXPECT_EQ(GetParam().readTwo(&session), (Words{0, 0}));
}

TEST_P(MdioMixedReply, WithValuesNobodyAskedForIsDropped) {
    answerWith(500);
    EXPECT_THAT(GetParam().readNothing(&session), IsEmpty());
}

// Replies to reads, word by word: status, number of values, values.
class MdioWords : public testing::Test, protected SessionOnBoard {
protected:
    Orvane::RPCClient& client() { return *session.connection->getClient(Orvane::BoardConnection::MDIO); }
};

TEST_F(MdioWords, OfSixteenBitReadsComeBackUnmasked) {
    const WireBytes reply = wire("00000000 00000001 89ABCDEF");
    const CannedReplies canned(client(), {reply, reply, reply});
    EXPECT_EQ(mdio.read(&session, 1), 0x89ABCDEFU);
    EXPECT_EQ(mdio.read_c22(&session, 1), 0x89ABCDEFU);
    EXPECT_EQ(mdio.blockRead(&session, {1}), Words{0x89ABCDEF});
}

TEST_F(MdioWords, OfABusyReplyDoNotCountInAListRead) {
    const CannedReplies canned(client(), {wire("FFFFFFF0 00000003 00000007 00000008 00000009"),
                                          wire("00000000 00000002 0000000A 0000000B")});
    EXPECT_EQ(mdio.blockRead(&session, {1, 2}), (Words{10, 11}));
}

TEST_F(MdioWords, OfABusyReplyLeaveNothingInAMixedBlock) {
    const CannedReplies canned(
        client(), {wire("FFFFFFF0 00000002 00000007 00000008"), wire("00000000 00000001 0000000A")});
    EXPECT_EQ(mdio.mixedBlock(&session, {}, {}, {1, 2}, {0, 2}), (Words{10, 0}));
}

TEST_F(MdioWords, ThatNobodyAskedForAreFreedAfterABusyReplyToo) {
    const CannedReplies canned(
        client(), {wire("FFFFFFF0 00000002 00000007 00000008"), wire("00000000 00000001 0000000A")});
    EXPECT_THAT(mdio.mixedBlock(&session, {3}, {4}, {}, {1}), IsEmpty());
}

class MdioUnknownClause : public testing::TestWithParam<int>, protected SessionOnBoard {
protected:
    Words execute() {
        return Orvane::MDIO::RPC::mixedBlockExecute(session, {1}, {2}, {3, 4}, {1, 2},
                                                    static_cast<Orvane::MDIO::MDIO_clause>(GetParam()));
    }
};

INSTANTIATE_TEST_SUITE_P(Number, MdioUnknownClause, testing::Values(3, -1, 2147483647));

TEST_P(MdioUnknownClause, IsReportedOnTheErrorStream) {
    const WrittenText written = textWritten([&] { execute(); });
    EXPECT_EQ(written.error, "OV execute invalid MDIO frame format\n");
    EXPECT_EQ(written.output, "");
}

TEST_P(MdioUnknownClause, GivesZerosWithoutACall) {
    EXPECT_EQ(execute(), (Words{0, 0}));
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

} // namespace
} // namespace OrvaneTest
