// Which registers of MMD 31 are NEC and DEC registers, against the whole list.
#include <gtest/gtest.h>
#include <orvane/orvane.h>
#include <set>
#include <utility>
#include <vector>

namespace OrvaneTest {
namespace {

using Ranges = std::vector<std::pair<unsigned, unsigned>>; // of one lane, first and last offset

const Ranges kNec = {
    {0x037, 0x039}, {0x045, 0x04A}, {0x06F, 0x06F}, {0x093, 0x095}, {0x0F3, 0x0F5}, {0x1C0, 0x1C1},
    {0x280, 0x284}, {0x288, 0x28C}, {0x290, 0x294}, {0x298, 0x29C}, {0x2A0, 0x2A4}, {0x2A8, 0x2AC},
    {0x2B0, 0x2B4}, {0x2B8, 0x2BC}, {0x2C0, 0x2C4}, {0x2C8, 0x2CC}, {0x2D0, 0x2D4}, {0x2D8, 0x2DC},
    {0x803, 0x803}, {0x807, 0x807}, {0x812, 0x812}, {0x81C, 0x81C}, {0x82E, 0x839}, {0x980, 0x980},
    {0x988, 0x988}, {0x990, 0x990}, {0x998, 0x998}, {0x9A0, 0x9A0}, {0x9A8, 0x9A8}, {0x9B0, 0x9B0},
    {0x9B8, 0x9B8}, {0x9C0, 0x9C0}, {0x9C8, 0x9C8}, {0x9D0, 0x9D0}, {0x9D8, 0x9D8},
};

const Ranges kDec = {
    {0x035, 0x035}, {0x041, 0x042}, {0x06D, 0x06D}, {0x090, 0x090}, {0x0F0, 0x0F2}, {0x1A0, 0x1A1},
    {0x200, 0x204}, {0x208, 0x20C}, {0x210, 0x214}, {0x218, 0x21C}, {0x220, 0x224}, {0x228, 0x22C},
    {0x230, 0x234}, {0x238, 0x23C}, {0x240, 0x244}, {0x248, 0x24C}, {0x250, 0x254}, {0x258, 0x25C},
    {0x260, 0x264}, {0x268, 0x26C}, {0x270, 0x274}, {0x278, 0x27C}, {0x800, 0x800}, {0x805, 0x805},
    {0x811, 0x811}, {0x81A, 0x81A}, {0x82A, 0x82D}, {0x900, 0x900}, {0x908, 0x908}, {0x910, 0x910},
    {0x918, 0x918}, {0x920, 0x920}, {0x928, 0x928}, {0x930, 0x930}, {0x938, 0x938}, {0x940, 0x940},
    {0x948, 0x948}, {0x950, 0x950}, {0x958, 0x958}, {0x960, 0x960}, {0x968, 0x968}, {0x970, 0x970},
    {0x978, 0x978},
};

std::set<unsigned> registersOf(const Ranges& lane) {
    std::set<unsigned> registers;
    for (const unsigned base : {0x8000U, 0x9000U, 0xA000U, 0xB000U})
        for (const auto& [first, last] : lane)
            for (unsigned offset = first; offset <= last; ++offset)
                registers.insert(base + offset);
    return registers;
}

struct RegisterClass {
    int (*test)(unsigned mmd, unsigned address);
    std::set<unsigned> registers;
    std::size_t count;
};

class ClassOfRegisters : public testing::TestWithParam<RegisterClass> {};

TEST_P(ClassOfRegisters, HasExactlyItsRegistersOfMmd31) {
    ASSERT_EQ(GetParam().registers.size(), GetParam().count);
    for (unsigned address = 0; address < 0x10000; ++address)
        ASSERT_EQ(GetParam().test(31, address), GetParam().registers.count(address) != 0 ? 1 : 0)
            << std::hex << address;
}

TEST_P(ClassOfRegisters, HasNoneInAnotherMmd) {
    for (const unsigned mmd : {0U, 1U, 3U, 4U, 7U, 10U, 11U, 15U, 27U, 28U, 29U, 30U, 32U, 63U, 0x11FU})
        for (const unsigned address : GetParam().registers)
            ASSERT_EQ(GetParam().test(mmd, address), 0) << std::hex << mmd << ' ' << address;
}

TEST_P(ClassOfRegisters, HasNoneBeyondTheRegisterNumbers) {
    for (const unsigned address : GetParam().registers) {
        ASSERT_EQ(GetParam().test(31, 0x10000 + address), 0) << std::hex << address;
        ASSERT_EQ(GetParam().test(31, 0x80000000 + address), 0) << std::hex << address;
    }
    EXPECT_EQ(GetParam().test(31, 0xFFFFFFFF), 0);
}

INSTANTIATE_TEST_SUITE_P(NecAndDec, ClassOfRegisters,
                         testing::Values(RegisterClass{isNECRegister, registersOf(kNec), 424},
                                         RegisterClass{isDECRegister, registersOf(kDec), 456}));

} // namespace
} // namespace OrvaneTest
