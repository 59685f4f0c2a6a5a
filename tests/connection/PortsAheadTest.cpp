// Ports that are asked for together, and what becomes of answers that do not come.
#include "ov_sys/Interface/connection/PortsAhead.h"

#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/connection/ProgramSocket.h"
#include "ov_sys/Interface/connection/RPCClient.h"
#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "ov_sys/Interface/rpc_protocol/Programs.h"
#include "tests/support/allocations/OpenDescriptors.h"
#include "tests/support/OneBoard.h"
#include "tests/support/WrittenText.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <orvane/lab_json.h>
#include <sys/socket.h>
#include <utility>
#include <vector>

namespace Orvane {
namespace {

using namespace OrvaneTest;

constexpr unsigned long kUnknownProgram = 0x2FFFFFFF;

class PortsAsked : public testing::Test, public OneBoard {
protected:
    std::uint16_t portOf(unsigned long program, int protocol = IPPROTO_UDP) const {
        return PortsAhead::portOf({inet_addr(board.address().c_str())}, program, Programs::Version, protocol);
    }

    // At which a program is when it is opened, in host order.
    std::uint16_t portFoundFor(unsigned long program, const char* protocol) const {
        return ntohs(
            openProgram(board.address(), program, Programs::Version, protocol).place.address.sin_port);
    }

    const PortsAhead::Program mdio{Programs::MDIO, IPPROTO_UDP};
    const PortsAhead::Program setup{Programs::Setup, IPPROTO_TCP};
};

TEST_F(PortsAsked, TogetherAreThoseThatEachProgramIsFoundAtWithoutAnotherQuestion) {
    const std::uint16_t mdioPort = portFoundFor(Programs::MDIO, "udp");
    const std::uint16_t setupPort = portFoundFor(Programs::Setup, "tcp");
    const PortsAhead ahead(board.address(), Programs::Version, {setup, mdio});
    EXPECT_EQ(portOf(Programs::MDIO), mdioPort);
    EXPECT_EQ(portOf(Programs::Setup, IPPROTO_TCP), setupPort);
    EXPECT_EQ(portFoundFor(Programs::MDIO, "udp"), mdioPort);
    EXPECT_EQ(count("portmap_getport"), 4U);
}

TEST_F(PortsAsked, TakeNoDescriptorAnyMoreOnceAllAreTold) {
    static_cast<void>(openDescriptors()); // what is opened once and kept
    const std::size_t before = openDescriptors();
    const PortsAhead ahead(board.address(), Programs::Version, {setup, mdio});
    EXPECT_NE(portOf(Programs::MDIO), 0);
    EXPECT_NE(portOf(Programs::Setup, IPPROTO_TCP), 0);
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(PortsAsked, OfAnotherBoardProgramOrTransportAreNotTold) {
    const PortsAhead ahead(board.address(), Programs::Version, {mdio});
    EXPECT_EQ(portOf(Programs::MDIO, IPPROTO_TCP), 0);
    EXPECT_EQ(portOf(Programs::I2C), 0);
    EXPECT_EQ(
        PortsAhead::portOf({inet_addr(kRefusingAddress)}, Programs::MDIO, Programs::Version, IPPROTO_UDP), 0);
}

TEST_F(PortsAsked, AreForgottenWithTheQuestions) {
    {
        const PortsAhead outer(board.address(), Programs::Version, {mdio});
        const PortsAhead inner("", Programs::Version, {});
        EXPECT_EQ(portOf(Programs::MDIO), 0);
    }
    EXPECT_EQ(portOf(Programs::MDIO), 0);
}

TEST_F(PortsAsked, OfAnUnknownProgramAreToldToBeNone) {
    const PortsAhead ahead(board.address(), Programs::Version, {{kUnknownProgram, IPPROTO_UDP}, mdio});
    EXPECT_EQ(portOf(kUnknownProgram), 0);
    EXPECT_NE(portOf(Programs::MDIO), 0);
}

TEST_F(PortsAsked, OfAHostByNameAreNotAskedFor) {
    const FileDescriptor mapper(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_in loopback{};
    loopback.sin_family = AF_INET;
    loopback.sin_port = htons(PortMapperCall::kPort);
    loopback.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(bind(mapper.get(), reinterpret_cast<const sockaddr*>(&loopback), sizeof loopback), 0);
    const PortsAhead ahead("localhost", Programs::Version, {mdio});
    EXPECT_EQ(PortsAhead::portOf({htonl(INADDR_LOOPBACK)}, Programs::MDIO, Programs::Version, IPPROTO_UDP),
              0);
    EXPECT_EQ(count("portmap_getport"), 0U);
    char waste = 0;
    EXPECT_EQ(recv(mapper.get(), &waste, 1, MSG_DONTWAIT), -1);
}

TEST_F(PortsAsked, OfARefusingHostAreNone) {
    const PortsAhead ahead(kRefusingAddress, Programs::Version, {mdio});
    EXPECT_EQ(
        PortsAhead::portOf({inet_addr(kRefusingAddress)}, Programs::MDIO, Programs::Version, IPPROTO_UDP), 0);
}

TEST_F(PortsAsked, InVainAreAskedForAgainByTheProgramThatIsOpened) {
    inject(OrvaneSim::Fault::Kind::LoseReply, "portmap", "portmap_getport");
    BoardConnection connection(record());
    EXPECT_NE(connection.getClient(BoardConnection::SETUP)->client, nullptr);
    EXPECT_NE(connection.getClient(BoardConnection::KEEPALIVE)->client, nullptr);
    EXPECT_EQ(count("portmap_getport"), 7U);
}

TEST_F(PortsAsked, OfABoardAreOverTheTransportsOfItsPrograms) {
    const BoardConnection connection(record());
    std::vector<std::pair<unsigned long, int>> asked;
    for (const OrvaneSim::Request& request : board.requestsOf("portmap_getport")) {
        const auto mapping = argumentsOf(request);
        asked.emplace_back(mapping["prog"], mapping["prot"]);
        EXPECT_EQ(mapping["port"], 0);
    }
    asked.resize(6); // which are asked again when the answers take long
    EXPECT_EQ(asked, (decltype(asked){{Programs::Setup, IPPROTO_TCP},
                                      {Programs::MDIO, IPPROTO_UDP},
                                      {Programs::I2C, IPPROTO_UDP},
                                      {Programs::GPIO, IPPROTO_UDP},
                                      {Programs::JTAG, IPPROTO_UDP},
                                      {Programs::KeepAlive, IPPROTO_UDP}}));
}

TEST_F(PortsAsked, OfASilentPortMapperLeaveTheClientsTheirOwnError) {
    inject(OrvaneSim::Fault::Kind::Silent, "portmap", "", -1);
    std::string error;
    {
        const PortsAhead ahead(board.address(), Programs::Version, {mdio});
        NormalRPCClient client(Programs::MDIO, Programs::Version, "udp", "mdio", "");
        error = textWritten([&] { client.update(board.address()); }).error;
        EXPECT_EQ(client.client, nullptr);
    }
    EXPECT_EQ(error.substr(0, error.find('\n')), ": RPC: Timed out");
}

} // namespace
} // namespace Orvane
