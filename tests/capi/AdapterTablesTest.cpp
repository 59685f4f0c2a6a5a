// The delegation flags and the Clause 22 switches, their ranges and their defaults.
#include "tests/support/capi/FlatInterface.h"
#include "tests/support/NamedParam.h"

#include <gtest/gtest.h>
#include <thread>

namespace OrvaneTest {
namespace {

constexpr unsigned kSpareRow = 3000;

// Tables as they are after a start, and put back.
class Delegation : public testing::Test {
protected:
    Delegation() { reset(); }
    ~Delegation() override { reset(); }

private:
    static void reset() {
        HW_InitializeDelegations();
        HW_InitializeClause22();
        for (unsigned& flag : delegationStatus[kSpareRow])
            flag = 0;
        clause22Enable[kSpareRow] = 0;
        HW_SetDefaultAdapter(0);
    }
};

TEST_F(Delegation, IsOnForEveryAdapterAndTypeAfterTheInitialisation) {
    for (auto& row : delegationStatus)
        for (unsigned& flag : row)
            flag = 0;
    HW_InitializeDelegations();
    for (unsigned adapter = 0; adapter < 3000; ++adapter)
        for (int type = 0; type < 5; ++type)
            ASSERT_EQ(HW_GetDelegationType(type, adapter), 1U) << adapter << ' ' << type;
}

TEST_F(Delegation, InitialisationLeavesTheSpareRow) {
    for (unsigned& flag : delegationStatus[kSpareRow])
        flag = 0;
    HW_InitializeDelegations();
    for (const unsigned flag : delegationStatus[kSpareRow])
        EXPECT_EQ(flag, 0U);
}

TEST_F(Delegation, TablesHaveAStoredRowForEachAdapterAndOneSpare) {
    EXPECT_EQ(sizeof delegationStatus, 3001 * 5 * 4U);
    EXPECT_EQ(sizeof clause22Enable, 3001 * 4U);
}

struct Setting {
    std::string name;
    int type;
    unsigned adapter;
    unsigned state;
    Outcome outcome;
};

const Outcome kTaken{0, "", "", ""};
const Outcome kRefused{100, "", "", ""};

const Setting kSettings[] = {
    {"NecAndDecReads", 0, 17, 0, kTaken},
    {"WritesOfMmd28", 1, 17, 0, kTaken},
    {"ReadsOfMmd28", 2, 17, 0, kTaken},
    {"Mmd11", 3, 17, 0, kTaken},
    {"Mmd27", 4, 17, 0, kTaken},
    {"TheLastAdapter", 4, 2999, 0, kTaken},
    {"TheSpareRow", 4, 3000, 1, kTaken},
    {"AnAdapterBeyondTheSpareRow", 0, 3001, 1, {100, "", "", "Invalid adapter number 3001\n"}},
    {"ANegativeAdapter", 0, 0xFFFFFFFF, 1, {100, "", "", "Invalid adapter number -1\n"}},
    {"AStateOfTwo", 0, 0, 2, {100, "", "", "Invalid state 2\n"}},
    {"ANegativeState", 0, 0, 0xFFFFFFFF, {100, "", "", "Invalid state -1\n"}},
    {"ATypeOfFive", 5, 0, 1, kRefused},
    {"ANegativeType", -1, 0, 1, kRefused},
    {"ABadAdapterAndState", 0, 3001, 2, {100, "", "", "Invalid adapter number 3001\n"}},
    {"ABadStateAndType", 9, 0, 2, {100, "", "", "Invalid state 2\n"}},
};

class DelegationSetting : public Delegation, public testing::WithParamInterface<Setting> {};

TEST_P(DelegationSetting, IsTakenOrRefusedWithItsText) {
    const Setting& setting = GetParam();
    EXPECT_EQ(outcomeOf([&] { return HW_SetDelegationType(setting.type, setting.adapter, setting.state); }),
              setting.outcome);
}

TEST_P(DelegationSetting, ChangesItsFlagOnlyAndOnlyWhenTaken) {
    const Setting& setting = GetParam();
    const bool taken = setting.outcome.result == 0;
    outcomeOf([&] { return HW_SetDelegationType(setting.type, setting.adapter, setting.state); });
    for (unsigned adapter = 0; adapter <= kSpareRow; ++adapter)
        for (int type = 0; type < 5; ++type) {
            const bool changed = taken && adapter == setting.adapter && type == setting.type;
            const unsigned initial = adapter == kSpareRow ? 0 : 1;
            ASSERT_EQ(delegationStatus[adapter][type], changed ? setting.state : initial)
                << adapter << ' ' << type;
        }
}

INSTANTIATE_TEST_SUITE_P(Of, DelegationSetting, testing::ValuesIn(kSettings), NamedParam());

TEST_F(Delegation, IsReadBackAsItWasSet) {
    HW_SetDelegationType(3, 17, 0);
    EXPECT_EQ(HW_GetDelegationType(3, 17), 0U);
    EXPECT_EQ(HW_GetDelegationType(2, 17), 1U);
    HW_SetDelegationType(3, 17, 1);
    EXPECT_EQ(HW_GetDelegationType(3, 17), 1U);
}

TEST_F(Delegation, OfTheSpareRowIsReadBack) {
    HW_SetDelegationType(0, 3000, 1);
    EXPECT_EQ(outcomeOf([] { return HW_GetDelegationType(0, 3000); }), (Outcome{1, "", "", ""}));
}

TEST_F(Delegation, OfAnAdapterBeyondTheSpareRowIsRefusedWithText) {
    EXPECT_EQ(outcomeOf([] { return HW_GetDelegationType(0, 3001); }),
              (Outcome{100, "", "", "Invalid adapter number 3001\n"}));
}

TEST_F(Delegation, OfAnUnknownTypeIsRefusedSilently) {
    EXPECT_EQ(outcomeOf([] { return HW_GetDelegationType(5, 0); }), kRefused);
    EXPECT_EQ(outcomeOf([] { return HW_GetDelegationType(-1, 0); }), kRefused);
}

// ---- What the flags hand to the firmware ----

struct Question {
    std::string name;
    int type; // the only flag that is set
    unsigned mmd;
    unsigned address;
    int read;
    int write;
};

const Question kQuestions[] = {
    {"NecRegisterWithItsFlag", 0, 31, 0x8037, 1, 0},
    {"DecRegisterWithItsFlag", 0, 31, 0x8035, 1, 0},
    {"OtherRegisterOfMmd31", 0, 31, 0x8036, 0, 0},
    {"NecAddressInAnotherMmd", 0, 30, 0x8037, 0, 0},
    {"Mmd28WithTheFlagOfNecAndDec", 0, 28, 0x8037, 0, 0},
    {"Mmd28WithTheFlagOfWrites", 1, 28, 0, 0, 1},
    {"Mmd28WithTheFlagOfReads", 2, 28, 0xFFFF, 1, 0},
    {"NecRegisterWithTheFlagOfReadsOfMmd28", 2, 31, 0x8037, 0, 0},
    {"Mmd11WithItsFlag", 3, 11, 0x10, 0, 0},
    {"Mmd27WithItsFlag", 4, 27, 0x10, 0, 0},
};

class DelegationQuestion : public Delegation, public testing::WithParamInterface<Question> {
protected:
    DelegationQuestion() {
        for (int type = 0; type < 5; ++type)
            HW_SetDelegationType(type, 17, type == GetParam().type ? 1 : 0);
    }
};

TEST_P(DelegationQuestion, IsAnsweredByThatFlagOfTheAdapter) {
    EXPECT_EQ(shouldDelegateRead(17, GetParam().mmd, GetParam().address), GetParam().read);
    EXPECT_EQ(shouldDelegateWrite(17, GetParam().mmd, GetParam().address), GetParam().write);
}

INSTANTIATE_TEST_SUITE_P(About, DelegationQuestion, testing::ValuesIn(kQuestions), NamedParam());

TEST_F(Delegation, OfAnAdapterWithoutARowIsOff) {
    EXPECT_EQ(shouldDelegateRead(3001, 28, 0), 0);
    EXPECT_EQ(shouldDelegateWrite(0xFFFFFFFF, 28, 0), 0);
}

// ---- Clause 22 switches ----

using Clause22Switch = Delegation;

TEST_F(Clause22Switch, IsOffForEveryAdapterAfterTheInitialisation) {
    for (unsigned& enabled : clause22Enable)
        enabled = 1;
    HW_InitializeClause22();
    for (int adapter = 0; adapter < 3000; ++adapter)
        ASSERT_EQ(HW_GetClause45OverClause22State(adapter), 0U) << adapter;
}

TEST_F(Clause22Switch, GoesOnAndOffForItsAdapterAlone) {
    HW_EnableClause45OverClause22(17);
    EXPECT_EQ(HW_GetClause45OverClause22State(16), 0U);
    EXPECT_EQ(HW_GetClause45OverClause22State(17), 1U);
    EXPECT_EQ(HW_GetClause45OverClause22State(18), 0U);
    EXPECT_EQ(clause22Enable[17], 1U);
    HW_DisableClause45OverClause22(17);
    EXPECT_EQ(HW_GetClause45OverClause22State(17), 0U);
}

TEST_F(Clause22Switch, HasASpareRow) {
    HW_EnableClause45OverClause22(3000);
    EXPECT_EQ(HW_GetClause45OverClause22State(3000), 1U);
}

class MissingClause22Switch : public Delegation, public testing::WithParamInterface<int> {};

TEST_P(MissingClause22Switch, StaysOffAndTouchesNothing) {
    HW_EnableClause45OverClause22(GetParam());
    HW_DisableClause45OverClause22(GetParam());
    HW_EnableClause45OverClause22(GetParam());
    EXPECT_EQ(HW_GetClause45OverClause22State(GetParam()), 0U);
    for (const unsigned enabled : clause22Enable)
        ASSERT_EQ(enabled, 0U);
    for (unsigned adapter = 0; adapter < 3000; ++adapter)
        for (const unsigned flag : delegationStatus[adapter])
            ASSERT_EQ(flag, 1U);
}

INSTANTIATE_TEST_SUITE_P(Of, MissingClause22Switch,
                         testing::Values(3001, -1, -15000, 0x7FFFFFFF, -0x7FFFFFFF - 1));

TEST_F(Clause22Switch, OfADefaultAdapterBeyondTheTablesIsOff) {
    HW_SetDefaultAdapter(0xFFFFFFFF);
    EXPECT_EQ(outcomeOf([] { return ZR_API_MDIO_Read(5, 28, 0x600); }).result, 0U);
    EXPECT_EQ(outcomeOf([] { return ZR_API_MDIO_Read(5, 1, 0x10); }),
              (Outcome{0, "4294967295,5,MR,01,0010,0000\n", "\nError: Invalid adapter index\n", ""}));
}

TEST_F(Clause22Switch, MayBeSetWhileAnotherThreadAsks) {
    std::thread other([] {
        for (int i = 0; i < 1000; ++i) {
            HW_EnableClause45OverClause22(17);
            HW_SetDelegationType(0, 17, 0);
            HW_SetDelegationType(0, 17, 1);
            HW_DisableClause45OverClause22(17);
        }
    });
    bool wild = false;
    for (int i = 0; i < 1000; ++i)
        wild = wild || HW_GetClause45OverClause22State(17) > 1 || shouldDelegateRead(17, 31, 0x8037) > 1;
    other.join();
    EXPECT_FALSE(wild);
}

} // namespace
} // namespace OrvaneTest
