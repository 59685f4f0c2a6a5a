// Which functions of the flat interface write their failures to the standard error stream, and which keep
// quiet.
#include "tests/support/capi/FlatBoard.h"
#include "tests/support/NamedParam.h"
#include "tests/support/WithoutInterfaces.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>
#include <orvane/orvane.h>

namespace OrvaneTest {
namespace {

constexpr const char* kNoInterfaces = "Couldn't get list of local interfaces.";
constexpr const char* kNoAdapter = "Invalid adapter index";
constexpr unsigned kMissing = 2999; // no such adapter

struct Failure {
    std::string name;
    bool (*failsNeutrally)(); // where no discovery can begin; true for 0 or null
    std::string recorded;
    std::string written;
};

std::string reported(const std::string& text) {
    return "\nError: " + text + "\n";
}

const Failure kFailures[] = {
    {"HW_NumberOfDevices", [] { return HW_NumberOfDevices() == 0; }, kNoInterfaces, ""},
    {"HW_DeviceList", [] { return HW_DeviceList() == nullptr; }, kNoInterfaces, ""},
    {"HW_DeviceByIp", [] { return HW_DeviceByIp("") == nullptr; }, kNoInterfaces, ""},
    {"HW_DeviceNumber", [] { return HW_DeviceNumber("NoSuch:3") == 0; }, "Device not found.",
     std::string(kNoInterfaces) + "\nDeviceNumber: Device not found\n" + reported("Device not found.")},
    // The opening keeps quiet; its second part, the look-up of the number, reports.
    {"HW_Open", [] { return HW_Open("NoSuch:3") == 0; }, "Device not found.",
     std::string(kNoInterfaces) + "\nDeviceNumber: Device not found\n" + kNoInterfaces +
         "\nDeviceNumber: Device not found\n" + reported("Device not found.")},
    {"HW_SetDeviceParameters",
     [] {
         HW_SetDeviceParameters(kMissing, 0, 1);
         return true;
     },
     kNoAdapter, reported(kNoAdapter)},
    {"HW_GetDeviceParameters", [] { return HW_GetDeviceParameters(kMissing, 0) == 0; }, kNoAdapter,
     reported(kNoAdapter)},
    {"HW_Read_Abstracted", [] { return HW_Read_Abstracted(kMissing, 5, 1, 2) == 0; }, kNoAdapter,
     reported(kNoAdapter)},
    {"HW_Write_Abstracted",
     [] {
         HW_Write_Abstracted(kMissing, 5, 1, 2, 3);
         return true;
     },
     kNoAdapter, reported(kNoAdapter)},
    {"HW_Read_C22_Abstracted", [] { return HW_Read_C22_Abstracted(kMissing, 5, 1) == 0; }, kNoAdapter,
     reported(kNoAdapter)},
    {"HW_Write_C22_Abstracted",
     [] {
         HW_Write_C22_Abstracted(kMissing, 5, 1, 2);
         return true;
     },
     kNoAdapter, reported(kNoAdapter)},
};

void recordSomethingElse() {
    try {
        throw 1;
    } catch (...) {
        HW_CallException(false);
    }
}

class FlatFailure : public testing::TestWithParam<Failure>, protected FlatBoard {};

INSTANTIATE_TEST_SUITE_P(Of, FlatFailure, testing::ValuesIn(kFailures), NamedParam{});

TEST_P(FlatFailure, IsRecordedAndReportedOrNotAsTheFunctionWants) {
    recordSomethingElse();
    bool neutral = false;
    const WrittenText written =
        textWritten([&] { withoutInterfaces([&] { neutral = GetParam().failsNeutrally(); }); });
    EXPECT_TRUE(neutral);
    EXPECT_EQ(written.error, GetParam().written);
    EXPECT_EQ(written.output, "");
    EXPECT_EQ(HW_Fail(), 1);
    EXPECT_EQ(HW_Error(), GetParam().recorded);
}

} // namespace
} // namespace OrvaneTest
