// One PHY on two devices of a board: on port 0 over MDIO, on port 10 over SMBus.
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/devices/AdaptersOnBoard.h"
#include "tests/support/NamedParam.h"
#include "tests/support/Place.h"
#include "tests/support/ServiceOperations.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/lab_json.h>

namespace OrvaneTest {
namespace {

using Orvane::HWInterface;
using Orvane::KelSmbProto;
using Orvane::Exceptions::Standard;
using OrvaneSim::Space;
using testing::IsEmpty;

constexpr unsigned kMdio = 0; // adapters
constexpr unsigned kSmbus = 1;

// Both devices of a board, open, with a session for the PHY.
class TwoPathsToAPhy {
protected:
    TwoPathsToAPhy() {
        for (const unsigned adapter : {kMdio, kSmbus}) {
            devices.openAdapter(adapter);
            devices.getSimpleSession(static_cast<int>(adapter), kPhy);
        }
        board.forgetRequests();
    }

    OrvaneSim::Lab lab;
    OrvaneSim::Board& board = lab.add({"", "01A2", {"01A2:0", "01A2:10"}, "host", 1, false});
    AdaptersOf adapters{board};
    HWInterface& devices = adapters.devices;
};

struct Protocol {
    std::string name;
    unsigned value; // as a device parameter
    std::size_t readTransfers;
};

class SmbusPhy32 : public testing::TestWithParam<Protocol>, protected TwoPathsToAPhy {
protected:
    SmbusPhy32() { devices.setDeviceParameters(kSmbus, 0, GetParam().value); }
};

INSTANTIATE_TEST_SUITE_P(In, SmbusPhy32,
                         testing::Values(Protocol{"Paged16", 0, 4}, Protocol{"Direct32", 1, 1}),
                         NamedParam{});

TEST_P(SmbusPhy32, ReadsWhatMdioWrote) {
    devices.write32Adapter(kMdio, kPhy, 0x80FF1234, 0x01234567);
    EXPECT_EQ(devices.read32Adapter(kSmbus, kPhy, 0x80FF1234), 0x01234567U);
}

TEST_P(SmbusPhy32, WritesWhatMdioReads) {
    devices.write32Adapter(kSmbus, kPhy, 0x80FF1234, 0x89ABCDEF);
    EXPECT_EQ(devices.read32Adapter(kMdio, kPhy, 0x80FF1234), 0x89ABCDEFU);
}

TEST_P(SmbusPhy32, ReadsByTheProtocolOfItsDevice) {
    devices.read32Adapter(kSmbus, kPhy, 0x1000);
    EXPECT_EQ(wireCalls(board, "i2c").size(), GetParam().readTransfers);
}

TEST_P(SmbusPhy32, ReadsABlockPagedWhateverTheProtocolOfItsDevice) {
    devices.write32Adapter(kMdio, kPhy, 0x1000, 0x11111111);
    devices.write32Adapter(kMdio, kPhy, 0x2000, 0x22222222);
    devices.blockRead32Adapter(kSmbus, kPhy, 0x2000);
    devices.blockRead32Adapter(kSmbus, kPhy, 0x1000);
    EXPECT_EQ(wireCalls(board, "i2c").size(), 8U);
    const unsigned* values = devices.blockOperationExecuteAdapter(kSmbus, kPhy);
    ASSERT_EQ(devices.blockReadQueueSize(), 2U);
    EXPECT_EQ(values[0], 0x22222222U);
    EXPECT_EQ(values[1], 0x11111111U);
}

class SmbusPhy : public testing::Test, protected TwoPathsToAPhy {};

TEST_F(SmbusPhy, ReadsInClause45WhatMdioWrote) {
    devices.writeAdapter(kMdio, kPhy, 0x1E, 0xC010, 0xCA1E);
    EXPECT_EQ(devices.readAdapter(kSmbus, kPhy, 0x1E, 0xC010), 0xCA1EU);
}

TEST_F(SmbusPhy, WritesInClause45WhatMdioReads) {
    devices.writeAdapter(kSmbus, kPhy, 0x1E, 0xC010, 0xBEEF);
    EXPECT_EQ(devices.readAdapter(kMdio, kPhy, 0x1E, 0xC010), 0xBEEFU);
}

TEST_F(SmbusPhy, ReadsItsIdentifierAsOverMdio) {
    const unsigned identifier = devices.readAdapter(kMdio, kPhy, 1, 2);
    EXPECT_NE(identifier, 0U);
    EXPECT_EQ(devices.readAdapter(kSmbus, kPhy, 1, 2), identifier);
}

TEST_F(SmbusPhy, IsNotThePhyOfAnotherAddress) {
    devices.writeAdapter(kMdio, kPhy + 1, 0x1E, 0xC010, 0xCA1E);
    EXPECT_EQ(devices.readAdapter(kSmbus, kPhy, 0x1E, 0xC010), 0U);
}

TEST_F(SmbusPhy, OpensItsSessionForItsPort) {
    devices.readAdapter(kSmbus, kPhy + 2, 1, 2);
    EXPECT_EQ(argumentsOf(board.requestsOf("open_connection").at(0)), (Json{{"sessionId", 0},
                                                                            {"exclusive", 0},
                                                                            {"simple", 1},
                                                                            {"notShared", 0},
                                                                            {"reserved", 0},
                                                                            {"deviceIndex", 10},
                                                                            {"phyAddress", kPhy + 2}}));
}

TEST_F(SmbusPhy, InAnUnknownProtocolReads0WithoutATransfer) {
    board.setRegister(Space::Ext32, 0, kPhy, 0x1000, 7);
    devices.devices[kSmbus]->setKelSmbProto(KelSmbProto(2));
    EXPECT_EQ(devices.read32Adapter(kSmbus, kPhy, 0x1000), 0U);
    EXPECT_THAT(wireCalls(board, "i2c"), IsEmpty());
}

TEST_F(SmbusPhy, InAnUnknownProtocolWritesNothing) {
    devices.devices[kSmbus]->setKelSmbProto(KelSmbProto(2));
    devices.write32Adapter(kSmbus, kPhy, 0x1000, 7);
    EXPECT_THAT(wireCalls(board, "i2c"), IsEmpty());
}

TEST_F(SmbusPhy, RefusesClause22) {
    std::string thrown;
    const WrittenText written = textWritten(
        [&] { thrown = thrownText<Standard>([&] { devices.readAdapter_c22(kSmbus, kPhy, 2); }); });
    EXPECT_EQ(written.error, "MDIO Clause 22 over SMBus is not implemented\n");
    EXPECT_EQ(thrown, "NotImplemented: MDIO C22 over SMB");
}

TEST_F(SmbusPhy, IgnoresTheProtocolOfAnMdioDevice) {
    devices.devices[kMdio]->setKelSmbProto(KelSmbProto(2));
    devices.write32Adapter(kMdio, kPhy, 0x1000, 7);
    EXPECT_EQ(devices.read32Adapter(kMdio, kPhy, 0x1000), 7U);
}

} // namespace
} // namespace OrvaneTest
