// The port mapper of a simulated board.
#include "tests/support/simulator/Client.h"

#include <arpa/inet.h>
#include <netinet/in.h>

namespace OrvaneSim {
namespace {

constexpr rpcprog_t kPortMapper = 100000;

class PortMapper : public testing::Test {
protected:
    Lab lab;
    Board& board = lab.add();
    Client mapper{board, kPortMapper, "udp", 2};

    unsigned portOf(unsigned program, unsigned version, unsigned protocol) {
        u_int port = 0;
        EXPECT_EQ(mapper.call(sim_portmap_getport_2, sim_Port_Mapping{program, version, protocol, 0}, port),
                  RPC_SUCCESS);
        return port;
    }
};

// Coding of a procedure that has neither argument nor result.
bool_t nothing(XDR*, ...) {
    return TRUE;
}

// How a call without argument ends.
rpc_err outcome(CLIENT* client, rpcproc_t procedure) {
    clnt_call(client, procedure, nothing, nullptr, nothing, nullptr, (timeval{2, 0}));
    rpc_err error{};
    clnt_geterr(client, &error);
    return error;
}

// A client of the port mapper's own port for any program and version, made without asking the port mapper.
class RawMapper {
public:
    RawMapper(const Board& board, rpcprog_t program, rpcvers_t version, bool tcp) {
        sockaddr_in point{};
        point.sin_family = AF_INET;
        point.sin_port = htons(111);
        inet_pton(AF_INET, board.address().c_str(), &point.sin_addr);
        int socket = RPC_ANYSOCK;
        client_ = tcp ? clnttcp_create(&point, program, version, &socket, 0, 0)
                      : clntudp_create(&point, program, version, {1, 0}, &socket);
    }
    RawMapper(const RawMapper&) = delete;
    RawMapper& operator=(const RawMapper&) = delete;
    ~RawMapper() { clnt_destroy(client_); }

    rpc_err outcome(rpcproc_t procedure) { return OrvaneSim::outcome(client_, procedure); }

private:
    CLIENT* client_;
};

TEST_F(PortMapper, TellsAPortForEveryProgramOnBothTransports) {
    for (unsigned program = SIM_SETUP; program <= SIM_THERMAL; ++program) {
        EXPECT_NE(portOf(program, 1, IPPROTO_TCP), 0U) << std::hex << program;
        EXPECT_NE(portOf(program, 1, IPPROTO_UDP), 0U) << std::hex << program;
    }
}

TEST_F(PortMapper, TellsZeroForAProgramThatIsNotServed) {
    EXPECT_EQ(portOf(0x20001234, 1, IPPROTO_UDP), 0U);
}

TEST_F(PortMapper, TellsThePortOfAnotherVersionWhenTheWantedOneIsMissing) {
    EXPECT_EQ(portOf(SIM_MDIO, 7, IPPROTO_UDP), portOf(SIM_MDIO, 1, IPPROTO_UDP));
}

TEST_F(PortMapper, AnswersVersions3And4WithTheVersionItServesOverUdpAndTcp) {
    for (const bool tcp : {false, true}) {
        for (const rpcvers_t version : {3U, 4U}) {
            RawMapper mapper3or4(board, kPortMapper, version, tcp);
            const rpc_err error = mapper3or4.outcome(3);
            EXPECT_EQ(error.re_status, RPC_PROGVERSMISMATCH);
            EXPECT_EQ(error.re_vers.low, 2U);
            EXPECT_EQ(error.re_vers.high, 2U);
        }
    }
}

TEST_F(PortMapper, RefusesAProgramThatIsNotServedAtItsPort) {
    EXPECT_EQ(RawMapper(board, SIM_MDIO, 1, false).outcome(0).re_status, RPC_PROGUNAVAIL);
}

TEST_F(PortMapper, RefusesUnknownProceduresAndIndirectCalls) {
    EXPECT_EQ(RawMapper(board, kPortMapper, 2, false).outcome(77).re_status, RPC_PROCUNAVAIL);
    sim_Port_Call_Result result{};
    EXPECT_EQ(mapper.call(sim_portmap_callit_2, sim_Port_Call{}, result), RPC_PROCUNAVAIL);
}

TEST_F(PortMapper, RefusesArgumentsThatAreTooShort) {
    EXPECT_EQ(RawMapper(board, kPortMapper, 2, false).outcome(3).re_status, RPC_CANTDECODEARGS);
}

TEST_F(PortMapper, SetAndUnsetChangeWhatIsTold) {
    const sim_Port_Mapping mapping{0x20001234, 1, IPPROTO_UDP, 4711};
    bool_t done = FALSE;
    ASSERT_EQ(mapper.call(sim_portmap_set_2, mapping, done), RPC_SUCCESS);
    EXPECT_TRUE(done);
    ASSERT_EQ(mapper.call(sim_portmap_set_2, mapping, done), RPC_SUCCESS);
    EXPECT_FALSE(done) << "a registration is not replaced";
    EXPECT_EQ(portOf(0x20001234, 1, IPPROTO_UDP), 4711U);
    ASSERT_EQ(mapper.call(sim_portmap_unset_2, mapping, done), RPC_SUCCESS);
    EXPECT_TRUE(done);
    EXPECT_EQ(portOf(0x20001234, 1, IPPROTO_UDP), 0U);
}

TEST_F(PortMapper, DumpListsEveryRegistration) {
    Decoded<sim_Port_Dump> dump(xdr_sim_Port_Dump);
    ASSERT_EQ(sim_portmap_dump_2(nullptr, &dump.fresh(), mapper.handle()), RPC_SUCCESS);
    std::size_t count = 0;
    for (const sim_Port_List* entry = dump->first; entry; entry = entry->next)
        ++count;
    EXPECT_EQ(count, 2U * (1 + 8)) << "port mapper and eight programs, on two transports";
}

TEST_F(PortMapper, IsRecordedOnlyUnderItsOwnName) {
    portOf(SIM_MDIO, 1, IPPROTO_UDP);
    EXPECT_TRUE(board.requests().empty());
    const Request request = board.requests("portmap").back();
    EXPECT_EQ(request.procedure, "portmap_getport");
    EXPECT_EQ(request.arguments(), R"({"prog":805306354,"vers":1,"prot":17,"port":0})");
}

TEST_F(PortMapper, OfABoardServesTheNullProcedure) {
    EXPECT_EQ(outcome(mapper.handle(), 0).re_status, RPC_SUCCESS);
}

} // namespace
} // namespace OrvaneSim
