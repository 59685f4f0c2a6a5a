// Many ports at once, as a C program opens and closes them.
#include "tests/support/rack/CRackOnBoard.h"

namespace OrvaneTest {
namespace {

class CPorts : public testing::Test, protected CRackOnBoard {
protected:
    orvane_port_list* ports = nullptr;

    ~CPorts() override { orvane_port_list_free(ports); }

    int openAll(std::vector<const char*> names, std::vector<unsigned> phys) {
        return orvane_rack_open_all(rack, names.data(), names.size(), phys.data(), phys.size(),
                                    {ORVANE_SIMPLE, 0, 0}, nullptr, &ports, &failure);
    }
};

TEST_F(CPorts, EachNameHasItsResult) {
    ASSERT_EQ(openAll({"board7:0", "nonsense", "board7:1"}, {4, 5}), ORVANE_DONE);
    ASSERT_EQ(orvane_port_list_size(ports), 3U);
    EXPECT_EQ(board.sessionCount(), 4U);
    EXPECT_STREQ(orvane_port_list_at(ports, 0)->name, "board7:0");
    EXPECT_EQ(orvane_port_list_at(ports, 0)->exists, 1);
    EXPECT_EQ(orvane_port_list_at(ports, 0)->failure.kind, ORVANE_DONE);
    EXPECT_EQ(orvane_port_list_at(ports, 1)->exists, 0);
    EXPECT_EQ(orvane_port_list_at(ports, 1)->failure.kind, ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_port_list_at(ports, 3), nullptr);
}

TEST_F(CPorts, PhysAreThoseThatWereOpened) {
    ASSERT_EQ(openAll({"board7:0", "nonsense"}, {4}), ORVANE_DONE);
    orvane_phy* other = nullptr;
    EXPECT_EQ(orvane_port_list_phy(ports, 1, 4, &other, &failure), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_port_list_phy(ports, 2, 4, &other, &failure), ORVANE_INVALID_ARGUMENT);
    ASSERT_EQ(orvane_port_list_phy(ports, 0, 4, &other, &failure), ORVANE_DONE);
    orvane_port_list_free(std::exchange(ports, nullptr));
    uint32_t value = 0;
    EXPECT_EQ(orvane_phy_read(other, kRegister, nullptr, &value, &failure), ORVANE_DONE);
    EXPECT_EQ(count("open_connection"), 1U);
    orvane_phy_free(other);
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(CPorts, AllSessionsAreClosedTogether) {
    ASSERT_EQ(openAll({"board7:0", "board7:1"}, {4, 5}), ORVANE_DONE);
    size_t untold = 99;
    EXPECT_EQ(orvane_rack_close_all(rack, nullptr, nullptr, 0, &untold, &failure), ORVANE_DONE);
    EXPECT_EQ(untold, 0U);
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(CPorts, SessionsThatTheBoardCouldNotBeToldOfAreNamed) {
    ASSERT_EQ(openAll({"board7:0"}, {4, 5}), ORVANE_DONE);
    board.stop();
    const orvane_limits brief = orvane_within(0.3);
    orvane_failure failures[3] = {};
    size_t untold = 0;
    EXPECT_EQ(orvane_rack_close_all(rack, &brief, failures, 3, &untold, &failure), ORVANE_DONE);
    EXPECT_EQ(untold, 2U);
    for (const size_t i : {0U, 1U}) {
        EXPECT_STREQ(failures[i].board, kBoardName);
        EXPECT_STREQ(failures[i].operation, "close");
    }
    EXPECT_STREQ(failures[2].board, "");
}

TEST_F(CPorts, NullNamesAreRefused) {
    EXPECT_EQ(openAll({"board7:0", nullptr}, {}), ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(
        orvane_rack_open_all(rack, nullptr, 0, nullptr, 0, {ORVANE_SIMPLE, 0, 0}, nullptr, &ports, &failure),
        ORVANE_INVALID_ARGUMENT);
    EXPECT_EQ(orvane_port_list_size(nullptr), 0U);
}

} // namespace
} // namespace OrvaneTest
