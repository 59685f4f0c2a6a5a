// The C interface while memory runs out.
#include "tests/support/allocations/AllocationFailure.h"
#include "tests/support/rack/CRackOnBoard.h"

#include <gmock/gmock.h>
#include <string>

namespace OrvaneTest {
namespace {

using Statuses = std::vector<int>;

// Runs the steps up to the first that fails, and returns its status.
template <class... Step>
int firstStatus(Step... steps) {
    int status = ORVANE_DONE;
    static_cast<void>(((status = steps(), status == ORVANE_DONE) && ...));
    return status;
}

class CAllocationFailure : public testing::Test, protected CRackOnBoard {
protected:
    // Fails each allocation of `work` in turn, which then returns one of `failures`, or ORVANE_DONE where it
    // can do without.
    template <class Work>
    static void endsIn(const Statuses& failures, Work work) {
        int status = ORVANE_DONE;
        const std::size_t allocations =
            failEachAllocation([&] { status = work(); },
                               [&] {
                                   if (status != ORVANE_DONE) {
                                       EXPECT_THAT(failures, testing::Contains(status));
                                   }
                               });
        EXPECT_GE(allocations, 10U);
    }
};

TEST_F(CAllocationFailure, IsAStatusOfRacksAndTheirPhys) {
    const orvane_limits brief = orvane_within(0.02);
    const std::string address = board.address(); // which takes memory of the board's own
    endsIn({ORVANE_OUT_OF_RESOURCES}, [&] {
        orvane_rack* other = nullptr;
        orvane_phy* one = nullptr;
        orvane_board_list* boards = nullptr;
        orvane_counters* counters = nullptr;
        uint32_t value = 0;
        const int status = firstStatus(
            [&] { return orvane_rack_new(&other, &failure); },
            [&] { return orvane_rack_know(other, kBoardSerial, address.c_str(), &failure); },
            [&] { return orvane_rack_discover(other, &brief, &boards, &failure); },
            [&] {
                return orvane_rack_phy(other, "board7:0", {ORVANE_SIMPLE, 0, 0}, 4, nullptr, &one, &failure);
            },
            [&] {
                return orvane_phy_on_reopen(
                    one, [](void*, orvane_failure*) { return 0; }, nullptr, &failure);
            },
            [&] { return orvane_phy_read(one, kRegister, nullptr, &value, &failure); },
            [&] { return orvane_rack_counters(other, &counters, &failure); },
            [&] { return orvane_phy_close(one, nullptr, &failure); });
        orvane_counters_free(counters);
        orvane_board_list_free(boards);
        orvane_phy_free(one);
        orvane_rack_free(other);
        return status;
    });
}

// An answer that finds no room is as good as none.
TEST_F(CAllocationFailure, IsAStatusOfBatchesAndServices) {
    orvane_phy_open(phy, nullptr, nullptr);
    orvane_operation operations[3] = {
        {kRegister, 1, 5, 0, 0}, {kRegister, 0, 0, 0, 0}, {kRegister, 1, 6, 0, 0}};
    const uint8_t lines[2] = {1, 2};
    uint8_t states[2] = {};
    endsIn({ORVANE_OUT_OF_RESOURCES, ORVANE_BAD_REPLY, ORVANE_TIMED_OUT}, [&] {
        orvane_bytes* output = nullptr;
        orvane_bytes* maxima = nullptr;
        const int status = firstStatus(
            [&] { return orvane_phy_run(phy, operations, 3, nullptr, &failure); },
            [&] { return orvane_gpio_read(phy, lines, 2, nullptr, states, &failure); },
            [&] { return orvane_adc_max_adc(phy, nullptr, &maxima, &failure); },
            [&] {
                return orvane_shell_run(phy, "hostname", 5, nullptr, nullptr, &output, nullptr, &failure);
            });
        orvane_bytes_free(output);
        orvane_bytes_free(maxima);
        return status;
    });
}

// An operation that is torn is given up.
TEST_F(CAllocationFailure, IsAStatusOfFlights) {
    orvane_phy_write(phy, kRegister, 0x77, nullptr, nullptr);
    endsIn({ORVANE_OUT_OF_RESOURCES, ORVANE_CANCELLED}, [&] {
        orvane_flight* flight = nullptr;
        orvane_pending* read = nullptr;
        orvane_pending* list = nullptr;
        uint32_t value = 0;
        uint32_t values[4] = {};
        const int status = firstStatus(
            [&] { return orvane_flight_new(8, &flight, &failure); },
            [&] { return orvane_flight_read(flight, phy, kRegister, nullptr, &read, &failure); },
            [&] { return orvane_flight_read_list(flight, phy, kRegister, 4, nullptr, &list, &failure); },
            [&] { return orvane_flight_wait(flight, &failure); },
            [&] { return orvane_pending_get(read, &value, 1, &failure); },
            [&] { return orvane_pending_get(list, values, 4, &failure); });
        orvane_flight_free(flight);
        orvane_pending_free(read);
        orvane_pending_free(list);
        if (status == ORVANE_DONE) {
            EXPECT_EQ(value, 0x77U);
            EXPECT_EQ(values[0], 0x77U);
        }
        return status;
    });
}

} // namespace
} // namespace OrvaneTest
