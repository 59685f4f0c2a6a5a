// The board's services, as a C program uses them.
#include "tests/support/rack/CRackOnBoard.h"

#include <gmock/gmock.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Waveform;
using testing::ElementsAre;
using testing::EndsWith;
using testing::FloatNear;

class CServices : public testing::Test, protected CRackOnBoard {
protected:
    static constexpr unsigned kEeprom = 0x50;
};

TEST_F(CServices, I2cReadsWhatItWrote) {
    const uint8_t written[] = {0x40, 'O', 'r', 'v'};
    uint8_t read[3] = {};
    EXPECT_EQ(orvane_i2c_write(phy, 2, kEeprom, written, 4, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_i2c_read(phy, 2, kEeprom, 0x40, 3, nullptr, read, &failure), ORVANE_DONE);
    EXPECT_THAT(read, ElementsAre('O', 'r', 'v'));
    EXPECT_EQ(orvane_i2c_read_register(phy, 2, kEeprom, 0x41, 1, 2, nullptr, read, &failure), ORVANE_DONE);
    EXPECT_THAT(read, ElementsAre('r', 'v', 'v'));
}

TEST_F(CServices, I2cBlocksReachSeveralBuses) {
    uint8_t written[] = {1, 2, 3, 4, 5};
    uint8_t read[6] = {};
    const orvane_i2c_transfer writes[] = {{0, kEeprom, 0x20, 1, 2, written},
                                          {1, kEeprom, 0x30, 1, 3, written + 2}};
    const orvane_i2c_transfer reads[] = {
        {0, kEeprom, 0x20, 1, 2, read}, {1, kEeprom, 0x30, 1, 3, read + 2}, {2, kEeprom, 0, 1, 1, nullptr}};
    EXPECT_EQ(orvane_i2c_write_block(phy, writes, 2, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_i2c_read_block(phy, reads, 2, nullptr, &failure), ORVANE_DONE);
    EXPECT_THAT(read, ElementsAre(1, 2, 3, 4, 5, 0));
    uint8_t all = 0xFF;
    const orvane_i2c_transfer masked{0, kEeprom, 0x20, 1, 1, &all};
    EXPECT_EQ(orvane_i2c_write_block_masked(phy, &masked, 1, 0xF0, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(board.eeprom(0)[0x20], 0xF1);
}

TEST_F(CServices, TransferWithoutLimitsIsSentOnce) {
    orvane_phy_open(phy, nullptr, nullptr);
    const uint8_t written[] = {1, 2};
    inject(Fault::Kind::LoseReply, "i2c", "i2c_write");
    EXPECT_EQ(orvane_i2c_write(phy, 0, kEeprom, written, 2, nullptr, &failure), ORVANE_TIMED_OUT);
    EXPECT_EQ(count("i2c_write"), 1U);
}

TEST_F(CServices, GpioShowsTheOutputAtTheInput) {
    board.wireGpio(1, 2);
    const uint8_t lines[] = {1, 2};
    const uint8_t zeros[] = {0, 0};
    const uint8_t one = 1;
    uint8_t states[2] = {};
    EXPECT_EQ(orvane_gpio_enable_output(phy, lines, &one, 1, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_gpio_write(phy, lines, &one, 1, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_gpio_read(phy, lines, 2, nullptr, states, &failure), ORVANE_DONE);
    EXPECT_THAT(states, ElementsAre(1, 1));
    EXPECT_EQ(orvane_gpio_output_enables(phy, lines, 2, nullptr, states, &failure), ORVANE_DONE);
    EXPECT_THAT(states, ElementsAre(1, 0));
    EXPECT_EQ(orvane_gpio_bit_bang(phy, lines, zeros, zeros, 2, nullptr, states, &failure), ORVANE_DONE);
    EXPECT_THAT(states, ElementsAre(0, 0));
    EXPECT_EQ(orvane_gpio_set_default(phy, lines, 1, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_gpio_reset(phy, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_gpio_output_enables(phy, lines, 1, nullptr, states, &failure), ORVANE_DONE);
    EXPECT_EQ(states[0], 0);
}

TEST_F(CServices, JtagShiftsSeveralTimesInOneCall) {
    char first[11];
    char second[14];
    const orvane_jtag_shift_entry shifts[] = {{"", "1111101100", "", first},
                                              {"1111111111111", "0000000000001", "10100", second}};
    unsigned bytes = 0;
    EXPECT_EQ(orvane_jtag_shift(phy, shifts, 2, nullptr, &failure), ORVANE_DONE);
    EXPECT_STREQ(first, "1111111111");
    EXPECT_STREQ(second, "1000010000000");
    EXPECT_EQ(count("jtag_shiftmulti"), 1U);
    EXPECT_EQ(orvane_jtag_max_bytes(phy, nullptr, &bytes, &failure), ORVANE_DONE);
    EXPECT_GT(bytes, 0U);
}

TEST_F(CServices, AdcShowsTheWaveform) {
    board.setWaveform(0, {Waveform::Shape::Sine, 128, 300, 4});
    orvane_bytes* bytes = nullptr;
    EXPECT_EQ(orvane_adc_initialize(phy, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_adc_set_dump_file(phy, "capture.bin", nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_adc_set_channel_mask(phy, 1, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_adc_start(phy, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_adc_data(phy, 4, nullptr, &bytes, &failure), ORVANE_DONE);
    EXPECT_EQ(textOf(bytes), std::string("\x80\xFF\x80\0", 4));
    EXPECT_EQ(orvane_adc_max_adc(phy, nullptr, &bytes, &failure), ORVANE_DONE);
    EXPECT_EQ(textOf(bytes), "\xFF");
    EXPECT_EQ(orvane_adc_set_event_name(phy, "overload", nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_adc_events(phy, nullptr, &bytes, &failure), ORVANE_DONE);
    EXPECT_THAT(textOf(bytes), EndsWith(" overload\n"));
    EXPECT_EQ(orvane_adc_stop(phy, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(board.adcDumpFile(), "capture.bin");
}

TEST_F(CServices, ThermalUnitSettlesAtItsSetPoint) {
    float celsius = 0;
    int state = 0;
    EXPECT_EQ(orvane_thermal_connect(phy, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_thermal_set_temperature(phy, 0, 85, 1, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_thermal_temperature(phy, 0, nullptr, &celsius, &failure), ORVANE_DONE);
    EXPECT_EQ(celsius, 40.0F);
    EXPECT_EQ(orvane_thermal_settled_temperature(phy, 0, nullptr, &celsius, &failure), ORVANE_DONE);
    EXPECT_THAT(celsius, FloatNear(85, 0.1F));
    EXPECT_EQ(orvane_thermal_state(phy, nullptr, &state, &failure), ORVANE_DONE);
    EXPECT_EQ(state, 3);
    EXPECT_EQ(orvane_thermal_set_default_temperature(phy, 0, -20, 0, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_thermal_stop_control(phy, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_thermal_start_control(phy, 0, nullptr, &failure), ORVANE_DONE);
    orvane_thermal_settled_temperature(phy, 0, nullptr, &celsius, nullptr);
    EXPECT_THAT(celsius, FloatNear(-20, 0.1F));
    EXPECT_EQ(orvane_thermal_disconnect(phy, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_thermal_state(phy, nullptr, &state, &failure), ORVANE_DONE);
    EXPECT_EQ(state, 0);
}

TEST_F(CServices, ShellReturnsStatusAndBothOutputs) {
    board.setCommand("uname", {3, "Linux\n", "oops", 0});
    int status = 0;
    orvane_bytes* output = nullptr;
    orvane_bytes* errors = nullptr;
    EXPECT_EQ(orvane_shell_run(phy, "uname", 10, nullptr, &status, &output, &errors, &failure), ORVANE_DONE);
    EXPECT_EQ(status, 3);
    EXPECT_EQ(textOf(output), "Linux\n");
    EXPECT_EQ(textOf(errors), "oops");
    EXPECT_EQ(orvane_shell_run(phy, "uname", 10, nullptr, nullptr, nullptr, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_shell_run(phy, "uname", 0, nullptr, nullptr, nullptr, nullptr, &failure),
              ORVANE_INVALID_ARGUMENT);
}

TEST_F(CServices, CancelledCommandSaysSo) {
    orvane_cancellation* cancellation = nullptr;
    ASSERT_EQ(orvane_cancellation_new(&cancellation, &failure), ORVANE_DONE);
    orvane_cancellation_cancel(cancellation);
    EXPECT_EQ(orvane_shell_run(phy, "hostname", 5, cancellation, nullptr, nullptr, nullptr, &failure),
              ORVANE_CANCELLED);
    orvane_cancellation_free(cancellation);
}

TEST_F(CServices, ServicesBeyondTheRoomAreLeftOut) {
    orvane_service services[3] = {{"", 0}, {"", 0}, {"none", 7}};
    size_t known = 0;
    EXPECT_EQ(orvane_shell_services(phy, nullptr, services, 2, &known, &failure), ORVANE_DONE);
    EXPECT_EQ(known, 8U);
    EXPECT_STREQ(services[0].name, "adc");
    EXPECT_STREQ(services[1].name, "gpio");
    EXPECT_STREQ(services[2].name, "none");
    EXPECT_EQ(services[2].port, 7U);
}

TEST_F(CServices, LongestAddressIsWhole) {
    orvane_phy* far = nullptr;
    orvane_rack_know(rack, "far", "123.123.123.123", nullptr);
    ASSERT_EQ(orvane_rack_phy(rack, "far:0", {ORVANE_SIMPLE, 0, 0}, 3, nullptr, &far, &failure), ORVANE_DONE);
    char address[17] = "oooooooooooooooo";
    EXPECT_EQ(orvane_shell_address(far, address, &failure), ORVANE_DONE);
    EXPECT_STREQ(address, "123.123.123.123");
    orvane_phy_free(far);
}

TEST_F(CServices, PingsReachTheirServices) {
    for (const auto ping : {&orvane_shell_ping, &orvane_shell_ping_session, &orvane_shell_ping_keep_alive}) {
        double seconds = -1;
        EXPECT_EQ(ping(phy, nullptr, &seconds, &failure), ORVANE_DONE);
        EXPECT_GE(seconds, 0.0);
        EXPECT_LT(seconds, 5.0);
    }
    EXPECT_EQ(count("ping"), 1U);
    EXPECT_EQ(count("pingclient"), 1U);
    EXPECT_GE(count("pingkeepalive"), 1U); // the rack has its own
}

TEST_F(CServices, BoardTellsItsServicesItsAddressAndItsErrors) {
    orvane_service services[16] = {};
    size_t known = 0;
    EXPECT_EQ(orvane_shell_services(phy, nullptr, services, 16, &known, &failure), ORVANE_DONE);
    ASSERT_EQ(known, 8U);
    EXPECT_STREQ(services[0].name, "adc");
    EXPECT_GT(services[0].port, 0U);
    EXPECT_EQ(orvane_shell_services(phy, nullptr, nullptr, 0, &known, &failure), ORVANE_DONE);
    EXPECT_EQ(known, 8U);
    char address[16];
    EXPECT_EQ(orvane_shell_address(phy, address, &failure), ORVANE_DONE);
    EXPECT_EQ(address, board.address());
    unsigned kind = 9;
    int detail = 9;
    EXPECT_EQ(orvane_shell_error_record(phy, -5, nullptr, &kind, &detail, &failure), ORVANE_DONE);
    EXPECT_EQ(kind, 0U);
    EXPECT_EQ(detail, 0);
    EXPECT_EQ(argumentsOf(board.requestsOf("get_error_msg").at(0))["value"],
              0xFFFFFFFBU); // -5, as the wire has it
}

TEST_F(CServices, MdioBusMovesTheAddressOfTheExtension) {
    board.setRegister(Space::Ext32, 1, 3, 0x104, 0x44);
    orvane_phy_write(phy, {ORVANE_EXT32, 0, 0x100}, 1, nullptr, nullptr);
    uint32_t value = 0;
    EXPECT_EQ(orvane_mdio_read_next(phy, nullptr, &value, &failure), ORVANE_DONE);
    EXPECT_EQ(value, 0x44U);
    EXPECT_EQ(orvane_mdio_write_current(phy, 0x45, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_mdio_read_current(phy, nullptr, &value, &failure), ORVANE_DONE);
    EXPECT_EQ(value, 0x45U);
    EXPECT_EQ(orvane_mdio_write_next(phy, 0x46, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(board.registerValue(Space::Ext32, 1, 3, 0x108), 0x46U);
}

TEST_F(CServices, MdioBusSwitchesAreSent) {
    EXPECT_EQ(orvane_mdio_flush(phy, nullptr, &failure), ORVANE_DONE);
    for (const int on : {1, 0, -1})
        EXPECT_EQ(orvane_mdio_set_single_wire(phy, on, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_mdio_set_preamble_count(phy, 17, nullptr, &failure), ORVANE_DONE);
    EXPECT_EQ(argumentsOf(board.requestsOf("mdio_flushport").at(0)).back(), 3);
    for (const std::size_t i : {0U, 1U, 2U})
        EXPECT_EQ(argumentsOf(board.requestsOf("mdio_singlewire").at(i))["value"], i == 1 ? 0 : 1);
    EXPECT_EQ(argumentsOf(board.requestsOf("mdio_setpreamblecount").at(0))["value"], 17);
}

TEST_F(CServices, InterruptsReachTheBoard) {
    int result = -1;
    EXPECT_EQ(orvane_mdio_request_interrupt(phy, 1, 2, 3, 4, nullptr, &result, &failure), ORVANE_DONE);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(orvane_mdio_wait_for_interrupt(phy, 5, nullptr, &result, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_mdio_interrupt_processed(phy, 6, nullptr, &result, &failure), ORVANE_DONE);
    EXPECT_EQ(orvane_mdio_release_interrupt(phy, 7, nullptr, &result, &failure), ORVANE_DONE);
    EXPECT_EQ(procedures(),
              (std::vector<std::string>{"open_connection", "mdio_interruptrequest", "mdio_interruptwait",
                                        "mdio_interruptprocessed", "mdio_interrutprelease"}));
}

TEST_F(CServices, NullIsRefusedUnsent) {
    const uint8_t line = 1;
    uint8_t state = 0;
    EXPECT_EQ(orvane_gpio_read(phy, nullptr, 1, nullptr, &state, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_gpio_read(phy, &line, 1, nullptr, nullptr, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_gpio_read(nullptr, &line, 1, nullptr, &state, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_adc_set_dump_file(phy, nullptr, nullptr, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_i2c_read_block(phy, nullptr, 1, nullptr, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_jtag_shift(phy, nullptr, 1, nullptr, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(procedures(), std::vector<std::string>{});
    EXPECT_EQ(orvane_bytes_size(nullptr), 0U);
    EXPECT_STREQ(orvane_bytes_data(nullptr), "");
}

} // namespace
} // namespace OrvaneTest
