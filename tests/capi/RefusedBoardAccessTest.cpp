// Raw accesses to a board's own registers, which are refused.
#include "tests/support/capi/FlatInterface.h"
#include "tests/support/NamedParam.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

struct Refused {
    std::string name;
    unsigned long long (*access)();
    std::string line;
};

const std::string kRead = "BOARD READ ATTEMPTED: You need to use a BoardControl function instead. Raw fpga "
                          "reads/writes don't make sense. Address = ";
const std::string kWrite = "BOARD WRITE ATTEMPTED: You need to use a BoardControl function instead. Raw fpga "
                           "reads/writes don't make sense. Address = ";

const Refused kRefusedAccesses[] = {
    {"Read", call<Board_Read, 16>, kRead + "16"},
    {"ReadAdapter", call<Board_ReadAdapter, 3, 4294967295U>, kRead + "4294967295"},
    {"Read32", call<Board_Read32, 16>, kRead + "16"},
    {"Read32Adapter", call<Board_Read32Adapter, 99, 16>, kRead + "16"},
    {"Read64", call<Board_Read64, 16>, kRead + "16"},
    {"Read64Adapter", call<Board_Read64Adapter, 3, 16>, kRead + "16"},
    {"Write", call<Board_Write, 16, 255>, kWrite + "16, data = 255"},
    {"WriteAdapter", call<Board_WriteAdapter, 99, 16, 255>, kWrite + "16, data = 255"},
    {"Write32", call<Board_Write32, 16, 4294967295U>, kWrite + "16, data = 4294967295"},
    {"Write32Adapter", call<Board_Write32Adapter, 3, 16, 255>, kWrite + "16, data = 255"},
    {"Write64", call<Board_Write64, 16, 18446744073709551615ULL>, kWrite + "16, data = 18446744073709551615"},
    {"Write64Adapter", call<Board_Write64Adapter, 3, 16, 255>, kWrite + "16, data = 255"},
};

class BoardAccess : public FlatInterface, public testing::WithParamInterface<Refused> {};

TEST_P(BoardAccess, IsRefusedWithItsLineAndAnErrorAndNotLogged) {
    EXPECT_EQ(outcomeOf(GetParam().access),
              (Outcome{0, "", GetParam().line + "\n\nError: Interface Error.\n", ""}));
    EXPECT_STREQ(HW_Error(), "Interface Error.");
    EXPECT_EQ(HW_Fail(), 1);
    EXPECT_THAT(frames(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Refused, BoardAccess, testing::ValuesIn(kRefusedAccesses), NamedParam());

} // namespace
} // namespace OrvaneTest
