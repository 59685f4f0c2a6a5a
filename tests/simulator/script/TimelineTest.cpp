// Time lines, recordings and snapshots.
#include "simulator/script/LabFile.h"
#include "simulator/script/Recorder.h"
#include "simulator/script/Snapshot.h"
#include "tests/support/simulator/Client.h"
#include "tests/support/simulator/Shell.h"

#include <sstream>

namespace OrvaneSim {
namespace {

class LabWithTimeline : public testing::Test {
protected:
    Lab lab;

    // Starts boards A and B with a time line, a list of entries.
    void start(const std::string& timeline) {
        const LabSetup setup = readLab(
            parseJson(R"({"boards": [{"serial": "A"}, {"serial": "B"}], "timeline": [)" + timeline + "]}"),
            privatePlace());
        addBoards(lab, setup.boards);
        startTimeline(lab, setup.timeline);
    }

    // What pings with the numbers from 1 on return.
    static std::vector<int> pings(const Board& board, int count) {
        Client client(board, SIM_SETUP, "tcp");
        std::vector<int> values;
        for (int i = 1; i <= count; ++i) {
            int value = 0;
            EXPECT_EQ(client.call(sim_ping_1, i, value), RPC_SUCCESS);
            values.push_back(value);
        }
        return values;
    }
};

TEST_F(LabWithTimeline, ActsBetweenTheRequestThatMakesAnEntryDueAndTheNext) {
    start(R"({"after": {"request": 2}, "board": "A", "action": "result", "code": -5, "count": 2},
             {"after": {"request": 5}, "board": "A", "action": "result", "code": -6})");
    EXPECT_EQ(pings(lab.board("A"), 7), (std::vector<int>{1, 2, -5, -5, 5, -6, 7}));
    EXPECT_EQ(pings(lab.board("B"), 3), (std::vector<int>{1, 2, 3}));
}

TEST_F(LabWithTimeline, CountsForEachBoardByItselfWhenAllAreMeant) {
    start(R"({"after": {"request": 1}, "action": "result", "code": -5})");
    EXPECT_EQ(pings(lab.board("A"), 3), (std::vector<int>{1, -5, 3}));
    EXPECT_EQ(pings(lab.board("B"), 3), (std::vector<int>{1, -5, 3}));
}

TEST_F(LabWithTimeline, CountsOnlyTheProcedureThatIsNamed) {
    start(R"({"after": {"request": 2, "procedure": "ping"}, "board": "A", "action": "result", "code": -5})");
    Client setup(lab.board("A"), SIM_SETUP, "tcp");
    openSession(setup);
    openSession(setup);
    EXPECT_EQ(pings(lab.board("A"), 4), (std::vector<int>{1, 2, -5, 4}));
}

TEST_F(LabWithTimeline, MovesABoardAfterItsRequest) {
    start(R"({"after": {"request": 1}, "board": "A", "action": "move", "address": "10.83.7.7"})");
    EXPECT_EQ(pings(lab.board("A"), 1), (std::vector<int>{1}));
    EXPECT_EQ(pings(lab.board("A"), 1), (std::vector<int>{1}));
    EXPECT_EQ(lab.board("A").address(), "10.83.7.7");
}

TEST_F(LabWithTimeline, ActsAfterATime) {
    start(R"({"after": {"seconds": 0.01}, "board": "B", "action": "set", "register": 7, "value": 9})");
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (lab.board("B").registerValue(Space::C45, 0, 0, 7) == 0 && std::chrono::steady_clock::now() < limit)
        std::this_thread::yield();
    EXPECT_EQ(lab.board("B").registerValue(Space::C45, 0, 0, 7), 9U);
}

TEST_F(LabWithTimeline, RepeatsWithTheSameSeed) {
    const std::string half = R"({"after": {"request": 3}, "board": "A", "action": "result", "code": -5, )"
                             R"("count": -1, "probability": 0.5})";
    start(half);
    const std::vector<int> first = pings(lab.board("A"), 50);
    Lab second;
    const LabSetup setup =
        readLab(parseJson(R"({"boards": [{"serial": "A"}], "timeline": [)" + half + "]}"), privatePlace());
    BoardSetup board = setup.boards[0];
    board.options.address = "10.83.50.1";
    addBoards(second, {board});
    startTimeline(second, setup.timeline);
    EXPECT_EQ(pings(second.board("A"), 50), first);
}

TEST(Script, IsAListForTheBoardsOfTheLab) {
    const LabSetup lab = readLab(parseJson(R"({"boards": [{"serial": "A"}]})"), privatePlace());
    const auto refusal = [&](const char* text) {
        try {
            readScript(parseJson(text), lab, privatePlace());
        } catch (const ScriptError& refused) {
            return std::string(refused.what());
        }
        return std::string();
    };
    EXPECT_EQ(refusal(R"([{"after": {"request": 1}, "board": "A", "action": "kill"}])"), "");
    EXPECT_EQ(refusal("{}"), "a script is a list of time line entries");
    EXPECT_EQ(refusal(R"([{"after": {"request": 1}, "board": "B", "action": "kill"}])"),
              "[0].board: the lab has no board \"B\"");
}

class Recorded : public BoardWithClient {
protected:
    ScratchFolder folder;
};

TEST_F(Recorded, IsEveryRequestOnALineOfItsOwn) {
    recordRequests(lab, folder.file("calls.jsonl"));
    board.inject({"setup", "ping", Fault::Kind::ResultCode, 1, -5});
    for (const int number : {7, 8}) {
        int value = 0;
        ASSERT_EQ(setup.call(sim_ping_1, number, value), RPC_SUCCESS);
    }
    std::istringstream lines(folder.read("calls.jsonl")); // written out before the answer
    for (const int number : {7, 8}) {
        std::string line;
        ASSERT_TRUE(std::getline(lines, line));
        Json request = Json::parse(line);
        EXPECT_GE(request["seconds"].get<double>(), 0);
        request.erase("seconds");
        EXPECT_EQ(request.dump(),
                  R"({"board":"01A2","program":"setup","procedure":"ping","transport":"tcp",)"
                  R"("programNumber":805306352,"version":1,"procedureNumber":4,"arguments":{"value":)" +
                      std::to_string(number) + "}}");
    }
    EXPECT_EQ(lines.peek(), EOF);
}

TEST_F(Recorded, NowhereIsRefused) {
    EXPECT_THROW(recordRequests(lab, "/no/such/folder/file"), ScriptError);
}

class SnapshotOfALab : public BoardWithClient {
protected:
    ScratchFolder folder;
    const std::string file = folder.file("registers.json");
};

TEST_F(SnapshotOfALab, BringsEveryRegisterBackAndForgetsTheOthers) {
    board.setRegister(Space::C45, 1, 3, 0x1E0001, 0xCAFE);
    board.setRegister(Space::C22, 0, 31, 16, 0x2210);
    board.setRegister(Space::Ext32, 9, 0, 0xFFFFFFFC, 0xDEADBEEF);
    const Json before = snapshotOf(lab.boards());
    writeSnapshot(file, before);
    board.setRegister(Space::C45, 1, 3, 0x1E0001, 1);
    board.setRegister(Space::C45, 0, 0, 0x10010, 1);
    restoreSnapshot(lab.boards(), readJsonFile(file));
    EXPECT_EQ(snapshotOf(lab.boards()), before);
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x1E0001), 0xCAFEU);
    EXPECT_EQ(board.registerValue(Space::Ext32, 9, 0, 0xFFFFFFFC), 0xDEADBEEFU);
    EXPECT_EQ(board.registerValue(Space::C45, 0, 0, 0x10010), 0U);
}

TEST_F(SnapshotOfALab, IsWrittenARegisterToALine) {
    board.setRegister(Space::C45, 1, 3, 0x1E0001, 0xCAFE);
    lab.add({"", "B", {}, "host", 1, false});
    writeSnapshot(file, snapshotOf(lab.boards()));
    EXPECT_EQ(
        folder.read("registers.json"),
        "{\"boards\": [\n"
        "{\"serial\": \"01A2\", \"registers\": [\n"
        "  {\"space\":\"c45\",\"device\":1,\"phy\":3,\"register\":\"0x1E0001\",\"value\":\"0xCAFE\"}]},\n"
        "{\"serial\": \"B\", \"registers\": []}]}\n");
}

TEST_F(SnapshotOfALab, ThatIsWrongChangesNothing) {
    board.setRegister(Space::C45, 0, 0, 7, 5);
    for (const char* wrong : {R"({"boards": [{"serial": "01A2", "registers": []}, {"serial": "B"}]})",
                              R"({"boards": [{"serial": "01A2", "registers": [{"register": 1}]}]})"})
        EXPECT_THROW(restoreSnapshot(lab.boards(), parseJson(wrong)), ScriptError);
    EXPECT_EQ(board.registerValue(Space::C45, 0, 0, 7), 5U);
}

TEST(LabOnTheCommandLine, SavesAtItsEndWhatTheNextOneBeginsWith) {
    const ScratchFolder folder;
    const std::string file = folder.file("registers.json");
    const std::string ctl = "-- " ORVANE_SIM " ctl OV0001 ";
    EXPECT_EQ(shell(ORVANE_LAB " --save-snapshot " + file + " " + ctl + "set 7 5").output, "");
    EXPECT_EQ(shell(ORVANE_LAB " --snapshot " + file + " " + ctl + "get 7").output, "0x5\n");
    EXPECT_EQ(shell(ORVANE_LAB " --boards 0 --snapshot " + file + " -- true").output,
              "orvane-lab: " + file + ": boards[0].serial: the lab has no board \"OV0001\"\n");
}

TEST(LabOnTheCommandLine, RecordsAndFollowsItsScript) {
    const ScratchFolder folder;
    const std::string script = folder.write(
        "script.json", R"([{"after": {"seconds": 0}, "action": "set", "register": 7, "value": 9}])");
    const std::string wait =
        "until [ $(" ORVANE_SIM " ctl OV0001 get 7) = 0x9 ]; do :; done; rpcinfo -t 10.83.0.1 "
        "805306352 1";
    const Outcome outcome = shell(ORVANE_LAB " --script " + script + " --record " + folder.file("calls") +
                                  " -- timeout 20 sh -c '" + wait + "'");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_NE(folder.read("calls").find(R"("procedure":"portmap_getport")"), std::string::npos);
}

} // namespace
} // namespace OrvaneSim
