// Dropping a client's handle and making it anew.
#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "tests/support/OneBoard.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace Orvane {
namespace {

using namespace OrvaneTest;

// Counts its resets, and lets a failed connection throw.
class WatchedClient : public RPCClient {
public:
    explicit WatchedClient(const std::string& address)
        : RPCClient(Programs::Setup, Programs::Version, "tcp", "setup", address) {}

    void reset() override {
        ++resets;
        RPCClient::reset();
    }
    bool connectionError() override {
        if (throwsStandard)
            throw std::runtime_error("no luck");
        if (throwsOther)
            throw 42;
        return RPCClient::connectionError();
    }

    int resets = 0;
    bool throwsStandard = false;
    bool throwsOther = false;
};

TEST(RPCClientUpdate, DropsTheHandleByTheVirtualResetAndConnectsAgain) {
    OneBoard lab;
    WatchedClient client(lab.board.address());
    client.connect();
    const auto former = client.pin();
    client.update();
    EXPECT_EQ(client.resets, 1);
    EXPECT_NE(client.pin(), nullptr);
    EXPECT_NE(client.pin(), former);
    EXPECT_EQ(client.host, lab.board.address());
}

TEST(RPCClientUpdate, WithAHostReplacesIt) {
    OneBoard lab;
    WatchedClient client("");
    client.update(lab.board.address());
    EXPECT_EQ(client.host, lab.board.address());
    EXPECT_EQ(client.resets, 1);
    EXPECT_NE(client.client, nullptr);
}

TEST(RPCClientUpdate, ToAHostThatRefusesLeavesItUnconnectedWithTheNewHost) {
    OneBoard lab;
    WatchedClient client(lab.board.address());
    client.connect();
    client.update(kRefusingAddress);
    EXPECT_EQ(client.host, kRefusingAddress);
    EXPECT_EQ(client.client, nullptr);
    EXPECT_EQ(client.resets, 1);
}

TEST(RPCClientUpdate, ReportsAStandardExceptionResetsAgainAndRethrowsIt) {
    WatchedClient client(kRefusingAddress);
    client.throwsStandard = true;
    std::string thrown;
    const WrittenText written =
        textWritten([&] { thrown = thrownText<std::runtime_error>([&] { client.update(); }); });
    EXPECT_EQ(thrown, "no luck");
    EXPECT_EQ(client.resets, 2);
    EXPECT_NE(written.error.find("\nClient setup create error: 12\n"
                                 "Error when updating client: setup : no luck\n"),
              std::string::npos)
        << written.error;
}

TEST(RPCClientUpdate, WithAHostReportsAStandardExceptionLikewise) {
    WatchedClient client("");
    client.throwsStandard = true;
    std::string thrown;
    const WrittenText written = textWritten(
        [&] { thrown = thrownText<std::runtime_error>([&] { client.update(kRefusingAddress); }); });
    EXPECT_EQ(thrown, "no luck");
    EXPECT_EQ(client.resets, 2);
    EXPECT_NE(written.error.find("Error when updating client: setup : no luck\n"), std::string::npos);
}

TEST(RPCClientUpdate, LetsOtherExceptionsPassWithoutAReport) {
    WatchedClient client(kRefusingAddress);
    client.throwsOther = true;
    const WrittenText written = textWritten([&] { EXPECT_THROW(client.update(), int); });
    EXPECT_EQ(client.resets, 1);
    EXPECT_EQ(written.error.find("Error when updating"), std::string::npos) << written.error;
}

TEST(RPCClientReset, LetsAPinnedHandleLive) {
    OneBoard lab;
    NormalRPCClient client(Programs::MDIO, Programs::Version, "udp", "mdio", lab.board.address());
    const auto pinned = client.pin();
    client.reset();
    EXPECT_EQ(client.client, nullptr);
    EXPECT_EQ(pinned.use_count(), 1);
}

} // namespace
} // namespace Orvane
