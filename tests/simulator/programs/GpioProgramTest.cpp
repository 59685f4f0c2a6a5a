// The general-purpose lines of a simulated board.
#include "tests/support/simulator/Client.h"

#include <cerrno>
#include <stdexcept>

namespace OrvaneSim {
namespace {

using Numbers = std::vector<unsigned>;

class GpioProgram : public BoardWithClient {
protected:
    Client gpio{board, SIM_GPIO, "udp"};
    Decoded<sim_GPIO_Read_Result> answer{xdr_sim_GPIO_Read_Result};

    using ReadStub = clnt_stat (*)(sim_GPIO_Indexes_Param*, sim_GPIO_Read_Result*, CLIENT*);
    using WriteStub = clnt_stat (*)(sim_GPIO_States_Param*, sim_Simple_Result*, CLIENT*);

    Numbers read(ReadStub stub, std::string lines) {
        sim_GPIO_Indexes_Param argument{identity, {static_cast<u_int>(lines.size()), lines.data()}};
        EXPECT_EQ(stub(&argument, &answer.fresh(), gpio.handle()), RPC_SUCCESS);
        return numbers(answer->states.states_val, answer->states.states_len);
    }
    int write(WriteStub stub, std::string lines, std::string states) {
        sim_GPIO_States_Param argument{identity,
                                       {static_cast<u_int>(lines.size()), lines.data()},
                                       {static_cast<u_int>(states.size()), states.data()}};
        sim_Simple_Result result{};
        EXPECT_EQ(stub(&argument, &result, gpio.handle()), RPC_SUCCESS);
        return result.error;
    }
};

TEST_F(GpioProgram, InputFollowsTheOutputThatItIsWiredTo) {
    board.wireGpio(1, 2);
    ASSERT_EQ(write(sim_gpio_write_1, "\1", "\1"), 0);
    EXPECT_EQ(read(sim_gpio_read_1, "\1\2"), (Numbers{0, 0})) << "the output is not enabled yet";
    ASSERT_EQ(write(sim_gpio_enableoutput_1, "\1", "\1"), 0);
    EXPECT_EQ(read(sim_gpio_read_1, "\1\2"), (Numbers{1, 1}));
    EXPECT_EQ(read(sim_gpio_readoutputenable_1, "\1\2"), (Numbers{1, 0}));
}

TEST_F(GpioProgram, InputShowsWhatTheOutsideDrives) {
    board.driveGpio(31, true);
    EXPECT_EQ(read(sim_gpio_read_1, "\x1F\x1E"), (Numbers{1, 0}));
    EXPECT_TRUE(board.gpioLevel(31));
}

TEST_F(GpioProgram, DefaultAndResetGiveLinesUp) {
    const std::string lines = "\3\4";
    ASSERT_EQ(write(sim_gpio_enableoutput_1, lines, "\1\1"), 0);
    std::string first = "\3";
    sim_GPIO_Indexes_Param argument{identity, {1, first.data()}};
    sim_Simple_Result result{};
    ASSERT_EQ(sim_gpio_setdefault_1(&argument, &result, gpio.handle()), RPC_SUCCESS);
    EXPECT_EQ(read(sim_gpio_readoutputenable_1, lines), (Numbers{0, 1}));
    ASSERT_EQ(gpio.call(sim_gpio_reset_1, sim_Simple_Param{0, identity}, result), RPC_SUCCESS);
    EXPECT_EQ(read(sim_gpio_readoutputenable_1, lines), (Numbers{0, 0}));
}

TEST_F(GpioProgram, BitBangWritesAndSamplesStepByStep) {
    board.wireGpio(1, 2);
    ASSERT_EQ(write(sim_gpio_enableoutput_1, "\1", "\1"), 0);
    std::string lines("\1\2\1\2", 4);
    std::string states("\1\0\0\0", 4);
    std::string modes("\0\1\0\1", 4);
    sim_GPIO_BitBang_Param argument{identity, {4, lines.data()}, {4, states.data()}, {4, modes.data()}};
    ASSERT_EQ(sim_gpio_bitbang_1(&argument, &answer.fresh(), gpio.handle()), RPC_SUCCESS);
    EXPECT_EQ(numbers(answer->states.states_val, answer->states.states_len), (Numbers{1, 1, 0, 0}));
}

TEST_F(GpioProgram, RefusesLinesThatDoNotExistAndListsThatDiffer) {
    EXPECT_EQ(read(sim_gpio_read_1, "\x20"), Numbers{});
    EXPECT_EQ(answer->error, -EINVAL);
    EXPECT_EQ(write(sim_gpio_write_1, "\1\2", "\1"), -EINVAL);
    EXPECT_THROW(board.driveGpio(32, true), std::out_of_range);
}

} // namespace
} // namespace OrvaneSim
