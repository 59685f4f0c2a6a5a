// The JTAG chain of a simulated board.
#include "tests/support/simulator/Client.h"

#include <array>
#include <cerrno>

namespace OrvaneSim {
namespace {

class JtagProgram : public BoardWithClient {
protected:
    Client jtag{board, SIM_JTAG, "udp"};
    Decoded<sim_JTAG_ShiftMulti_Result> answer{xdr_sim_JTAG_ShiftMulti_Result};

    std::vector<std::string> shift(std::vector<std::string> data, std::vector<std::string> tms,
                                   std::vector<std::string> after) {
        std::array<std::vector<sim_StringArrayEntry>, 3> lists;
        const std::array<std::vector<std::string>*, 3> texts{&data, &tms, &after};
        for (std::size_t i = 0; i < texts.size(); ++i)
            for (std::string& text : *texts[i])
                lists[i].push_back({text.data(), static_cast<u_int>(text.size())});
        sim_JTAG_ShiftMulti_Param argument{identity,
                                           {static_cast<u_int>(lists[0].size()), lists[0].data()},
                                           {static_cast<u_int>(lists[1].size()), lists[1].data()},
                                           {static_cast<u_int>(lists[2].size()), lists[2].data()}};
        EXPECT_EQ(sim_jtag_shiftmulti_1(&argument, &answer.fresh(), jtag.handle()), RPC_SUCCESS);
        std::vector<std::string> results;
        for (u_int i = 0; i < answer->entries.entries_len; ++i)
            results.emplace_back(answer->entries.entries_val[i].text);
        return results;
    }
};

// The bits of a word as they leave a shift register.
std::string bits(std::uint32_t word) {
    std::string text;
    for (int i = 0; i < 32; ++i, word >>= 1)
        text += (word & 1U) != 0 ? '1' : '0';
    return text;
}

// From anywhere to the shifting of data, and of instructions; the end of a shift, back to idle.
constexpr const char* kToShiftDr = "111110100";
constexpr const char* kToShiftIr = "1111101100";

TEST_F(JtagProgram, AfterResetTheChainShiftsOutItsIdentifications) {
    const auto identifications = board.jtagIdentifications();
    ASSERT_EQ(identifications.size(), 2U);
    const auto results =
        shift({"", std::string(64, '0')}, {kToShiftDr, std::string(63, '0') + "1"}, {"", "10"});
    EXPECT_EQ(results[1], bits(identifications[0]) + bits(identifications[1]));
    EXPECT_EQ(identifications[0] & identifications[1] & 1U, 1U);
}

TEST_F(JtagProgram, InBypassDelaysTheDataByOneBitForEachDevice) {
    const std::string ones(13, '1'); // instruction registers of 5 and 8 bits
    const auto results = shift({"", ones, "", "10110000"}, {kToShiftIr, "0000000000001", "", "00000001"},
                               {"", "10100", "", "10"});
    EXPECT_EQ(results[1], "1000010000000") << "each device captures 1 in its instruction register";
    EXPECT_EQ(results[3], "00101100");
}

TEST_F(JtagProgram, AnswersWithOneLevelForEachClockWithData) {
    EXPECT_EQ(shift({"1"}, {"11111"}, {"0"}), std::vector<std::string>{"11111"});
    EXPECT_EQ(shift({}, {}, {}), std::vector<std::string>{});
}

TEST_F(JtagProgram, RefusesOtherCharactersAndUnequalLists) {
    EXPECT_TRUE(shift({"0"}, {"2"}, {""}).empty());
    EXPECT_EQ(answer->error, -EINVAL);
    EXPECT_TRUE(shift({"0"}, {"1", "1"}, {""}).empty());
    EXPECT_EQ(answer->error, -EINVAL);
}

TEST_F(JtagProgram, TellsHowMuchItShiftsAtOnce) {
    sim_Simple_Result result{};
    ASSERT_EQ(jtag.call(sim_jtag_maxbytes_1, sim_Simple_Param{0, identity}, result), RPC_SUCCESS);
    EXPECT_EQ(result.value, 1024);
}

TEST(JtagChainOfABoard, DependsOnItsSeedOnly) {
    Lab lab;
    const auto ids = lab.add({"", "A", {}, "host", 5, false}).jtagIdentifications();
    EXPECT_EQ(lab.add({"", "B", {}, "host", 5, false}).jtagIdentifications(), ids);
    EXPECT_NE(lab.add({"", "C", {}, "host", 6, false}).jtagIdentifications(), ids);
}

} // namespace
} // namespace OrvaneSim
