// The address word: what the caller gives, and what the session puts into its top byte.
#include "ov_sys/Interface/buses/MDIO.h"
#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"
#include "tests/support/MdioOperations.h"
#include "tests/support/NamedParam.h"
#include "tests/support/SessionOnBoard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::mdio;
using Orvane::SessionWrapper;
using testing::ElementsAre;

// All address bits above 23 set, and bits 21 to 23 too, which pass.
constexpr unsigned int kEveryTopBit = 0xFFE00001;
constexpr unsigned int kMasked = 0x25E00001;

struct AddressCase {
    std::string name;
    void (*run)(SessionWrapper session);
    unsigned procedure;
    nlohmann::ordered_json arguments;
};

const AddressCase kAddressCases[] = {
    {"read", [](SessionWrapper s) { mdio.read(s, kEveryTopBit); }, 1, readParam(identity(), {kMasked})},
    {"readOfAWordBeyond32Bits", [](SessionWrapper s) { mdio.read(s, 0xABCDEF00001E0001UL); }, 1,
     readParam(identity(), {0x251E0001})},
    {"write", [](SessionWrapper s) { mdio.write(s, kEveryTopBit, 7); }, 2,
     writeParam(identity(), {kMasked}, {7})},
    {"writeOfAWordBeyond32Bits", [](SessionWrapper s) { mdio.write(s, 0xABCDEF00001E0001UL, 7); }, 2,
     writeParam(identity(), {0x251E0001}, {7})},
    {"read_c22", [](SessionWrapper s) { mdio.read_c22(s, kEveryTopBit); }, 11,
     readParam(identity(), {kMasked})},
    {"write_c22", [](SessionWrapper s) { mdio.write_c22(s, kEveryTopBit, 7); }, 12,
     writeParam(identity(), {kMasked}, {7})},
    {"blockRead",
     [](SessionWrapper s) {
         mdio.blockRead(s, {kEveryTopBit, 2});
     },
     1, readParam(identity(), {kMasked, 0x25000002})},
    {"blockWrite",
     [](SessionWrapper s) {
         mdio.blockWrite(s, {kEveryTopBit, 2}, {7, 8});
     },
     2, writeParam(identity(), {kMasked, 0x25000002}, {7, 8})},
    {"mixedBlock",
     [](SessionWrapper s) {
         mdio.mixedBlock(s, {kEveryTopBit}, {kEveryTopBit}, {kEveryTopBit}, {1, 1});
     },
     9, mixedParam(identity(), {kEveryTopBit}, {kMasked}, {kMasked}, {1, 1})},
    {"mixedBlock_c22",
     [](SessionWrapper s) {
         mdio.mixedBlock_c22(s, {kEveryTopBit}, {kEveryTopBit}, {kEveryTopBit}, {1, 1});
     },
     13, mixedParam(identity(), {kEveryTopBit}, {kMasked}, {kMasked}, {1, 1})},
    {"read_c22_zrExt32Unchanged", [](SessionWrapper s) { mdio.read_c22_zrExt32(s, kEveryTopBit); }, 14,
     readParam(identity(), {kEveryTopBit})},
    {"write_c22_zrExt32Unchanged", [](SessionWrapper s) { mdio.write_c22_zrExt32(s, kEveryTopBit, 7); }, 15,
     writeParam(identity(), {kEveryTopBit}, {7})},
    {"mixedBlock_c22_32bitUnchanged",
     [](SessionWrapper s) {
         mdio.mixedBlock_c22_32bit(s, {kEveryTopBit}, {7}, {kEveryTopBit}, {1, 1});
     },
     20, mixedParam(identity(), {7}, {kEveryTopBit}, {kEveryTopBit}, {1, 1})},
};

class MdioAddress : public testing::TestWithParam<AddressCase>, protected SessionOnBoard {};

INSTANTIATE_TEST_SUITE_P(Of, MdioAddress, testing::ValuesIn(kAddressCases), NamedParam{});

TEST_P(MdioAddress, KeepsOrLosesItsTopByteAsItsFormWants) {
    GetParam().run(&session);
    EXPECT_THAT(wireCalls(board), ElementsAre(mdioCall(GetParam().procedure, GetParam().arguments)));
}

struct PrefixCase {
    std::string name;
    int phyAddress;
    unsigned int deviceIndex;
    unsigned int addressWord; // of register 0x1E0001
    unsigned int flushDevice;
    unsigned int flushPhy;
};

const PrefixCase kPrefixCases[] = {
    {"Phy5OfDevice1", 5, 1, 0x251E0001, 1, 5},
    {"Phy0OfDevice0", 0, 0, 0x001E0001, 0, 0},
    {"HighestPhyAndDevice", 31, 7, 0xFF1E0001, 7, 31},
    {"PhyAndDeviceBeyondTheirBits", 0x125, 0x109, 0x251E0001, 0x09, 0x25},
    {"NegativePhy", -1, 8, 0x1F1E0001, 8, 0xFF},
};

class MdioPrefix : public testing::TestWithParam<PrefixCase> {};

INSTANTIATE_TEST_SUITE_P(Of, MdioPrefix, testing::ValuesIn(kPrefixCases), NamedParam{});

TEST_P(MdioPrefix, HasTheLowBitsOfPhyAddressAndDeviceIndex) {
    SessionOnBoard open(simpleMode(GetParam().phyAddress, GetParam().deviceIndex));
    mdio.read(&open.session, 0x1E0001);
    EXPECT_THAT(wireCalls(open.board),
                ElementsAre(mdioCall(1, readParam(identity(), {GetParam().addressWord}))));
}

TEST_P(MdioPrefix, LeavesFlushTheLowBytesOfDeviceIndexAndPhyAddress) {
    SessionOnBoard open(simpleMode(GetParam().phyAddress, GetParam().deviceIndex));
    mdio.flush(&open.session);
    EXPECT_THAT(wireCalls(open.board), ElementsAre(mdioCall(7, {{"handle", identity()},
                                                                {"deviceIndex", GetParam().flushDevice},
                                                                {"phyAddress", GetParam().flushPhy}})));
}

TEST(MdioMixedBlockExecute, SendsTheAddressesAsTheyAre) {
    SessionOnBoard open;
    Orvane::MDIO::RPC::mixedBlockExecute(open.session, {kEveryTopBit}, {7}, {2}, {1, 1},
                                         Orvane::MDIO::CLAUSE_45);
    EXPECT_THAT(wireCalls(open.board),
                ElementsAre(mdioCall(9, mixedParam(identity(), {7}, {kEveryTopBit}, {2}, {1, 1}))));
}

} // namespace
} // namespace OrvaneTest
