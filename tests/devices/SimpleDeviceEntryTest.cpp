// A device by itself: its name, its open flag, its keys and the mode record it fills.
#include "ov_sys/Interface/devices/SimpleDeviceEntry.h"

#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/EnvironmentVariable.h"
#include "tests/support/NamedParam.h"
#include "tests/support/WrittenText.h"

#include <climits>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::MdioExclusive;
using Orvane::SimpleDeviceEntry;

TEST(SimpleDeviceEntry, KeepsItsNameInUpperCaseAndItsAddress) {
    const SimpleDeviceEntry device("01a2:7", "10.83.0.9");
    EXPECT_EQ(device.name, "01A2:7");
    EXPECT_EQ(device.boardSerial, "01A2");
    EXPECT_EQ(device.port, 7);
    EXPECT_EQ(device.address, "10.83.0.9");
}

TEST(SimpleDeviceEntry, HasNoAddressWhenGivenANameOnly) {
    EXPECT_EQ(SimpleDeviceEntry("01A2:7").address, "");
}

TEST(SimpleDeviceEntry, KeepsTheWholeNameThoughThePortEndsAtItsFirstNonDigit) {
    const SimpleDeviceEntry device("board7:12 junk");
    EXPECT_EQ(device.name, "BOARD7:12 JUNK");
    EXPECT_EQ(device.port, 12);
}

TEST(SimpleDeviceEntry, IsCreatedClosedWithoutSessionsAndWithThePagedProtocol) {
    SimpleDeviceEntry device("01A2:0");
    EXPECT_EQ(device.isOpen, 0);
    EXPECT_EQ(device.getKelSmbProto(), Orvane::Paged16);
    EXPECT_TRUE(device.sessions.empty());
}

TEST(SimpleDeviceEntry, LetsTheSplittingOfABadNameThrow) {
    EXPECT_EQ(thrownText<Orvane::Exceptions::InvalidName>([] { SimpleDeviceEntry("01a2"); }), "01A2");
}

TEST(SimpleDeviceEntry, IsMarkedOpenAndClosedWithoutABoard) {
    SimpleDeviceEntry device("01A2:0");
    device.open();
    EXPECT_EQ(device.isOpen, 1);
    device.close();
    EXPECT_EQ(device.isOpen, 0);
}

TEST(SimpleDeviceEntry, KeepsAnySmbusProtocolItIsGiven) {
    SimpleDeviceEntry device("01A2:10");
    device.setKelSmbProto(static_cast<Orvane::KelSmbProto>(2));
    EXPECT_EQ(device.getKelSmbProto(), static_cast<Orvane::KelSmbProto>(2));
}

TEST(SimpleDeviceEntry, HasNoKeyForAPhyWithoutASession) {
    EXPECT_EQ(SimpleDeviceEntry("01A2:0").getMdioExclusiveKey(5), 0);
}

TEST(SimpleDeviceEntry, ClosesNoSessionOfAPhyThatHasNone) {
    EXPECT_FALSE(SimpleDeviceEntry("01A2:0").closePhyID(5));
}

struct KeyText {
    std::string name;
    const char* text; // null: not set
    bool isNumber;
    int key; // 99 before
};

const KeyText kKeyTexts[] = {
    {"Unset", nullptr, false, 99},
    {"Empty", "", false, 99},
    {"Number", "5", true, 5},
    {"NegativeNumber", "-7", true, -7},
    {"NumberBehindABlank", " 8", true, 8},
    {"NumberBeforeABlank", "8 ", false, 8},
    {"Letters", "abc", false, 0},
    {"NumberAndLetter", "12x", false, 12},
    {"Hexadecimal", "0x10", false, 0},
    {"Grouped", "1,234", false, 1},
    {"LargestInt", "2147483647", true, INT_MAX},
    {"BeyondInt", "2147483648", false, INT_MAX},
};

class DeviceKey : public testing::TestWithParam<KeyText> {};

INSTANTIATE_TEST_SUITE_P(Text, DeviceKey, testing::ValuesIn(kKeyTexts), NamedParam{});

TEST_P(DeviceKey, IsTheNumberThatTheWholeTextIs) {
    const EnvironmentVariable variable("ORVANE_TEST_KEY", GetParam().text);
    SimpleDeviceEntry device("01A2:0");
    int key = 99;
    EXPECT_EQ(device.getKey("ORVANE_TEST_KEY", key), GetParam().isNumber);
    EXPECT_EQ(key, GetParam().key);
}

struct ModeKey {
    std::string name;
    unsigned key;
    unsigned short fallback;
    unsigned short used;
};

const ModeKey kModeKeys[] = {
    {"KeyBeforeFallback", 5, 6, 5},
    {"FallbackForKey0", 0, 6, 6},
    {"NoneOfBoth", 0, 0, 0},
    {"LowHalfOfTheKey", 0x54321, 6, 0x4321},
    {"NothingOfAKeyWithoutLowHalf", 0x10000, 6, 0},
};

class DeviceMode : public testing::TestWithParam<ModeKey> {};

INSTANTIATE_TEST_SUITE_P(With, DeviceMode, testing::ValuesIn(kModeKeys), NamedParam{});

TEST_P(DeviceMode, GetsEverythingButItsFlags) {
    SimpleDeviceEntry device("01A2:3");
    MdioExclusive mode{};
    mode.simple = 7;
    mode.exclusive = 8;
    mode.shared = 9;
    mode.reserved = 1;
    device.commonCfg(mode, 21, GetParam().key, GetParam().fallback);
    EXPECT_EQ(mode.phyAddress, 21);
    EXPECT_EQ(mode.deviceIndex, 3U);
    EXPECT_EQ(mode.key, GetParam().used);
    EXPECT_EQ(mode.reserved, 0);
    EXPECT_EQ(mode.simple, 7);
    EXPECT_EQ(mode.exclusive, 8);
    EXPECT_EQ(mode.shared, 9);
}

} // namespace
} // namespace OrvaneTest
