// Batches: how they are cut, and what is told of each operation.
#include "ov_sys/rack/values/Batch.h"

#include "tests/support/rack/RackOnBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;
using Json = nlohmann::ordered_json;
using State = OperationOutcome::State;

class RackBatch : public testing::Test, protected RackOnBoard {
protected:
    RackBatch() { phy.open(); }

    std::vector<State> statesOf(const BatchResult& done) {
        std::vector<State> states;
        for (std::size_t i = 0; i < done.size(); ++i)
            states.push_back(done.outcome(i).state);
        return states;
    }
    std::vector<std::size_t> lengthsOf(const char* procedure, const char* member) {
        std::vector<std::size_t> lengths;
        for (const Request& request : board.requestsOf(procedure))
            lengths.push_back(argumentsOf(request)[member].size());
        return lengths;
    }
};

TEST_F(RackBatch, LongListOfReadsIsCutIntoBlocksOfWhatABoardTakes) {
    for (std::uint32_t i = 0; i < 4096; ++i)
        board.setRegister(Space::C45, 1, 3, 0x1E0000 + i, i ^ 0xAAAA);
    Batch batch;
    const auto all = batch.read({30, 0}, 4096);
    const std::vector<std::uint32_t> values = phy.run(batch)[all];
    for (std::uint32_t i = 0; i < 4096; ++i)
        ASSERT_EQ(values[i], i ^ 0xAAAA);
    EXPECT_EQ(lengthsOf("mdio_read", "addresses"), (std::vector<std::size_t>{873, 873, 873, 873, 604}));
}

TEST_F(RackBatch, MixedBatchKeepsItsOrder) {
    board.setRegister(Space::C45, 1, 3, 0x10001, 5);
    Batch batch;
    const auto before = batch.read({1, 1});
    batch.write({1, 1}, 6);
    batch.write({1, 2}, 7);
    const auto after = batch.read({1, 1}, 2);
    const BatchResult done = phy.run(batch);
    EXPECT_EQ(done[before], 5U);
    EXPECT_EQ(done[after], (std::vector<std::uint32_t>{6, 7}));
    EXPECT_TRUE(done.complete());
    for (std::size_t i = 0; i < done.size(); ++i)
        EXPECT_EQ(done.outcome(i).code, 0) << i;
    const Json arguments = argumentsOf(board.requestsOf("mdio_mixedblock").at(0));
    EXPECT_EQ(arguments.back(), (Json{0, 1, 2, 2}));
}

TEST_F(RackBatch, EachSpaceGoesByItsOwnProcedure) {
    Batch batch;
    batch.write({1, 1}, 1);
    batch.write(clause22(4), 2);
    batch.write(ext32(8), 3);
    const auto read = batch.read(ext32(8));
    EXPECT_EQ(phy.run(batch)[read], 3U);
    EXPECT_EQ(procedures(), (std::vector<std::string>{"open_connection", "pingkeepalive", "mdio_write",
                                                      "mdio_mixedblock_c22", "mdio_mixedblock_c22_zrext32"}));
}

TEST_F(RackBatch, ListsReadInOneCall) {
    board.setRegister(Space::C45, 1, 3, 0x10007, 9);
    EXPECT_EQ(phy.read({{1, 7}, {3, 1}}), (std::vector<std::uint32_t>{9, 0}));
    EXPECT_EQ(phy.read({1, 7}, 1), (std::vector<std::uint32_t>{9}));
    EXPECT_EQ(phy.read({1, 0}, 0), std::vector<std::uint32_t>{});
    EXPECT_EQ(count("mdio_read"), 2U);
}

TEST_F(RackBatch, ListReadsEachSpaceByItsOwnProcedure) {
    board.setRegister(Space::C22, 1, 3, 2, 0x22);
    board.setRegister(Space::Ext32, 1, 3, 8, 0x12345678);
    EXPECT_EQ(phy.read({clause22(2), ext32(8)}), (std::vector<std::uint32_t>{0x22, 0x12345678}));
    EXPECT_EQ(phy.read(clause22(2), 1), (std::vector<std::uint32_t>{0x22}));
    EXPECT_EQ(count("mdio_read"), 0U);
    EXPECT_EQ(count("mdio_mixedblock_c22"), 2U);
    EXPECT_EQ(count("mdio_mixedblock_c22_zrext32"), 1U);
}

TEST_F(RackBatch, ListOfRegistersThatDoNotExistIsRefusedUnsent) {
    const Failure failure = failureOf([&] { phy.read({{1, 7}, {32, 1}}); });
    EXPECT_EQ(failure.kind(), FailureKind::InvalidArgument);
    EXPECT_EQ(failureOf([&] { phy.read({1, 0xFFFF}, 2); }).kind(), FailureKind::InvalidArgument);
    EXPECT_EQ(count("mdio_read"), 0U);
}

TEST_F(RackBatch, RefusedBlockTellsItsCodeAndThatTheRestWasNotSent) {
    Batch batch;
    batch.write({1, 1}, 1);
    batch.write(clause22(1), 2);
    batch.write({1, 3}, 3);
    inject(Fault::Kind::ResultCode, "mdio", "mdio_mixedblock_c22", 1, -5);
    const BatchResult done = phy.run(batch);
    EXPECT_EQ(statesOf(done), (std::vector<State>{State::Done, State::Refused, State::NotSent}));
    EXPECT_EQ(done.outcome(1).code, -5);
    EXPECT_EQ(done.outcome(1).value, 0U);
    EXPECT_EQ(done.outcome(0).code, 0);
    EXPECT_EQ(done.outcome(2).code, 0);
    ASSERT_TRUE(done.failure());
    EXPECT_EQ(done.failure()->code(), -5);
    EXPECT_EQ(done.failure()->location(), "from c22.1");
}

TEST_F(RackBatch, MixedBlockNamesItsRuns) {
    Batch batch;
    batch.read(clause22(1), 2);
    batch.write(clause22(4), 5);
    batch.read(clause22(4));
    EXPECT_EQ(phy.run(batch).outcome(1).code, 0);
    Batch reads;
    reads.read(clause22(1), 2);
    EXPECT_EQ(phy.run(reads).outcome(1).code, 0);
    std::vector<Json> runs; // writes, reads, writes, ...
    for (const Request& request : board.requestsOf("mdio_mixedblock_c22"))
        runs.push_back(argumentsOf(request)["runs"]);
    EXPECT_EQ(runs, (std::vector<Json>{{0, 2, 1, 1}, {0, 2}}));
}

TEST_F(RackBatch, UnansweredBlockIsUnknown) {
    Batch batch;
    batch.write({1, 1}, 1);
    const auto read = batch.read(clause22(1));
    inject(Fault::Kind::LoseReply, "mdio", "mdio_write", -1);
    const BatchResult done = phy.run(batch, within(300ms));
    EXPECT_EQ(statesOf(done), (std::vector<State>{State::Unknown, State::NotSent}));
    EXPECT_EQ(done.outcome(0).code, 0);
    EXPECT_EQ(done.outcome(1).code, 0);
    EXPECT_THROW(done[read], Failure);
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x10001), 1U);
}

TEST_F(RackBatch, ShortAnswerYieldsNoValueAtAll) {
    Batch batch;
    const auto reads = batch.read({1, 0}, 10);
    inject(Fault::Kind::ReplyCount, "mdio", "mdio_read", 1, 9);
    const BatchResult done = phy.run(batch);
    EXPECT_EQ(done.failure()->kind(), FailureKind::BadReply);
    EXPECT_EQ(done.outcome(0).state, State::Unknown);
    EXPECT_THROW(done[reads], Failure);
}

TEST_F(RackBatch, LostReplyOfOneBlockAmongSeveralIsRepaired) {
    for (std::uint32_t i = 0; i < 4096; ++i)
        board.setRegister(Space::C45, 1, 3, 0x1E0000 + i, i);
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
    const std::vector<std::uint32_t> values = phy.read({30, 0}, 4096);
    for (std::uint32_t i = 0; i < 4096; ++i)
        ASSERT_EQ(values[i], i);
    EXPECT_EQ(count("mdio_read"), 6U);
}

TEST_F(RackBatch, FailureCountsTheRequestsOfAllBlocks) {
    Batch batch;
    batch.read({1, 0}, 1000);
    inject(Fault::Kind::ResultCode, "mdio", "mdio_read", 1, -5);
    EXPECT_EQ(phy.run(batch).failure()->attempts(), 2U);
}

TEST_F(RackBatch, RegisterThatDoesNotExistKeepsTheWholeBatchFromBeingSent) {
    Batch batch;
    batch.write({1, 1}, 1);
    batch.read({40, 1});
    EXPECT_EQ(failureOf([&] { phy.run(batch); }).location(), "40.0x0001");
    EXPECT_EQ(count("mdio_write"), 0U);
}

TEST_F(RackBatch, WorstMixOfTheLongestBlockFitsOneCall) {
    Batch batch;
    for (std::uint32_t i = 0; i < 873; ++i)
        if (i % 2 == 0)
            batch.write({30, i}, i);
        else
            batch.read({30, i - 1});
    EXPECT_TRUE(phy.run(batch).complete());
    EXPECT_EQ(count("mdio_mixedblock"), 1U);
}

} // namespace
} // namespace OrvaneTest
