// PHYs behind an I2C bus of the board.
#include "ov_sys/rack/Flight.h"
#include "tests/support/rack/RackOnBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;
using Json = nlohmann::ordered_json;

class RackSmbus : public testing::Test, protected RackOnBoard {
protected:
    Phy device = rack.open("BOARD7:10").phy(3);

    // What the I2C program was asked for: procedure, then the bytes written or the command read.
    std::vector<Json> transfers() const {
        std::vector<Json> list;
        for (const Request& request : board.requests("i2c")) {
            Json arguments = argumentsOf(request);
            arguments.erase("handle");
            Json one{request.procedure};
            for (const auto& member : arguments)
                one.push_back(member);
            list.push_back(one);
        }
        return list;
    }
};

TEST_F(RackSmbus, Clause45ReadSelectsTheRegisterAndReadsTwoBytes) {
    device.write({1, 2}, 0xBEEF);
    board.forgetRequests();
    EXPECT_EQ(device.read({1, 2}), 0xBEEFU);
    EXPECT_EQ(transfers(),
              (std::vector<Json>{{"i2c_write", 0, 3, Json{1, 2, 0}}, {"i2c_read", 0, 3, 0x41, 2}}));
}

TEST_F(RackSmbus, Clause45WriteSelectsTheRegisterAndWritesTwoBytes) {
    device.write({1, 2}, 0xBEEF);
    EXPECT_EQ(transfers(), (std::vector<Json>{{"i2c_write", 0, 3, Json{1, 2, 0}},
                                              {"i2c_write", 0, 3, Json{0x21, 0xEF, 0xBE}}}));
}

TEST_F(RackSmbus, Clause45RegisterGoesWithAllItsBytes) {
    device.write({30, 0xC0DE}, 0xBEEF);
    EXPECT_EQ(device.read({30, 0xC0DE}), 0xBEEFU);
    const Json select{"i2c_write", 0, 3, Json{0x1E, 0xDE, 0xC0}};
    EXPECT_EQ(transfers(),
              (std::vector<Json>{
                  select, {"i2c_write", 0, 3, Json{0x3E, 0xEF, 0xBE}}, select, {"i2c_read", 0, 3, 0x5E, 2}}));
}

TEST_F(RackSmbus, PagedWordGoesByHalves) {
    device.write(ext32(0x80004000), 0x12345678);
    EXPECT_EQ(device.read(ext32(0x80004000)), 0x12345678U);
    EXPECT_EQ(transfers(), (std::vector<Json>{{"i2c_write", 0, 3, Json{0x81, 0x00, 0x80}},
                                              {"i2c_write", 0, 3, Json{0x80, 0x00, 0x40}},
                                              {"i2c_write", 0, 3, Json{0xA1, 0x34, 0x12}},
                                              {"i2c_write", 0, 3, Json{0xA0, 0x78, 0x56}},
                                              {"i2c_write", 0, 3, Json{0x81, 0x00, 0x80}},
                                              {"i2c_write", 0, 3, Json{0x80, 0x00, 0x40}},
                                              {"i2c_read", 0, 3, 0xC0, 2},
                                              {"i2c_read", 0, 3, 0xC1, 2}}));
}

TEST_F(RackSmbus, DirectWordGoesInOneTransfer) {
    device.setSmbusProtocol(SmbusProtocol::Direct32);
    device.write(ext32(0x80004001), 0x12345678);
    EXPECT_EQ(device.read(ext32(0x80004001)), 0x12345678U);
    EXPECT_EQ(transfers(),
              (std::vector<Json>{{"i2c_write", 0, 3, Json{0x80, 0x00, 0x40, 0x01, 0x78, 0x56, 0x34, 0x12}},
                                 {"i2c_read_reg", 0, 3, 0x01400080, 4, 4}}));
}

TEST_F(RackSmbus, BatchRunsOneOperationAfterTheOther) {
    Batch batch;
    batch.write({1, 2}, 0x1234);
    const auto value = batch.read({1, 2});
    EXPECT_EQ(device.run(batch)[value], 0x1234U);
}

TEST_F(RackSmbus, BatchThatIsRefusedTellsOfEachOperation) {
    Batch batch;
    batch.write({1, 7}, 1);
    batch.read({1, 8});
    batch.write({1, 9}, 3);
    inject(Fault::Kind::ResultCode, "i2c", "i2c_read", 1, -121);
    const BatchResult done = device.run(batch);
    EXPECT_EQ(done.outcome(0).state, OperationOutcome::State::Done);
    EXPECT_EQ(done.outcome(0).code, 0);
    EXPECT_EQ(done.outcome(1).state, OperationOutcome::State::Refused);
    EXPECT_EQ(done.outcome(1).code, -121);
    EXPECT_EQ(done.outcome(1).value, 0U);
    EXPECT_EQ(done.outcome(2).state, OperationOutcome::State::NotSent);
    EXPECT_EQ(done.failure()->location(), "from 1.0x0008");
}

TEST_F(RackSmbus, BatchOfWhichAnAnswerIsMissingTellsThatItsOperationIsUnknown) {
    Batch batch;
    batch.write({1, 7}, 1);
    batch.read({1, 8});
    batch.write({1, 9}, 3);
    device.open();
    inject(Fault::Kind::LoseReply, "i2c", "i2c_read", -1);
    const BatchResult done = device.run(batch, within(300ms));
    EXPECT_EQ(done.outcome(0).state, OperationOutcome::State::Done);
    EXPECT_EQ(done.outcome(1).state, OperationOutcome::State::Unknown);
    EXPECT_EQ(done.outcome(1).code, 0);
    EXPECT_EQ(done.outcome(1).value, 0U);
    EXPECT_EQ(done.outcome(2).state, OperationOutcome::State::NotSent);
    EXPECT_EQ(done.outcome(2).code, 0);
    EXPECT_EQ(done.failure()->kind(), FailureKind::TimedOut);
}

TEST_F(RackSmbus, LostTransferIsRepeated) {
    device.write({1, 2}, 0x1234);
    inject(Fault::Kind::LoseReply, "i2c", "i2c_write");
    inject(Fault::Kind::LoseRequest, "i2c", "i2c_read");
    EXPECT_EQ(device.read({1, 2}), 0x1234U);
}

TEST_F(RackSmbus, LostTransferIsRepeatedOnlyWhereReadsAndWritesBothMayBe) {
    device.read({1, 2});
    for (const Repeat repeat : {Repeat{1, 0}, Repeat{0, 1}})
        for (const char* const procedure : {"i2c_read", "i2c_write"}) {
            inject(Fault::Kind::LoseRequest, "i2c", procedure, -1);
            board.forgetRequests();
            EXPECT_EQ(failureOf([&] {
                          device.read({1, 2}, within(150ms).repeating(repeat));
                      }).kind(),
                      FailureKind::TimedOut);
            EXPECT_EQ(count(procedure), 1U);
            board.clearFaults();
        }
}

TEST_F(RackSmbus, TransferWaitsForTheReadsBeforeIt) {
    device.open();
    phy.open();
    Flight flight;
    for (const bool writes : {false, true}) {
        board.forgetRequests();
        inject(Fault::Kind::LoseRequest, "mdio", "mdio_read");
        flight.read(phy, {1, 0});
        flight.step();
        writes ? device.write({1, 2}, 3) : static_cast<void>(device.read({1, 2}));
        const std::vector<std::string> heard = procedures();
        const auto first = std::find(heard.begin(), heard.end(), "i2c_write");
        EXPECT_EQ(std::count(heard.begin(), first, "mdio_read"), 2);
        flight.wait();
    }
}

TEST_F(RackSmbus, ShortAnswerIsAFailure) {
    device.open();
    inject(Fault::Kind::ReplyCount, "i2c", "i2c_read", 1, 1);
    EXPECT_EQ(failureOf([&] { device.read({1, 2}); }).kind(), FailureKind::BadReply);
}

TEST_F(RackSmbus, Clause22IsRefusedUnsent) {
    const Failure failure = failureOf([&] { device.read(clause22(1)); });
    EXPECT_EQ(failure.kind(), FailureKind::InvalidArgument);
    EXPECT_EQ(failure.advice(), "An SMBus port has no Clause 22 registers.");
    EXPECT_EQ(failureOf([&] {
                  device.run([] {
                      Batch b;
                      b.write(clause22(1), 1);
                      return b;
                  }());
              }).kind(),
              FailureKind::InvalidArgument);
    EXPECT_EQ(procedures(), std::vector<std::string>{});
}

} // namespace
} // namespace OrvaneTest
