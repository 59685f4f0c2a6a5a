// Accesses that allocate nothing.
#include "ov_sys/Interface/buses/MDIO.h"
#include "tests/support/performance/AllocationCount.h"
#include "tests/support/SessionOnBoard.h"

#include <gtest/gtest.h>
#include <memory>
#include <orvane/orvane.h>
#include <orvane/rack.hpp>

namespace {

using namespace OrvaneTest;

constexpr int kReads = 50;

// After one that is not counted: it fills the buffers that stay.
template <class Access>
std::size_t allocationsOf(Access access) {
    access();
    const std::size_t before = allocationsOfThisThread();
    for (int i = 0; i < kReads; ++i)
        access();
    return allocationsOfThisThread() - before;
}

TEST(AllocationCount, SeesNewAndMallocOfThisThread) {
    const std::size_t before = allocationsOfThisThread();
    const auto memory = std::make_unique<std::vector<int>>(100);
    EXPECT_EQ(allocationsOfThisThread() - before, 2U);
}

TEST(SingleAccess, ThroughTheClassesAllocatesNothing) {
    SessionOnBoard lab;
    EXPECT_EQ(allocationsOf([&] { Orvane::mdio.read(&lab.session, 0x10020); }), 0U);
    EXPECT_EQ(allocationsOf([&] { Orvane::mdio.write(&lab.session, 0x10020, 1); }), 0U);
    EXPECT_EQ(lab.count("mdio_read"), kReads + 1U);
}

TEST(SingleAccess, ThroughTheFlatInterfaceAllocatesNothing) {
    OneBoard lab;
    HW_Initialize();
    const std::unique_ptr<char, decltype(&std::free)> name(HW_DeviceByIp(lab.board.address().c_str()),
                                                           &std::free);
    HW_OpenAdapter(0);
    EXPECT_EQ(allocationsOf([] { HW_Read_Abstracted(0, kPhy, 1, 0x20); }), 0U);
    HW_EnableLogging(std::tmpfile());
    EXPECT_EQ(allocationsOf([] { ZR_API_MDIO_Read(kPhy, 1, 0x20); }), 0U);
    HW_DisableLogging(1);
    HW_CloseAdapter(0);
    EXPECT_EQ(lab.count("mdio_read"), 2 * (kReads + 1U));
}

TEST(SingleAccess, ThroughARackAllocatesNothing) {
    OneBoard lab;
    Orvane::Rack rack;
    rack.know(kBoardSerial, lab.board.address());
    const Orvane::Phy phy = rack.open("board7:1").phy(kPhy);
    EXPECT_EQ(allocationsOf([&] { phy.read({1, 0x20}); }), 0U);
    EXPECT_EQ(allocationsOf([&] { phy.write({1, 0x20}, 1); }), 0U);
    EXPECT_EQ(lab.count("mdio_read"), kReads + 1U);
}

} // namespace
