// Null pointers, failures as structs and structs as failures, texts of statuses.
#include "ov_sys/rack/c/Failures.h"

#include "tests/support/rack/CRackOnBoard.h"

#include <cstring>

namespace OrvaneTest {
namespace {

using namespace Orvane;

class CFailures : public testing::Test, protected CRackOnBoard {};

// Each function with each of its pointers in turn null that must not be; nothing else is wrong.
struct NullPointers : CRackOnBoard {
    orvane_flight* flight = nullptr;
    orvane_pending* pending = nullptr;
    orvane_port_list* ports = nullptr;
    orvane_rack* anyRack = nullptr;
    orvane_phy* anyPhy = nullptr;
    orvane_board_list* boards = nullptr;
    const orvane_limits brief = orvane_within(0);
    const orvane_access access{ORVANE_SIMPLE, 0, 0};
    const char* const names[1] = {"board7:1"};
    const uint8_t lines[1] = {1};
    uint8_t bytes[4] = {};
    uint32_t value = 0;
    uint16_t key = 0;
    unsigned number = 0;
    int open = 0;
    std::size_t size = 0;
    double seconds = 0;
    float celsius = 0;
    orvane_operation operation{kRegister, 0, 0, 0, 0};
    orvane_jtag_shift_entry shift{"0", "0", "0", reinterpret_cast<char*>(bytes)};
    orvane_i2c_transfer transfer{0, 0x50, 0, 1, 1, bytes};

    NullPointers() {
        orvane_flight_new(1, &flight, nullptr);
        orvane_flight_run(flight, phy, &operation, 1, &brief, &pending, nullptr);
        orvane_rack_open_all(rack, names, 1, nullptr, 0, access, nullptr, &ports, nullptr);
    }
    ~NullPointers() {
        orvane_pending_free(pending);
        orvane_flight_free(flight);
        orvane_port_list_free(ports);
    }
    NullPointers(const NullPointers&) = delete;
    NullPointers& operator=(const NullPointers&) = delete;
};

using Call = std::function<int(NullPointers& with, orvane_failure* failure)>;

int takeAll(void* /*context*/, const char* /*lines*/, std::size_t /*length*/) {
    return 0;
}

constexpr orvane_register kAny = CRackOnBoard::kRegister;

#define ORVANE_CALL(...)                                                                                     \
    std::make_pair(#__VA_ARGS__, [](NullPointers& with, orvane_failure* out) {                               \
        static_cast<void>(with);                                                                             \
        return __VA_ARGS__;                                                                                  \
    })

const std::pair<const char*, Call> kCalls[] = {
    ORVANE_CALL(orvane_rack_new(nullptr, out)),
    ORVANE_CALL(orvane_rack_know(nullptr, kBoardSerial, "10.0.0.1", out)),
    ORVANE_CALL(orvane_rack_know(with.rack, nullptr, "10.0.0.1", out)),
    ORVANE_CALL(orvane_rack_know(with.rack, kBoardSerial, nullptr, out)),
    ORVANE_CALL(orvane_rack_discover(nullptr, &with.brief, &with.boards, out)),
    ORVANE_CALL(orvane_rack_discover(with.rack, &with.brief, nullptr, out)),
    ORVANE_CALL(
        orvane_rack_open_all(nullptr, with.names, 1, nullptr, 0, with.access, nullptr, &with.ports, out)),
    ORVANE_CALL(
        orvane_rack_open_all(with.rack, nullptr, 0, nullptr, 0, with.access, nullptr, &with.ports, out)),
    ORVANE_CALL(
        orvane_rack_open_all(with.rack, with.names, 1, nullptr, 0, with.access, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_port_list_phy(nullptr, 0, 3, &with.anyPhy, out)),
    ORVANE_CALL(orvane_port_list_phy(with.ports, 0, 3, nullptr, out)),
    ORVANE_CALL(orvane_rack_close_all(nullptr, nullptr, nullptr, 0, &with.size, out)),
    ORVANE_CALL(orvane_rack_close_all(with.rack, nullptr, nullptr, 0, nullptr, out)),
    ORVANE_CALL(orvane_rack_phy(nullptr, "board7:1", with.access, 3, nullptr, &with.anyPhy, out)),
    ORVANE_CALL(orvane_rack_phy(with.rack, nullptr, with.access, 3, nullptr, &with.anyPhy, out)),
    ORVANE_CALL(orvane_rack_phy(with.rack, "board7:1", with.access, 3, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_phy_id(nullptr, &with.number, out)),
    ORVANE_CALL(orvane_phy_id(with.phy, nullptr, out)),
    ORVANE_CALL(orvane_phy_open(nullptr, nullptr, out)),
    ORVANE_CALL(orvane_phy_close(nullptr, nullptr, out)),
    ORVANE_CALL(orvane_phy_is_open(nullptr, &with.open, out)),
    ORVANE_CALL(orvane_phy_is_open(with.phy, nullptr, out)),
    ORVANE_CALL(orvane_phy_key(nullptr, &with.key, out)),
    ORVANE_CALL(orvane_phy_key(with.phy, nullptr, out)),
    ORVANE_CALL(orvane_phy_on_reopen(nullptr, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_phy_set_smbus_protocol(nullptr, ORVANE_SMBUS_PAGED16, out)),
    ORVANE_CALL(orvane_phy_read(nullptr, kAny, nullptr, &with.value, out)),
    ORVANE_CALL(orvane_phy_read(with.phy, kAny, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_phy_write(nullptr, kAny, 0, nullptr, out)),
    ORVANE_CALL(orvane_phy_modify(nullptr, kAny, 0, 0, nullptr, &with.value, out)),
    ORVANE_CALL(orvane_phy_read_list(nullptr, kAny, 1, nullptr, &with.value, out)),
    ORVANE_CALL(orvane_phy_read_list(with.phy, kAny, 1, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_phy_run(nullptr, &with.operation, 1, nullptr, out)),
    ORVANE_CALL(orvane_phy_run(with.phy, nullptr, 0, nullptr, out)),
    ORVANE_CALL(orvane_cancellation_new(nullptr, out)),
    ORVANE_CALL(orvane_routed_read(nullptr, nullptr, kAny, nullptr, &with.value, out)),
    ORVANE_CALL(orvane_routed_read(with.phy, nullptr, kAny, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_routed_write(nullptr, nullptr, kAny, 0, nullptr, out)),
    ORVANE_CALL(orvane_routed_modify(nullptr, nullptr, kAny, 0, 0, nullptr, &with.value, out)),
    ORVANE_CALL(orvane_flight_new(8, nullptr, out)),
    ORVANE_CALL(orvane_flight_read(nullptr, with.phy, kAny, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_flight_read(with.flight, nullptr, kAny, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_flight_run(with.flight, with.phy, nullptr, 0, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_flight_step(nullptr, out)),
    ORVANE_CALL(orvane_flight_wait(nullptr, out)),
    ORVANE_CALL(orvane_pending_get(nullptr, &with.value, 1, out)),
    ORVANE_CALL(orvane_pending_outcomes(nullptr, &with.operation, 1, out)),
    ORVANE_CALL(orvane_pending_outcomes(with.pending, nullptr, 1, out)),
    ORVANE_CALL(orvane_rack_on_event(nullptr, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_rack_log_to(nullptr, "/dev/null", out)),
    ORVANE_CALL(orvane_rack_log_to(with.rack, nullptr, out)),
    ORVANE_CALL(orvane_rack_log_to_sink(nullptr, &takeAll, nullptr, out)),
    ORVANE_CALL(orvane_rack_log_to_sink(with.rack, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_rack_end_log(nullptr, out)),
    ORVANE_CALL(orvane_rack_note(nullptr, "", out)),
    ORVANE_CALL(orvane_rack_note(with.rack, nullptr, out)),
    ORVANE_CALL(orvane_rack_counters(nullptr, nullptr, out)),
    ORVANE_CALL(orvane_rack_counters(with.rack, nullptr, out)),
    ORVANE_CALL(orvane_i2c_write(nullptr, 0, 0x50, with.bytes, 1, nullptr, out)),
    ORVANE_CALL(orvane_i2c_write(with.phy, 0, 0x50, nullptr, 1, nullptr, out)),
    ORVANE_CALL(orvane_i2c_read(nullptr, 0, 0x50, 0, 1, nullptr, with.bytes, out)),
    ORVANE_CALL(orvane_i2c_read(with.phy, 0, 0x50, 0, 1, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_i2c_read_block(nullptr, &with.transfer, 1, nullptr, out)),
    ORVANE_CALL(orvane_i2c_read_block(with.phy, nullptr, 0, nullptr, out)),
    ORVANE_CALL(orvane_i2c_write_block(with.phy, nullptr, 0, nullptr, out)),
    ORVANE_CALL(orvane_gpio_read(with.phy, nullptr, 1, nullptr, with.bytes, out)),
    ORVANE_CALL(orvane_gpio_read(with.phy, with.lines, 1, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_jtag_shift(nullptr, &with.shift, 1, nullptr, out)),
    ORVANE_CALL(orvane_jtag_shift(with.phy, nullptr, 0, nullptr, out)),
    ORVANE_CALL(orvane_jtag_max_bytes(with.phy, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_adc_set_dump_file(with.phy, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_thermal_temperature(with.phy, 0, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_shell_run(nullptr, "hostname", 5, nullptr, nullptr, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_shell_run(with.phy, nullptr, 5, nullptr, nullptr, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_shell_error_record(nullptr, -5, nullptr, &with.number, &with.open, out)),
    ORVANE_CALL(orvane_shell_error_record(with.phy, -5, nullptr, nullptr, &with.open, out)),
    ORVANE_CALL(orvane_shell_error_record(with.phy, -5, nullptr, &with.number, nullptr, out)),
    ORVANE_CALL(orvane_shell_services(nullptr, nullptr, nullptr, 0, &with.size, out)),
    ORVANE_CALL(orvane_shell_services(with.phy, nullptr, nullptr, 0, nullptr, out)),
    ORVANE_CALL(orvane_shell_address(nullptr, reinterpret_cast<char*>(with.bytes), out)),
    ORVANE_CALL(orvane_shell_address(with.phy, nullptr, out)),
    ORVANE_CALL(orvane_shell_ping(with.phy, nullptr, nullptr, out)),
    ORVANE_CALL(orvane_mdio_flush(nullptr, nullptr, out)),
};
#undef ORVANE_CALL

TEST(CFunctions, RefuseNullUnsent) {
    NullPointers with;
    for (const auto& [name, call] : kCalls) {
        SCOPED_TRACE(name);
        orvane_failure failure{};
        EXPECT_EQ(call(with, &failure), ORVANE_INVALID_ARGUMENT);
        EXPECT_STREQ(failure.advice, "A pointer is null.");
        EXPECT_EQ(failure.code, 0);
        EXPECT_EQ(failure.port, -1);
        EXPECT_EQ(failure.phy, -1);
        EXPECT_EQ(failure.attempts, 0U);
    }
    EXPECT_EQ(with.procedures(), std::vector<std::string>{});
}

TEST(CFunctions, RefuseNullInAShift) {
    CRackOnBoard with;
    char result[2];
    for (int member = 0; member < 4; ++member) {
        const orvane_jtag_shift_entry shift{member == 0 ? nullptr : "0", member == 1 ? nullptr : "0",
                                            member == 2 ? nullptr : "0", member == 3 ? nullptr : result};
        EXPECT_EQ(orvane_jtag_shift(with.phy, &shift, 1, nullptr, nullptr), ORVANE_INVALID_ARGUMENT);
    }
}

TEST(CFailure, KeepsAsMuchOfATextAsItHasRoomFor) {
    FailureDetails details;
    details.board = details.operation = details.location = details.advice = std::string(600, 'x');
    orvane_failure failure{};
    RackC::fail(&failure, Failure(details));
    EXPECT_EQ(std::strlen(failure.board), sizeof failure.board - 1);
    EXPECT_EQ(std::strlen(failure.operation), sizeof failure.operation - 1);
    EXPECT_EQ(std::strlen(failure.location), sizeof failure.location - 1);
    EXPECT_EQ(std::strlen(failure.advice), sizeof failure.advice - 1);
    EXPECT_EQ(std::strlen(failure.message), sizeof failure.message - 1);
}

TEST(CFailure, NamesItsCodeOrGivesItsNumber) {
    const std::pair<int, const char*> names[] = {
        {0, ""}, {-1, "EPERM"}, {1, "1"}, {-131, "ENOTRECOVERABLE"}, {-9999, "-9999"}};
    for (const auto& [code, name] : names) {
        FailureDetails details;
        details.code = code;
        orvane_failure failure{};
        RackC::fail(&failure, Failure(details));
        EXPECT_STREQ(failure.code_name, name) << code;
    }
}

TEST(CFailure, OfAnotherExceptionIsOfResourcesAndOfNoBoard) {
    orvane_failure failure{};
    EXPECT_EQ(RackC::guarded(&failure, [] { throw std::runtime_error("no room"); }), ORVANE_OUT_OF_RESOURCES);
    EXPECT_EQ(failure.kind, ORVANE_OUT_OF_RESOURCES);
    EXPECT_EQ(failure.port, -1);
    EXPECT_EQ(failure.phy, -1);
    EXPECT_STREQ(failure.message, "no room");
    EXPECT_EQ(RackC::guarded(&failure, [] { throw 5; }), ORVANE_OUT_OF_RESOURCES);
    EXPECT_STREQ(failure.message, "Unknown error.");
    EXPECT_EQ(RackC::guarded(nullptr, [] { throw 5; }), ORVANE_OUT_OF_RESOURCES);
}

TEST_F(CFailures, HookThatSaysNothingMoreHasAFailureOfNoBoard) {
    orvane_failure before{};
    orvane_phy_on_reopen(
        phy,
        [](void* context, orvane_failure* said) {
            *static_cast<orvane_failure*>(context) = *said;
            return int{ORVANE_INVALID_ARGUMENT};
        },
        &before, nullptr);
    orvane_phy_open(phy, nullptr, nullptr);
    board.forgetSessions();
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_read(phy, kRegister, nullptr, &value, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(before.port, -1);
    EXPECT_EQ(before.phy, -1);
    EXPECT_EQ(failure.port, -1);
    EXPECT_EQ(failure.phy, -1);
    EXPECT_STREQ(failure.operation, "reopen hook");
}

TEST_F(CFailures, MessageOfAHookIsThatOfTheCallOrThatItFailed) {
    const char* message = "";
    orvane_phy_on_reopen(
        phy,
        [](void* context, orvane_failure* said) {
            std::strcpy(said->message, *static_cast<const char**>(context));
            return int{ORVANE_OUT_OF_RESOURCES};
        },
        &message, nullptr);
    orvane_phy_open(phy, nullptr, nullptr);
    board.forgetSessions();
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_read(phy, kRegister, nullptr, &value, &failure), ORVANE_OUT_OF_RESOURCES);
    EXPECT_STREQ(failure.message, "The hook failed.");
    message = "no heater";
    EXPECT_EQ(orvane_phy_read(phy, kRegister, nullptr, &value, &failure), ORVANE_OUT_OF_RESOURCES);
    EXPECT_STREQ(failure.message, "no heater");
}

TEST_F(CFailures, CancelledHookIsACancelledCall) {
    orvane_phy_on_reopen(
        phy, [](void*, orvane_failure*) { return int{ORVANE_CANCELLED}; }, nullptr, nullptr);
    orvane_phy_open(phy, nullptr, nullptr);
    board.forgetSessions();
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_read(phy, kRegister, nullptr, &value, &failure), ORVANE_CANCELLED);
}

} // namespace
} // namespace OrvaneTest
