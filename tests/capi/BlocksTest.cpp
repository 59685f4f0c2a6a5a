// Queued accesses: what is queued for whom, and what is logged.
#include "ov_sys/Interface/devices/HWInterface.h"
#include "tests/support/capi/Steps.h"
#include "tests/support/NamedParam.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

// What a call leaves in the queue of a PHY.
struct Queued {
    std::string name;
    unsigned long long (*queue)();
    std::vector<std::string> block; // the call that sends the queue
    std::string log;
    bool needsAdapter = true;
};

// All queues are sent as blocks of the 32-bit extension, which leaves the queued address words as they are.
constexpr unsigned kBlock = 20;

std::vector<std::string> reading(const Frame& phy, unsigned address) {
    return {phy.block(kBlock, {}, {address}, {0, 1})};
}

std::vector<std::string> writing(const Frame& phy, unsigned address, unsigned value) {
    return {phy.block(kBlock, {{address, value}}, {}, {1})};
}

const Queued kClause45[] = {
    {"HW_BlockRead_Abstracted", call<HW_BlockRead_Abstracted, 5, 28, 0x10>, reading(kOnDefault, 0x1C0010),
     ""},
    {"HW_BlockRead", call<HW_BlockRead, 5, 1, 0x10>, reading(kOnDefault, 0x010010), "2,5,AR,01,0010,\n"},
    {"HW_BlockReadOfMmd10", call<HW_BlockRead, 5, 10, 0x10>, {}, "", false},
    {"HW_BlockReadOfMmd28", call<HW_BlockRead, 5, 28, 0x10>, {}, "", false},
    {"HW_BlockReadOfMmd27", call<HW_BlockRead, 5, 27, 0x10>, reading(kOnDefault, 0x1B0010),
     "2,5,AR,1B,0010,\n"},
    {"HW_BlockReadAdapter_Abstracted", call<HW_BlockReadAdapter_Abstracted, 3, 5, 10, 0x10>,
     reading(kOnExplicit, 0x0A0010), ""},
    {"HW_BlockReadAdapter", call<HW_BlockReadAdapter, 3, 5, 1, 0x10>, reading(kOnExplicit, 0x010010),
     "3,5,AR,01,0010,\n"},
    {"HW_BlockReadAdapterOfMmd10", call<HW_BlockReadAdapter, 3, 5, 10, 0x10>, {}, "", false},
    {"HW_BlockReadAdapterOfMmd28", call<HW_BlockReadAdapter, 3, 5, 28, 0x10>, {}, "", false},
    {"HW_BlockRead_Default_PHY_ID", call<HW_BlockRead_Default_PHY_ID, 1, 0x10>,
     reading(kOnDefaultPhy, 0x010010), "2,7,AR,01,0010,\n"},
    {"HW_BlockWrite_Abstracted", call<HW_BlockWrite_Abstracted, 5, 28, 0x10, 0x1234>,
     writing(kOnDefault, 0x1C0010, 0x1234), ""},
    {"HW_BlockWrite", call<HW_BlockWrite, 5, 1, 0x10, 0x1234>, writing(kOnDefault, 0x010010, 0x1234),
     "2,5,AW,01,0010,1234\n"},
    {"HW_BlockWriteOfMmd10", call<HW_BlockWrite, 5, 10, 0x10, 0x1234>, {}, "", false},
    {"HW_BlockWriteOfMmd28", call<HW_BlockWrite, 5, 28, 0x10, 0x1234>, {}, "", false},
    {"HW_BlockWriteAdapter_Abstracted", call<HW_BlockWriteAdapter_Abstracted, 3, 5, 27, 0x10, 0x1234>,
     writing(kOnExplicit, 0x1B0010, 0x1234), ""},
    {"HW_BlockWriteAdapter", call<HW_BlockWriteAdapter, 3, 5, 1, 0x10, 0x1234>,
     writing(kOnExplicit, 0x010010, 0x1234), "3,5,AW,01,0010,1234\n"},
    {"HW_BlockWriteAdapterOfMmd10", call<HW_BlockWriteAdapter, 3, 5, 10, 0x10, 0x1234>, {}, "", false},
    {"HW_BlockWriteAdapterOfMmd28", call<HW_BlockWriteAdapter, 3, 5, 28, 0x10, 0x1234>, {}, "", false},
    {"HW_BlockWrite_Default_PHY_ID", call<HW_BlockWrite_Default_PHY_ID, 1, 0x10, 0x1234>,
     writing(kOnDefaultPhy, 0x010010, 0x1234), "2,7,AW,01,0010,1234\n"},
};

const Queued kHw32[] = {
    {"HW_BlockRead32_Abstracted", call<HW_BlockRead32_Abstracted, 5, 0xFEDCBA98>,
     reading(kOnDefault, 0xFEDCBA98), ""},
    {"HW_BlockRead32", call<HW_BlockRead32, 5, 0x1000>, reading(kOnDefault, 0x1000), "2,5,AR,,1000,"},
    {"HW_BlockRead32OfAShortAddress", call<HW_BlockRead32, 5, 4>, reading(kOnDefault, 4), "2,5,AR,,04,"},
    {"HW_BlockRead32Adapter_Abstracted", call<HW_BlockRead32Adapter_Abstracted, 3, 5, 0x1000>,
     reading(kOnExplicit, 0x1000), ""},
    {"HW_BlockRead32Adapter", call<HW_BlockRead32Adapter, 3, 5, 0x1000>, reading(kOnExplicit, 0x1000),
     "3,5,AR,,1000,"},
    {"HW_BlockWrite32_Abstracted", call<HW_BlockWrite32_Abstracted, 5, 0x1000, 0x12345678>,
     writing(kOnDefault, 0x1000, 0x12345678), ""},
    {"HW_BlockWrite32", call<HW_BlockWrite32, 5, 0x1000, 0x12345678>, writing(kOnDefault, 0x1000, 0x12345678),
     "2,5,AW,001000,12345678"},
    {"HW_BlockWrite32Adapter_Abstracted", call<HW_BlockWrite32Adapter_Abstracted, 3, 5, 0x1000, 0x12345678>,
     writing(kOnExplicit, 0x1000, 0x12345678), ""},
    {"HW_BlockWrite32Adapter", call<HW_BlockWrite32Adapter, 3, 5, 0x1000, 0x12345678>,
     writing(kOnExplicit, 0x1000, 0x12345678), "3,5,AW,001000,12345678"},
};

// 64-bit accesses are logged and do nothing.
const Queued kHw64[] = {
    {"HW_BlockRead64_Abstracted", call<HW_BlockRead64_Abstracted, 5, 0x1000>, {}, "", false},
    {"HW_BlockRead64", call<HW_BlockRead64, 5, 4>, {}, "2,5,AR,,04,", false},
    {"HW_BlockRead64Adapter_Abstracted", call<HW_BlockRead64Adapter_Abstracted, 3, 5, 0x1000>, {}, "", false},
    {"HW_BlockRead64Adapter", call<HW_BlockRead64Adapter, 3, 5, 0x1000>, {}, "3,5,AR,,1000,", false},
    {"HW_BlockWrite64_Abstracted", call<HW_BlockWrite64_Abstracted, 5, 0x1000, 1>, {}, "", false},
    {"HW_BlockWrite64",
     call<HW_BlockWrite64, 5, 0x1000, 0x123456789ABCDEF0ULL>,
     {},
     "2,5,AW,001000,123456789ABCDEF0",
     false},
    {"HW_BlockWrite64Adapter_Abstracted",
     call<HW_BlockWrite64Adapter_Abstracted, 3, 5, 0x1000, 1>,
     {},
     "",
     false},
    {"HW_BlockWrite64Adapter",
     call<HW_BlockWrite64Adapter, 3, 5, 0x1000, 1>,
     {},
     "3,5,AW,001000,0000000000000001",
     false},
};

const Queued kQueuedByPhyArgument[] = {
    {"MDIO_BlockRead_Abstracted", call<ZR_API_MDIO_BlockRead_Abstracted, 5, 28, 0x10>,
     reading(kOnDefault, 0x1C0010), ""},
    {"MDIO_BlockRead_AbstractedCarrying", call<ZR_API_MDIO_BlockRead_Abstracted, kCarrying, 10, 0x10>,
     reading(kOnCarried, 0x0A0010), ""},
    {"MDIO_BlockRead", call<ZR_API_MDIO_BlockRead, 5, 1, 0x10>, reading(kOnDefault, 0x010010),
     "2,5,AR,01,0010,\n"},
    {"MDIO_BlockReadCarrying", call<ZR_API_MDIO_BlockRead, kCarrying, 1, 0x10>, reading(kOnCarried, 0x010010),
     "2,2147680262,AR,01,0010,\n"},
    {"MDIO_BlockReadOfMmd10", call<ZR_API_MDIO_BlockRead, 5, 10, 0x10>, {}, "", false},
    {"MDIO_BlockReadOfMmd28", call<ZR_API_MDIO_BlockRead, kCarrying, 28, 0x10>, {}, "", false},
    {"MDIO_BlockRead_Default_PHY_ID", call<ZR_API_MDIO_BlockRead_Default_PHY_ID, 1, 0x10>,
     reading(kOnDefaultPhy, 0x010010), "2,7,AR,01,0010,\n"},
    {"MDIO_BlockWrite_Abstracted", call<ZR_API_MDIO_BlockWrite_Abstracted, 5, 28, 0x10, 0x1234>,
     writing(kOnDefault, 0x1C0010, 0x1234), ""},
    {"MDIO_BlockWrite_AbstractedCarrying",
     call<ZR_API_MDIO_BlockWrite_Abstracted, kCarrying, 28, 0x10, 0x1234>,
     writing(kOnCarried, 0x1C0010, 0x1234), ""},
    {"MDIO_BlockWrite", call<ZR_API_MDIO_BlockWrite, 5, 1, 0x10, 0x1234>,
     writing(kOnDefault, 0x010010, 0x1234), "2,5,AW,01,0010,1234\n"},
    {"MDIO_BlockWriteCarrying", call<ZR_API_MDIO_BlockWrite, kCarrying, 1, 0x10, 0x1234>,
     writing(kOnCarried, 0x010010, 0x1234), "2,2147680262,AW,01,0010,1234\n"},
    {"MDIO_BlockWriteOfMmd10", call<ZR_API_MDIO_BlockWrite, kCarrying, 10, 0x10, 0x1234>, {}, "", false},
    {"MDIO_BlockWriteOfMmd28", call<ZR_API_MDIO_BlockWrite, 5, 28, 0x10, 0x1234>, {}, "", false},
    {"MDIO_BlockWriteOfMmd11IsNotRouted", call<ZR_API_MDIO_BlockWrite, 5, 11, 0x10, 0x1234>,
     writing(kOnDefault, 0x0B0010, 0x1234), "2,5,AW,0B,0010,1234\n"},
    {"MDIO_BlockWriteOfMmd27IsNotRouted", call<ZR_API_MDIO_BlockWrite, 5, 27, 0x10, 0x1234>,
     writing(kOnDefault, 0x1B0010, 0x1234), "2,5,AW,1B,0010,1234\n"},
    {"MDIO_BlockWrite_Default_PHY_ID", call<ZR_API_MDIO_BlockWrite_Default_PHY_ID, 1, 0x10, 0x1234>,
     writing(kOnDefaultPhy, 0x010010, 0x1234), "2,7,AW,01,0010,1234\n"},
    {"BlockRead32_Abstracted", call<ZR_API_BlockRead32_Abstracted, 5, 0x1000>, reading(kOnDefault, 0x1000),
     ""},
    {"BlockRead32_AbstractedCarrying", call<ZR_API_BlockRead32_Abstracted, kCarrying, 0x1000>,
     reading(kOnCarried, 0x1000), ""},
    {"BlockRead32", call<ZR_API_BlockRead32, 5, 0x1000>, reading(kOnDefault, 0x1000), "2,5,AR,,1000,"},
    {"BlockRead32Carrying", call<ZR_API_BlockRead32, kCarrying, 0x1000>, reading(kOnCarried, 0x1000),
     "2,2147680262,AR,,1000,"},
    {"BlockWrite32_Abstracted", call<ZR_API_BlockWrite32_Abstracted, 5, 0x1000, 0x12345678>,
     writing(kOnDefault, 0x1000, 0x12345678), ""},
    {"BlockWrite32_AbstractedCarrying", call<ZR_API_BlockWrite32_Abstracted, kCarrying, 0x1000, 0x12345678>,
     writing(kOnCarried, 0x1000, 0x12345678), ""},
    {"BlockWrite32", call<ZR_API_BlockWrite32, 5, 0x1000, 0x12345678>,
     writing(kOnDefault, 0x1000, 0x12345678), "2,5,AW,001000,12345678"},
    {"BlockWrite32Carrying", call<ZR_API_BlockWrite32, kCarrying, 0x1000, 0x12345678>,
     writing(kOnCarried, 0x1000, 0x12345678), "2,2147680262,AW,001000,12345678"},
    {"BlockRead64_Abstracted", call<ZR_API_BlockRead64_Abstracted, 5, 0x1000>, {}, "", false},
    {"BlockRead64", call<ZR_API_BlockRead64, kCarrying, 4>, {}, "2,2147680262,AR,,04,", false},
    {"BlockWrite64_Abstracted", call<ZR_API_BlockWrite64_Abstracted, 5, 0x1000, 1>, {}, "", false},
    {"BlockWrite64",
     call<ZR_API_BlockWrite64, 5, 0x1000, 0x123456789ABCDEF0ULL>,
     {},
     "2,5,AW,001000,123456789ABCDEF0",
     false},
};

class QueuedAccess : public FlatInterface, public testing::WithParamInterface<Queued> {
protected:
    static void sendEveryQueue() {
        for (const Frame& phy : {kOnDefault, kOnExplicit, kOnCarried, kOnDefaultPhy})
            HW_Interface_Object.blockOperationExecuteAdapter_c22_ZrExt32(phy.adapter, phy.phy);
    }
};

TEST_P(QueuedAccess, IsLoggedAndSentWithTheBlockOfItsPhy) {
    EXPECT_EQ(outcomeOf(GetParam().queue), (Outcome{0, GetParam().log, "", ""}));
    EXPECT_THAT(frames(), testing::IsEmpty());
    sendEveryQueue();
    EXPECT_EQ(frames(), GetParam().block);
}

TEST_P(QueuedAccess, OfAnAdapterThatIsNotOpenIsReportedAndStillLogged) {
    HW_CloseAdapter(2);
    HW_CloseAdapter(3);
    EXPECT_EQ(
        outcomeOf(GetParam().queue),
        (Outcome{0, GetParam().log, GetParam().needsAdapter ? "\nError: Adapter isn't open.\n" : "", ""}));
}

INSTANTIATE_TEST_SUITE_P(HwClause45, QueuedAccess, testing::ValuesIn(kClause45), NamedParam());
INSTANTIATE_TEST_SUITE_P(Hw32, QueuedAccess, testing::ValuesIn(kHw32), NamedParam());
INSTANTIATE_TEST_SUITE_P(Hw64, QueuedAccess, testing::ValuesIn(kHw64), NamedParam());
INSTANTIATE_TEST_SUITE_P(ZrApi, QueuedAccess, testing::ValuesIn(kQueuedByPhyArgument), NamedParam());

// ---- Block writes that go at once ----

struct Immediate {
    std::string name;
    unsigned long long (*write)();
    Frame phy;
    Steps steps;
};

const Immediate kImmediate[] = {
    {"HW_BlockWriteOfMmd11", call<HW_BlockWrite, 5, 11, 0x10, 0x1234>, kOnDefault, kTgeWrite},
    {"HW_BlockWriteOfMmd27", call<HW_BlockWrite, 5, 27, 0x10, 0x1234>, kOnDefault, kBridgeWrite},
    {"HW_BlockWriteAdapterOfMmd11", call<HW_BlockWriteAdapter, 3, 5, 11, 0x10, 0x1234>, kOnExplicit,
     kTgeWrite},
    {"HW_BlockWriteAdapterOfMmd27", call<HW_BlockWriteAdapter, 3, 5, 27, 0x10, 0x1234>, kOnExplicit,
     kBridgeWrite},
    {"HW_BlockWrite_Default_PHY_IDOfMmd27", call<HW_BlockWrite_Default_PHY_ID, 27, 0x10, 0x1234>,
     kOnDefaultPhy, kBridgeWrite},
};

class ImmediateBlockWrite : public FlatInterface, public testing::WithParamInterface<Immediate> {};

TEST_P(ImmediateBlockWrite, TakesTheIndirectPathThoughTheFlagsAreSetAndIsNotQueued) {
    const Immediate& write = GetParam();
    EXPECT_EQ(outcomeOf(write.write),
              (Outcome{0, logOf(write.phy.adapter, write.phy.phy, write.steps), "", ""}));
    HW_Interface_Object.blockOperationExecuteAdapter(write.phy.adapter, write.phy.phy);
    EXPECT_EQ(frames(), framesOf(write.phy, write.steps));
}

INSTANTIATE_TEST_SUITE_P(Of, ImmediateBlockWrite, testing::ValuesIn(kImmediate), NamedParam());

} // namespace
} // namespace OrvaneTest
