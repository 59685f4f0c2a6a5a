// What the open request carries, by environment variables and by open function.
#include "ov_sys/Interface/devices/SimpleDeviceEntry.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "simulator/lab/Lab.h"
#include "tests/support/EnvironmentVariable.h"
#include "tests/support/NamedParam.h"
#include "tests/support/WireCall.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace OrvaneTest {
namespace {

using Orvane::SimpleDeviceEntry;
using testing::ElementsAre;
using testing::SizeIs;

struct Mode {
    unsigned exclusive;
    unsigned simple;
    unsigned notShared;
};

constexpr Mode kExclusive = {1, 0, 1};
constexpr Mode kConcurrent = {0, 0, 0};
constexpr Mode kSimple = {0, 1, 0};

WireCall openCall(unsigned key, Mode mode, int device, int phy) {
    return {kSetupProgram,
            1,
            {{"sessionId", key},
             {"exclusive", mode.exclusive},
             {"simple", mode.simple},
             {"notShared", mode.notShared},
             {"reserved", 0},
             {"deviceIndex", device},
             {"phyAddress", phy}}};
}

struct Variables {
    std::string name;
    const char* exclusive;
    const char* concurrent;
    const char* simple;
    Mode mode;
    unsigned key;
};

const Variables kVariables[] = {
    {"NothingSet", nullptr, nullptr, nullptr, kSimple, 0},
    {"ExclusiveNumber", "5", nullptr, nullptr, kExclusive, 5},
    {"ExclusiveZero", "0", nullptr, nullptr, kExclusive, 0},
    {"ExclusiveNumberBeforeAllOthers", "5", "6", "7", kExclusive, 5},
    {"ExclusiveNumberBeforeBrokenOnes", "5", "abc", "12x", kExclusive, 5},
    {"ExclusiveNumberBeyond16Bits", "65541", nullptr, nullptr, kExclusive, 5},
    {"ExclusiveNumberWithoutLowHalf", "65536", nullptr, nullptr, kExclusive, 0},
    {"ExclusiveNegative", "-1", nullptr, nullptr, kExclusive, 0xFFFF},
    {"ExclusiveLetters", "abc", nullptr, nullptr, kSimple, 0},
    {"ExclusiveLettersThenConcurrent", "abc", "6", "7", kConcurrent, 6},
    {"ExclusiveLettersThenSimple", "abc", nullptr, "7", kSimple, 7},
    {"ExclusivePartlyNumber", "12x", nullptr, nullptr, kSimple, 12},
    {"ExclusivePartlyNumberThenConcurrent", "12x", "6", nullptr, kConcurrent, 6},
    {"ExclusivePartlyNumberThenConcurrentLetters", "12x", "abc", nullptr, kSimple, 0},
    {"ExclusivePartlyNumberThenSimple", "12x", nullptr, "7", kSimple, 7},
    {"ExclusivePartlyNumberThenSimpleLetters", "12x", nullptr, "abc", kSimple, 0},
    {"ExclusivePartlyNumberThenSimplePartlyNumber", "12x", nullptr, "34y", kSimple, 34},
    {"ConcurrentNumber", nullptr, "6", nullptr, kConcurrent, 6},
    {"ConcurrentZero", nullptr, "0", nullptr, kConcurrent, 0},
    {"ConcurrentNumberBeforeSimple", nullptr, "6", "7", kConcurrent, 6},
    {"ConcurrentLetters", nullptr, "abc", nullptr, kSimple, 0},
    {"ConcurrentLettersThenSimple", nullptr, "abc", "7", kSimple, 7},
    {"ConcurrentPartlyNumber", nullptr, "12x", nullptr, kSimple, 12},
    {"ConcurrentPartlyNumberThenSimple", nullptr, "12x", "7", kSimple, 7},
    {"SimpleNumber", nullptr, nullptr, "7", kSimple, 7},
    {"SimpleLetters", nullptr, nullptr, "abc", kSimple, 0},
    {"SimplePartlyNumber", nullptr, nullptr, "12x", kSimple, 12},
    {"AllPartlyNumbers", "12x", "34y", "56z", kSimple, 56},
    {"AllLetters", "abc", "abc", "abc", kSimple, 0},
    {"AllEmpty", "", "", "", kSimple, 0},
};

class OpenMode : public testing::TestWithParam<Variables> {
protected:
    EnvironmentVariable exclusive{"EXCLUSIVE_KEY", GetParam().exclusive};
    EnvironmentVariable concurrent{"CONCURRENT_KEY", GetParam().concurrent};
    EnvironmentVariable simple{"SIMPLE_KEY", GetParam().simple};
    OrvaneSim::Lab lab;
    OrvaneSim::Board& board = lab.add();
    SimpleDeviceEntry device{"01A2:1", board.address()};
};

INSTANTIATE_TEST_SUITE_P(Variables, OpenMode, testing::ValuesIn(kVariables), NamedParam{});

TEST_P(OpenMode, OfTheFirstAccessFollowsTheEnvironment) {
    device.getSession(5);
    EXPECT_THAT(wireCalls(board, "setup"), ElementsAre(openCall(GetParam().key, GetParam().mode, 1, 5)));
}

struct OpenFunction {
    std::string name;
    Orvane::PhySession* (SimpleDeviceEntry::*open)(std::string boardSerial, int phyId, unsigned key,
                                                   unsigned short fallbackKey);
    Mode mode;
};

const OpenFunction kOpenFunctions[] = {
    {"Exclusive", &SimpleDeviceEntry::openExclusive, kExclusive},
    {"Concurrent", &SimpleDeviceEntry::openConcurrent, kConcurrent},
    {"Simple", &SimpleDeviceEntry::openSimple, kSimple},
};

class OpenFunctionOfDevice : public testing::TestWithParam<OpenFunction> {
protected:
    std::unique_ptr<Orvane::PhySession> open(int phyId, unsigned key, unsigned short fallbackKey) {
        return std::unique_ptr<Orvane::PhySession>(
            (device.*GetParam().open)("01A2", phyId, key, fallbackKey));
    }
    OrvaneSim::Lab lab;
    OrvaneSim::Board& board = lab.add();
    SimpleDeviceEntry device{"01A2:9", board.address()};
};

INSTANTIATE_TEST_SUITE_P(Mode, OpenFunctionOfDevice, testing::ValuesIn(kOpenFunctions), NamedParam{});

TEST_P(OpenFunctionOfDevice, SendsItsFlagsAndTheKey) {
    const auto session = open(21, 0x4321, 6);
    EXPECT_THAT(wireCalls(board, "setup"), ElementsAre(openCall(0x4321, GetParam().mode, 9, 21)));
}

TEST_P(OpenFunctionOfDevice, SendsTheFallbackWhenTheKeyIs0) {
    const auto session = open(21, 0, 6);
    EXPECT_THAT(wireCalls(board, "setup"), ElementsAre(openCall(6, GetParam().mode, 9, 21)));
}

TEST_P(OpenFunctionOfDevice, LeavesTheSessionToTheCallerAndKeepsItAlive) {
    const auto session = open(21, 5, 0);
    EXPECT_THAT(device.sessions, SizeIs(0));
    EXPECT_TRUE(session->isKeepAliveRunning());
    EXPECT_EQ(session->name(), "01A2");
}

} // namespace
} // namespace OrvaneTest
