// Which path a routed register access takes, by MMD, register class and delegation flags.
#include "tests/support/capi/Steps.h"
#include "tests/support/NamedParam.h"

#include <algorithm>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using testing::IsEmpty;

enum Flags { AllSet, AllClear };

// One routed access, with the flags of the default adapter all set or all clear.
struct Routed {
    std::string name;
    Flags flags;
    unsigned long long (*access)();
    Frame phy;       // that is accessed
    unsigned logged; // PHY of the records; their adapter is the one accessed
    Steps steps;
    unsigned long long result = 0;
};

const Steps kPlainWrite{wrote(1, 0x10, 0x1234)};
const Steps kPlainRead{read(1, 0x10, 0xC045)};

const Steps kBridgeRead{wrote(30, 0xA10B, 0), wrote(30, 0xA110, 1), wrote(30, 0xA108, 0x10),
                        read(30, 0xA109, kFound), read(30, 0xA111, 0x1000)};
const Steps kTgeRead{wrote(29, 0xC203, 0xC010), read(29, 0xC204, kFound)};
const Steps kWindowWrite{wrote(30, 0x202, 0x3FFE), wrote(30, 0x203, 0x04A0), wrote(30, 0x200, 0x8000),
                         read(30, 0x200, 0x8000),  wrote(30, 0x202, 0x3FFE), wrote(30, 0x203, 0x04A0),
                         wrote(30, 0x205, 0x1234), wrote(30, 0x200, 0xC000)};
const Steps kWindowRead{wrote(30, 0x202, 0x3FFE), wrote(30, 0x203, 0x04A0), wrote(30, 0x200, 0x8000),
                        read(30, 0x200, 0x8000), read(30, 0x205, kFound)};
const Steps kPagedWrite{read(4, 0xC180, 0), wrote(4, 0xC180, 0), wrote(4, 0xC210, 0)};
const Steps kPagedRead{read(4, 0xC180, 0), wrote(4, 0xC180, 0)};

const Routed kRoutedByPhyArgument[] = {
    {"WriteOfAnOrdinaryRegister", AllSet, call<ZR_API_MDIO_Write, kPhy, 1, 0x10, 0x1234>, kOnDefault, kPhy,
     kPlainWrite},
    {"ReadOfAnOrdinaryRegister", AllSet, call<ZR_API_MDIO_Read, kPhy, 1, 0x10>, kOnDefault, kPhy, kPlainRead,
     kFound},
    {"WriteOfAnOrdinaryRegisterWithFlagsClear", AllClear, call<ZR_API_MDIO_Write, kPhy, 1, 0x10, 0x1234>,
     kOnDefault, kPhy, kPlainWrite},
    {"DelegatedWriteOfMmd28", AllSet, call<ZR_API_MDIO_Write, kPhy, 28, 0x10, 0x1234>, kOnDefault, kPhy,
     mailboxWrite(28, 0x10, 0x1234)},
    {"DelegatedReadOfMmd28", AllSet, call<ZR_API_MDIO_Read, kPhy, 28, 0x10>, kOnDefault, kPhy,
     mailboxRead(28, 0x10, kFound), kFound},
    {"PagedWriteOfMmd28", AllClear, call<ZR_API_MDIO_Write, kPhy, 28, 0x10, 0x1234>, kOnDefault, kPhy,
     kPagedWrite},
    {"PagedReadOfMmd28", AllClear, call<ZR_API_MDIO_Read, kPhy, 28, 0x10>, kOnDefault, kPhy, kPagedRead},
    {"DelegatedWriteOfMmd11", AllSet, call<ZR_API_MDIO_Write, kPhy, 11, 0x10, 0x1234>, kOnDefault, kPhy,
     mailboxWrite(11, 0x10, 0x1234)},
    {"DelegatedReadOfMmd11", AllSet, call<ZR_API_MDIO_Read, kPhy, 11, 0x10>, kOnDefault, kPhy,
     mailboxRead(11, 0x10, kFound), kFound},
    {"TgeWriteOfMmd11", AllClear, call<ZR_API_MDIO_Write, kPhy, 11, 0x10, 0x1234>, kOnDefault, kPhy,
     kTgeWrite},
    {"TgeReadOfMmd11", AllClear, call<ZR_API_MDIO_Read, kPhy, 11, 0x10>, kOnDefault, kPhy, kTgeRead, kFound},
    {"WindowWriteOfMmd10", AllSet, call<ZR_API_MDIO_Write, kPhy, 10, 0x10, 0x1234>, kOnDefault, kPhy,
     kWindowWrite},
    {"WindowReadOfMmd10", AllSet, call<ZR_API_MDIO_Read, kPhy, 10, 0x10>, kOnDefault, kPhy, kWindowRead,
     kFound},
    {"DelegatedWriteOfMmd27", AllSet, call<ZR_API_MDIO_Write, kPhy, 27, 0x10, 0x1234>, kOnDefault, kPhy,
     mailboxWrite(27, 0x10, 0x1234)},
    {"DelegatedReadOfMmd27", AllSet, call<ZR_API_MDIO_Read, kPhy, 27, 0x10>, kOnDefault, kPhy,
     mailboxRead(27, 0x10, kFound), kFound},
    {"BridgeWriteOfMmd27", AllClear, call<ZR_API_MDIO_Write, kPhy, 27, 0x10, 0x1234>, kOnDefault, kPhy,
     kBridgeWrite},
    {"BridgeReadOfMmd27", AllClear, call<ZR_API_MDIO_Read, kPhy, 27, 0x10>, kOnDefault, kPhy, kBridgeRead,
     kFound},
    {"DelegatedReadOfANecRegister", AllSet, call<ZR_API_MDIO_Read, kPhy, 31, 0x8037>, kOnDefault, kPhy,
     mailboxRead(31, 0x8037, kFound), kFound},
    {"DelegatedReadOfADecRegister", AllSet, call<ZR_API_MDIO_Read, kPhy, 31, 0xB27C>, kOnDefault, kPhy,
     mailboxRead(31, 0xB27C, kFound), kFound},
    {"ReadBesideTheNecRegisters",
     AllSet,
     call<ZR_API_MDIO_Read, kPhy, 31, 0x8036>,
     kOnDefault,
     kPhy,
     {read(31, 0x8036, kFound)},
     kFound},
    {"ReadOfANecRegisterWithFlagsClear",
     AllClear,
     call<ZR_API_MDIO_Read, kPhy, 31, 0x8037>,
     kOnDefault,
     kPhy,
     {read(31, 0x8037, kFound)},
     kFound},
    {"WriteOfANecRegisterIsPlain",
     AllSet,
     call<ZR_API_MDIO_Write, kPhy, 31, 0x8037, 0x1234>,
     kOnDefault,
     kPhy,
     {wrote(31, 0x8037, 0x1234)}},
    {"WriteWithTheDefaultPhyId", AllSet, call<ZR_API_MDIO_Write_Default_PHY_ID, 1, 0x10, 0x1234>,
     kOnDefaultPhy, kDefaultPhy, kPlainWrite},
    {"ReadWithTheDefaultPhyId", AllSet, call<ZR_API_MDIO_Read_Default_PHY_ID, 1, 0x10>, kOnDefaultPhy,
     kDefaultPhy, kPlainRead, kFound},
    {"RoutedWriteWithTheDefaultPhyId", AllSet, call<ZR_API_MDIO_Write_Default_PHY_ID, 10, 0x10, 0x1234>,
     kOnDefaultPhy, kDefaultPhy, kWindowWrite},
    {"RoutedReadWithTheDefaultPhyId", AllClear, call<ZR_API_MDIO_Read_Default_PHY_ID, 27, 0x10>,
     kOnDefaultPhy, kDefaultPhy, kBridgeRead, kFound},
    {"HwWriteWithTheDefaultPhyId", AllSet, call<HW_Write_Default_PHY_ID, 1, 0x10, 0x1234>, kOnDefaultPhy,
     kDefaultPhy, kPlainWrite},
    {"HwReadWithTheDefaultPhyId", AllSet, call<HW_Read_Default_PHY_ID, 1, 0x10>, kOnDefaultPhy, kDefaultPhy,
     kPlainRead, kFound},
    {"HwWriteWithTheDefaultPhyIdReachesMmd10", AllSet, call<HW_Write_Default_PHY_ID, 10, 0x10, 0x1234>,
     kOnDefaultPhy, kDefaultPhy, kWindowWrite},
    {"HwReadWithTheDefaultPhyIdReachesMmd28", AllClear, call<HW_Read_Default_PHY_ID, 28, 0x10>, kOnDefaultPhy,
     kDefaultPhy, kPagedRead},
};

// HW_Read and HW_Write on adapter 3; whose flags are all set, or all clear too.
const Routed kHw[] = {
    {"HwWriteOfAnOrdinaryRegister", AllSet, call<HW_Write, 3, kPhy, 1, 0x10, 0x1234>, kOnExplicit, kPhy,
     kPlainWrite},
    {"HwReadOfAnOrdinaryRegister", AllSet, call<HW_Read, 3, kPhy, 1, 0x10>, kOnExplicit, kPhy, kPlainRead,
     kFound},
    {"DelegatedHwWriteOfMmd11", AllSet, call<HW_Write, 3, kPhy, 11, 0x10, 0x1234>, kOnExplicit, kPhy,
     mailboxWrite(11, 0x10, 0x1234)},
    {"DelegatedHwReadOfMmd11", AllSet, call<HW_Read, 3, kPhy, 11, 0x10>, kOnExplicit, kPhy,
     mailboxRead(11, 0x10, kFound), kFound},
    {"TgeHwWriteOfMmd11", AllClear, call<HW_Write, 3, kPhy, 11, 0x10, 0x1234>, kOnExplicit, kPhy, kTgeWrite},
    {"TgeHwReadOfMmd11", AllClear, call<HW_Read, 3, kPhy, 11, 0x10>, kOnExplicit, kPhy, kTgeRead, kFound},
    {"DelegatedHwWriteOfMmd27", AllSet, call<HW_Write, 3, kPhy, 27, 0x10, 0x1234>, kOnExplicit, kPhy,
     mailboxWrite(27, 0x10, 0x1234)},
    {"DelegatedHwReadOfMmd27", AllSet, call<HW_Read, 3, kPhy, 27, 0x10>, kOnExplicit, kPhy,
     mailboxRead(27, 0x10, kFound), kFound},
    {"BridgeHwWriteOfMmd27", AllClear, call<HW_Write, 3, kPhy, 27, 0x10, 0x1234>, kOnExplicit, kPhy,
     kBridgeWrite},
    {"BridgeHwReadOfMmd27", AllClear, call<HW_Read, 3, kPhy, 27, 0x10>, kOnExplicit, kPhy, kBridgeRead,
     kFound},
    {"HwWriteOfMmd10DoesNothing", AllSet, call<HW_Write, 3, kPhy, 10, 0x10, 0x1234>, kOnExplicit, kPhy, {}},
    {"HwReadOfMmd10IsZero", AllSet, call<HW_Read, 3, kPhy, 10, 0x10>, kOnExplicit, kPhy, {}},
    {"HwWriteOfMmd28DoesNothing", AllSet, call<HW_Write, 3, kPhy, 28, 0x10, 0x1234>, kOnExplicit, kPhy, {}},
    {"HwReadOfMmd28IsZero", AllSet, call<HW_Read, 3, kPhy, 28, 0x10>, kOnExplicit, kPhy, {}},
    {"HwReadOfMmd28IsZeroWithFlagsClear", AllClear, call<HW_Read, 3, kPhy, 28, 0x10>, kOnExplicit, kPhy, {}},
    {"HwReadOfANecRegisterIsPlain",
     AllSet,
     call<HW_Read, 3, kPhy, 31, 0x8037>,
     kOnExplicit,
     kPhy,
     {read(31, 0x8037, kFound)},
     kFound},
};

class RoutedAccess : public FlatInterface, public testing::WithParamInterface<Routed> {
protected:
    RoutedAccess() {
        const unsigned adapter = GetParam().phy.adapter;
        const unsigned phy = GetParam().phy.phy;
        for (const unsigned mmd : {1U, 11U, 27U, 28U})
            setRegister(adapter, phy, mmd, 0x10, kFound);
        for (const unsigned reg : {0x8036U, 0x8037U, 0xB27CU})
            setRegister(adapter, phy, 31, reg, kFound);
        board.setRegister(OrvaneSim::Space::Ext32, adapter, phy, 0x3FFE04A0, 0xFFFF0000 | kFound);
        for (int type = 0; type < 5; ++type)
            HW_SetDelegationType(type, adapter, GetParam().flags == AllSet ? 1 : 0);
    }
};

TEST_P(RoutedAccess, MakesItsStepsAndLogsThem) {
    const Routed& routed = GetParam();
    const Outcome outcome = outcomeOf(routed.access);
    EXPECT_EQ(outcome,
              (Outcome{routed.result, logOf(routed.phy.adapter, routed.logged, routed.steps), "", ""}));
    EXPECT_EQ(frames(), framesOf(routed.phy, routed.steps));
}

INSTANTIATE_TEST_SUITE_P(ZrApi, RoutedAccess, testing::ValuesIn(kRoutedByPhyArgument), NamedParam());
INSTANTIATE_TEST_SUITE_P(Hw, RoutedAccess, testing::ValuesIn(kHw), NamedParam());

// ---- PHY arguments that carry an adapter ----

class CarriedAdapter : public FlatInterface {
protected:
    static constexpr unsigned kArgument = static_cast<unsigned>(kCarrying);
    Frame phy{3, 6};
};

TEST_F(CarriedAdapter, IsWhereAPlainReadGoesAndTheDefaultAdapterIsLogged) {
    setRegister(3, 6, 1, 0x10, 0xC045);
    const Outcome outcome = outcomeOf([] { return ZR_API_MDIO_Read(kArgument, 1, 0x10); });
    EXPECT_EQ(outcome, (Outcome{0xC045, "2,2147680262,MR,01,0010,C045\n", "", ""}));
    EXPECT_EQ(frames(), std::vector<std::string>{phy.read(1, 0x10)});
}

TEST_F(CarriedAdapter, IsWhereAPlainWriteGoesAndTheDefaultAdapterIsLogged) {
    const Outcome outcome = outcomeOf([] { ZR_API_MDIO_Write(kArgument, 1, 0x10, 0x1234); });
    EXPECT_EQ(outcome, (Outcome{0, "2,2147680262,MW,01,0010,1234\n", "", ""}));
    EXPECT_EQ(frames(), std::vector<std::string>{phy.write(1, 0x10, 0x1234)});
}

TEST_F(CarriedAdapter, IsWhereTheWindowGoes) {
    board.setRegister(OrvaneSim::Space::Ext32, 3, 6, 0x3FFE04A0, 0xC045);
    const Outcome outcome = outcomeOf([] { return ZR_API_MDIO_Read(kArgument, 10, 0x10); });
    EXPECT_EQ(outcome, (Outcome{0xC045, logOf(kDefaultAdapter, kArgument, kWindowRead), "", ""}));
    EXPECT_EQ(frames(), framesOf(phy, kWindowRead));
}

TEST_F(CarriedAdapter, HasNoSayInTheFlagsWhichAreTheDefaultAdapters) {
    for (int type = 0; type < 5; ++type)
        HW_SetDelegationType(type, 3, 1);
    delegateNothing();
    outcomeOf([] { ZR_API_MDIO_Write(kArgument, 28, 0x10, 0x1234); });
    EXPECT_EQ(frames(), framesOf(phy, kPagedWrite));
}

TEST_F(CarriedAdapter, IsNotDecodedByAPathOfAnExplicitAdapter) {
    const Outcome outcome = outcomeOf([] { ZR_API_MDIO_Write(kArgument, 27, 0x10, 0x1234); });
    EXPECT_EQ(outcome.log, logOf(kDefaultAdapter, kArgument, mailboxWrite(27, 0x10, 0x1234)));
    const std::vector<std::string> made = frames();
    ASSERT_EQ(made.size(), 5U);
    EXPECT_THAT(made[0], testing::HasSubstr("[461EC47F]")); // default adapter, low bits of the argument
}

TEST_F(CarriedAdapter, IsNotDecodedByTheTgeAndSerdesPathsEither) {
    delegateNothing();
    EXPECT_EQ(outcomeOf([] { ZR_API_MDIO_Write(kArgument, 11, 0x10, 0x1234); }).log,
              logOf(kDefaultAdapter, kArgument, kTgeWrite));
    outcomeOf([] { ZR_API_MDIO_Write(kArgument, 27, 0x10, 0x1234); });
    for (const std::string& frame : frames())
        EXPECT_THAT(frame, testing::HasSubstr("[46")); // default adapter, low bits of the argument
}

// ---- One flag alone ----

class OneFlag : public FlatInterface, public testing::WithParamInterface<int> {};

TEST_P(OneFlag, SendsItsOwnAccessesToTheFirmwareAndNoOthers) {
    delegateNothing();
    HW_SetDelegationType(GetParam(), kDefaultAdapter, 1);
    const std::vector<std::function<void()>> accesses{
        [] { ZR_API_MDIO_Read(kPhy, 31, 0x8037); }, [] { ZR_API_MDIO_Write(kPhy, 28, 0x10, 0x1234); },
        [] { ZR_API_MDIO_Read(kPhy, 28, 0x10); }, [] { ZR_API_MDIO_Read(kPhy, 11, 0x10); },
        [] { ZR_API_MDIO_Read(kPhy, 27, 0x10); }};
    for (std::size_t type = 0; type < accesses.size(); ++type) {
        board.forgetRequests();
        outcomeOf(accesses[type]);
        const auto made = frames();
        const bool byFirmware = std::any_of(made.begin(), made.end(), [](const std::string& frame) {
            return frame.find("1EC47E]") != std::string::npos; // the mailbox's command
        });
        EXPECT_EQ(byFirmware, static_cast<int>(type) == GetParam()) << type;
    }
}

INSTANTIATE_TEST_SUITE_P(OfEachType, OneFlag, testing::Range(0, 5));

// ---- Failures, and several PHYs ----

using RoutedFailure = FlatInterface;

TEST_F(RoutedFailure, OfAPlainReadLogsZero) {
    HW_CloseAdapter(kDefaultAdapter);
    EXPECT_EQ(outcomeOf([] { return ZR_API_MDIO_Read(kPhy, 1, 0x10); }),
              (Outcome{0, "2,5,MR,01,0010,0000\n", "\nError: Adapter isn't open.\n", ""}));
}

TEST_F(RoutedFailure, OfAPlainWriteLogsItsValue) {
    EXPECT_EQ(outcomeOf([] { HW_Write(8, kPhy, 1, 0x10, 0x1234); }),
              (Outcome{0, "8,5,MW,01,0010,1234\n", "\nError: Invalid adapter index\n", ""}));
}

using WriteToSeveralPhys = FlatInterface;

TEST_F(WriteToSeveralPhys, SkipsAdaptersTwoAndThreeAndLeavesTheLastAsDefault) {
    const unsigned phys[] = {10, 11, 12, 13};
    const Outcome outcome = outcomeOf([&] { ZR_API_MDIO_Write_Multi(phys, 4, 1, 0x10, 0x1234); });
    EXPECT_EQ(frames(), (std::vector<std::string>{
                            Frame{0, 10}.write(1, 0x10, 0x1234), Frame{1, 11}.write(1, 0x10, 0x1234),
                            Frame{4, 12}.write(1, 0x10, 0x1234), Frame{5, 13}.write(1, 0x10, 0x1234)}));
    EXPECT_EQ(outcome.log, "0,10,MW,01,0010,1234\n1,11,MW,01,0010,1234\n4,12,MW,01,0010,1234\n"
                           "5,13,MW,01,0010,1234\n");
    EXPECT_EQ(HW_GetDefaultAdapter(), 5U);
}

TEST_F(WriteToSeveralPhys, IsRoutedByTheFlagsOfEachAdapter) {
    HW_SetDelegationType(4, 1, 0);
    const unsigned phys[] = {kPhy, kPhy};
    outcomeOf([&] { ZR_API_MDIO_Write_Multi(phys, 2, 27, 0x10, 0x1234); });
    std::vector<std::string> expected = framesOf({0, kPhy}, mailboxWrite(27, 0x10, 0x1234));
    for (const std::string& frame : framesOf({1, kPhy}, kBridgeWrite))
        expected.push_back(frame);
    EXPECT_EQ(frames(), expected);
}

TEST_F(WriteToSeveralPhys, OfNoneDoesNothing) {
    const Outcome outcome = outcomeOf([] { ZR_API_MDIO_Write_Multi(nullptr, 0, 1, 0x10, 0x1234); });
    EXPECT_EQ(outcome, Outcome{});
    EXPECT_EQ(HW_GetDefaultAdapter(), kDefaultAdapter);
    EXPECT_THAT(frames(), IsEmpty());
}

} // namespace
} // namespace OrvaneTest
