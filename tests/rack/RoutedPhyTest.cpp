// Registers that are reached by way of others.
#include "ov_sys/rack/RoutedPhy.h"

#include "tests/support/rack/RackOnBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;

class RackRoutedPhy : public testing::Test, protected RackOnBoard {
protected:
    RegisterPaths withoutFirmware;

    RackRoutedPhy() {
        withoutFirmware.byFirmware = {false, false, false, false, false};
        phy.open();
        board.forgetRequests();
    }

    void set(unsigned mmd, unsigned reg, std::uint32_t value) {
        board.setRegister(Space::C45, 1, 3, mmd << 16U | reg, value);
    }
    std::uint32_t valueOf(unsigned mmd, unsigned reg) const {
        return board.registerValue(Space::C45, 1, 3, mmd << 16U | reg);
    }
    void troubles(std::uint32_t busyReads, std::uint32_t status = 1) {
        OrvaneSim::PathTroubles all;
        all.mailboxBusyReads = busyReads;
        all.mailboxStatus = status;
        board.setPathTroubles(all);
    }

    // "W30.C47F=0" for each write, "R30.C47D" for each read that the board was asked for.
    std::vector<std::string> steps() const {
        std::vector<std::string> all;
        for (const Request& request : board.requests("mdio")) {
            const auto arguments = argumentsOf(request);
            const unsigned word = arguments["addresses"][0].get<unsigned>() & 0x1FFFFFU;
            const bool writes = arguments.contains("values");
            char text[40];
            std::snprintf(text, sizeof text, "%c%u.%X", writes ? 'W' : 'R', word >> 16U, word & 0xFFFFU);
            all.emplace_back(text);
            if (writes) {
                std::snprintf(text, sizeof text, "=%X", arguments["values"][0].get<unsigned>());
                all.back() += text;
            }
        }
        return all;
    }
};

using Steps = std::vector<std::string>;

TEST_F(RackRoutedPhy, RegisterOfAClassIsReadByTheFirmware) {
    set(31, 0x8037, 0x1234);
    EXPECT_EQ(phy.routed().read({31, 0x8037}), 0x1234U);
    EXPECT_EQ(steps(), (Steps{"W30.C47F=0", "W30.C47C=8037", "W30.C47E=11F", "R30.C47F", "R30.C47D"}));
}

TEST_F(RackRoutedPhy, RegisterBesideTheClassesIsReadPlainly) {
    set(31, 0x8036, 0x55);
    EXPECT_EQ(phy.routed().read({31, 0x8036}), 0x55U);
    EXPECT_EQ(steps(), Steps{"R31.8036"});
}

TEST_F(RackRoutedPhy, RegisterOfAClassThatIsNotLeftToTheFirmwareIsReadPlainly) {
    phy.routed(withoutFirmware).read({31, 0x8037});
    EXPECT_EQ(steps(), Steps{"R31.8037"});
}

TEST_F(RackRoutedPhy, WriteByTheFirmwareArrives) {
    phy.routed().write({28, 0x123}, 0xBEEF);
    EXPECT_EQ(valueOf(28, 0x123), 0xBEEFU);
    EXPECT_EQ(steps(), (Steps{"W30.C47F=0", "W30.C47C=123", "W30.C47D=BEEF", "W30.C47E=21C", "R30.C47F"}));
}

TEST_F(RackRoutedPhy, EveryPathReadsBackWhatItWrote) {
    for (const RegisterPaths& paths : {RegisterPaths{}, withoutFirmware})
        for (const RegisterAddress address : {RegisterAddress{10, 0x11}, {11, 0x1005}, {27, 0x40}, {1, 7}}) {
            phy.routed(paths).write(address, 0x2000 + address.number);
            EXPECT_EQ(phy.routed(paths).read(address), 0x2000 + address.number) << toText(address);
        }
}

TEST_F(RackRoutedPhy, PagedWritePutsThePageIntoTheRegister) {
    phy.routed(withoutFirmware).write({28, 0x123}, 0xBEEF);
    EXPECT_EQ(steps(), (Steps{"R4.C180", "W4.C180=1", "W4.C223=1"}));
}

TEST_F(RackRoutedPhy, Clause45IsCarriedOverClause22) {
    RegisterPaths paths;
    paths.overClause22 = true;
    phy.routed(paths).write({28, 0x123}, 0xBEEF);
    EXPECT_EQ(procedures(), std::vector<std::string>(4, "mdio_write_c22"));
    EXPECT_EQ(phy.routed(paths).read({28, 0x123}), 0xBEEFU);
}

TEST_F(RackRoutedPhy, ModifyChangesTheBitsOfItsMask) {
    set(27, 0x40, 0xFF01);
    EXPECT_EQ(phy.routed().modify({27, 0x40}, 0x0FF0, 0x0120), 0xF121U);
    EXPECT_EQ(valueOf(27, 0x40), 0xF121U);
}

TEST_F(RackRoutedPhy, FirmwareThatIsBusyForAWhileIsWaitedFor) {
    set(31, 0x8037, 0x77);
    troubles(30);
    EXPECT_EQ(phy.routed().read({31, 0x8037}), 0x77U);
}

TEST_F(RackRoutedPhy, FirmwareThatStaysBusyEndsTheCallAtItsDeadline) {
    troubles(OrvaneSim::PathTroubles::kForever);
    const auto begun = std::chrono::steady_clock::now();
    const Failure failure = failureOf([&] { phy.routed().read({31, 0x8037}, within(200ms)); });
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 2s);
    EXPECT_EQ(failure.kind(), FailureKind::Busy);
    EXPECT_EQ(failure.board(), "BOARD7");
    EXPECT_EQ(failure.port(), 1);
    EXPECT_EQ(failure.phy(), 3);
    EXPECT_EQ(failure.operation(), "read by firmware");
    EXPECT_EQ(failure.location(), "31.0x8037");
    EXPECT_EQ(failure.advice(), "The PHY's firmware stayed busy.");
    EXPECT_EQ(failure.code(), 0);
    EXPECT_GT(failure.attempts(), 5U);
}

TEST_F(RackRoutedPhy, CancelledWaitForTheFirmwareEndsAtOnce) {
    troubles(OrvaneSim::PathTroubles::kForever);
    Cancellation cancellation;
    board.onRequest([&, looks = 0](const Request& request) mutable {
        if (request.procedure == "mdio_read" && ++looks == 20)
            cancellation.cancel();
    });
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(failureOf([&] {
                  phy.routed().read({31, 0x8037}, within(60s).cancelledBy(cancellation));
              }).kind(),
              FailureKind::Cancelled);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 5s);
    board.onRequest([](const Request&) {});
}

TEST_F(RackRoutedPhy, ErrorOfTheFirmwareIsAFailureAndNoValue) {
    troubles(0, 2);
    const Failure failure = failureOf([&] { phy.routed().write({28, 1}, 1); });
    EXPECT_EQ(failure.kind(), FailureKind::BoardError);
    EXPECT_EQ(failure.advice(), "The PHY's firmware reports an error.");
    EXPECT_EQ(failure.code(), 0);
}

TEST_F(RackRoutedPhy, UnknownStatusOfTheFirmwareIsAFailureWithItsNumber) {
    troubles(0, 7);
    const Failure failure = failureOf([&] { phy.routed().write({28, 1}, 1); });
    EXPECT_EQ(failure.kind(), FailureKind::BoardError);
    EXPECT_EQ(failure.advice(), "The PHY's firmware ended with the unknown status 0x7.");
    EXPECT_EQ(failure.code(), 0);
}

TEST_F(RackRoutedPhy, ErrorOfTheBridgeIsAFailureWithItsCode) {
    OrvaneSim::PathTroubles all;
    all.bridgeStatus = 0x1003;
    board.setPathTroubles(all);
    const Failure failure = failureOf([&] { phy.routed(withoutFirmware).read({27, 0x40}); });
    EXPECT_EQ(failure.kind(), FailureKind::BoardError);
    EXPECT_EQ(failure.operation(), "read by SerDes bridge");
    EXPECT_EQ(failure.advice(), "The SerDes bridge reports code 0x3.");
    EXPECT_EQ(failure.code(), 0);
}

TEST_F(RackRoutedPhy, WindowThatStaysBusyIsAFailure) {
    OrvaneSim::PathTroubles all;
    all.windowBusyReads = OrvaneSim::PathTroubles::kForever;
    board.setPathTroubles(all);
    const Failure failure = failureOf([&] { phy.routed().read({10, 1}); });
    EXPECT_EQ(failure.kind(), FailureKind::Busy);
    EXPECT_EQ(failure.operation(), "read by window");
    EXPECT_EQ(failure.advice(), "The window stayed busy.");
    EXPECT_EQ(failure.code(), 0);
}

TEST_F(RackRoutedPhy, WhatNoPathLeadsToIsRefusedBeforeAnythingIsSent) {
    const RoutedPhy plain = phy.routed(withoutFirmware);
    for (const RegisterAddress address :
         {RegisterAddress{11, 0x4000}, {28, 0x600}, {28, 0x8500}, {32, 0}, clause22(2), ext32(4)})
        EXPECT_EQ(failureOf([&] { plain.read(address); }).kind(), FailureKind::InvalidArgument)
            << toText(address);
    EXPECT_EQ(failureOf([&] { plain.write({27, 1}, 0x10000); }).kind(), FailureKind::InvalidArgument);
    EXPECT_EQ(steps(), Steps{});
}

TEST_F(RackRoutedPhy, LostAnswersOnTheWayCostNoValue) {
    set(31, 0x8037, 0x1234);
    inject(Fault::Kind::LoseReply, "mdio", "mdio_write", 2);
    inject(Fault::Kind::LoseRequest, "mdio", "mdio_read", 2);
    EXPECT_EQ(phy.routed().read({31, 0x8037}), 0x1234U);
}

TEST_F(RackRoutedPhy, PathOnWhichTheSessionIsLostIsTakenAgain) {
    set(31, 0x8037, 0x1234);
    board.onRequest([&, done = false](const Request& request) mutable {
        if (!done && request.procedure == "mdio_write" && argumentsOf(request)["values"][0] == 0x11F) {
            done = true;
            board.forgetSessions();
            set(30, 0xC47C, 0); // as a PHY has it that was reset
        }
    });
    EXPECT_EQ(phy.routed().read({31, 0x8037}), 0x1234U);
    board.onRequest([](const Request&) {});
}

class RackTornWrite : public RackRoutedPhy {
protected:
    // The board forgets its sessions on that many of the ways, when it first hears the last word but one.
    void forgetTimes(int ways) {
        board.onRequest([this, ways, heard = 0](const Request& request) mutable {
            if (request.procedure == "mdio_write_c22" && argumentsOf(request)["values"][0] == 0x4001 &&
                heard++ % 2 == 0 && heard < 2 * ways)
                board.forgetSessions();
        });
    }
    RackTornWrite() { overClause22.overClause22 = true; }
    ~RackTornWrite() override {
        board.onRequest([](const Request&) {});
    }

    RegisterPaths overClause22;
};

TEST_F(RackTornWrite, IsTakenAgainAsOftenAsWritesAreRepeated) {
    forgetTimes(2);
    phy.routed(overClause22).write({1, 2}, 3, Within{}.repeating({0, 2}));
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x10002), 3U);
}

TEST_F(RackTornWrite, IsAFailureWhenItMayNotBeTakenAgain) {
    for (const unsigned times : {0U, 1U}) {
        forgetTimes(static_cast<int>(times) + 1);
        const Failure failure = failureOf([&] {
            phy.routed(overClause22).write({1, 2}, 3, Within{}.repeating({0, times}));
        });
        EXPECT_EQ(failure.kind(), FailureKind::LostSession);
        EXPECT_EQ(failure.code(), 0);
        EXPECT_EQ(failure.operation(), "write over Clause 22");
        EXPECT_EQ(failure.advice(), "The session was lost on the way; the write may be incomplete.");
    }
}

TEST_F(RackRoutedPhy, SmbusPortsReachRegistersByPathsToo) {
    const RoutedPhy smbus = rack.open("BOARD7:10").phy(3).routed(withoutFirmware);
    smbus.write({1, 7}, 0x1357);
    EXPECT_EQ(smbus.read({1, 7}), 0x1357U);
    RegisterPaths paths;
    paths.overClause22 = true;
    EXPECT_EQ(failureOf([&] {
                  rack.open("BOARD7:10").phy(3).routed(paths).read({1, 7});
              }).kind(),
              FailureKind::InvalidArgument);
}

} // namespace
} // namespace OrvaneTest
