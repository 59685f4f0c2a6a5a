// What others' tools make of a board: rpcinfo asks it, tshark dissects what it sends.
#include "tests/support/simulator/PcapFile.h"
#include "tests/support/simulator/RawBoard.h"
#include "tests/support/simulator/Shell.h"

#include <netinet/in.h>

namespace OrvaneSim {
namespace {

class AskedByRpcinfo : public RawBoard {};

TEST_F(AskedByRpcinfo, ListsItsProgramsOnBothTransports) {
    const Outcome listed = shell("rpcinfo -p " + board.address());
    EXPECT_EQ(listed.status, 0) << listed.output;
    std::string expected = "   program vers proto   port  service\n"
                           "    100000    2   tcp    111  portmapper\n"
                           "    100000    2   udp    111  portmapper\n";
    for (int program = 805306352; program <= 805306359; ++program)
        for (const auto& [name, number] : {std::pair("tcp", IPPROTO_TCP), std::pair("udp", IPPROTO_UDP)})
            expected += " " + std::to_string(program) + "    1   " + name + "  " +
                        std::to_string(port(static_cast<unsigned>(number))) + "\n";
    EXPECT_EQ(listed.output, expected);
}

TEST_F(AskedByRpcinfo, AnswersTheNullProcedureOnBothTransports) {
    for (const std::string transport : {"udp", "tcp"}) {
        const Outcome answered = shell("rpcinfo -T " + transport + " " + board.address() + " 805306354 1");
        EXPECT_EQ(answered.status, 0);
        EXPECT_EQ(answered.output, "program 805306354 version 1 ready and waiting\n");
    }
}

TEST_F(AskedByRpcinfo, TellsWhichVersionItServes) {
    const Outcome refused = shell("rpcinfo -u " + board.address() + " 805306354 2");
    EXPECT_NE(refused.status, 0);
    EXPECT_NE(refused.output.find("low version = 1, high version = 1"), std::string::npos) << refused.output;
}

// Exchanges messages with a board and keeps them as a capture.
class DissectedByTshark : public RawBoard {
protected:
    ScratchFolder folder;
    PcapFile capture{folder.file("capture.pcap")};
    const CapturedEnd client{"10.83.255.254", 40000};
    std::uint32_t transaction = 100;

    std::string next(std::uint32_t program, std::uint32_t procedure, const std::string& arguments,
                     std::uint32_t version = 1) {
        return request(program, procedure, arguments, version, 2, ++transaction);
    }

    void overUdp(std::uint16_t to, const std::string& message) {
        RawSocket socket = RawSocket::datagram(0);
        socket.sendTo(message, board.address(), to);
        capture.datagram(client, {board.address(), to}, message);
        capture.datagram({board.address(), to}, client, socket.receive());
    }

    void overTcp(std::uint16_t to, const std::string& message) {
        RawSocket socket = RawSocket::stream(board.address(), to);
        socket.send(record(message));
        capture.segment(client, {board.address(), to}, record(message));
        capture.segment({board.address(), to}, client, socket.receive());
    }

    // Message type, program, version, procedure and state of each message that tshark sees.
    std::string dissected() {
        capture.close();
        const std::string fields =
            " -T fields -E separator=, -E occurrence=f -e rpc.msgtyp -e rpc.program -e rpc.programversion "
            "-e rpc.procedure -e rpc.state_accept -e _ws.malformed";
        return shell("tshark -r " + folder.file("capture.pcap") + " -o rpc.dissect_unknown_programs:TRUE" +
                     fields + " 2>/dev/null")
            .output;
    }
};

TEST_F(DissectedByTshark, IsWellFormedInEveryReplyOverUdp) {
    const std::uint16_t udp = port(IPPROTO_UDP);
    overUdp(111, next(SIM_PORTMAP, 0, "", 2));
    overUdp(111, next(SIM_PORTMAP, SIM_PORTMAP_GETPORT, words({SIM_MDIO, 1, IPPROTO_UDP, 0}), 2));
    overUdp(111, next(SIM_PORTMAP, SIM_PORTMAP_DUMP, "", 2));
    overUdp(udp, next(SIM_SETUP, SIM_PING, words({7})));
    overUdp(udp, next(SIM_MDIO, SIM_MDIO_READ, words({identity, 2, 0x10002, 0x10003})));
    overUdp(udp, next(SIM_MDIO, SIM_MDIO_READ, words({identity, 2, 0x10002})));
    overUdp(udp, next(SIM_MDIO, 77, ""));
    overUdp(udp, next(SIM_MDIO, SIM_MDIO_READ, "", 9));
    overUdp(udp, next(0x2FFFFFF8, 1, ""));
    EXPECT_EQ(dissected(), "0,100000,2,0,,\n1,100000,2,0,0,\n"
                           "0,100000,2,3,,\n1,100000,2,3,0,\n"
                           "0,100000,2,4,,\n1,100000,2,4,0,\n"
                           "0,805306352,1,4,,\n1,805306352,1,4,0,\n"
                           "0,805306354,1,1,,\n1,805306354,1,1,0,\n"
                           "0,805306354,1,1,,\n1,805306354,1,1,4,\n"
                           "0,805306354,1,77,,\n1,805306354,1,77,3,\n"
                           "0,805306354,9,1,,\n1,805306354,9,1,2,\n"
                           "0,805306360,1,1,,\n1,805306360,1,1,1,\n");
}

TEST_F(DissectedByTshark, IsWellFormedOverTcp) {
    const std::uint16_t tcp = port(IPPROTO_TCP);
    overTcp(111, next(SIM_PORTMAP, SIM_PORTMAP_DUMP, "", 2));
    overTcp(tcp, next(SIM_SETUP, SIM_PING, words({7})));
    overTcp(tcp, next(SIM_I2C, 0, ""));
    EXPECT_EQ(dissected(), "0,100000,2,4,,\n1,100000,2,4,0,\n"
                           "0,805306352,1,4,,\n1,805306352,1,4,0,\n"
                           "0,805306353,1,0,,\n1,805306353,1,0,0,\n");
}

TEST_F(DissectedByTshark, IsMalformedWhereAFaultSaysSo) {
    board.inject({"portmap", "", Fault::Kind::TruncateReply, 1, 26});
    overUdp(111, next(SIM_PORTMAP, SIM_PORTMAP_GETPORT, words({SIM_MDIO, 1, IPPROTO_UDP, 0}), 2));
    EXPECT_EQ(dissected(), "0,100000,2,3,,\n1,100000,2,3,0,[Malformed Packet: Portmap]\n");
}

} // namespace
} // namespace OrvaneSim
