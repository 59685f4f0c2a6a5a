// Lab files: what they make of boards, and how they are refused.
#include "simulator/script/LabFile.h"
#include "simulator/script/ActionText.h"
#include "simulator/script/FaultTable.h"
#include "tests/support/simulator/Client.h"
#include "tests/support/simulator/Shell.h"

#include <set>
#include <sstream>

namespace OrvaneSim {
namespace {

LabSetup read(const std::string& text) {
    return readLab(parseJson(text), privatePlace());
}

// Why a lab file is refused, empty when it is not.
std::string refusalOf(const std::string& text) {
    try {
        read(text);
    } catch (const ScriptError& refused) {
        return refused.what();
    }
    return "";
}

TEST(LabFile, DescribesBoardsInFull) {
    Lab lab;
    addBoards(lab, read(R"({"firstWord": "rack", "boards": [{
        "serial": "A1", "address": "10.83.1.1", "devices": ["A1:0", "A1:19"], "seed": 5,
        "registers": [{"register": "0x1E0001", "value": "0xCAFE", "phy": 3, "device": 1},
                      {"space": "c22", "register": 4, "value": 7}],
        "temperatures": {"ambient": 30, "channels": [20, 21.5]},
        "commands": [{"command": "uname", "status": 3, "output": "sim\n", "errors": "oh\n"}],
        "faults": [{"action": "lose-reply", "procedure": "ping", "count": 2}, {"action": "stop"}]
    }]})")
                       .boards);
    const Board& board = lab.board("A1");
    EXPECT_EQ(board.address(), "10.83.1.1");
    EXPECT_EQ(board.nameLine(), "rack A1:0 A1:19");
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x1E0001), 0xCAFEU);
    EXPECT_EQ(board.registerValue(Space::C22, 0, 0, 4), 7U);
    ASSERT_EQ(board.faults().size(), 1U);
    EXPECT_EQ(board.faults()[0].count, 2);
}

TEST(LabFile, GivesABoardItsTemperaturesAndCommands) {
    Lab lab;
    addBoards(lab, read(R"({"boards": [{"serial": "A1", "temperatures": {"ambient": 30, "channels": [20, 50]},
        "commands": [{"command": "uname", "status": 3, "output": "sim\n", "errors": "oh\n"}]}]})")
                       .boards);
    Client thermal(lab.board("A1"), SIM_THERMAL, "tcp");
    Client setup(lab.board("A1"), SIM_SETUP, "tcp");
    const unsigned identity = openSession(setup);
    sim_THRM_Result connected{};
    ASSERT_EQ(thermal.call(sim_thrm_connect_1, sim_Simple_Param{0, identity}, connected), RPC_SUCCESS);
    sim_THRM_Get_Temp measured{};
    ASSERT_EQ(thermal.call(sim_thrm_gettemperature_1, sim_THRM_Get_Temp_Arg{static_cast<int>(identity), 1},
                           measured),
              RPC_SUCCESS);
    EXPECT_EQ(measured.temperature, 45.0F) << "a quarter of the way from 50 to 30";
    std::string command = "uname";
    sim_Command_Param argument{identity, {5, command.data()}, 1};
    Decoded<sim_Command_Result> outcome(xdr_sim_Command_Result);
    ASSERT_EQ(sim_execute_command_1(&argument, &outcome.fresh(), setup.handle()), RPC_SUCCESS);
    EXPECT_EQ(outcome->status, 3);
    EXPECT_EQ(std::string(outcome->output.output_val, outcome->output.output_len), "sim\n");
    EXPECT_EQ(std::string(outcome->errors.errors_val, outcome->errors.errors_len), "oh\n");
}

TEST(LabFile, GivesAPhyTheRegistersOfAMap_AndThoseThatItListsTheValuesThatItSays) {
    const ScratchFolder folder;
    const std::string file =
        folder.write("wren.json", R"({"format": "orvane-map-1", "name": "wren", "registers": {
        "CONTROL": {"at": "30.0", "reset": "0x2040"}, "LEVEL": {"at": "30.1", "reset": 7}}})");
    Lab lab;
    addBoards(lab, read(R"({"boards": [{"serial": "A1",
        "maps": [{"file": ")" +
                        file + R"(", "device": 1, "phy": 3, "identifier": "0x00112233"}],
        "registers": [{"register": "0x1E0001", "value": 9, "device": 1, "phy": 3}]}]})")
                       .boards);
    const Board& board = lab.board("A1");
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x1E0000), 0x2040U);
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x1E0001), 9U);
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x010002), 0x0011U);
    EXPECT_EQ(board.registerValue(Space::C45, 1, 3, 0x010003), 0x2233U);
}

TEST(LabFile, GivesBoardsWithoutAddressThoseThatNoOtherNames) {
    const LabSetup lab = read(R"({"boards": [{"serial": "A"}, {"serial": "B", "address": "10.83.0.1"},
                                             {"serial": "C"}]})");
    EXPECT_EQ(lab.boards[0].options.address, "10.83.0.2");
    EXPECT_EQ(lab.boards[2].options.address, "10.83.0.3");
}

TEST(LabFile, GivesEachBoardASeedOfItsOwn) {
    const LabSetup lab = read(R"({"seed": 9, "boards": [{"serial": "A"}, {"serial": "B"}]})");
    EXPECT_EQ(lab.boards[0].options.seed, 9U);
    EXPECT_EQ(lab.boards[1].options.seed, 10U);
}

TEST(LabFile, ForLoopbackTakesLoopbackAddresses) {
    const Json file = parseJson(R"({"boards": [{"serial": "A", "address": "127.3.2.1"}]})");
    EXPECT_EQ(readLab(file, loopbackPlace()).boards[0].options.address, "127.3.2.1");
    EXPECT_THROW(
        readLab(parseJson(R"({"boards": [{"serial": "A", "address": "192.0.2.1"}]})"), loopbackPlace()),
        ScriptError);
}

struct Refusal {
    const char* name;
    const char* file;
    const char* text;
};

class WrongLabFile : public testing::TestWithParam<Refusal> {};

TEST_P(WrongLabFile, IsRefusedWithTheMembersPath) {
    EXPECT_EQ(refusalOf(GetParam().file), GetParam().text);
}

const Refusal kRefusals[] = {
    {"Syntax", "{\n  \"boards\": [,]\n}",
     "line 2, column 14: syntax error while parsing value - unexpected ','; expected '[', '{', or a literal"},
    {"TheSameMemberTwice", R"({"boards": [], "boards": []})", "an object has two members \"boards\""},
    {"NoObject", "[]", "[] is no object"},
    {"NoBoards", "{}", "\"boards\" is missing"},
    {"BoardsThatAreNoList", R"({"boards": {}})", "boards: {} is no list"},
    {"UnknownMember", R"({"boards": [], "board": 1})",
     "board: there is no such member; there are boards, firstWord, interfaces, seed, timeline"},
    {"UnknownMemberOfABoard", R"({"boards": [{"serial": "A", "adress": "10.83.0.1"}]})",
     "boards[0].adress: there is no such member; there are address, allowShell, commands, devices, faults, "
     "firstWord, keptRequests, maps, registers, seed, serial, temperatures"},
    {"NoSerial", R"({"boards": [{}]})", "boards[0]: \"serial\" is missing"},
    {"SerialThatIsNoText", R"({"boards": [{"serial": 7}]})", "boards[0].serial: 7 is no text"},
    {"SerialWithABlank", R"({"boards": [{"serial": "A B"}]})",
     "boards[0].serial: a serial number has 1 to 64 characters other than blanks, ':' and '|'"},
    {"SerialTwice", R"({"boards": [{"serial": "A"}, {"serial": "B"}, {"serial": "A"}]})",
     "boards[2].serial: \"A\" is taken by boards[0].serial"},
    {"AddressTwice", R"({"boards": [{"serial": "A", "address": "10.83.0.1"}, {"serial": "B"},
                                    {"serial": "C", "address": "10.83.0.1"}]})",
     "boards[2].address: \"10.83.0.1\" is taken by boards[0].address"},
    {"AddressOutside", R"({"boards": [{"serial": "A", "address": "10.84.0.1"}]})",
     "boards[0].address: \"10.84.0.1\" is not among the lab's addresses, 10.83.0.1 to 10.83.127.255"},
    {"AddressOfTheHostSide", R"({"boards": [{"serial": "A", "address": "10.83.255.254"}]})",
     "boards[0].address: \"10.83.255.254\" is not among the lab's addresses, 10.83.0.1 to 10.83.127.255"},
    {"AddressThatIsNone", R"({"boards": [{"serial": "A", "address": "10.83.0"}]})",
     "boards[0].address: \"10.83.0\" is not among the lab's addresses, 10.83.0.1 to 10.83.127.255"},
    {"EmptyAddress", R"({"boards": [{"serial": "A", "address": ""}]})",
     "boards[0].address: \"\" is not among the lab's addresses, 10.83.0.1 to 10.83.127.255"},
    {"ImpossiblePort", R"({"boards": [{"serial": "A", "devices": ["A:0", "A:20"]}]})",
     "boards[0].devices[1]: \"A:20\" is no device: a name, ':' and a port from 0 to 19"},
    {"DeviceWithoutPort", R"({"boards": [{"serial": "A", "devices": ["A"]}]})",
     "boards[0].devices[0]: \"A\" is no device: a name, ':' and a port from 0 to 19"},
    {"DeviceThatIsNoText", R"({"boards": [{"serial": "A", "devices": [1]}]})",
     "boards[0].devices[0]: 1 is no text"},
    {"SeedThatIsNoNumber", R"({"boards": [{"serial": "A", "seed": "x"}]})",
     "boards[0].seed: \"x\" is no whole number"},
    {"FractionalSeed", R"({"boards": [{"serial": "A", "seed": 1.5}]})",
     "boards[0].seed: 1.5 is no whole number"},
    {"NegativeSeed", R"({"boards": [{"serial": "A", "seed": -1}]})",
     "boards[0].seed: -1 is not between 0 and 9223372036854775807"},
    {"FlagThatIsNone", R"({"boards": [{"serial": "A", "allowShell": 1}]})",
     "boards[0].allowShell: 1 is neither true nor false"},
    {"RegisterWithoutValue", R"({"boards": [{"serial": "A", "registers": [{"register": 1}]}]})",
     "boards[0].registers[0]: \"value\" is missing"},
    {"RegisterTooHigh",
     R"({"boards": [{"serial": "A", "registers": [{"register": "0x200000", "value": 0}]}]})",
     "boards[0].registers[0].register: \"0x200000\" is not between 0 and 2097151"},
    {"RegisterOfNoPhy",
     R"({"boards": [{"serial": "A", "registers": [{"register": 1, "value": 0, "phy": 32}]}]})",
     "boards[0].registers[0].phy: 32 is not between 0 and 31"},
    {"MapThatCannotBeRead", R"({"boards": [{"serial": "A", "maps": [{"file": "/no/such.json"}]}]})",
     "boards[0].maps[0].file: /no/such.json: cannot be read: No such file or directory"},
    {"TooManyChannels", R"({"boards": [{"serial": "A", "temperatures": {"channels": [1, 2, 3, 4, 5]}}]})",
     "boards[0].temperatures.channels: a board has 4 channels"},
    {"TemperatureTooLow", R"({"boards": [{"serial": "A", "temperatures": {"ambient": -300}}]})",
     "boards[0].temperatures.ambient: -300 is not between -273.15 and 1000"},
    {"CommandWithoutText", R"({"boards": [{"serial": "A", "commands": [{"status": 1}]}]})",
     "boards[0].commands[0]: \"command\" is missing"},
    {"UnknownFault", R"({"boards": [{"serial": "A", "faults": [{"action": "loose-reply"}]}]})",
     "boards[0].faults[0].action: there is no action \"loose-reply\""},
    {"FaultWithAWrongMember",
     R"({"boards": [{"serial": "A", "faults": [{"action": "delay", "seconds": 1}]}]})",
     "boards[0].faults[0].seconds: there is no such member; there are action, count, milliseconds, "
     "probability, "
     "procedure, program"},
    {"FaultOutOfRange",
     R"({"boards": [{"serial": "A", "faults": [{"action": "delay", "milliseconds": -1}]}]})",
     "boards[0].faults[0].milliseconds: -1 is not between 0 and 3600000"},
    {"MoveAtTheStart",
     R"({"boards": [{"serial": "A", "faults": [{"action": "move", "address": "10.83.0.2"}]}]})",
     "boards[0].faults[0].action: a board cannot move before it serves"},
    {"TooManyInterfaces", R"({"interfaces": 9, "boards": []})", "interfaces: 9 is not between 1 and 8"},
    {"TimelineWithoutTime", R"({"boards": [], "timeline": [{"action": "clear"}]})",
     "timeline[0]: \"after\" is missing"},
    {"TimelineWithTwoTimes",
     R"({"boards": [], "timeline": [{"after": {"request": 1, "seconds": 1}, "action": "clear"}]})",
     "timeline[0].after: needs either \"request\" or \"seconds\""},
    {"TimelineBeforeTheFirstRequest",
     R"({"boards": [], "timeline": [{"after": {"request": 0}, "action": "clear"}]})",
     "timeline[0].after.request: 0 is not between 1 and 4611686018427387903"},
    {"TimelineOfNoBoard",
     R"({"boards": [{"serial": "A"}], "timeline": [{"after": {"request": 1}, "board": "B", "action": "clear"}]})",
     "timeline[0].board: the lab has no board \"B\""},
    {"TimelineMoveOutside",
     R"({"boards": [], "timeline": [{"after": {"seconds": 1}, "action": "move", "address": "10.9.0.1"}]})",
     "timeline[0].address: \"10.9.0.1\" is not among the lab's addresses, 10.83.0.1 to 10.83.127.255"},
};

INSTANTIATE_TEST_SUITE_P(With, WrongLabFile, testing::ValuesIn(kRefusals),
                         [](const auto& one) { return std::string(one.param.name); });

// Names of an object's members, sorted.
std::set<std::string> membersOf(const Json& object) {
    std::set<std::string> names;
    for (const auto& member : object.items())
        names.insert(member.key());
    return names;
}

// What an object may hold, as the refusal of an unknown member tells.
std::set<std::string> knownMembers(const std::string& fileWithUnknown) {
    std::string text = refusalOf(fileWithUnknown);
    text.erase(0, text.rfind("there are ") + 10);
    std::set<std::string> names;
    std::istringstream words(text);
    for (std::string word; words >> word;)
        names.insert(word.substr(0, word.find(',')));
    return names;
}

TEST(LabFileSchema, NamesWhatTheReaderTakes) {
    const Json schema = readJsonFile(ORVANE_LAB_SCHEMA);
    EXPECT_EQ(membersOf(schema["properties"]), knownMembers(R"({"boards": [], "x": 1})"));
    EXPECT_EQ(membersOf(schema["$defs"]["board"]["properties"]),
              knownMembers(R"({"boards": [{"serial": "A", "x": 1}]})"));
    EXPECT_EQ(
        membersOf(schema["$defs"]["register"]["properties"]),
        knownMembers(R"({"boards": [{"serial": "A", "registers": [{"register": 1, "value": 1, "x": 1}]}]})"));
    EXPECT_EQ(membersOf(schema["$defs"]["map"]["properties"]),
              knownMembers(R"({"boards": [{"serial": "A", "maps": [{"file": "ieee8023", "x": 1}]}]})"));
    std::set<std::string> actions;
    for (const FaultForm& form : faultForms())
        actions.insert(form.name);
    for (const ActionForm& form : actionForms())
        actions.insert(form.name);
    std::set<std::string> listed;
    for (const Json& name : schema["$defs"]["action"]["properties"]["action"]["enum"])
        listed.insert(name.get<std::string>());
    EXPECT_EQ(listed, actions);
}

TEST(LabFileOnTheCommandLine, IsRefusedBeforeAnythingStarts) {
    const ScratchFolder folder;
    const std::string file =
        folder.write("lab.json", "{\"boards\": [\n{\"serial\": \"A\", \"address\": \"1.2.3.4\"}]}");
    const Outcome lab = shell(ORVANE_LAB " --lab " + file + " -- touch " + folder.file("ran"));
    EXPECT_EQ(lab.status, 125);
    EXPECT_EQ(lab.output, "orvane-lab: " + file +
                              ": boards[0].address: \"1.2.3.4\" is not among the lab's addresses, "
                              "10.83.0.1 to 10.83.127.255\n");
    EXPECT_FALSE(std::filesystem::exists(folder.file("ran")));
    const Outcome sim = shell(ORVANE_SIM " --lab " + folder.write("wrong.json", "{\n\"boards\" 1}"));
    EXPECT_EQ(sim.status, 1);
    EXPECT_EQ(sim.output, "orvane-sim: " + folder.file("wrong.json") +
                              ": line 2, column 10: syntax error while parsing object separator - unexpected "
                              "number literal; expected ':'\n");
    EXPECT_EQ(shell(ORVANE_SIM " --lab /no/such/file").output, "orvane-sim: /no/such/file: cannot be read\n");
    EXPECT_EQ(shell(ORVANE_SIM " --boards 2 --lab " + file).status, 2);
}

} // namespace
} // namespace OrvaneSim
