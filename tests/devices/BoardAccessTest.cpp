// Raw accesses to a board's own registers, which are refused, and 64-bit registers, which have no transport.
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/NamedParam.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::HWInterface;

constexpr unsigned kAddress = 4294967280U;
constexpr unsigned kData = 4294967281U;
constexpr unsigned long long kLongData = 18446744073709551602ULL;

const std::string kRead = "BOARD READ ATTEMPTED: You need to use a BoardControl function instead. Raw fpga "
                          "reads/writes don't make sense. Address = 4294967280\n";

std::string writeMessage(const std::string& data) {
    return "BOARD WRITE ATTEMPTED: You need to use a BoardControl function instead. Raw fpga reads/writes "
           "don't "
           "make sense. Address = 4294967280, data = " +
           data + "\n";
}

const std::string kWrite = writeMessage("4294967281");
const std::string kLongWrite = writeMessage("18446744073709551602");

struct RefusedAccess {
    std::string name;
    void (*run)(HWInterface& devices);
    std::string message;
};

const RefusedAccess kRefusals[] = {
    {"boardRead", [](HWInterface& d) { d.boardRead(kAddress); }, kRead},
    {"boardReadAdapter", [](HWInterface& d) { d.boardReadAdapter(99, kAddress); }, kRead},
    {"boardRead32", [](HWInterface& d) { d.boardRead32(kAddress); }, kRead},
    {"boardRead32Adapter", [](HWInterface& d) { d.boardRead32Adapter(99, kAddress); }, kRead},
    {"boardRead64", [](HWInterface& d) { d.boardRead64(kAddress); }, kRead},
    {"boardRead64Adapter", [](HWInterface& d) { d.boardRead64Adapter(99, kAddress); }, kRead},
    {"boardWrite", [](HWInterface& d) { d.boardWrite(kAddress, kData); }, kWrite},
    {"boardWriteAdapter", [](HWInterface& d) { d.boardWriteAdapter(99, kAddress, kData); }, kWrite},
    {"boardWrite32", [](HWInterface& d) { d.boardWrite32(kAddress, kData); }, kWrite},
    {"boardWrite32Adapter", [](HWInterface& d) { d.boardWrite32Adapter(99, kAddress, kData); }, kWrite},
    {"boardWrite64", [](HWInterface& d) { d.boardWrite64(kAddress, kLongData); }, kLongWrite},
    {"boardWrite64Adapter", [](HWInterface& d) { d.boardWrite64Adapter(99, kAddress, kLongData); },
     kLongWrite},
};

class BoardRefusal : public testing::TestWithParam<RefusedAccess> {};

INSTANTIATE_TEST_SUITE_P(Of, BoardRefusal, testing::ValuesIn(kRefusals), NamedParam{});

TEST_P(BoardRefusal, IsReportedAndThrown) {
    HWInterface devices;
    std::string thrown;
    const WrittenText written = textWritten(
        [&] { thrown = thrownText<Orvane::Exceptions::Standard>([&] { GetParam().run(devices); }); });
    EXPECT_EQ(written.error, GetParam().message);
    EXPECT_EQ(written.output, "");
    EXPECT_EQ(thrown, "Interface Error.");
}

TEST(Access64, ReadsAllOnesWithoutAnAdapter) {
    HWInterface devices;
    EXPECT_EQ(devices.read64(5, 1), 0xFFFFFFFFFFFFFFFFULL);
    EXPECT_EQ(devices.read64Adapter(99, 5, 1), 0xFFFFFFFFFFFFFFFFULL);
}

TEST(Access64, DoesNothingElseWithoutAnAdapter) {
    HWInterface devices;
    const WrittenText written = textWritten([&] {
        devices.write64(5, 1, 2);
        devices.write64Adapter(99, 5, 1, 2);
        devices.blockWrite64(5, 1, 2);
        devices.blockWrite64Adapter(99, 5, 1, 2);
        devices.blockRead64(5, 1);
        devices.blockRead64Adapter(99, 5, 1);
    });
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(devices.blockReadQueueSize(), 0U);
}

} // namespace
} // namespace OrvaneTest
