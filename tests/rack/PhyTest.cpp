// Register accesses of a PHY, as its board hears them.
#include "ov_sys/rack/Phy.h"

#include "ov_sys/names/Named.h"
#include "ov_sys/rack/Flight.h"
#include "tests/support/rack/RackOnBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;
using Json = nlohmann::ordered_json;

class RackPhy : public testing::Test, protected RackOnBoard {};

TEST_F(RackPhy, ReadOfAClause45RegisterReturnsItsValue) {
    board.setRegister(Space::C45, 1, 3, 0x1EC010, 0xBEEF);
    EXPECT_EQ(phy.read({30, 0xC010}), 0xBEEFU);
    const Request request = board.requestsOf("mdio_read").at(0);
    EXPECT_EQ(request.transport, "udp");
    EXPECT_EQ(argumentsOf(request)["addresses"], (Json{0x231EC010U}));
}

TEST_F(RackPhy, ReadOfAClause22RegisterUsesItsProcedure) {
    board.setRegister(Space::C22, 1, 3, 5, 0x1234);
    EXPECT_EQ(phy.read(clause22(5)), 0x1234U);
    EXPECT_EQ(count("mdio_read_c22"), 1U);
}

TEST_F(RackPhy, ReadOfAnExtendedWordSendsItsAddressWhole) {
    board.setRegister(Space::Ext32, 1, 3, 0x80004000, 0x12345678);
    EXPECT_EQ(phy.read(ext32(0x80004000)), 0x12345678U);
    EXPECT_EQ(argumentsOf(board.requestsOf("mdio_read_c22_zrext32").at(0))["addresses"], (Json{0x80004000U}));
}

TEST_F(RackPhy, WritesReachTheRegistersOfEachSpace) {
    phy.write({1, 2}, 0xABCD);
    phy.write(clause22(4), 0x1111);
    phy.write(ext32(0x10), 0xFFFFFFFF);
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x10002), 0xABCDU);
    EXPECT_EQ(board.registerValue(Space::C22, 1, 3, 4), 0x1111U);
    EXPECT_EQ(board.registerValue(Space::Ext32, 1, 3, 0x10), 0xFFFFFFFFU);
}

TEST_F(RackPhy, ModifyChangesTheMaskedBitsOnly) {
    board.setRegister(Space::C45, 1, 3, 0x1EC010, 0xF0F1);
    EXPECT_EQ(phy.modify({30, 0xC010}, 0x00F0, 0x0040), 0xF041U);
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x1EC010), 0xF041U);
    EXPECT_EQ(phy.modify({30, 0xC010}, 0x0001, 0xFFFE), 0xF040U);
}

TEST_F(RackPhy, FirstUseOpensTheSessionAndLaterOnesUseIt) {
    phy.read({1, 0});
    phy.read({1, 1});
    EXPECT_EQ(procedures(), (std::vector<std::string>{"open_connection", "mdio_read", "mdio_read"}));
    const Json handles{argumentsOf(board.requestsOf("mdio_read").at(0))["handle"],
                       argumentsOf(board.requestsOf("mdio_read").at(1))["handle"]};
    EXPECT_EQ(handles, (Json{101U << 8U | 1U, 102U << 8U | 1U}));
}

TEST_F(RackPhy, ArgumentsThatDoNotExistAreRefusedUnsent) {
    for (const auto& wrong : std::vector<std::function<void()>>{[&] {
                                                                    phy.read({32, 0});
                                                                },
                                                                [&] {
                                                                    phy.read({1, 0x10000});
                                                                },
                                                                [&] { phy.read(clause22(32)); },
                                                                [&] {
                                                                    phy.write({1, 0}, 0x10000);
                                                                },
                                                                [&] { phy.modify(clause22(0), 0x1FFFF, 0); }})
        EXPECT_EQ(failureOf(wrong).kind(), FailureKind::InvalidArgument);
    EXPECT_EQ(procedures(), std::vector<std::string>{});
}

TEST_F(RackPhy, RefusalOfAnArgumentSaysWhatThereIs) {
    EXPECT_EQ(failureOf([&] { phy.read(clause22(32)); }).advice(), "Clause 22 registers are 0 to 31.");
    EXPECT_EQ(failureOf([&] {
                  phy.read({32, 0});
              }).advice(),
              "MMDs are 0 to 31, their registers 0 to 65535.");
    EXPECT_EQ(failureOf([&] { phy.write({1, 0}, 0x10000); }).advice(), "The register holds 16 bits.");
}

TEST_F(RackPhy, ReadsAreRepeatedWhateverIsSaidOfWritesAndWritesWhateverIsSaidOfReads) {
    phy.read({1, 0});
    Batch reads;
    reads.read(clause22(1), 2);
    Batch writes;
    writes.write(clause22(1), 2);
    const std::pair<const char*, std::function<void(const Within&)>> ofReads[] = {
        {"mdio_read",
         [&](const Within& within) {
             phy.read({1, 2}, within);
         }},
        {"mdio_read",
         [&](const Within& within) {
             phy.read({1, 2}, 2, within);
         }},
        {"mdio_mixedblock_c22", [&](const Within& within) { phy.run(reads, within)[Batch::Reading{1}]; }}};
    const std::pair<const char*, std::function<void(const Within&)>> ofWrites[] = {
        {"mdio_write",
         [&](const Within& within) {
             phy.write({1, 2}, 3, within);
         }},
        {"mdio_mixedblock_c22",
         [&](const Within& within) { ASSERT_TRUE(phy.run(writes, within).complete()); }}};
    for (const unsigned times : {1U, 2U, Repeat::kUpToTheDeadline}) {
        for (const auto& [procedure, access] : ofReads) {
            inject(Fault::Kind::LoseReply, "mdio", procedure);
            access(Within{}.repeating({times, 0}));
        }
        for (const auto& [procedure, access] : ofWrites) {
            inject(Fault::Kind::LoseReply, "mdio", procedure);
            access(Within{}.repeating({0, times}));
        }
    }
}

TEST_F(RackPhy, NameThatIsNotThereIsRefusedAsAnArgument) {
    const Failure failure = failureOf([&] { phy["NO.SUCH"].read(); });
    EXPECT_EQ(failure.kind(), FailureKind::InvalidArgument);
    EXPECT_EQ(failure.location(), "NO.SUCH");
    EXPECT_EQ(failure.attempts(), 0U);
    EXPECT_EQ(count("mdio_read"), 0U);
}

TEST_F(RackPhy, FailureSaysWhereWhatAndTheBoardsCode) {
    phy.read({1, 0});
    inject(Fault::Kind::ResultCode, "mdio", "mdio_read", 1, -121);
    const Failure failure = failureOf([&] { phy.read({30, 0xC010}); });
    EXPECT_EQ(failure.kind(), FailureKind::BoardError);
    EXPECT_EQ(failure.code(), -121);
    EXPECT_EQ(failure.codeName(), "EREMOTEIO");
    EXPECT_EQ(failure.board(), "BOARD7");
    EXPECT_EQ(failure.port(), 1);
    EXPECT_EQ(failure.phy(), 3);
    EXPECT_EQ(failure.attempts(), 1U);
    EXPECT_EQ(
        std::string(failure.what())
            .find("BOARD7:1 PHY 3: read 30.0xC010: board error, EREMOTEIO (-121) after 1 attempt in 0."),
        0U)
        << failure.what();
}

TEST_F(RackPhy, ReplyWithAnotherNumberOfValuesIsAFailure) {
    phy.read({1, 0});
    for (const int values : {0, 2, 1000}) {
        inject(Fault::Kind::ReplyCount, "mdio", "mdio_read", 1, values);
        EXPECT_EQ(failureOf([&] { phy.read({1, 0}); }).kind(), FailureKind::BadReply) << values;
    }
}

TEST_F(RackPhy, ReplyThatCannotBeDecodedIsAFailure) {
    phy.read({1, 0});
    inject(Fault::Kind::TruncateReply, "mdio", "mdio_read", 1, 26);
    EXPECT_EQ(failureOf([&] { phy.read({1, 0}); }).kind(), FailureKind::BadReply);
}

TEST_F(RackPhy, LostReplyIsAskedForAgainWithinAFractionOfASecond) {
    board.setRegister(Space::C45, 1, 3, 0x10002, 0x42);
    phy.read({1, 0});
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(phy.read({1, 2}), 0x42U);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 1s);
    EXPECT_EQ(count("mdio_read"), 3U);
}

TEST_F(RackPhy, AnswerThatComesTwiceIsNotTakenForTheNext) {
    for (std::uint32_t i = 0; i < 8; ++i)
        board.setRegister(Space::C45, 1, 3, 0x10000 + i, 0x40 + i);
    phy.open();
    inject(Fault::Kind::DuplicateReply, "mdio", "mdio_read", -1);
    for (std::uint32_t i = 0; i < 8; ++i)
        EXPECT_EQ(phy.read({1, i}), 0x40 + i);
    EXPECT_GE(rack.counters().at("BOARD7").strays, 1U);
}

TEST_F(RackPhy, AnswerEndsTheWaitAtOnce) {
    phy.shell().ping();
    phy.adc().initialize();
    Flight flight;
    const auto begun = std::chrono::steady_clock::now();
    for (int i = 0; i < 50; ++i) {
        phy.read({1, 0});
        flight.read(phy, {1, 0}).get();
    }
    for (int i = 0; i < 3; ++i) {
        phy.shell().ping();
        phy.adc().maxAdc();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 1s); // less than the pauses of a tenth of them
}

TEST_F(RackPhy, OnceSendsNothingTwice) {
    phy.read({1, 0});
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read");
    const Failure failure = failureOf([&] { phy.read({1, 2}, within(600ms).once()); });
    EXPECT_EQ(failure.kind(), FailureKind::TimedOut);
    EXPECT_EQ(failure.attempts(), 1U);
    EXPECT_EQ(count("mdio_read"), 2U);
}

TEST_F(RackPhy, ReadsThatMayNotBeRepeatedAreNotThoughWritesMay) {
    phy.read({1, 0});
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read", -1);
    failureOf([&] { phy.read({1, 2}, within(400ms).repeating({0, 16})); });
    EXPECT_EQ(count("mdio_read"), 2U);
}

TEST_F(RackPhy, WritesAreRepeatedAsOftenAsTold) {
    phy.read({1, 0});
    inject(Fault::Kind::LoseReply, "mdio", "mdio_write", -1);
    const Failure failure = failureOf([&] {
        phy.write({1, 2}, 7, within(1500ms).repeating(Repeat::writesAtMost(2)));
    });
    EXPECT_EQ(failure.kind(), FailureKind::TimedOut);
    EXPECT_EQ(count("mdio_write"), 3U);
}

TEST_F(RackPhy, CallEndsAtItsDeadlineWhenTheBoardIsSilent) {
    phy.read({1, 0});
    board.hang();
    const auto begun = std::chrono::steady_clock::now();
    const Failure failure = failureOf([&] { phy.read({1, 0}, within(300ms)); });
    const auto spent = std::chrono::steady_clock::now() - begun;
    EXPECT_EQ(failure.kind(), FailureKind::TimedOut);
    EXPECT_GE(spent, 300ms);
    EXPECT_LT(spent, 1s);
}

TEST_F(RackPhy, BusyBoardIsAskedAgainUntilItIsFree) {
    phy.read({1, 0});
    inject(Fault::Kind::ResultCode, "mdio", "mdio_write", 3, -16);
    phy.write({1, 2}, 9, Within{}.once());
    EXPECT_EQ(board.executions("mdio_write"), 1U);
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x10002), 9U);
}

TEST_F(RackPhy, BoardWhoseOwnTimeIsOverIsAskedAgainAsOftenAsMayBe) {
    phy.read({1, 0});
    inject(Fault::Kind::ResultCode, "mdio", "mdio_write", 1, -110);
    phy.write({1, 2}, 9, Within{}.repeating({0, 1}));
    EXPECT_EQ(count("mdio_write"), 2U);
    inject(Fault::Kind::ResultCode, "mdio", "mdio_write", -1, -110);
    for (const unsigned times : {0U, 1U, 2U}) {
        board.forgetRequests();
        const Failure failure = failureOf([&] { phy.write({1, 2}, 9, Within{}.repeating({0, times})); });
        EXPECT_EQ(failure.kind(), FailureKind::BoardError);
        EXPECT_EQ(failure.code(), -110);
        EXPECT_EQ(count("mdio_write"), times + 1);
    }
}

TEST_F(RackPhy, BoardThatStaysBusyHasExecutedNothing) {
    phy.read({1, 0});
    inject(Fault::Kind::ResultCode, "mdio", "mdio_write", -1, -16);
    Batch batch;
    batch.write({1, 2}, 9);
    const BatchResult done = phy.run(batch, within(100ms));
    EXPECT_EQ(done.failure()->kind(), FailureKind::Busy);
    EXPECT_EQ(done.outcome(0).state, OperationOutcome::State::NotSent);
}

TEST_F(RackPhy, BoardThatStaysBusyIsReportedAsBusy) {
    phy.read({1, 0});
    inject(Fault::Kind::ResultCode, "mdio", "mdio_read", -1, -16);
    const Failure failure = failureOf([&] { phy.read({1, 0}, within(200ms)); });
    EXPECT_EQ(failure.kind(), FailureKind::Busy);
    EXPECT_EQ(failure.code(), -16);
}

TEST_F(RackPhy, CancelledWaitReturnsAtOnce) {
    phy.read({1, 0});
    inject(Fault::Kind::LoseRequest, "mdio", "mdio_read", -1);
    Cancellation cancellation;
    std::chrono::steady_clock::time_point cancelledAt;
    std::thread canceller([&] {
        board.waitFor([](const Request& one) {
            return one.procedure == "mdio_read" && argumentsOf(one)["addresses"][0] == 0x23010009U;
        });
        cancelledAt = std::chrono::steady_clock::now();
        cancellation.cancel();
    });
    const Failure failure = failureOf([&] { phy.read({1, 9}, within(60s).cancelledBy(cancellation)); });
    const auto ended = std::chrono::steady_clock::now();
    canceller.join();
    EXPECT_EQ(failure.kind(), FailureKind::Cancelled);
    EXPECT_LT(ended - cancelledAt, 500ms);
}

TEST_F(RackPhy, OtherThreadsWaitForTheirTurnUpToTheirDeadline) {
    phy.read({1, 0});
    inject(Fault::Kind::LoseRequest, "mdio", "mdio_read", -1);
    std::thread holder([&] { phy.read({1, 1}); });
    board.waitFor([](const Request& one) {
        return one.procedure == "mdio_read" && argumentsOf(one)["addresses"][0] == 0x23010001U;
    });
    const Failure busy = failureOf([&] { phy.write({1, 2}, 1, within(100ms)); });
    EXPECT_EQ(busy.kind(), FailureKind::Busy);
    EXPECT_EQ(busy.code(), 0);
    EXPECT_EQ(busy.attempts(), 0U);
    Cancellation cancellation;
    cancellation.cancel();
    EXPECT_EQ(failureOf([&] {
                  phy.write({1, 2}, 1, Within{}.cancelledBy(cancellation));
              }).kind(),
              FailureKind::Cancelled);
    board.clearFaults();
    holder.join();
    EXPECT_EQ(count("mdio_write"), 0U);
}

} // namespace
} // namespace OrvaneTest
