// The device list: merging of found boards, look-ups, texts and readers beside it.
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/discovery/BoardFinder.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/HeapText.h"
#include "tests/support/NamedParam.h"
#include "tests/support/WrittenText.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <stdexcept>
#include <thread>

namespace OrvaneTest {
namespace {

using Orvane::AddressResponse;
using Orvane::HWInterface;
using Orvane::Exceptions::NoDevice;
using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class DeviceList : public testing::Test {
protected:
    // Merges boards as if a discovery had found them.
    void found(std::vector<AddressResponse> boards) {
        std::vector<AddressResponse*> records;
        for (AddressResponse& board : boards)
            records.push_back(&board);
        devices.updateSimpleDeviceList(records);
    }
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& entry : devices.devices)
            names.push_back(entry->name);
        return names;
    }
    const std::string& addressOf(std::size_t index) const { return devices.devices[index]->address; }

    HWInterface devices;
};

TEST_F(DeviceList, IsEmptyAtFirst) {
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(DeviceList, IsReadAsAVectorIs) {
    found({{"host OV0001:0 OV0001:1", "10.0.0.1"}, {"host OV0002:0", "10.0.0.2"}});
    const auto& list = devices.devices;
    EXPECT_EQ(list.front()->name, "OV0001:0");
    EXPECT_EQ(list.back()->name, "OV0002:0");
    EXPECT_EQ(list.at(1)->name, "OV0001:1");
    EXPECT_THROW(list.at(3), std::out_of_range);
    const auto onOtherBoard = std::find_if(list.cbegin(), list.cend(),
                                           [](const auto& entry) { return entry->address == "10.0.0.2"; });
    EXPECT_EQ(std::distance(list.begin(), onOtherBoard), 2);
    EXPECT_EQ((*list.rbegin())->name, "OV0002:0");
}

TEST_F(DeviceList, FindsADeviceByTheNameThatItsEntryHasNow) {
    found({{"host OV0001:0 OV0001:1", "10.0.0.1"}});
    EXPECT_EQ(devices.deviceIndex("OV0001:1"), 1);
    devices.devices[1]->name = "A LONGER NAME THAN THE FORMER ONE:1";
    EXPECT_EQ(devices.deviceIndex("a longer name than the former one:1"), 1);
    EXPECT_THROW(devices.deviceIndex("OV0001:1"), NoDevice);
}

TEST_F(DeviceList, StaysAsItIsWhenNothingWasFound) {
    found({});
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(DeviceList, GetsEveryDeviceThatABoardNamesBehindItsFirstWord) {
    found({{"host 01a2:0 01a2:1", "10.0.0.1"}});
    EXPECT_THAT(names(), ElementsAre("01A2:0", "01A2:1"));
    EXPECT_EQ(addressOf(1), "10.0.0.1");
}

TEST_F(DeviceList, GetsClosedDevices) {
    found({{"host 01a2:0", "10.0.0.1"}});
    EXPECT_EQ(devices.devices[0]->isOpen, 0);
}

TEST_F(DeviceList, GetsNoDeviceTwice) {
    found({{"host 01a2:0 01a2:1", "10.0.0.1"}});
    found({{"host 01a2:0 01a2:1", "10.0.0.1"}});
    EXPECT_THAT(names(), ElementsAre("01A2:0", "01A2:1"));
}

TEST_F(DeviceList, GetsADeviceOnceThatABoardNamesTwice) {
    found({{"host 01a2:0 01a2:0", "10.0.0.1"}});
    EXPECT_THAT(names(), ElementsAre("01A2:0"));
}

TEST_F(DeviceList, GetsNoLineAboutWordsThatAreNoDeviceNames) {
    const std::string lines = textWritten([this] { found({{"host a:x b:0 c", "10.0.0.1"}}); }).error;
    EXPECT_EQ(lines, "");
    EXPECT_THAT(names(), ElementsAre("B:0"));
}

TEST_F(DeviceList, Gets1024DevicesOfOneSearchAndTheOthersOfTheNext) {
    std::vector<AddressResponse> flood;
    for (int i = 0; i < 1500; ++i)
        flood.emplace_back("host a" + std::to_string(i) + ":0", "10.0.0.1");
    const std::uint64_t before = Orvane::BoardFinder::dropped().excess;
    found(flood);
    EXPECT_EQ(names().size(), 1024U);
    EXPECT_EQ(Orvane::BoardFinder::dropped().excess - before, 1500U - 1024U);
    found(flood);
    EXPECT_EQ(names().size(), 1500U);
    EXPECT_EQ(Orvane::BoardFinder::dropped().excess - before, 1500U - 1024U);
}

TEST_F(DeviceList, NeverGetsTheFirstWord) {
    found({{"01a2:7 01a2:0", "10.0.0.1"}, {"01a2:8", "10.0.0.2"}});
    EXPECT_THAT(names(), ElementsAre("01A2:0"));
}

TEST_F(DeviceList, GetsTheWholeBoardForItsTypeWord) {
    found({{"orvane", "10.0.0.1"}});
    EXPECT_THAT(names(), ElementsAre("ORVANE:0"));
    EXPECT_EQ(addressOf(0), "10.0.0.1");
}

TEST_F(DeviceList, KnowsTheTypeWordInLowerCaseOnly) {
    found({{"Orvane", "10.0.0.1"}, {"ORVANE", "10.0.0.2"}, {"orvane 01a2:0", "10.0.0.3"}});
    EXPECT_THAT(names(), ElementsAre("01A2:0"));
}

TEST_F(DeviceList, LeavesOutWhatIsNoDeviceName) {
    found({{"host 01a2:0 nocolon a:b:c 01a2: 01a2:1", "10.0.0.1"}});
    EXPECT_THAT(names(), ElementsAre("01A2:0", "01A2:1"));
}

TEST_F(DeviceList, TakesSeveralBlanksForOne) {
    found({{"host  01a2:0   01a2:1 ", "10.0.0.1"}});
    EXPECT_THAT(names(), ElementsAre("01A2:0", "01A2:1"));
}

TEST_F(DeviceList, IsSortedByNameWithinOneRefresh) {
    found({{"host b:1 a:1", "10.0.0.1"}, {"host c:0 a:0", "10.0.0.2"}});
    EXPECT_THAT(names(), ElementsAre("A:0", "A:1", "B:1", "C:0"));
}

TEST_F(DeviceList, GetsTheDevicesOfALaterRefreshBehindTheEarlierOnes) {
    found({{"host m:1 m:0", "10.0.0.1"}});
    found({{"host z:0 a:0 m:0", "10.0.0.1"}});
    EXPECT_THAT(names(), ElementsAre("M:0", "M:1", "A:0", "Z:0"));
}

TEST_F(DeviceList, GetsOneDeviceForOneNameAtTwoAddresses) {
    found({{"host 01a2:0", "10.0.0.1"}, {"host 01a2:0", "10.0.0.2"}});
    EXPECT_THAT(names(), ElementsAre("01A2:0"));
    EXPECT_THAT(addressOf(0), AnyOf("10.0.0.1", "10.0.0.2"));
}

TEST_F(DeviceList, KeepsTheAddressAtWhichADeviceWasFirstSeen) {
    found({{"host 01a2:0", "10.0.0.1"}});
    found({{"host 01a2:0", "10.0.0.2"}});
    EXPECT_EQ(addressOf(0), "10.0.0.1");
}

TEST_F(DeviceList, GetsADeviceAgainUnderAnotherCaseOnlyOnce) {
    found({{"host 01a2:0 01A2:0", "10.0.0.1"}});
    EXPECT_THAT(names(), ElementsAre("01A2:0"));
}

TEST_F(DeviceList, LeavesTheFoundRecordsToTheCaller) {
    AddressResponse board("host 01a2:0", "10.0.0.1");
    std::vector<AddressResponse*> records{&board};
    devices.updateSimpleDeviceList(records);
    EXPECT_THAT(records, ElementsAre(&board));
    EXPECT_EQ(board.name, "host 01a2:0");
}

TEST_F(DeviceList, FindsANameInAnyLetterCase) {
    found({{"host 01a2:0 01a2:1", "10.0.0.1"}});
    EXPECT_EQ(devices.deviceIndex("01a2:1"), 1);
    EXPECT_EQ(devices.deviceIndex("01A2:1"), 1);
}

TEST_F(DeviceList, FindsWholeNamesOnly) {
    found({{"host 01a2:0", "10.0.0.1"}});
    EXPECT_THROW(devices.deviceIndex("01A2"), NoDevice);
    EXPECT_THROW(devices.deviceIndex("01A2:00"), NoDevice);
}

TEST_F(DeviceList, FindsTheFirstOfTwoEntriesOfOneName) {
    for (int i = 0; i < 2; ++i)
        devices.devices.push_back(std::make_unique<Orvane::SimpleDeviceEntry>("01A2:9"));
    EXPECT_EQ(devices.deviceIndex("01A2:9"), 0);
}

TEST_F(DeviceList, NumbersAKnownNameWithoutADiscovery) {
    found({{"host 01a2:0 01a2:1", "10.0.0.1"}});
    const WrittenText written = textWritten([&] { EXPECT_EQ(devices.deviceNumber("01a2:1", ""), 1); });
    EXPECT_EQ(written.error, "");
}

TEST_F(DeviceList, TellsTheNameAtAnIndex) {
    found({{"host 01a2:0 01a2:1", "10.0.0.1"}});
    EXPECT_EQ(taken(devices.device(1U)), "01A2:1");
}

TEST_F(DeviceList, ReportsAnIndexBehindItsEnd) {
    found({{"host 01a2:0", "10.0.0.1"}});
    const WrittenText written = textWritten([&] { EXPECT_EQ(devices.device(1U), nullptr); });
    EXPECT_EQ(written.error, "No device at index 1\n");
    EXPECT_EQ(written.output, "");
}

TEST_F(DeviceList, ReportsTheHighestIndexUnsigned) {
    const WrittenText written = textWritten([&] { EXPECT_EQ(devices.device(4294967295U), nullptr); });
    EXPECT_EQ(written.error, "No device at index 4294967295\n");
}

TEST_F(DeviceList, CanBeReadWhileItGrows) {
    constexpr int kBoards = 300;
    found({{"host first:0", "10.0.0.1"}});
    std::atomic<bool> growing{true};
    std::atomic<unsigned> misses{0};
    std::vector<std::thread> readers;
    for (int i = 0; i < 2; ++i)
        readers.emplace_back([&] {
            while (growing) {
                const unsigned last = static_cast<unsigned>(devices.devices.size()) - 1;
                misses += devices.deviceIndex("first:0") != 0;
                misses += taken(devices.device(last)).empty();
                misses += !devices.openAdapter(last);
                misses += devices.getDeviceParameters(last, 0) != 0;
            }
        });
    for (int board = 0; board < kBoards; ++board)
        found({{"host b:" + std::to_string(board), "10.0.0.1"}});
    growing = false;
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_EQ(misses, 0U);
    EXPECT_THAT(names(), SizeIs(kBoards + 1));
}

TEST_F(DeviceList, TakesTheFindingsOfTwoThreads) {
    constexpr int kBoards = 100;
    const auto findAll = [&](const std::string& serial) {
        for (int board = 0; board < kBoards; ++board)
            found({{"host " + serial + ":" + std::to_string(board), "10.0.0.1"}});
    };
    std::thread first([&] { findAll("a"); });
    std::thread second([&] { findAll("b"); });
    first.join();
    second.join();
    EXPECT_THAT(names(), SizeIs(2 * kBoards));
    EXPECT_NO_THROW(devices.deviceIndex("A:99"));
    EXPECT_NO_THROW(devices.deviceIndex("B:99"));
}

struct NameForm {
    std::string name;
    std::string text;
    bool valid;
};

const NameForm kNameForms[] = {
    {"SerialAndPort", "01a2:0", true},
    {"EmptySerial", ":5", true},
    {"NegativePort", "x:-3", true},
    {"NoColon", "01a2", false},
    {"TwoColons", "a:b:c", false},
    {"NoPort", "01a2:", false},
    {"PortWithoutDigits", "x:y", false},
    {"PortBeyondInt", "x:99999999999", false},
    {"Empty", "", false},
};

class DeviceName : public testing::TestWithParam<NameForm> {};

INSTANTIATE_TEST_SUITE_P(Of, DeviceName, testing::ValuesIn(kNameForms), NamedParam{});

TEST_P(DeviceName, IsValidWhenItCanBeSplit) {
    EXPECT_EQ(HWInterface().isValidName(GetParam().text), GetParam().valid);
}

TEST(HeapCopy, HasTheTextAndEndsWithIt) {
    EXPECT_EQ(taken(HWInterface().cStringFrom("01A2:0")), "01A2:0");
}

TEST(HeapCopy, OfNothingIsAnEmptyText) {
    char* copy = HWInterface().cStringFrom("");
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(taken(copy), "");
}

} // namespace
} // namespace OrvaneTest
