// Many operations under way at once, and the order in which their boards hear them.
#include "ov_sys/rack/Flight.h"

#include "tests/support/rack/RackOnBoard.h"

#include <poll.h>
#include <set>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using Json = nlohmann::ordered_json;

class RackFlight : public testing::Test, protected RackOnBoard {
protected:
    Flight flight;

    RackFlight() { phy.open(); }

    // Register numbers that single MDIO requests named, in the order in which the board heard them.
    std::vector<unsigned> registersAsked() const {
        std::vector<unsigned> numbers;
        for (const Request& request : board.requests("mdio"))
            numbers.push_back(argumentsOf(request)["addresses"][0].get<unsigned>() & 0xFFFFU);
        return numbers;
    }
};

TEST_F(RackFlight, ReadsReturnTheirOwnValues) {
    std::vector<Pending<std::uint32_t>> results;
    for (std::uint32_t i = 0; i < 100; ++i) {
        board.setRegister(Space::C45, 1, 3, 0x10000 + i, i * 3);
        results.push_back(flight.read(phy, {1, i}));
    }
    flight.wait();
    for (std::uint32_t i = 0; i < 100; ++i)
        ASSERT_EQ(results[i].get(), i * 3);
    EXPECT_EQ(flight.underWay(), 0U);
}

TEST_F(RackFlight, OperationsReachTheirBoardInTheOrderOfTheirStart) {
    std::vector<unsigned> expected;
    for (std::uint32_t i = 0; i < 50; ++i) {
        if (i % 3 == 0)
            flight.write(phy, {1, i}, i);
        else
            flight.read(phy, {1, i});
        expected.push_back(i);
    }
    flight.wait();
    EXPECT_EQ(registersAsked(), expected);
}

TEST_F(RackFlight, OldWriteNeverOvertakesANewOneWhenItsRequestIsLost) {
    inject(Fault::Kind::LoseRequest, "mdio", "mdio_write");
    for (std::uint32_t i = 1; i <= 4; ++i)
        flight.write(phy, {1, 2}, i);
    flight.wait();
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x10002), 4U);
    std::vector<Json> values;
    for (const Request& request : board.requestsOf("mdio_write"))
        values.push_back(argumentsOf(request)["values"][0]);
    EXPECT_EQ(values, (std::vector<Json>{1, 2, 3, 4, 1, 2, 3, 4})); // from the first unanswered on, in order
}

TEST_F(RackFlight, ReadBehindALostWriteIsReadAgain) {
    inject(Fault::Kind::LoseRequest, "mdio", "mdio_write");
    flight.write(phy, {1, 2}, 0x99);
    EXPECT_EQ(flight.read(phy, {1, 2}).get(), 0x99U);
}

TEST_F(RackFlight, WriteWaitsForTheReadsBeforeIt) {
    board.setRegister(Space::C45, 1, 3, 0x10002, 1);
    inject(Fault::Kind::LoseRequest, "mdio", "mdio_read");
    const auto before = flight.read(phy, {1, 2});
    flight.write(phy, {1, 2}, 2);
    EXPECT_EQ(before.get(), 1U);
    flight.wait();
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x10002), 2U);
}

TEST_F(RackFlight, OperationsWithSideEffectsFlyAlone) {
    phy.read({1, 0}); // so that nothing has to be looked up
    board.forgetRequests();
    inject(Fault::Kind::DelayReply, "mdio", "mdio_read", 1, 100);
    flight.read(phy, {1, 1}, Within{}.once());
    flight.read(phy, {1, 2});
    for (int i = 0; i < 5; ++i)
        flight.step();
    board.waitFor([](const Request& one) { return one.procedure == "mdio_read"; });
    EXPECT_EQ(count("mdio_read"), 1U);
    flight.wait();
    EXPECT_EQ(count("mdio_read"), 2U);
}

TEST_F(RackFlight, SmbusAccessesOfOneBoardDoNotMix) {
    const Port smbus = rack.open("BOARD7:10");
    const Phy one = smbus.phy(3);
    const Phy other = smbus.phy(4);
    std::vector<Pending<std::uint32_t>> results;
    for (std::uint32_t i = 0; i < 8; ++i) {
        flight.write(i % 2 == 0 ? one : other, {1, i}, i + 100);
        results.push_back(flight.read(i % 2 == 0 ? one : other, {1, i}));
    }
    flight.wait();
    for (std::uint32_t i = 0; i < 8; ++i)
        EXPECT_EQ(results[i].get(), i + 100);
}

TEST_F(RackFlight, BatchesOnSmbusPortsFlyAlone) {
    const Port smbus = rack.open("BOARD7:10");
    std::vector<Pending<BatchResult>> results;
    std::vector<Batch::Readings> readings;
    for (std::uint32_t i = 0; i < 6; ++i) {
        Batch batch;
        batch.write({1, 7}, i + 100);
        batch.write(ext32(0x80004000), i + 0x12340000);
        readings.push_back(batch.read({RegisterAddress{1, 7}, ext32(0x80004000)}));
        results.push_back(flight.run(smbus.phy(3 + i % 2), batch));
    }
    const auto list = flight.read(smbus.phy(3), {1, 7}, 2);
    flight.wait();
    for (std::uint32_t i = 0; i < 6; ++i)
        EXPECT_EQ(results[i].get()[readings[i]], (std::vector<std::uint32_t>{i + 100, i + 0x12340000}));
    EXPECT_EQ(list.get(), (std::vector<std::uint32_t>{104, 0}));
}

TEST_F(RackFlight, BatchOnAnSmbusPortTellsOfEachOperation) {
    const Phy device = rack.open("BOARD7:10").phy(3);
    device.open();
    Batch batch;
    batch.write({1, 7}, 1);
    batch.write({1, 8}, 2);
    batch.write({1, 9}, 3);
    board.onRequest([this, writes = 0](const Request& request) mutable {
        if (request.procedure == "i2c_write" && ++writes == 2) // the second of the first operation
            inject(Fault::Kind::ResultCode, "i2c", "i2c_write", 1, -121);
    });
    const auto result = flight.run(device, batch);
    flight.wait();
    EXPECT_EQ(result.get().outcome(0).state, OperationOutcome::State::Done);
    EXPECT_EQ(result.get().outcome(0).code, 0);
    EXPECT_EQ(result.get().outcome(1).state, OperationOutcome::State::Refused);
    EXPECT_EQ(result.get().outcome(1).code, -121);
    EXPECT_EQ(result.get().outcome(2).state, OperationOutcome::State::NotSent);
    EXPECT_EQ(result.get().failure()->location(), "from 1.0x0008");
}

class RackFlightWindow : public RackFlight {
protected:
    // Registers that the board has heard of while the first operation, whose answer is late, was under way.
    template <class Operation>
    std::size_t heardBeside(Flight& many, const Operation& first) {
        std::set<unsigned> heard;
        for (bool done = false; !done; done = first.done()) {
            const std::vector<unsigned> asked = registersAsked();
            heard.insert(asked.begin(), asked.end());
            many.step();
            pollfd entry{many.descriptor(), POLLIN, 0};
            poll(&entry, 1, 5);
        }
        return heard.size();
    }
};

TEST_F(RackFlightWindow, HoldsNoMoreThanItsCalls) {
    Flight many(1000); // 64 at most
    inject(Fault::Kind::DelayReply, "mdio", "mdio_read", 1, 300);
    const auto first = many.read(phy, {1, 0});
    for (std::uint32_t i = 1; i < 120; ++i)
        many.read(phy, {1, i});
    EXPECT_EQ(heardBeside(many, first), 64U);
}

TEST_F(RackFlightWindow, HoldsNoMoreThanItsBytes) {
    Flight many(64);
    inject(Fault::Kind::DelayReply, "mdio", "mdio_read", 1, 300);
    const auto first = many.read(phy, {1, 0}, 873);
    for (std::uint32_t i = 1; i < 20; ++i)
        many.read(phy, {1, i}, 873);
    EXPECT_EQ(heardBeside(many, first), 9U); // of 3,624 bytes in 32 KiB
}

TEST_F(RackFlightWindow, MayBeFullToTheLastByte) {
    Flight many(64);
    inject(Fault::Kind::DelayReply, "mdio", "mdio_read", 1, 300);
    const auto first = many.read(phy, {1, 0}, 96); // 512 bytes, as they are counted
    for (std::uint32_t i = 1; i < 70; ++i)
        many.read(phy, {1, i}, 96);
    EXPECT_EQ(heardBeside(many, first), 64U);
}

TEST_F(RackFlight, BlocksOfAnyLengthFly) {
    for (std::uint32_t i = 0; i < 2000; ++i)
        board.setRegister(Space::C45, 1, 3, 0x1E0000 + i, i);
    const auto whole = flight.read(phy, {30, 0}, 2000);
    Batch batch;
    batch.write({30, 5}, 7);
    const auto changed = batch.read({30, 5});
    const auto result = flight.run(phy, batch);
    EXPECT_EQ(whole.get().at(1999), 1999U);
    EXPECT_EQ(result.get()[changed], 7U);
}

TEST_F(RackFlight, RangesOfOneCallGoOutAsLists) {
    std::vector<Pending<std::vector<std::uint32_t>>> results;
    std::vector<std::vector<std::uint32_t>> expected(3);
    for (std::uint32_t i = 0; i < 3; ++i) {
        for (std::uint32_t k = 0; k < 873; ++k)
            board.setRegister(Space::C45, 1, 3, 0x10000 + i * 873 + k, expected[i].emplace_back(i * 7 + k));
        results.push_back(flight.read(phy, {1, i * 873}, 873));
    }
    flight.wait();
    for (std::uint32_t i = 0; i < 3; ++i)
        EXPECT_EQ(results[i].get(), expected[i]);
    EXPECT_EQ(count("mdio_read"), 3U);
}

TEST_F(RackFlight, RangeThatTheBoardRefusesNamesItsFirstRegister) {
    inject(Fault::Kind::ResultCode, "mdio", "mdio_read", 1, -EIO);
    const auto range = flight.read(phy, {30, 0x10}, 4);
    flight.wait();
    ASSERT_TRUE(range.failure());
    EXPECT_EQ(range.failure()->kind(), FailureKind::BoardError);
    EXPECT_EQ(range.failure()->details().operation, "batch");
    EXPECT_EQ(range.failure()->details().location, "from 30.0x0010");
}

TEST_F(RackFlight, LoneCallAfterAFlightGetsItsOwnAnswer) {
    for (std::uint32_t i = 0; i < 8; ++i)
        flight.read(phy, {1, i});
    flight.wait();
    board.setRegister(Space::C45, 1, 3, 0x10002, 0x1234);
    inject(Fault::Kind::DuplicateReply, "mdio", "mdio_read");
    EXPECT_EQ(phy.read({1, 2}), 0x1234U);
    board.setRegister(Space::C45, 1, 3, 0x10003, 0x5678);
    EXPECT_EQ(phy.read({1, 3}), 0x5678U); // the copy of the former came before it
}

TEST_F(RackFlight, LossOfOneInTwentyEachWayCostsNoValue) {
    for (const Fault::Kind kind : {Fault::Kind::LoseReply, Fault::Kind::LoseRequest}) {
        Fault loss{"mdio", "", kind, -1};
        loss.probability = 0.05;
        board.inject(loss);
    }
    std::vector<Pending<std::uint32_t>> reads;
    for (std::uint32_t i = 0; i < 200; ++i) {
        flight.write(phy, {1, i % 7}, i, within(20s));
        reads.push_back(flight.read(phy, {1, i % 7}, within(20s)));
    }
    flight.wait();
    for (std::uint32_t i = 0; i < 200; ++i)
        ASSERT_EQ(reads[i].get(), i);
}

TEST_F(RackFlight, ForgottenSessionIsOpenedAgainForAllThatIsUnderWay) {
    std::vector<Pending<std::uint32_t>> results;
    board.setRegister(Space::C45, 1, 3, 0x10002, 5);
    board.forgetSessions();
    for (int i = 0; i < 20; ++i)
        results.push_back(flight.read(phy, {1, 2}));
    flight.wait();
    for (const auto& result : results)
        EXPECT_EQ(result.get(), 5U);
    EXPECT_EQ(count("open_connection"), 2U);
}

TEST_F(RackFlight, FailureOfOneIsItsOwn) {
    inject(Fault::Kind::ResultCode, "mdio", "mdio_read", 1, -5);
    const auto bad = flight.read(phy, {1, 1});
    const auto good = flight.read(phy, {1, 5});
    flight.wait();
    ASSERT_TRUE(bad.failure());
    EXPECT_EQ(bad.failure()->code(), -5);
    EXPECT_EQ(bad.failure()->location(), "1.0x0001");
    EXPECT_THROW(bad.get(), Failure);
    EXPECT_EQ(good.get(), 0U);
}

TEST_F(RackFlight, DescriptorIsReadableWhenThereIsSomethingToDo) {
    const auto result = flight.read(phy, {1, 1});
    while (!result.done()) {
        pollfd entry{flight.descriptor(), POLLIN, 0};
        ASSERT_EQ(poll(&entry, 1, 10000), 1);
        flight.step();
    }
    EXPECT_EQ(result.get(), 0U);
}

TEST_F(RackFlight, DescriptorRestsThoughOthersTalkToItsBoards) {
    flight.read(phy, {1, 1}).get();
    pollfd entry{flight.descriptor(), POLLIN, 0};
    flight.step();
    phy.read({1, 2});
    flight.step(); // takes what there was to tell, once
    EXPECT_EQ(poll(&entry, 1, 0), 0);
    const auto next = flight.read(phy, {1, 3});
    EXPECT_EQ(poll(&entry, 1, 0), 1);
    next.get();
}

TEST_F(RackFlight, EndOfTheFlightCancelsWhatIsUnderWay) {
    inject(Fault::Kind::LoseRequest, "mdio", "mdio_read", -1);
    std::optional<Flight> brief(std::in_place);
    const auto result = brief->read(phy, {1, 1});
    brief->step();
    brief.reset();
    ASSERT_TRUE(result.failure());
    EXPECT_EQ(result.failure()->kind(), FailureKind::Cancelled);
    EXPECT_EQ(result.failure()->code(), 0);
    board.clearFaults();
    EXPECT_EQ(phy.read({1, 1}), 0U);
}

TEST_F(RackFlight, DeadlineEndsAnOperation) {
    inject(Fault::Kind::LoseRequest, "mdio", "mdio_read", -1);
    const auto result = flight.read(phy, {1, 1}, within(200ms));
    EXPECT_THROW(result.get(), Failure);
    EXPECT_EQ(result.failure()->kind(), FailureKind::TimedOut);
    EXPECT_EQ(result.failure()->code(), 0);
}

TEST(ManyBoardsInFlight, OpenReadAndCloseFromOneThread) {
    constexpr int kBoards = 200;
    OrvaneSim::Lab lab;
    Rack rack;
    std::vector<Phy> phys;
    for (int i = 0; i < kBoards; ++i) {
        OrvaneSim::BoardOptions options;
        options.serial = "B" + std::to_string(i);
        OrvaneSim::Board& board = lab.add(options);
        board.setRegister(Space::C45, 0, 1, 0x10002, static_cast<std::uint32_t>(i));
        rack.know(options.serial, board.address());
        phys.push_back(rack.open(options.serial + ":0").phy(1));
    }
    Flight flight;
    for (const Phy& phy : phys)
        flight.open(phy, within(30s));
    flight.wait();
    std::vector<Pending<std::uint32_t>> values;
    for (const Phy& phy : phys)
        values.push_back(flight.read(phy, {1, 2}, within(30s)));
    flight.wait();
    for (int i = 0; i < kBoards; ++i)
        ASSERT_EQ(values[static_cast<std::size_t>(i)].get(), static_cast<std::uint32_t>(i));
    for (const Phy& phy : phys)
        flight.close(phy, within(30s));
    flight.wait();
    for (OrvaneSim::Board* const board : lab.boards())
        EXPECT_EQ(board->sessionCount(), 0U);
}

TEST_F(RackFlight, HookThatThrowsEndsNoWaitLaterThanTheOperationsDeadline) {
    phy.onReopen([] { throw std::runtime_error("no"); });
    board.forgetSessions();
    const Pending<std::uint32_t> value = flight.read(phy, {1, 2}, within(500ms));
    while (!value.done()) {
        try {
            flight.waitSome();
        } catch (const std::runtime_error&) { // each step tries it again
            std::this_thread::yield();
        }
    }
    ASSERT_TRUE(value.failure());
    EXPECT_EQ(value.failure()->kind(), FailureKind::TimedOut);
}

} // namespace
} // namespace OrvaneTest
