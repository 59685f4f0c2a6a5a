// The control protocol, request by request, and its socket.
#include "simulator/control/ControlSocket.h"
#include "simulator/control/LocalSocket.h"
#include "simulator/script/ActionText.h"
#include "simulator/script/FaultTable.h"
#include "tests/support/simulator/Client.h"
#include "tests/support/simulator/Shell.h"

#include <functional>
#include <sys/socket.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace OrvaneSim {
namespace {

class Control : public BoardWithClient {
protected:
    LabControl control{lab};

    // The answer to a request for board 01A2 with the members of `members`, an object without its braces.
    std::string ask(const std::string& members, const std::string& to = "01A2") {
        return control.answer(R"({"board": ")" + to + R"(", )" + members + "}");
    }
    std::string errorOf(const std::string& members) {
        return Json::parse(ask(members)).value("error", "none");
    }
    const std::string done = R"({"ok":true})";
};

TEST_F(Control, ListsTheBoards) {
    lab.add({"", "other", {"other:3"}, "rack", 1, false});
    EXPECT_EQ(ask(R"("action": "list")", "all"),
              R"({"ok":true,"result":[)"
              R"({"board":"01A2","address":"10.83.0.1","name":"host 01A2:0 01A2:1","sessions":1,"faults":0},)"
              R"({"board":"other","address":"10.83.0.2","name":"rack other:3","sessions":0,"faults":0}]})");
}

TEST_F(Control, MeansABoardByItsSerialNumberOrItsAddress) {
    Board& other = lab.add({"", "other", {}, "host", 1, false});
    EXPECT_EQ(ask(R"("action": "lose-reply")", "other"), done);
    EXPECT_EQ(ask(R"("action": "lose-reply")", other.address()), done);
    EXPECT_EQ(other.faults().size(), 2U);
    EXPECT_TRUE(board.faults().empty());
    EXPECT_EQ(ask(R"("action": "lose-reply")", "all"), done);
    EXPECT_EQ(board.faults().size(), 1U);
}

TEST_F(Control, SetsAndGetsRegisters) {
    EXPECT_EQ(ask(R"("action": "set", "register": "0x1E0001", "value": 51966, "phy": 3)"), done);
    EXPECT_EQ(board.registerValue(Space::C45, 0, 3, 0x1E0001), 0xCAFEU);
    EXPECT_EQ(ask(R"("action": "get", "register": "0x1E0001", "phy": 3)"),
              R"({"ok":true,"result":[{"board":"01A2","space":"c45","device":0,"phy":3,)"
              R"("register":"0x1E0001","value":"0xCAFE"}]})");
    EXPECT_EQ(ask(R"("action": "set", "space": "ext32", "register": 4294967295, "value": 4294967295)"), done);
    EXPECT_EQ(board.registerValue(Space::Ext32, 0, 0, 0xFFFFFFFF), 0xFFFFFFFFU);
}

TEST_F(Control, GivesAPhyTheRegistersOfAMap) {
    EXPECT_EQ(ask(R"("action": "map", "file": "ieee8023", "phy": 3, "identifier": "0x00112233")"), done);
    EXPECT_EQ(board.registerValue(Space::C45, 0, 3, 0x10002), 0x0011U);
    EXPECT_EQ(ask(R"("action": "set", "register": "0x70001", "value": 4, "phy": 3)"), done);
    EXPECT_EQ(ask(R"("action": "get", "register": "0x70001", "phy": 3)"),
              R"({"ok":true,"result":[{"board":"01A2","space":"c45","device":0,"phy":3,)"
              R"("register":"0x70001","value":"0x0"}]})")
        << "AN.STATUS.LINK holds the 0 that it began with until somebody reads it";
}

TEST_F(Control, HasAPhyRaiseAnInterrupt) {
    Client mdio(board, SIM_MDIO, "udp");
    sim_MDIO_Result result{};
    mdio.call(sim_mdio_interruptrequest_1, sim_MDIO_InterruptRequest_Param{identity, 1, 3, 0, 0}, result);
    EXPECT_EQ(ask(R"("action": "interrupt", "device": 1, "phy": 3)"), done);
    mdio.call(sim_mdio_interruptwait_1, sim_Simple_Param{1000, identity}, result);
    EXPECT_EQ(result.value, 1);
}

TEST_F(Control, TellsWhatWasCounted) {
    EXPECT_EQ(
        ask(R"("action": "counts", "procedure": "open_connection")"),
        R"({"ok":true,"result":[{"board":"01A2","procedure":"open_connection","received":1,"executed":1,)"
        R"("faults":0,"lostRequests":0,"lostReplies":0}]})");
}

TEST_F(Control, ShowsTheNewestRequestsOldestFirst) {
    ask(R"("action": "forget-requests")");
    EXPECT_EQ(ask(R"("action": "requests")"), R"({"ok":true,"result":[]})");
    for (const int phy : {5, 6, 7})
        openSession(setup, 0, phy);
    const Json told = Json::parse(ask(R"("action": "requests", "procedure": "open_connection", "last": 2)"));
    ASSERT_EQ(told["result"].size(), 2U);
    EXPECT_EQ(told["result"][0]["arguments"]["phyAddress"], 6);
    EXPECT_EQ(told["result"][1]["arguments"]["phyAddress"], 7);
    EXPECT_EQ(told["result"][1]["board"], "01A2");
    EXPECT_EQ(told["result"][1]["program"], "setup");
    EXPECT_EQ(told["result"][1]["transport"], "tcp");
    EXPECT_EQ(errorOf(R"("action": "requests", "last": 0)"), "last: 0 is not between 1 and 100000");
}

TEST_F(Control, ShowsTheFaultsThatWaitAndForgetsThem) {
    ask(R"("action": "delay", "milliseconds": 7, "procedure": "ping", "program": "setup", "count": -1)");
    ask(R"("action": "result", "code": -16, "probability": 0.5)");
    ask(R"("action": "body", "hex": "00fF7f")");
    EXPECT_EQ(
        ask(R"("action": "faults")"),
        R"({"ok":true,"result":[)"
        R"({"board":"01A2","action":"delay","milliseconds":7,"program":"setup","procedure":"ping","count":-1},)"
        R"({"board":"01A2","action":"result","code":-16,"count":1,"probability":0.5},)"
        R"({"board":"01A2","action":"body","count":1,"hex":"00ff7f"}]})");
    EXPECT_EQ(ask(R"("action": "clear")"), done);
    EXPECT_TRUE(board.faults().empty());
}

TEST_F(Control, DisturbsTheBoard) {
    EXPECT_EQ(ask(R"("action": "forget-sessions")"), done);
    EXPECT_EQ(board.sessionCount(), 0U);
    EXPECT_EQ(ask(R"("action": "move", "address": "10.83.9.9")"), done);
    EXPECT_EQ(board.address(), "10.83.9.9");
    for (const char* action :
         {"stop", "start", "kill", "start", "restart", "portmapper-close", "portmapper-open", "stray"})
        EXPECT_EQ(ask(R"("action": ")" + std::string(action) + R"(")"), done);
    Client again(board, SIM_SETUP, "tcp");
    int value = 0;
    EXPECT_EQ(again.call(sim_ping_1, 1, value), RPC_SUCCESS);
}

TEST_F(Control, RefusesWhatItDoesNotUnderstand) {
    EXPECT_EQ(
        control.answer("{"),
        R"({"ok":false,"error":"line 1, column 2: syntax error while parsing object key - unexpected end of )"
        R"(input; expected string literal"})");
    EXPECT_EQ(control.answer("[]"), R"({"ok":false,"error":"[] is no object"})");
    EXPECT_EQ(control.answer(R"({"action": "list"})"), R"({"ok":false,"error":"\"board\" is missing"})");
    EXPECT_EQ(ask(R"("action": "list")", "nobody"),
              R"({"ok":false,"error":"board: the lab has no board \"nobody\""})");
    EXPECT_EQ(errorOf(R"("action": "explode")"), "action: there is no action \"explode\"");
    EXPECT_EQ(errorOf(R"("action": "kill", "count": 1)"),
              "count: there is no such member; there are action, board");
    EXPECT_EQ(errorOf(R"("action": "lose-reply", "count": 0)"),
              "count: 0 calls meet no fault; -1 stands for every call");
    EXPECT_EQ(errorOf(R"("action": "lose-reply", "probability": 1.5)"),
              "probability: 1.5 is not between 0 and 1");
    EXPECT_EQ(errorOf(R"("action": "delay", "milliseconds": "soon")"),
              "milliseconds: \"soon\" is no whole number");
    EXPECT_EQ(errorOf(R"("action": "body")"), "\"hex\" is missing");
    EXPECT_EQ(errorOf(R"("action": "body", "hex": "123")"),
              "hex: \"123\" is no even number of hexadecimal digits");
    EXPECT_EQ(errorOf(R"("action": "stray", "kind": "rude")"),
              "kind: \"rude\" is none of wrong-id, wrong-port, short, random, mixed");
    EXPECT_EQ(errorOf(R"("action": "set", "register": 1, "value": 65536)"),
              "value: 65536 is not between 0 and 65535");
    EXPECT_EQ(errorOf(R"("action": "get", "register": 32, "space": "c22")"),
              "register: 32 is not between 0 and 31");
    EXPECT_EQ(errorOf(R"("action": "get", "register": 1, "space": "c44")"),
              "space: \"c44\" is none of c45, c22, ext32");
    EXPECT_EQ(errorOf(R"("action": "move", "address": "10.83.0.1.1")"),
              "not an IPv4 address: \"10.83.0.1.1\"");
    EXPECT_EQ(errorOf(R"("action": "load", "file": "/no/such/file")"), "/no/such/file: cannot be read");
    EXPECT_EQ(errorOf(R"("action": "save", "file": "/no/such/file")"), "/no/such/file: cannot be written");
}

std::string listInList(int levels) {
    return std::string(static_cast<std::size_t>(levels), '[') +
           std::string(static_cast<std::size_t>(levels), ']');
}

TEST_F(Control, RefusesARequestThatIsNestedTooDeepToBeWalked) {
    EXPECT_EQ(control.answer(listInList(100000)), R"({"ok":false,"error":"nested deeper than 64 levels"})");
    EXPECT_EQ(control.answer(listInList(65)), R"({"ok":false,"error":"nested deeper than 64 levels"})");
    EXPECT_EQ(control.answer(listInList(64)),
              R"({"ok":false,"error":")" + listInList(64) + R"( is no object"})");
}

class NamedFault : public Control, public testing::WithParamInterface<const char*> {};

TEST_P(NamedFault, IsInjectedAndShownAsItWasSaid) {
    const FaultForm& form = *faultForm(GetParam());
    std::string members = R"("action": ")" + std::string(form.name) + R"(", "count": 4)";
    if (form.kind == Fault::Kind::ReplyBody)
        members += R"(, "hex": "01")";
    ASSERT_EQ(ask(members), done);
    ASSERT_EQ(board.faults().size(), 1U);
    const Fault fault = board.faults()[0];
    EXPECT_EQ(fault.kind, form.kind);
    EXPECT_EQ(fault.count, 4);
    EXPECT_EQ(fault.value, form.fallback);
    EXPECT_EQ(fault.program, form.program ? form.program : "");
    const Json shown = faultText(fault);
    ObjectReader reader(shown, "");
    const Action again = readAction(reader);
    EXPECT_EQ(std::get<Fault>(again).kind, fault.kind);
    EXPECT_EQ(std::get<Fault>(again).value, fault.value);
    EXPECT_EQ(std::get<Fault>(again).procedure, fault.procedure);
}

std::vector<const char*> faultNames() {
    std::vector<const char*> names;
    for (const FaultForm& form : faultForms())
        names.push_back(form.name);
    return names;
}

INSTANTIATE_TEST_SUITE_P(Fault, NamedFault, testing::ValuesIn(faultNames()), [](const auto& one) {
    std::string name = one.param;
    name.erase(std::remove(name.begin(), name.end(), '-'), name.end());
    return name;
});

TEST(DocumentationOfTheSimulator, HasARowForEveryFaultAndAction) {
    std::ifstream stream(ORVANE_SIMULATOR_DOC);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    const auto documented = [&](const std::string& start) {
        return text.find("\n" + start) != std::string::npos;
    };
    for (const FaultForm& form : faultForms()) {
        std::string row = "| `" + std::string(form.name) + "` | ";
        if (form.valueName)
            row += "`" + std::string(form.valueName) + "` (" + std::to_string(form.fallback) + ") |";
        EXPECT_TRUE(documented(row)) << row;
    }
    for (const ActionForm& form : actionForms())
        EXPECT_TRUE(documented("| `" + std::string(form.name) + "` | ")) << form.name;
}

class ControlSocket : public BoardWithClient {
protected:
    ScratchFolder folder;
    const std::string path = folder.file("lab.sock");
};

TEST_F(ControlSocket, AnswersEachLineAndGoesWithItsServer) {
    {
        ControlServer server(lab, path);
        EXPECT_EQ(askControl(path, R"({"board": "all", "action": "lose-reply"})"), R"({"ok":true})");
        EXPECT_EQ(board.faults().size(), 1U);
        EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms::owner_read |
                                                                   std::filesystem::perms::owner_write |
                                                                   std::filesystem::perms::owner_exec);
    }
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_THROW(askControl(path, "{}"), std::runtime_error);
}

std::string problemOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::runtime_error& problem) {
        return problem.what();
    }
    return "none";
}

int listeningAt(const std::string& path) {
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const sockaddr_un place = localPlace(path);
    EXPECT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    EXPECT_EQ(::listen(listener, 1), 0);
    return listener;
}

TEST_F(ControlSocket, IsNotAskedWhenAnotherUserServesIt) {
    constexpr uid_t kOther = 12345;
    if (::geteuid() != 0 || ::seteuid(kOther) != 0)
        GTEST_SKIP() << "only root can be somebody else";
    ASSERT_EQ(::seteuid(0), 0);
    ASSERT_EQ(::chmod(folder.file("").c_str(), 0777), 0);
    ASSERT_EQ(::seteuid(kOther), 0); // the kernel keeps who listens
    const Orvane::FileDescriptor listener(listeningAt(path));
    ASSERT_EQ(::seteuid(0), 0);
    EXPECT_EQ(problemOf([&] { askControl(path, "{}"); }),
              "user 12345 serves " + path + ", neither you nor root");
}

TEST_F(ControlSocket, IsGivenUpWhenItsAnswerNeverEnds) {
    const Orvane::FileDescriptor listener(listeningAt(path));
    std::thread stalling([&] {
        const Orvane::FileDescriptor connection(::accept(listener.get(), nullptr, nullptr));
        while (::send(connection.get(), "x", 1, MSG_NOSIGNAL) == 1)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
    });
    EXPECT_EQ(problemOf([&] { askControl(path, "{}", std::chrono::milliseconds(200)); }),
              "the lab at " + path + " took too long to answer");
    stalling.join();
}

TEST_F(ControlSocket, TakesThePlaceOfOneThatNobodyServesAndOfNoOther) {
    {
        const sockaddr_un place = localPlace(path);
        const Orvane::FileDescriptor leftOver(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
        ASSERT_EQ(::bind(leftOver.get(), reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    }
    ControlServer server(lab, path);
    EXPECT_EQ(askControl(path, R"({"board": "all", "action": "clear"})"), R"({"ok":true})");
    try {
        const ControlServer second(lab, path);
        ADD_FAILURE() << "two servers at one socket";
    } catch (const std::runtime_error& refused) {
        EXPECT_EQ(std::string(refused.what()), "another lab is controlled through " + path);
    }
}

TEST_F(ControlSocket, LeavesAFileAloneThatIsNoSocket) {
    folder.write("lab.sock", "results");
    try {
        const ControlServer server(lab, path);
        ADD_FAILURE() << "a server in a file's place";
    } catch (const std::runtime_error& refused) {
        EXPECT_EQ(std::string(refused.what()),
                  "cannot make the control socket " + path + ": there is a file of that name");
    }
    EXPECT_EQ(folder.read("lab.sock"), "results");
}

TEST_F(ControlSocket, LeavesAFileAloneThatTookItsPlaceMeanwhile) {
    {
        const ControlServer server(lab, path);
        std::filesystem::remove(path);
        folder.write("lab.sock", "results");
    }
    EXPECT_EQ(folder.read("lab.sock"), "results");
}

} // namespace
} // namespace OrvaneSim
