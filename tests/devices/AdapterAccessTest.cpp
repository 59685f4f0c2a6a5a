// Register access by adapter, and by default adapter: every operation on the wire.
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/devices/AccessTable.h"
#include "tests/support/devices/AdaptersOnBoard.h"
#include "tests/support/MdioOperations.h"
#include "tests/support/NamedParam.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::HWInterface;
using Orvane::Exceptions::Standard;
using testing::ElementsAre;
using testing::IsEmpty;

// An operation in both of its forms; for PHY 5 on adapter 1, which is the default adapter.
struct Operation {
    std::string name;
    unsigned (*run)(HWInterface& devices); // the value read, 0 for a write
    unsigned procedure;
    nlohmann::ordered_json arguments;
    unsigned value;
};

using D = HWInterface;

const Operation kOperations[] = {
    {"readAdapter", [](D& d) { return d.readAdapter(kAdapter, kPhy, 0x11E, 0x30001); }, 1,
     readParam(identity(), {0x251E0001}), 0x4501},
    {"read", [](D& d) { return d.read(kPhy, 0x11E, 0x30001); }, 1, readParam(identity(), {0x251E0001}),
     0x4501},
    {"readAdapterOfAnMmdBeyond5Bits", [](D& d) { return d.readAdapter(kAdapter, kPhy, 0xFF, 1); }, 1,
     readParam(identity(), {0x25FF0001}), 0},
    {"writeAdapter",
     [](D& d) { return nothing([&] { d.writeAdapter(kAdapter, kPhy, 0x11E, 0x30001, 0x12345678); }); }, 2,
     writeParam(identity(), {0x251E0001}, {0x12345678}), 0},
    {"write", [](D& d) { return nothing([&] { d.write(kPhy, 0x11E, 0x30001, 0x12345678); }); }, 2,
     writeParam(identity(), {0x251E0001}, {0x12345678}), 0},
    {"readAdapter_c22", [](D& d) { return d.readAdapter_c22(kAdapter, kPhy, 0x11); }, 11,
     readParam(identity(), {0x25000011}), 0x2211},
    {"read_c22", [](D& d) { return d.read_c22(kPhy, 0x11); }, 11, readParam(identity(), {0x25000011}),
     0x2211},
    {"writeAdapter_c22", [](D& d) { return nothing([&] { d.writeAdapter_c22(kAdapter, kPhy, 0x11, 7); }); },
     12, writeParam(identity(), {0x25000011}, {7}), 0},
    {"write_c22", [](D& d) { return nothing([&] { d.write_c22(kPhy, 0x11, 7); }); }, 12,
     writeParam(identity(), {0x25000011}, {7}), 0},
    {"read32Adapter", [](D& d) { return d.read32Adapter(kAdapter, kPhy, 0x001E0001); }, 14,
     readParam(identity(), {0x001E0001}), 0x32000001},
    {"read32", [](D& d) { return d.read32(kPhy, 0x001E0001); }, 14, readParam(identity(), {0x001E0001}),
     0x32000001},
    {"write32Adapter",
     [](D& d) { return nothing([&] { d.write32Adapter(kAdapter, kPhy, 0xFF000002, 0xFEDCBA98); }); }, 15,
     writeParam(identity(), {0xFF000002}, {0xFEDCBA98}), 0},
    {"write32", [](D& d) { return nothing([&] { d.write32(kPhy, 0xFF000002, 0xFEDCBA98); }); }, 15,
     writeParam(identity(), {0xFF000002}, {0xFEDCBA98}), 0},
    {"read32AdapterPreincrementAddress",
     [](D& d) { return d.read32AdapterPreincrementAddress(kAdapter, kPhy); },
     16,
     {{"handle", identity()}},
     0x32000004},
    {"read32PreincrementAddress",
     [](D& d) { return d.read32PreincrementAddress(kPhy); },
     16,
     {{"handle", identity()}},
     0x32000004},
    {"read32AdapterCurrentAddress",
     [](D& d) { return d.read32AdapterCurrentAddress(kAdapter, kPhy); },
     18,
     {{"handle", identity()}},
     0x32000000},
    {"read32CurrentAddress",
     [](D& d) { return d.read32CurrentAddress(kPhy); },
     18,
     {{"handle", identity()}},
     0x32000000},
    {"write32AdapterPreincrementAddress",
     [](D& d) { return nothing([&] { d.write32AdapterPreincrementAddress(kAdapter, kPhy, 7); }); },
     17,
     {{"handle", identity()}, {"value", 7}},
     0},
    {"write32PreincrementAddress",
     [](D& d) { return nothing([&] { d.write32PreincrementAddress(kPhy, 7); }); },
     17,
     {{"handle", identity()}, {"value", 7}},
     0},
    {"write32AdapterCurrentAddress",
     [](D& d) { return nothing([&] { d.write32AdapterCurrentAddress(kAdapter, kPhy, 7); }); },
     19,
     {{"handle", identity()}, {"value", 7}},
     0},
    {"write32CurrentAddress",
     [](D& d) { return nothing([&] { d.write32CurrentAddress(kPhy, 7); }); },
     19,
     {{"handle", identity()}, {"value", 7}},
     0},
    {"blockAdapter",
     [](D& d) {
         d.blockReadAdapter(kAdapter, kPhy, 0x11E, 0x30001);
         d.blockWriteAdapter(kAdapter, kPhy, 0x11E, 0x30003, 7);
         return *d.blockOperationExecuteAdapter(kAdapter, kPhy);
     },
     9, mixedParam(identity(), {7}, {0x251E0003}, {0x251E0001}, {0, 1, 1}), 0x4501},
    {"block",
     [](D& d) {
         d.blockRead(kPhy, 0x11E, 0x30001);
         d.blockWrite(kPhy, 0x11E, 0x30003, 7);
         return *d.blockOperationExecute(kPhy);
     },
     9, mixedParam(identity(), {7}, {0x251E0003}, {0x251E0001}, {0, 1, 1}), 0x4501},
    {"blockAdapter_c22",
     [](D& d) {
         d.blockReadAdapter(kAdapter, kPhy, 0, 0x11);
         return *d.blockOperationExecuteAdapter_c22(kAdapter, kPhy);
     },
     13, mixedParam(identity(), {}, {}, {0x25000011}, {0, 1}), 0x2211},
    {"block_c22",
     [](D& d) {
         d.blockRead(kPhy, 0, 0x11);
         return *d.blockOperationExecute_c22(kPhy);
     },
     13, mixedParam(identity(), {}, {}, {0x25000011}, {0, 1}), 0x2211},
    {"blockAdapter_c22_ZrExt32",
     [](D& d) {
         d.blockRead32Adapter(kAdapter, kPhy, 0xFF000002);
         d.blockWrite32Adapter(kAdapter, kPhy, 0xFF000003, 0xFEDCBA98);
         return *d.blockOperationExecuteAdapter_c22_ZrExt32(kAdapter, kPhy);
     },
     20, mixedParam(identity(), {0xFEDCBA98}, {0xFF000003}, {0xFF000002}, {0, 1, 1}), 0x32000002},
    {"block_c22_ZrExt32",
     [](D& d) {
         d.blockRead32(kPhy, 0xFF000002);
         d.blockWrite32(kPhy, 0xFF000003, 0xFEDCBA98);
         return *d.blockOperationExecute_c22_ZrExt32(kPhy);
     },
     20, mixedParam(identity(), {0xFEDCBA98}, {0xFF000003}, {0xFF000002}, {0, 1, 1}), 0x32000002},
};

// The second adapter of a board is open and the default one; its registers are prepared.
class OpenAdapter : protected AdaptersOnBoard {
protected:
    OpenAdapter() {
        prepareRegisters(board);
        devices.openAdapter(kAdapter);
        devices.setDefaultAdapter(kAdapter);
    }
};

class AdapterOperation : public testing::TestWithParam<Operation>, protected OpenAdapter {};

INSTANTIATE_TEST_SUITE_P(Each, AdapterOperation, testing::ValuesIn(kOperations), NamedParam{});

TEST_P(AdapterOperation, IsOneCallForItsPhy) {
    GetParam().run(devices);
    EXPECT_THAT(wireCalls(board, "mdio"), ElementsAre(mdioCall(GetParam().procedure, GetParam().arguments)));
}

TEST_P(AdapterOperation, GivesTheBoardsWord) {
    EXPECT_EQ(GetParam().run(devices), GetParam().value);
}

TEST_P(AdapterOperation, OpensOneSessionHoweverOftenItRuns) {
    GetParam().run(devices);
    GetParam().run(devices);
    EXPECT_EQ(board.requestsOf("open_connection").size(), 1U);
}

TEST_P(AdapterOperation, IsRefusedOnAClosedAdapter) {
    devices.closeAdapter(kAdapter);
    EXPECT_EQ(thrownText<Standard>([&] { GetParam().run(devices); }), "Adapter isn't open.");
    EXPECT_THAT(wireCalls(board, "mdio"), IsEmpty());
}

TEST_P(AdapterOperation, IsRefusedWithoutItsAdapter) {
    HWInterface empty;
    EXPECT_EQ(thrownText<Standard>([&] { GetParam().run(empty); }), "Invalid adapter index");
}

struct Execution {
    std::string name;
    unsigned* (*run)(HWInterface& devices);
};

const Execution kExecutions[] = {
    {"Adapter", [](D& d) { return d.blockOperationExecuteAdapter(kAdapter, kPhy); }},
    {"Default", [](D& d) { return d.blockOperationExecute(kPhy); }},
    {"Adapter_c22", [](D& d) { return d.blockOperationExecuteAdapter_c22(kAdapter, kPhy); }},
    {"Default_c22", [](D& d) { return d.blockOperationExecute_c22(kPhy); }},
    {"Adapter_c22_ZrExt32", [](D& d) { return d.blockOperationExecuteAdapter_c22_ZrExt32(kAdapter, kPhy); }},
    {"Default_c22_ZrExt32", [](D& d) { return d.blockOperationExecute_c22_ZrExt32(kPhy); }},
};

class BlockExecution : public testing::TestWithParam<Execution>, protected OpenAdapter {};

INSTANTIATE_TEST_SUITE_P(Of, BlockExecution, testing::ValuesIn(kExecutions), NamedParam{});

TEST_P(BlockExecution, OfAnEmptyBlockGivesNullAndTheSize0) {
    devices.blockQueueSize = 99;
    EXPECT_EQ(GetParam().run(devices), nullptr);
    EXPECT_EQ(devices.blockReadQueueSize(), 0U);
}

TEST_P(BlockExecution, OfWritesOnlyGivesNullAndTheSize0) {
    devices.blockQueueSize = 99;
    devices.blockWrite(kPhy, 1, 2, 3);
    EXPECT_EQ(GetParam().run(devices), nullptr);
    EXPECT_EQ(devices.blockReadQueueSize(), 0U);
}

TEST_P(BlockExecution, OfReadsGivesTheSessionsOwnValuesAndTheirNumber) {
    for (unsigned reg = 0; reg < 3; ++reg)
        devices.blockRead(kPhy, 0, reg);
    const unsigned* values = GetParam().run(devices);
    EXPECT_EQ(values, devices.getSimpleSession(kAdapter, kPhy)->blockResult.data());
    EXPECT_EQ(devices.blockReadQueueSize(), 3U);
}

TEST_P(BlockExecution, ThatFailsLeavesTheSizeOfTheLastOne) {
    devices.blockQueueSize = 99;
    devices.blockRead(kPhy, 0, 1);
    board.inject({"mdio", "", OrvaneSim::Fault::Kind::ResultCode, 1, -5});
    EXPECT_EQ(thrownText<Standard>([&] { GetParam().run(devices); }), "raiseRemoteError: Error");
    EXPECT_EQ(devices.blockReadQueueSize(), 99U);
}

class AdapterBlocks : public testing::Test, protected OpenAdapter {};

TEST_F(AdapterBlocks, OfTwoPhysAreApart) {
    devices.blockRead(5, 0x1E, 1);
    devices.blockWrite(6, 0x1E, 2, 3);
    EXPECT_EQ(devices.blockOperationExecute(6), nullptr);
    EXPECT_EQ(*devices.blockOperationExecute(5), 0x4501U);
}

TEST_F(AdapterBlocks, KeepTheirValuesWhileAnotherPhysBlockIsExecuted) {
    devices.blockRead(5, 0x1E, 1);
    const unsigned* values = devices.blockOperationExecute(5);
    devices.blockRead(6, 0x1E, 1);
    devices.blockOperationExecute(6);
    EXPECT_EQ(*values, 0x4501U);
}

} // namespace
} // namespace OrvaneTest
