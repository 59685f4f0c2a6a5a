// Remote commands of a simulated board, canned and in a shell.
#include "tests/support/simulator/Client.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <thread>
#include <unistd.h>

namespace OrvaneSim {
namespace {

class RemoteCommand : public testing::Test {
protected:
    Lab lab;
    Decoded<sim_Command_Result> answer{xdr_sim_Command_Result};

    clnt_stat run(Board& board, std::string command, u_int seconds = 10) {
        Client setup(board, SIM_SETUP, "tcp");
        setup.setTimeout(20000);
        const unsigned identity = openSession(setup);
        sim_Command_Param argument{
            identity, {static_cast<u_int>(command.size() + 1), command.data()}, seconds};
        return sim_execute_command_1(&argument, &answer.fresh(), setup.handle());
    }
    std::string output() { return {answer->output.output_val, answer->output.output_len}; }
    std::string errors() { return {answer->errors.errors_val, answer->errors.errors_len}; }
};

TEST_F(RemoteCommand, IsAnsweredFromTheTable) {
    Board& board = lab.add();
    ASSERT_EQ(run(board, "cat /boardInfo/name"), RPC_SUCCESS);
    EXPECT_EQ(output(), board.nameLine() + "\n");
    ASSERT_EQ(run(board, "echo one two"), RPC_SUCCESS);
    EXPECT_EQ(output(), "one two\n");
    ASSERT_EQ(run(board, "false"), RPC_SUCCESS);
    EXPECT_EQ(answer->status, 1);
    ASSERT_EQ(run(board, "reboot now"), RPC_SUCCESS);
    EXPECT_EQ(answer->status, 127);
    EXPECT_EQ(errors(), "reboot: command not found\n");
}

TEST_F(RemoteCommand, IsAnsweredAsTheTestSays) {
    Board& board = lab.add();
    board.setCommand("measure", {3, std::string("a\0b", 3), "careful", 0});
    ASSERT_EQ(run(board, "measure"), RPC_SUCCESS);
    EXPECT_EQ(answer->error, 0);
    EXPECT_EQ(answer->status, 3);
    EXPECT_EQ(output(), std::string("a\0b", 3));
    EXPECT_EQ(errors(), "careful");
    EXPECT_EQ(argumentsOf(board.requestsOf("execute_command").at(0))["command"], std::string("measure\0", 8));
}

TEST_F(RemoteCommand, ThatOutlastsItsTimeEndsAsTimedOut) {
    Board& board = lab.add();
    board.setCommand("slow", {0, "never seen", "", 60});
    ASSERT_EQ(run(board, "slow", 0), RPC_SUCCESS);
    EXPECT_EQ(answer->error, -ETIMEDOUT);
    EXPECT_EQ(output(), "");
}

TEST_F(RemoteCommand, RunsInAShellOnlyWhereThatIsAllowed) {
    Board& board = lab.add({"", "A", {}, "host", 1, true});
    ASSERT_EQ(run(board, "printf out; printf err >&2; exit 5"), RPC_SUCCESS);
    EXPECT_EQ(answer->error, 0);
    EXPECT_EQ(answer->status, 5);
    EXPECT_EQ(output(), "out");
    EXPECT_EQ(errors(), "err");
    ASSERT_EQ(run(board, "kill -9 $$"), RPC_SUCCESS);
    EXPECT_EQ(answer->status, 137);
}

// The user a shell runs as: nobody, where root can become somebody else.
std::string shellUser() {
    if (::geteuid() != 0)
        return std::to_string(::geteuid());
    std::ifstream map("/proc/self/uid_map");
    for (unsigned long inside = 0, outside = 0, count = 0; map >> inside >> outside >> count;)
        if (inside <= 65534 && 65534 - inside < count)
            return "65534";
    return "0"; // of a user namespace that an ordinary user made
}

TEST_F(RemoteCommand, InAShellHasNoneOfRootsRights) {
    Board& board = lab.add({"", "A", {}, "host", 1, true});
    ASSERT_EQ(run(board, "id -u; id -ru"), RPC_SUCCESS);
    EXPECT_EQ(output(), shellUser() + "\n" + shellUser() + "\n");
    if (shellUser() != "65534")
        return;
    ASSERT_EQ(::setenv("ORVANE_TEST_SECRET", "of root", 1), 0);
    ASSERT_EQ(run(board, "id -G; pwd; grep NoNewPrivs /proc/self/status; echo \"$ORVANE_TEST_SECRET\""),
              RPC_SUCCESS);
    EXPECT_EQ(output(), "65534\n/\nNoNewPrivs:\t1\n\n");
}

TEST_F(RemoteCommand, InAShellIsKilledWhenItsTimeIsUpAndHoldsNobodyUp) {
    Board& board = lab.add({"", "A", {}, "host", 1, true});
    std::thread caller([&] { EXPECT_EQ(run(board, "printf begun; sleep 60", 1), RPC_SUCCESS); });
    board.waitFor([](const Request& request) { return request.procedure == "execute_command"; });
    Client other(board, SIM_SETUP, "udp");
    int value = 0;
    EXPECT_EQ(other.call(sim_ping_1, 4, value), RPC_SUCCESS);
    caller.join();
    EXPECT_EQ(answer->error, -ETIMEDOUT);
    EXPECT_EQ(output(), "begun");
}

} // namespace
} // namespace OrvaneSim
