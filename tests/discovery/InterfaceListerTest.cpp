// The listing of the host's IPv4 interfaces.
#include "ov_sys/Interface/discovery/InterfaceLister.h"

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "simulator/network/Netlink.h"
#include "tests/support/discovery/Limits.h"
#include "tests/support/discovery/OwnNetwork.h"
#include "tests/support/WrittenText.h"

#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <sys/ioctl.h>

namespace Orvane {
namespace {

using Records = std::vector<AddressResponse>;

// An interface without a hardware address, which the system lists with no address at all. False where the
// machine has no such interfaces.
bool addAddresslessInterface(Orvane::FileDescriptor& owner) {
    owner = Orvane::FileDescriptor(open("/dev/net/tun", O_RDWR | O_CLOEXEC));
    ifreq request{};
    request.ifr_flags = IFF_TUN | IFF_NO_PI;
    std::strncpy(request.ifr_name, "bare0", IFNAMSIZ - 1);
    return owner && ioctl(owner.get(), TUNSETIFF, &request) == 0;
}

TEST(UnixIpList, ListsLoopbackAndHostInterface) {
    Records list;
    const unsigned count = unix_ipList(list);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(list, (Records{{"lo", "127.0.0.1"}, {"lab0", "10.83.255.254"}}));
}

TEST(UnixIpList, AppendsToWhatTheListHolds) {
    Records list = {{"earlier", "1.2.3.4"}};
    const unsigned count = unix_ipList(list);
    EXPECT_EQ(count, 2U);
    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list[0], AddressResponse("earlier", "1.2.3.4"));
}

TEST(UnixIpList, FindsNothingInAHostWithoutIPv4Addresses) {
    OrvaneTest::inOwnNetwork([] {
        Records list;
        unsigned count = 99;
        const OrvaneTest::WrittenText written = OrvaneTest::textWritten([&] { count = unix_ipList(list); });
        EXPECT_EQ(written.output, "");
        EXPECT_EQ(count, 0U);
        EXPECT_EQ(list, Records{});
    });
}

TEST(UnixIpList, ListsInterfacesThatAreDown) {
    OrvaneTest::inOwnNetwork([] {
        OrvaneSim::Netlink().addAddress("lo", "10.9.8.7", 24);
        Records list;
        EXPECT_EQ(unix_ipList(list), 1U);
        EXPECT_EQ(list, (Records{{"lo", "10.9.8.7"}}));
    });
}

TEST(UnixIpList, KeepsTheSystemsOrderAndEveryAddress) {
    OrvaneTest::inOwnNetwork([] {
        OrvaneTest::bringLoopbackUp();
        OrvaneTest::addInterface("zeta", "10.2.0.1");
        OrvaneTest::addInterface("alpha", "10.1.0.1");
        OrvaneSim::Netlink().addAddress("zeta", "10.3.0.1", 24);
        Records list;
        EXPECT_EQ(unix_ipList(list), 4U);
        EXPECT_EQ(
            list,
            (Records{
                {"lo", "127.0.0.1"}, {"zeta", "10.2.0.1"}, {"zeta", "10.3.0.1"}, {"alpha", "10.1.0.1"}}));
    });
}

TEST(UnixIpList, SkipsAnInterfaceWithoutAnyAddress) {
    OrvaneTest::inOwnNetwork([] {
        OrvaneTest::bringLoopbackUp();
        Orvane::FileDescriptor owner;
        if (!addAddresslessInterface(owner))
            GTEST_SKIP() << "no /dev/net/tun here";
        Records list;
        EXPECT_EQ(unix_ipList(list), 1U);
        EXPECT_EQ(list, (Records{{"lo", "127.0.0.1"}}));
    });
}

TEST(UnixIpList, TellsOnStandardOutputWhenTheSystemRefuses) {
    Records list;
    unsigned count = 99;
    const OrvaneTest::WrittenText written = OrvaneTest::textWritten([&] {
        const OrvaneTest::NoDescriptorsLeft limit;
        count = unix_ipList(list);
    });
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(written.output, "Cannot receive information about local addresses\n");
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(list, Records{});
}

TEST(InterfaceLister, GivesTheSameList) {
    Records list = {{"earlier", "1.2.3.4"}};
    EXPECT_EQ(InterfaceLister::ipList(list), 2U);
    EXPECT_EQ(list, (Records{{"earlier", "1.2.3.4"}, {"lo", "127.0.0.1"}, {"lab0", "10.83.255.254"}}));
}

} // namespace
} // namespace Orvane
