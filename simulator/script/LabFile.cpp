// Reading and checking of lab files.
#include "simulator/script/LabFile.h"

#include "simulator/script/ActionText.h"
#include "simulator/script/MapMember.h"

#include <algorithm>
#include <map>
#include <set>

namespace OrvaneSim {
namespace {

constexpr std::int64_t kMostBoards = 30000;
constexpr int kLastPort = 19; // ports 0 to 9 are MDIO, 10 to 19 SMBus on I2C buses 0 to 9
constexpr double kColdest = -273.15;
constexpr double kHottest = 1000;
constexpr std::size_t kChannels = 4;

const char* const kSerialForm = "a serial number has 1 to 64 characters other than blanks, ':' and '|'";

bool isSerial(const std::string& text) {
    const auto bad = [](char c) { return c <= ' ' || c == ':' || c == '|' || c == 127; };
    return !text.empty() && text.size() <= 64 && std::none_of(text.begin(), text.end(), bad) && text != "all";
}

void checkDevice(const std::string& name, const std::string& path) {
    const std::size_t colon = name.rfind(':');
    const std::string port = colon == std::string::npos ? "" : name.substr(colon + 1);
    const bool digits =
        !port.empty() && port.size() <= 2 && port.find_first_not_of("0123456789") == std::string::npos;
    if (!digits || !isSerial(name.substr(0, colon)) || std::stoi(port) > kLastPort)
        throw ScriptError(path, "\"" + name + "\" is no device: a name, ':' and a port from 0 to 19");
}

void checkAddress(const std::string& address, const std::string& path, const LabPlace& place) {
    if (!place.contains(address))
        throw ScriptError(path, "\"" + address + "\" is not among the lab's addresses, " + place.text());
}

void readTemperatures(ObjectReader& board, BoardSetup& setup) {
    const Json* member = board.find("temperatures");
    if (!member)
        return;
    ObjectReader reader(*member, board.at("temperatures"));
    if (reader.find("ambient"))
        setup.ambient = reader.real("ambient", 0, kColdest, kHottest);
    const std::string path = reader.at("channels");
    const auto channels = reader.list("channels");
    if (channels.size() > kChannels)
        throw ScriptError(path, "a board has 4 channels");
    for (const Json* channel : channels) {
        const std::string place = elementPath(path, setup.temperatures.size());
        if (!channel->is_number())
            throw ScriptError(place, channel->dump() + " is no number");
        setup.temperatures.push_back(channel->get<double>());
        if (setup.temperatures.back() < kColdest || setup.temperatures.back() > kHottest)
            throw ScriptError(place, channel->dump() + " is not between -273.15 and 1000");
    }
    reader.finish();
}

void readCommands(ObjectReader& board, BoardSetup& setup) {
    for (const Json* element : board.list("commands")) {
        ObjectReader reader(*element, elementPath(board.at("commands"), setup.commands.size()));
        reader.need("command");
        CommandOutcome outcome;
        outcome.status = static_cast<int>(reader.number("status", 0, 0, 255));
        outcome.output = reader.text("output", "");
        outcome.errors = reader.text("errors", "");
        outcome.seconds = static_cast<unsigned>(reader.number("seconds", 0, 0, 86400));
        setup.commands.emplace_back(reader.text("command", ""), outcome);
        reader.finish();
    }
}

void readNames(ObjectReader& reader, BoardOptions& options) {
    reader.need("serial");
    options.serial = reader.text("serial", "");
    if (!isSerial(options.serial))
        throw ScriptError(reader.at("serial"), kSerialForm);
    options.devices = reader.texts("devices");
    for (std::size_t i = 0; i < options.devices.size(); ++i)
        checkDevice(options.devices[i], elementPath(reader.at("devices"), i));
    if (options.devices.empty())
        options.devices = defaultDevices(options.serial);
}

BoardSetup readBoard(ObjectReader& reader, const LabPlace& place, std::uint64_t seed,
                     const std::string& firstWord) {
    BoardSetup setup;
    readNames(reader, setup.options);
    setup.options.address = reader.text("address", "");
    if (reader.find("address"))
        checkAddress(setup.options.address, reader.at("address"), place);
    setup.options.firstWord = reader.text("firstWord", firstWord);
    setup.options.seed =
        static_cast<std::uint64_t>(reader.number("seed", static_cast<std::int64_t>(seed), 0, INT64_MAX));
    setup.options.allowShell = reader.flag("allowShell", false);
    setup.options.keptRequests = static_cast<std::size_t>(reader.number("keptRequests", 100000, 0, 10000000));
    for (const Json* element : reader.list("registers")) {
        ObjectReader one(*element, elementPath(reader.at("registers"), setup.registers.size()));
        setup.registers.push_back(readRegister(one));
        one.finish();
    }
    for (const Json* element : reader.list("maps")) {
        ObjectReader one(*element, elementPath(reader.at("maps"), setup.maps.size()));
        setup.maps.push_back(readMap(one));
        one.finish();
    }
    readTemperatures(reader, setup);
    readCommands(reader, setup);
    for (const Json* element : reader.list("faults")) {
        ObjectReader one(*element, elementPath(reader.at("faults"), setup.actions.size()));
        setup.actions.push_back(readAction(one));
        one.finish();
        if (std::holds_alternative<MoveTo>(setup.actions.back()))
            throw ScriptError(one.at("action"), "a board cannot move before it serves");
    }
    reader.finish();
    return setup;
}

// Refuses a name that another board has; `places` tells which.
void checkUnique(std::map<std::string, std::string>& places, const std::string& name,
                 const std::string& path) {
    const auto [found, fresh] = places.emplace(name, path);
    if (!fresh)
        throw ScriptError(path, "\"" + name + "\" is taken by " + found->second);
}

// Gives boards without address the usual ones that no other board names.
void fillAddresses(std::vector<BoardSetup>& boards, const std::map<std::string, std::string>& taken,
                   const LabPlace& place) {
    if (taken.empty())
        return; // the lab deals them out as it starts
    unsigned number = 0;
    for (BoardSetup& board : boards)
        while (board.options.address.empty())
            if (const std::string next = place.defaultAddress(++number); taken.count(next) == 0)
                board.options.address = next;
}

void checkTimeline(const std::vector<TimelineEntry>& entries, const std::string& path, const LabSetup& lab,
                   const LabPlace& place) {
    std::set<std::string> serials{"all"};
    for (const BoardSetup& board : lab.boards)
        serials.insert(board.options.serial);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (serials.count(entries[i].board) == 0)
            throw ScriptError(elementPath(path, i) + ".board",
                              "the lab has no board \"" + entries[i].board + "\"");
        if (const auto* move = std::get_if<MoveTo>(&entries[i].action))
            checkAddress(move->address, elementPath(path, i) + ".address", place);
    }
}

} // namespace

std::vector<std::string> defaultDevices(const std::string& serial) {
    return {serial + ":0", serial + ":1", serial + ":10"};
}

LabSetup readLab(const Json& json, const LabPlace& place) {
    LabSetup lab;
    ObjectReader reader(json, "");
    lab.interfaces = static_cast<int>(reader.number("interfaces", 1, 1, 8));
    const auto seed = static_cast<std::uint64_t>(reader.number("seed", 1, 0, INT64_MAX - kMostBoards));
    const std::string firstWord = reader.text("firstWord", "host");
    reader.need("boards");
    std::map<std::string, std::string> serials;
    std::map<std::string, std::string> addresses;
    for (const Json* element : reader.list("boards")) {
        ObjectReader one(*element, elementPath("boards", lab.boards.size()));
        BoardSetup board = readBoard(one, place, seed + lab.boards.size(), firstWord);
        checkUnique(serials, board.options.serial, one.at("serial"));
        if (!board.options.address.empty())
            checkUnique(addresses, board.options.address, one.at("address"));
        lab.boards.push_back(std::move(board));
    }
    if (lab.boards.size() > kMostBoards)
        throw ScriptError("boards", "a lab has 30000 boards at most");
    fillAddresses(lab.boards, addresses, place);
    const auto timeline = reader.list("timeline");
    lab.timeline = readTimeline(timeline, "timeline");
    checkTimeline(lab.timeline, "timeline", lab, place);
    reader.finish();
    return lab;
}

std::vector<TimelineEntry> readScript(const Json& json, const LabSetup& lab, const LabPlace& place) {
    if (!json.is_array())
        throw ScriptError("", "a script is a list of time line entries");
    std::vector<const Json*> list;
    for (const Json& element : json)
        list.push_back(&element);
    auto entries = readTimeline(list, "");
    checkTimeline(entries, "", lab, place);
    return entries;
}

} // namespace OrvaneSim
