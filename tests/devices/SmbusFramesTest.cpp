// Register accesses on an SMBus port, frame by frame.
#include "ov_sys/Interface/devices/SimpleSessionEntry.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/devices/AccessTable.h"
#include "tests/support/NamedParam.h"
#include "tests/support/ServiceOperations.h"
#include "tests/support/SessionOnBoard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::Direct32;
using Orvane::KelSmbProto;
using Orvane::Paged16;
using Orvane::SimpleSessionEntry;
using Orvane::Exceptions::InvalidSession;
using Orvane::Exceptions::Standard;
using OrvaneSim::Space;
using testing::ElementsAre;
using testing::IsEmpty;
using Entry = SimpleSessionEntry;
using Calls = std::vector<WireCall>;

// The I2C transfers of call number `call` to PHY 5 on bus 0.
WireCall written(unsigned call, const Bytes& frame) {
    return {kI2cProgram, 2, {{"handle", identity(call)}, {"bus", 0}, {"address", kPhy}, {"data", frame}}};
}
WireCall readTwo(unsigned call, unsigned command) {
    return {kI2cProgram,
            1,
            {{"handle", identity(call)}, {"bus", 0}, {"address", kPhy}, {"command", command}, {"length", 2}}};
}
WireCall readFour(unsigned call, unsigned reg) {
    return {kI2cProgram,
            3,
            {{"handle", identity(call)},
             {"bus", 0},
             {"address", kPhy},
             {"registerNumber", reg},
             {"registerLength", 4},
             {"length", 4}}};
}

// The frames of a Paged16 access to the address 0x12345678.
Calls pagedRead() {
    return {written(0, {0x81, 0x34, 0x12}), written(1, {0x80, 0x78, 0x56}), readTwo(2, 0xC0),
            readTwo(3, 0xC1)};
}
Calls pagedWrite() {
    return {written(0, {0x81, 0x34, 0x12}), written(1, {0x80, 0x78, 0x56}), written(2, {0xA1, 0xFE, 0xCA}),
            written(3, {0xA0, 0x0D, 0xF0})};
}

struct SmbusAccessCase {
    std::string name;
    unsigned (*run)(Entry& entry); // the value read, 0 for a write
    Calls calls;
    unsigned value;
};

const SmbusAccessCase kSmbusAccesses[] = {
    {"Clause45Read",
     [](Entry& e) { return e.read_16bit_c45(0x10002); },
     {written(0, {0x01, 0x02, 0x00}), readTwo(1, 0x41)},
     0x4501},
    {"Clause45ReadOfTheLastMmd",
     [](Entry& e) { return e.read_16bit_c45(0x1F1234); },
     {written(0, {0x1F, 0x34, 0x12}), readTwo(1, 0x5F)},
     0x451F},
    {"Clause45ReadWithBitsBeyondTheMmd",
     [](Entry& e) { return e.read_16bit_c45(0xFFFFE10002UL); },
     {written(0, {0x01, 0x02, 0x00}), readTwo(1, 0x41)},
     0x4501},
    {"Clause45Write",
     [](Entry& e) { return nothing([&] { e.write_16bit_c45(0x1E1234, 0xABCD); }); },
     {written(0, {0x1E, 0x34, 0x12}), written(1, {0x3E, 0xCD, 0xAB})},
     0},
    {"Clause45WriteWithBitsBeyondAWord",
     [](Entry& e) { return nothing([&] { e.write_16bit_c45(0xFFE0FFFF, 0x12345678); }); },
     {written(0, {0x00, 0xFF, 0xFF}), written(1, {0x20, 0x78, 0x56})},
     0},
    {"PagedRead", [](Entry& e) { return e.read_32bit(0x12345678, Paged16); }, pagedRead(), 0xCAFEF00D},
    {"PagedReadWithBitsBeyondAnAddress", [](Entry& e) { return e.read_32bit(0xFF12345678UL, Paged16); },
     pagedRead(), 0xCAFEF00D},
    {"PagedWrite", [](Entry& e) { return nothing([&] { e.write_32bit(0x12345678, 0xCAFEF00D, Paged16); }); },
     pagedWrite(), 0},
    {"DirectRead",
     [](Entry& e) { return e.read_32bit(0x12345678, Direct32); },
     {readFour(0, 0x78563412)},
     0xCAFEF00D},
    {"DirectReadWithBitsBeyondAnAddress",
     [](Entry& e) { return e.read_32bit(0xFF12345678UL, Direct32); },
     {readFour(0, 0x78563412)},
     0xCAFEF00D},
    {"DirectWrite",
     [](Entry& e) { return nothing([&] { e.write_32bit(0x12345678, 0xCAFEF00D, Direct32); }); },
     {written(0, {0x12, 0x34, 0x56, 0x78, 0x0D, 0xF0, 0xFE, 0xCA})},
     0},
    {"ReadInAnUnknownProtocol", [](Entry& e) { return e.read_32bit(0x12345678, KelSmbProto(2)); }, {}, 0},
    {"WriteInAnUnknownProtocol",
     [](Entry& e) { return nothing([&] { e.write_32bit(0x12345678, 1, KelSmbProto(3)); }); },
     {},
     0},
    {"BlockRead16",
     [](Entry& e) {
         e.addBlockRead_16bit(0x10002);
         return e.smbResults.at(0);
     },
     {written(0, {0x01, 0x02, 0x00}), readTwo(1, 0x41)},
     0x4501},
    {"BlockRead32",
     [](Entry& e) {
         e.addBlockRead_32bit(0x12345678);
         return e.smbResults.at(0);
     },
     pagedRead(), 0xCAFEF00D},
    {"BlockWrite16",
     [](Entry& e) { return nothing([&] { e.addBlockWrite_16bit(0x1E1234, 0xABCD); }); },
     {written(0, {0x1E, 0x34, 0x12}), written(1, {0x3E, 0xCD, 0xAB})},
     0},
    {"BlockWrite32", [](Entry& e) { return nothing([&] { e.addBlockWrite_32bit(0x12345678, 0xCAFEF00D); }); },
     pagedWrite(), 0},
};

// An entry for PHY 5 on port 10, whose registers are those of port 0.
class SmbusEntry : protected SessionOnBoard {
protected:
    SmbusEntry() : SessionOnBoard(simpleMode(kPhy, kFirstSmbusPort)) {
        board.setRegister(Space::C45, 0, kPhy, 0x10002, 0x4501);
        board.setRegister(Space::C45, 0, kPhy, 0x1F1234, 0x451F);
        board.setRegister(Space::Ext32, 0, kPhy, 0x12345678, 0xCAFEF00D);
    }

    Entry entry{owned.release(), kPhy, kFirstSmbusPort};
};

class SmbusPortAccess : public testing::TestWithParam<SmbusAccessCase>, protected SmbusEntry {};

INSTANTIATE_TEST_SUITE_P(Of, SmbusPortAccess, testing::ValuesIn(kSmbusAccesses), NamedParam{});

TEST_P(SmbusPortAccess, MakesExactlyItsTransfers) {
    GetParam().run(entry);
    EXPECT_EQ(wireCalls(board), GetParam().calls);
}

TEST_P(SmbusPortAccess, GivesTheRegistersValue) {
    EXPECT_EQ(GetParam().run(entry), GetParam().value);
}

class SmbusBlock : public testing::Test, protected SmbusEntry {};

TEST_F(SmbusBlock, OfTwoReadsReturnsBothValuesInOrderAndNothingAgain) {
    board.setRegister(Space::Ext32, 0, kPhy, 0x1000, 0x11111111);
    entry.addBlockRead_32bit(0x12345678);
    entry.addBlockRead_32bit(0x1000);
    EXPECT_THAT(*entry.executeBlock(), ElementsAre(0xCAFEF00D, 0x11111111));
    EXPECT_THAT(*entry.executeBlock(), IsEmpty());
}

TEST_F(SmbusBlock, IsExecutedWithoutATransfer) {
    entry.addBlockWrite_16bit(0x10002, 0x1234);
    entry.addBlockRead_16bit(0x10002);
    board.forgetRequests();
    EXPECT_THAT(*entry.executeBlock(), ElementsAre(0x1234));
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

TEST_F(SmbusBlock, HoldsItsReadsInTheOrderOfBothWidths) {
    entry.addBlockRead_16bit(0x10002);
    entry.addBlockWrite_32bit(0x12345678, 7);
    entry.addBlockRead_32bit(0x12345678);
    EXPECT_EQ(entry.executeBlock_c22_32bit(), &entry.blockResult);
    EXPECT_THAT(entry.blockResult, ElementsAre(0x4501, 7));
    EXPECT_THAT(entry.smbResults, IsEmpty());
}

TEST_F(SmbusBlock, GetsNothingFromAReadThatFails) {
    entry.addBlockRead_16bit(0x10002);
    board.inject({"i2c", "i2c_read", OrvaneSim::Fault::Kind::ResultCode, 1, -121});
    EXPECT_THROW(entry.addBlockRead_32bit(0x12345678), Standard);
    EXPECT_THAT(*entry.executeBlock_c22(), ElementsAre(0x4501));
}

TEST_F(SmbusBlock, OnADeadSessionIsRefusedWithoutATransfer) {
    entry.session->setSessionState(Orvane::PhySession::SESSION_INVALID);
    EXPECT_THROW(entry.addBlockWrite_32bit(0x12345678, 1), InvalidSession);
    EXPECT_THROW(entry.addBlockRead_16bit(0x10002), InvalidSession);
    EXPECT_THAT(wireCalls(board), IsEmpty());
    EXPECT_THAT(*entry.executeBlock(), IsEmpty());
}

class SmbusReply : public testing::Test, protected SmbusEntry {
protected:
    void answerReadsWith(std::int64_t count, int reads) {
        board.inject({"i2c", "i2c_read", OrvaneSim::Fault::Kind::ReplyCount, reads, count});
    }
};

TEST_F(SmbusReply, LongerThanARegisterLosesTheSurplus) {
    answerReadsWith(300, 2);
    EXPECT_EQ(entry.read_32bit(0x12345678, Paged16), 0xCAFEF00D);
}

TEST_F(SmbusReply, ShorterThanARegisterLeavesTheUpperBytesZero) {
    answerReadsWith(1, 2);
    EXPECT_EQ(entry.read_32bit(0x12345678, Paged16), 0x00FE000DU);
}

TEST_F(SmbusReply, WithoutBytesReadsAsZero) {
    answerReadsWith(0, 1);
    EXPECT_EQ(entry.read_16bit_c45(0x10002), 0U);
}

TEST_F(SmbusReply, LongerThanADirectWordLosesTheSurplus) {
    board.inject({"i2c", "i2c_read_reg", OrvaneSim::Fault::Kind::ReplyCount, 1, 300});
    EXPECT_EQ(entry.read_32bit(0x12345678, Direct32), 0xCAFEF00D);
}

TEST_F(SmbusReply, ShorterThanADirectWordLeavesTheUpperBytesZero) {
    board.inject({"i2c", "i2c_read_reg", OrvaneSim::Fault::Kind::ReplyCount, 1, 3});
    EXPECT_EQ(entry.read_32bit(0x12345678, Direct32), 0x00FEF00DU);
}

struct PortCase {
    std::string name;
    int port;
    unsigned bus;
};

class SmbusPortNumber : public testing::TestWithParam<PortCase>, protected SessionOnBoard {};

INSTANTIATE_TEST_SUITE_P(Of, SmbusPortNumber,
                         testing::Values(PortCase{"Ten", 10, 0}, PortCase{"Eleven", 11, 1},
                                         PortCase{"Nineteen", 19, 9}, PortCase{"TheLastOf8Bits", 265, 255},
                                         PortCase{"TheFirstBeyond8Bits", 266, 0},
                                         PortCase{"FarBeyond8Bits", 1000000 + 10, 64}),
                         NamedParam{});

TEST_P(SmbusPortNumber, IsTheBusAndTenInItsLow8Bits) {
    Entry entry(owned.release(), kPhy, GetParam().port);
    try {
        entry.read_16bit_c45(0x10002);
    } catch (const Standard&) { // the board has ten buses
    }
    const WireCall first = wireCalls(board).at(0);
    EXPECT_EQ(first.program, kI2cProgram);
    EXPECT_EQ(first.arguments["bus"], GetParam().bus);
}

class SmbusDevice : public testing::Test, protected SessionOnBoard {};

TEST_F(SmbusDevice, IsThePhysId) {
    Entry entry(owned.release(), -2, kFirstSmbusPort);
    EXPECT_THROW(entry.read_16bit_c45(0x10002), Standard);
    EXPECT_EQ(wireCalls(board).at(0).arguments["address"], 0xFFFFFFFEU);
}

TEST_F(SmbusDevice, OnPortNineIsReachedOverMdio) {
    Entry entry(owned.release(), kPhy, 9);
    entry.read_16bit_c22(2);
    EXPECT_EQ(wireCalls(board).at(0).program, kMdioProgram);
}

TEST(SmbusDeviceWithoutSession, RefusesEveryAccess) {
    Entry entry(nullptr, kPhy, kFirstSmbusPort);
    EXPECT_THROW(entry.read_16bit_c45(1), InvalidSession);
    EXPECT_THROW(entry.write_32bit(1, 2, Direct32), InvalidSession);
    EXPECT_EQ(entry.read_32bit(1, KelSmbProto(2)), 0U);
}

} // namespace
} // namespace OrvaneTest
