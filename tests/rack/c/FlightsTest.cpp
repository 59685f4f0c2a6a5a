// Flights, as a C program uses them.
#include "tests/support/rack/CRackOnBoard.h"

#include <poll.h>

namespace OrvaneTest {
namespace {

class CFlights : public testing::Test, protected CRackOnBoard {
protected:
    orvane_flight* flight = nullptr;
    std::vector<orvane_pending*> started;

    CFlights() {
        orvane_phy_open(phy, nullptr, nullptr);
        orvane_flight_new(8, &flight, nullptr);
    }
    ~CFlights() override {
        orvane_flight_free(flight);
        for (orvane_pending* const one : started)
            orvane_pending_free(one);
    }

    // Where the next operation's handle goes.
    orvane_pending** next() { return &started.emplace_back(nullptr); }
};

TEST_F(CFlights, ReadsAndWritesReturnTheirOwnValues) {
    started.reserve(100);
    for (std::uint32_t i = 0; i < 50; ++i) {
        EXPECT_EQ(
            orvane_flight_write(flight, phy, {ORVANE_CLAUSE45, 1, i}, i * 3, nullptr, nullptr, &failure),
            ORVANE_DONE);
        EXPECT_EQ(orvane_flight_read(flight, phy, {ORVANE_CLAUSE45, 1, i}, nullptr, next(), &failure),
                  ORVANE_DONE);
    }
    EXPECT_EQ(orvane_flight_under_way(flight), 100U);
    EXPECT_EQ(orvane_flight_wait(flight, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_flight_under_way(flight), 0U);
    for (std::uint32_t i = 0; i < 50; ++i) {
        uint32_t value = 0;
        EXPECT_EQ(orvane_pending_get(started[i], &value, 1, &failure), ORVANE_DONE);
        ASSERT_EQ(value, i * 3);
    }
}

TEST_F(CFlights, ListsFlyWhole) {
    board.setRegister(Space::C45, 1, 3, 0x1EC010 + 999, 0x77);
    orvane_flight_read_list(flight, phy, kRegister, 1000, nullptr, next(), &failure);
    std::vector<uint32_t> values(1000);
    EXPECT_EQ(orvane_pending_get(started[0], values.data(), 999, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_pending_get(started[0], nullptr, 1000, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_pending_get(started[0], values.data(), 1000, &failure), ORVANE_DONE);
    EXPECT_EQ(values[999], 0x77U);
}

TEST_F(CFlights, BatchHasItsOutcomes) {
    orvane_operation operations[2] = {{kRegister, 1, 5, 0, 0}, {{ORVANE_CLAUSE22, 0, 4}, 0, 0, 0, 0}};
    inject(Fault::Kind::ResultCode, "mdio", "mdio_mixedblock_c22", 1, -5);
    EXPECT_EQ(orvane_flight_run(flight, phy, operations, 2, nullptr, next(), &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_pending_get(started[0], nullptr, 0, &failure), ORVANE_BOARD_ERROR);
    EXPECT_EQ(orvane_pending_outcomes(started[0], operations, 1, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_pending_outcomes(started[0], operations, 2, &failure), ORVANE_BOARD_ERROR);
    EXPECT_EQ(operations[0].state, ORVANE_OPERATION_DONE);
    EXPECT_EQ(operations[1].state, ORVANE_OPERATION_REFUSED);
    EXPECT_EQ(operations[1].code, -5);
}

TEST_F(CFlights, OnlyBatchesHaveOutcomes) {
    orvane_operation operation{};
    orvane_flight_read(flight, phy, kRegister, nullptr, next(), nullptr);
    EXPECT_EQ(orvane_pending_outcomes(started[0], &operation, 1, &failure), ORVANE_INVALID_ARGUMENT);
}

TEST_F(CFlights, SessionsAreOpenedAndClosed) {
    orvane_flight_close(flight, phy, nullptr, next(), nullptr);
    EXPECT_EQ(orvane_pending_get(started[0], nullptr, 0, &failure), ORVANE_DONE);
    EXPECT_EQ(board.sessionCount(), 0U);
    orvane_flight_open(flight, phy, nullptr, next(), nullptr);
    EXPECT_EQ(orvane_pending_get(started[1], nullptr, 0, &failure), ORVANE_DONE);
    EXPECT_EQ(board.sessionCount(), 1U);
}

TEST_F(CFlights, DescriptorFitsAnEventLoop) {
    orvane_flight_read(flight, phy, kRegister, nullptr, next(), nullptr);
    while (orvane_pending_done(started[0]) == 0) {
        pollfd entry{orvane_flight_descriptor(flight), POLLIN, 0};
        ASSERT_EQ(poll(&entry, 1, 10000), 1);
        ASSERT_EQ(orvane_flight_step(flight, &failure), ORVANE_DONE);
    }
    uint32_t value = 0;
    EXPECT_EQ(orvane_pending_get(started[0], &value, 1, &failure), ORVANE_DONE);
}

TEST_F(CFlights, WaitSomeMovesOperationsOn) {
    orvane_flight_read(flight, phy, kRegister, nullptr, next(), nullptr);
    while (orvane_pending_done(started[0]) == 0)
        ASSERT_EQ(orvane_flight_wait_some(flight, &failure), ORVANE_DONE);
    EXPECT_EQ(count("mdio_read"), 1U);
}

TEST_F(CFlights, EndOfAFlightCancelsItsOperations) {
    inject(Fault::Kind::Silent, "mdio", "mdio_read", -1);
    orvane_flight_read(flight, phy, kRegister, nullptr, next(), nullptr);
    orvane_flight_step(flight, nullptr);
    orvane_flight_free(std::exchange(flight, nullptr));
    EXPECT_EQ(orvane_pending_done(started[0]), 1);
    uint32_t value = 0;
    EXPECT_EQ(orvane_pending_get(started[0], &value, 1, &failure), ORVANE_CANCELLED);
    EXPECT_STREQ(failure.board, kBoardName);
}

TEST_F(CFlights, WrongArgumentsAreRefusedAtTheStart) {
    EXPECT_EQ(orvane_flight_read(flight, phy, {ORVANE_CLAUSE22, 0, 32}, nullptr, next(), &failure),
              ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_flight_read(nullptr, phy, kRegister, nullptr, nullptr, &failure),
              ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_flight_step(nullptr, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(started[0], nullptr);
    EXPECT_EQ(orvane_pending_done(nullptr), 1);
    EXPECT_EQ(orvane_flight_descriptor(nullptr), -1);
    EXPECT_EQ(orvane_flight_under_way(nullptr), 0U);
}

} // namespace
} // namespace OrvaneTest
