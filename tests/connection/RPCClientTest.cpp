// RPC clients: when they connect, what they store, and their time-outs.
#include "ov_sys/Interface/connection/RPCClient.h"

#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "tests/support/OneBoard.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>
#include <utility>

namespace Orvane {
namespace {

using namespace OrvaneTest;

template <class Client>
class AnyRPCClient : public testing::Test {};
using AllKinds = testing::Types<RPCClient, NormalRPCClient, ThreadSafeRPCClient, ExtendedRPCClient>;
TYPED_TEST_SUITE(AnyRPCClient, AllKinds, );

template <class Client>
class EagerRPCClient : public testing::Test {};
using EagerKinds = testing::Types<NormalRPCClient, ThreadSafeRPCClient>;
TYPED_TEST_SUITE(EagerRPCClient, EagerKinds, );

template <class Client>
class LazyRPCClient : public testing::Test {};
using LazyKinds = testing::Types<RPCClient, ExtendedRPCClient>;
TYPED_TEST_SUITE(LazyRPCClient, LazyKinds, );

std::pair<long, long> parts(const timeval& time) {
    return {time.tv_sec, time.tv_usec};
}

// The time-out that the live handle itself holds.
std::pair<long, long> handleTimeout(const RPCClient& client) {
    timeval time{};
    clnt_control(client.client.load(), CLGET_TIMEOUT, reinterpret_cast<char*>(&time));
    return parts(time);
}

const std::pair<long, long> kTwoSeconds{2, 0};

TYPED_TEST(AnyRPCClient, StoresItsArgumentsAndTwoSeconds) {
    const TypeParam client(0x2FFFFFF5, 1, "udp", "keepAlive", "");
    EXPECT_EQ(client.program, 0x2FFFFFF5U);
    EXPECT_EQ(client.version, 1U);
    EXPECT_EQ(client.protocol, "udp");
    EXPECT_EQ(client.name, "keepAlive");
    EXPECT_EQ(client.host, "");
    EXPECT_EQ(parts(client.timeout), kTwoSeconds);
}

TYPED_TEST(AnyRPCClient, WithoutHostNeitherConnectsNorPrints) {
    CLIENT* handle = nullptr;
    const WrittenText written = textWritten([&] {
        const TypeParam client(Programs::Setup, Programs::Version, "tcp", "setup", "");
        handle = client.client;
    });
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(written.output, "");
}

TYPED_TEST(AnyRPCClient, ResetTwiceLeavesItUnconnected) {
    OneBoard lab;
    TypeParam client(Programs::Setup, Programs::Version, "tcp", "setup", lab.board.address());
    client.update();
    ASSERT_NE(client.client, nullptr);
    client.reset();
    client.reset();
    EXPECT_EQ(client.client, nullptr);
    EXPECT_EQ(client.pin(), nullptr);
}

TYPED_TEST(AnyRPCClient, ConnectsWhenUpdated) {
    OneBoard lab;
    TypeParam client(Programs::MDIO, Programs::Version, "udp", "mdio", lab.board.address());
    const WrittenText written = textWritten([&] { client.update(); });
    EXPECT_NE(client.client, nullptr);
    EXPECT_EQ(handleTimeout(client), kTwoSeconds);
    EXPECT_EQ(written.error, "");
}

TYPED_TEST(EagerRPCClient, WithHostConnectsAtOnceAndPrintsNothing) {
    OneBoard lab;
    CLIENT* handle = nullptr;
    const WrittenText written = textWritten([&] {
        const TypeParam client(Programs::Setup, Programs::Version, "tcp", "setup", lab.board.address());
        handle = client.client;
    });
    EXPECT_NE(handle, nullptr);
    EXPECT_EQ(written.error, "");
}

TYPED_TEST(LazyRPCClient, WithHostStaysUnconnectedAndAsksNobody) {
    OneBoard lab;
    const TypeParam client(Programs::Setup, Programs::Version, "tcp", "setup", lab.board.address());
    EXPECT_EQ(client.client, nullptr);
    EXPECT_TRUE(lab.board.requests("portmap").empty());
}

TYPED_TEST(AnyRPCClient, SetTimeoutWithoutHandleStoresNothing) {
    OneBoard lab;
    TypeParam client(Programs::Setup, Programs::Version, "tcp", "setup", "");
    client.setTimeout(7, 5);
    EXPECT_EQ(parts(client.timeout), kTwoSeconds);
    client.update(lab.board.address());
    EXPECT_EQ(parts(client.timeout), kTwoSeconds);
    EXPECT_EQ(handleTimeout(client), kTwoSeconds);
}

TYPED_TEST(AnyRPCClient, SetTimeoutWithHandleStoresAndAppliesIt) {
    OneBoard lab;
    TypeParam client(Programs::MDIO, Programs::Version, "udp", "mdio", lab.board.address());
    client.update();
    client.setTimeout(7, 5);
    EXPECT_EQ(parts(client.timeout), std::make_pair(7L, 5L));
    EXPECT_EQ(handleTimeout(client), std::make_pair(7L, 5L));
}

TEST(RPCClientTimeout, IsTwoSecondsAgainAfterResetTimeout) {
    OneBoard lab;
    NormalRPCClient client(Programs::Setup, Programs::Version, "tcp", "setup", lab.board.address());
    client.setTimeout(7, 5);
    client.resetTimeout();
    EXPECT_EQ(parts(client.timeout), kTwoSeconds);
    EXPECT_EQ(handleTimeout(client), kTwoSeconds);
}

TEST(RPCClientTimeout, StaysStoredAfterResetAndIsTwoSecondsOnAFreshHandle) {
    OneBoard lab;
    NormalRPCClient client(Programs::Setup, Programs::Version, "tcp", "setup", lab.board.address());
    client.setTimeout(7, 5);
    client.reset();
    EXPECT_EQ(parts(client.timeout), std::make_pair(7L, 5L));
    client.connect();
    EXPECT_EQ(parts(client.timeout), kTwoSeconds);
    EXPECT_EQ(handleTimeout(client), kTwoSeconds);
}

TEST(RPCClientBusy, IsIgnoredByClientsThatOneThreadUses) {
    NormalRPCClient normal(Programs::MDIO, Programs::Version, "udp", "mdio", "");
    ExtendedRPCClient extended(Programs::ADC, Programs::Version, "tcp", "adc", "");
    normal.setBusy(true);
    extended.setBusy(true);
    EXPECT_FALSE(normal.isBusy());
    EXPECT_FALSE(extended.isBusy());
}

TEST(RPCClientConnectionError, NamesProgramAndHostAndReturnsFalse) {
    NormalRPCClient client(Programs::MDIO, Programs::Version, "udp", "mdio", "");
    client.host = "10.83.0.9";
    bool result = true;
    const WrittenText written = textWritten([&] { result = client.connectionError(); });
    EXPECT_EQ(written.error, "Error connecting to rpc program mdio from: 10.83.0.9\n  \n");
    EXPECT_FALSE(result);
}

TEST(RPCClientConnectionError, IsSilentAndTrueForAnExtendedClient) {
    ExtendedRPCClient client(Programs::ADC, Programs::Version, "tcp", "adc", "10.83.0.9");
    bool result = false;
    const WrittenText written = textWritten([&] { result = client.connectionError(); });
    EXPECT_EQ(written.error, "");
    EXPECT_TRUE(result);
}

} // namespace
} // namespace Orvane
