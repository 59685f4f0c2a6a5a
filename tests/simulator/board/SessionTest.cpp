// Sessions of a simulated board: modes, keys, limits.
#include "tests/support/simulator/Client.h"

#include <cerrno>

namespace OrvaneSim {
namespace {

enum class Mode { Exclusive, Concurrent, Simple };

class Session : public testing::Test {
protected:
    Lab lab;
    Board& board = lab.add();
    Client setup{board, SIM_SETUP, "tcp"};
    Client keepAlive{board, SIM_KEEPALIVE, "udp"};

    sim_Open_Result open(Mode mode, unsigned key = 0, int device = 0, int phy = 0) {
        sim_Open_Param argument{};
        argument.sessionId = key;
        argument.exclusive = mode == Mode::Exclusive;
        argument.simple = mode == Mode::Simple;
        argument.notShared = mode == Mode::Exclusive;
        argument.deviceIndex = device;
        argument.phyAddress = phy;
        sim_Open_Result result{};
        EXPECT_EQ(setup.call(sim_open_connection_1, argument, result), RPC_SUCCESS);
        return result;
    }

    int ping(unsigned identity) {
        sim_Simple_Result result{};
        EXPECT_EQ(keepAlive.call(sim_pingkeepalive_1, sim_ID_Param{identity}, result), RPC_SUCCESS);
        return result.error;
    }

    int close(unsigned identity) {
        sim_Simple_Result result{};
        EXPECT_EQ(setup.call(sim_close_connection_1, sim_Close_Param{identity, 0}, result), RPC_SUCCESS);
        return result.error;
    }
};

TEST_F(Session, IdsFitInTheLowByteOfTheIdentityWord) {
    for (int i = 0; i < 300; ++i) {
        const sim_Open_Result opened = open(Mode::Simple);
        EXPECT_GE(opened.id, 1U);
        EXPECT_LE(opened.id, 255U);
        ASSERT_EQ(close(opened.id), 0);
    }
}

TEST_F(Session, IsRefusedWhen255AreOpen) {
    for (int i = 0; i < 255; ++i)
        ASSERT_EQ(open(Mode::Simple).error, 0);
    EXPECT_EQ(open(Mode::Simple).error, -ENOSPC);
    EXPECT_EQ(board.sessionCount(), 255U);
}

TEST_F(Session, IsFoundByTheLowByteWhateverTheSequence) {
    const unsigned id = open(Mode::Simple).id;
    EXPECT_EQ(ping(id), 0);
    EXPECT_EQ(ping((0xABCD << 8) | id), 0);
}

TEST_F(Session, IsForgottenByItsClose) {
    const unsigned id = open(Mode::Simple).id;
    EXPECT_EQ(close(id), 0);
    EXPECT_EQ(ping(id), -EBADRQC);
    EXPECT_EQ(close(id), -EBADRQC);
    EXPECT_EQ(board.sessionCount(), 0U);
}

TEST_F(Session, ForgottenByTheBoardIsUnknownToItsClient) {
    const unsigned id = open(Mode::Simple).id;
    board.forgetSessions();
    EXPECT_EQ(ping(id), -EBADRQC);
}

TEST_F(Session, ExclusiveKeepsEveryOtherModeOut) {
    ASSERT_EQ(open(Mode::Exclusive, 7).error, 0);
    EXPECT_EQ(open(Mode::Exclusive).error, -EACCES);
    EXPECT_EQ(open(Mode::Concurrent, 8).error, -EACCES);
    EXPECT_EQ(open(Mode::Simple).error, -EACCES);
}

TEST_F(Session, ExclusiveLetsTheHoldersKeyIn) {
    ASSERT_EQ(open(Mode::Exclusive, 7).error, 0);
    EXPECT_EQ(open(Mode::Exclusive, 7).error, 0);
    EXPECT_EQ(open(Mode::Simple, 7).error, 0);
}

TEST_F(Session, ExclusiveIsOfOnePortOnly) {
    ASSERT_EQ(open(Mode::Exclusive, 7, 0, 3).error, 0);
    EXPECT_EQ(open(Mode::Exclusive, 8, 0, 4).error, 0);
    EXPECT_EQ(open(Mode::Exclusive, 8, 1, 3).error, 0);
}

TEST_F(Session, ExclusiveIsRefusedWhileOthersHoldThePort) {
    const unsigned id = open(Mode::Concurrent, 5).id;
    EXPECT_EQ(open(Mode::Exclusive, 6).error, -EACCES);
    ASSERT_EQ(close(id), 0);
    EXPECT_EQ(open(Mode::Exclusive, 6).error, 0);
}

TEST_F(Session, ConcurrentAndSimpleShareAPort) {
    EXPECT_EQ(open(Mode::Concurrent, 5).error, 0);
    EXPECT_EQ(open(Mode::Concurrent, 6).error, 0);
    EXPECT_EQ(open(Mode::Simple).error, 0);
}

TEST_F(Session, WithoutKeyIsGivenOneUnlessItIsSimple) {
    EXPECT_EQ(open(Mode::Simple).sessionId, 0U);
    const unsigned concurrent = open(Mode::Concurrent, 0, 1).sessionId;
    const unsigned exclusive = open(Mode::Exclusive, 0, 2).sessionId;
    EXPECT_NE(concurrent, 0U);
    EXPECT_NE(exclusive, 0U);
    EXPECT_NE(concurrent, exclusive);
    EXPECT_LE(exclusive, 0xFFFFU);
    EXPECT_EQ(open(Mode::Exclusive, 9, 3).sessionId, 9U);
}

TEST_F(Session, ExclusiveAndSimpleAtOnceIsRefused) {
    sim_Open_Param argument{};
    argument.exclusive = 1;
    argument.simple = 1;
    sim_Open_Result result{};
    ASSERT_EQ(setup.call(sim_open_connection_1, argument, result), RPC_SUCCESS);
    EXPECT_EQ(result.error, -EINVAL);
}

TEST_F(Session, PingOfTheBoardNeedsNoneAndEchoesItsNumber) {
    int value = 0;
    ASSERT_EQ(setup.call(sim_ping_1, 123, value), RPC_SUCCESS);
    EXPECT_EQ(value, 123);
    EXPECT_EQ(board.requestsOf("ping").at(0).arguments(), R"({"value":123})");
}

TEST_F(Session, IsPingedOnTheSetupProgramToo) {
    sim_Simple_Result result{};
    ASSERT_EQ(setup.call(sim_pingclient_1, sim_ID_Param{open(Mode::Simple).id}, result), RPC_SUCCESS);
    EXPECT_EQ(result.error, 0);
    ASSERT_EQ(setup.call(sim_pingclient_1, sim_ID_Param{200}, result), RPC_SUCCESS);
    EXPECT_EQ(result.error, -EBADRQC);
}

} // namespace
} // namespace OrvaneSim
