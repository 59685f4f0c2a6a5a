// The execution of blocks: frames, results and the records of the fetched values.
#include "ov_sys/Interface/devices/HWInterface.h"
#include "tests/support/capi/FlatInterface.h"
#include "tests/support/NamedParam.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Execution {
    std::string name;
    unsigned* (*execute)();
    Frame phy;
    unsigned procedure; // 9 Clause 45, 13 Clause 22, 20 32-bit extension
    std::string logged; // adapter and PHY of the records; empty: not logged
};

const Execution kExecutions[] = {
    {"HW", [] { return HW_BlockOperationExecute(5); }, {2, 5}, 9, "2,5"},
    {"HW_C22", [] { return HW_BlockOperationExecute_C22(5); }, {2, 5}, 13, "2,5"},
    {"HW_C22_ZrExt32", [] { return HW_BlockOperationExecute_C22_ZrExt32(5); }, {2, 5}, 20, "2,5"},
    {"HW_Adapter", [] { return HW_BlockOperationExecuteAdapter(3, 5); }, {3, 5}, 9, "3,5"},
    {"HW_Adapter_C22", [] { return HW_BlockOperationExecuteAdapter_C22(3, 5); }, {3, 5}, 13, "3,5"},
    {"HW_Adapter_C22_ZrExt32",
     [] { return HW_BlockOperationExecuteAdapter_C22_ZrExt32(3, 5); },
     {3, 5},
     20,
     "3,5"},
    {"ZR_API", [] { return ZR_API_MDIO_BlockOperationExecute_Abstarcted(5); }, {2, 5}, 9, "2,5"},
    {"ZR_API_C22", [] { return ZR_API_MDIO_BlockOperationExecute_C22_Abstarcted(5); }, {2, 5}, 13, "2,5"},
    {"ZR_API_C22_ZrExt32",
     [] { return ZR_API_MDIO_BlockOperationExecute_C22_ZrExt32_Abstarcted(5); },
     {2, 5},
     20,
     "2,5"},
    {"ZR_APIOfPhy0", [] { return ZR_API_MDIO_BlockOperationExecute_Abstarcted(0); }, {2, 0}, 9, "2,0"},
    {"ZR_API_C22OfPhy0",
     [] { return ZR_API_MDIO_BlockOperationExecute_C22_Abstarcted(0); },
     {2, 0},
     13,
     "2,0"},
    {"ZR_API_C22_ZrExt32OfPhy0",
     [] { return ZR_API_MDIO_BlockOperationExecute_C22_ZrExt32_Abstarcted(0); },
     {2, 0},
     20,
     "2,0"},
    {"ZR_APICarrying", [] { return ZR_API_MDIO_BlockOperationExecute_Abstarcted(kCarrying); }, {3, 6}, 9, ""},
    {"ZR_API_C22Carrying",
     [] { return ZR_API_MDIO_BlockOperationExecute_C22_Abstarcted(kCarrying); },
     {3, 6},
     13,
     ""},
    {"ZR_API_C22_ZrExt32Carrying",
     [] { return ZR_API_MDIO_BlockOperationExecute_C22_ZrExt32_Abstarcted(kCarrying); },
     {3, 6},
     20,
     ""},
    {"ZR_APIByTheSwitch", [] { return ZR_API_MDIO_BlockOperationExecute(5); }, {2, 5}, 9, "2,5"},
    {"ZR_APIByTheSwitchCarrying", [] { return ZR_API_MDIO_BlockOperationExecute(kCarrying); }, {3, 6}, 9, ""},
};

class BlockExecution : public FlatInterface, public testing::WithParamInterface<Execution> {
protected:
    unsigned* values = nullptr;

    // A write of 22 to register 10 and a read of it, in every space of registers, and a read of 11.
    void queue() {
        const Frame& phy = GetParam().phy;
        HW_BlockWrite32Adapter_Abstracted(phy.adapter, phy.phy, 0x10, 0x22);
        HW_BlockRead32Adapter_Abstracted(phy.adapter, phy.phy, 0x10);
        HW_BlockRead32Adapter_Abstracted(phy.adapter, phy.phy, 0x11);
    }
    Outcome execute() {
        return outcomeOf([this] { values = GetParam().execute(); });
    }
    std::string records(const std::vector<std::string>& texts) const {
        std::string log;
        for (const std::string& text : texts)
            log += GetParam().logged.empty() ? "" : GetParam().logged + ",AF,,," + text + "\n";
        return log;
    }
};

TEST_P(BlockExecution, IsOneCallWhoseValuesAreLoggedInOrder) {
    const Frame& phy = GetParam().phy;
    const unsigned prefix = GetParam().procedure == 20 ? 0 : phy.adapter << 29U | phy.phy << 24U;
    queue();
    EXPECT_EQ(execute(), (Outcome{0, records({"0022", "0000"}), "", ""}));
    EXPECT_EQ(frames(), (std::vector<std::string>{phy.block(GetParam().procedure, {{prefix | 0x10, 0x22}},
                                                            {prefix | 0x10, prefix | 0x11}, {1, 2})}));
    ASSERT_NE(values, nullptr);
    EXPECT_THAT(std::vector<unsigned>(values, values + 2), ElementsAre(0x22, 0));
    EXPECT_EQ(HW_BlockReadQueueSize(), 2U);
}

TEST_P(BlockExecution, OfAnEmptyQueueIsNullAndMakesNoCall) {
    EXPECT_EQ(execute(), Outcome{});
    EXPECT_EQ(values, nullptr);
    EXPECT_EQ(HW_BlockReadQueueSize(), 0U);
    EXPECT_THAT(frames(), IsEmpty());
}

TEST_P(BlockExecution, OfWritesAloneIsNullAndLogsNothing) {
    HW_BlockWrite32Adapter_Abstracted(GetParam().phy.adapter, GetParam().phy.phy, 0x10, 0x22);
    EXPECT_EQ(execute(), Outcome{});
    EXPECT_EQ(values, nullptr);
    EXPECT_EQ(frames().size(), 1U);
}

TEST_P(BlockExecution, OnAnAdapterThatIsNotOpenIsNullAndReported) {
    HW_CloseAdapter(GetParam().phy.adapter);
    EXPECT_EQ(execute(), (Outcome{0, "", "\nError: Adapter isn't open.\n", ""}));
    EXPECT_EQ(values, nullptr);
}

INSTANTIATE_TEST_SUITE_P(By, BlockExecution, testing::ValuesIn(kExecutions), NamedParam());

using BlockOfMinus1 = FlatInterface;

TEST_F(BlockOfMinus1, IsOfAnAdapterThatIsNone) {
    for (const auto execute :
         {ZR_API_MDIO_BlockOperationExecute_Abstarcted, ZR_API_MDIO_BlockOperationExecute_C22_Abstarcted,
          ZR_API_MDIO_BlockOperationExecute_C22_ZrExt32_Abstarcted}) {
        const unsigned* values = nullptr;
        EXPECT_EQ(outcomeOf([&] { values = execute(-1); }),
                  (Outcome{0, "", "\nError: Invalid adapter index\n", ""}));
        EXPECT_EQ(values, nullptr);
    }
    EXPECT_THAT(frames(), IsEmpty());
}

using BlockBySwitch = FlatInterface;

TEST_F(BlockBySwitch, IsSentInClause22FramesWhenTheDefaultAdaptersSwitchIsOn) {
    HW_EnableClause45OverClause22(kDefaultAdapter);
    HW_BlockRead32Adapter_Abstracted(2, 5, 0x10);
    ZR_API_MDIO_BlockOperationExecute(5);
    EXPECT_EQ(frames(), (std::vector<std::string>{Frame{2, 5}.block(13, {}, {0x45000010}, {0, 1})}));
}

TEST_F(BlockBySwitch, OfACarriedAdapterGoesByTheDefaultAdaptersSwitch) {
    HW_EnableClause45OverClause22(kDefaultAdapter);
    HW_BlockRead32Adapter_Abstracted(3, 6, 0x10);
    EXPECT_EQ(outcomeOf([] { ZR_API_MDIO_BlockOperationExecute(kCarrying); }).log, "");
    EXPECT_EQ(frames(), (std::vector<std::string>{Frame{3, 6}.block(13, {}, {0x66000010}, {0, 1})}));
}

TEST_F(BlockBySwitch, LogsValuesInFullWhenTheyNeedMoreThanFourDigits) {
    board.setRegister(OrvaneSim::Space::Ext32, 2, 5, 0x10, 0xA1B2C3D4);
    HW_BlockRead32_Abstracted(5, 0x10);
    EXPECT_EQ(outcomeOf([] { HW_BlockOperationExecute_C22_ZrExt32(5); }).log, "2,5,AF,,,A1B2C3D4\n");
}

// ---- Sizes ----

using BlockSizes = FlatInterface;

TEST_F(BlockSizes, AreTheSupportedOnes) {
    EXPECT_EQ(outcomeOf([] { return ZR_API_MDIO_SupportsBlockOperations(); }), (Outcome{1, "", "", ""}));
    EXPECT_EQ(outcomeOf([] { return ZR_API_MDIO_MaxBlockOperations(); }), (Outcome{873, "", "", ""}));
}

TEST_F(BlockSizes, FollowTheLastExecutionWhateverThePhy) {
    HW_BlockRead_Abstracted(5, 1, 0x10);
    HW_BlockRead_Abstracted(5, 1, 0x11);
    HW_BlockReadAdapter_Abstracted(3, 6, 1, 0x10);
    HW_BlockOperationExecute(5);
    ZR_API_MDIO_BlockOperationExecute_Abstarcted(kCarrying);
    EXPECT_EQ(HW_BlockReadQueueSize(), 1U);
}

TEST_F(BlockSizes, OfTheGreatestBlockAreExecutedInOneCall) {
    for (unsigned i = 0; i < 873; ++i)
        HW_BlockRead_Abstracted(5, 1, i);
    setRegister(kDefaultAdapter, 5, 1, 872, 0xC045);
    const unsigned* values = HW_BlockOperationExecute(5);
    ASSERT_NE(values, nullptr);
    EXPECT_EQ(HW_BlockReadQueueSize(), 873U);
    EXPECT_EQ(values[872], 0xC045U);
    EXPECT_EQ(frames().size(), 1U);
}

// ---- Broadcast ----

using Broadcast = FlatInterface;

TEST_F(Broadcast, IsOnForAnyValueButZeroAndNotLogged) {
    EXPECT_EQ(outcomeOf([] { return HW_BroadcastEnable(5, 2); }), (Outcome{1, "", "", ""}));
    EXPECT_EQ(frames(), (std::vector<std::string>{Frame{2, 5}.call(8, {"1"})}));
}

TEST_F(Broadcast, IsOffForZero) {
    EXPECT_EQ(outcomeOf([] { return HW_BroadcastEnable(5, 0); }), (Outcome{1, "", "", ""}));
    EXPECT_EQ(frames(), (std::vector<std::string>{Frame{2, 5}.call(8, {"0"})}));
}

TEST_F(Broadcast, OnAnAdapterThatIsNotOpenFailsAndIsReported) {
    HW_CloseAdapter(kDefaultAdapter);
    EXPECT_EQ(outcomeOf([] { return HW_BroadcastEnable(5, 1); }),
              (Outcome{0, "", "\nError: Adapter isn't open.\n", ""}));
}

TEST_F(Broadcast, ThatTheBoardDoesNotTakeFailsWithItsLine) {
    board.inject({"mdio", "mdio_singlewire", OrvaneSim::Fault::Kind::ResultCode, -1, -5});
    const Outcome outcome = outcomeOf([] { return HW_BroadcastEnable(5, 1); });
    EXPECT_EQ(outcome.result, 0U);
    EXPECT_THAT(outcome.error, testing::HasSubstr("Couldn't set mdio port broadcast:\n"));
}

} // namespace
} // namespace OrvaneTest
