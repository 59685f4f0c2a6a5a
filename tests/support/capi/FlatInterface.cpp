// The fixture, the frames as texts, and the log in memory.
#include "tests/support/capi/FlatInterface.h"

#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"

#include <cstdio>
#include <map>
#include <orvane/lab_json.h>
#include <ostream>
#include <stdexcept>

namespace OrvaneTest {
namespace {

using nlohmann::ordered_json;

constexpr const char* kSerial = "01A2";

OrvaneSim::BoardOptions boardOfEightDevices() {
    OrvaneSim::BoardOptions options;
    options.address = "10.83.0.1"; // the device list of the process keeps it
    options.serial = kSerial;
    for (unsigned port = 0; port < kAdapters; ++port)
        options.devices.push_back(std::string(kSerial) + ":" + std::to_string(port));
    return options;
}

void listDevicesOf(const OrvaneSim::Board& board) {
    Orvane::AddressResponse found(board.nameLine(), board.address());
    std::vector<Orvane::AddressResponse*> records{&found};
    HW_Interface_Object.updateSimpleDeviceList(records);
}

std::string hex(unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, "%X", value);
    return text;
}

std::string list(const std::vector<unsigned>& words) {
    std::string text;
    for (const unsigned word : words)
        text += (text.empty() ? "" : ",") + hex(word);
    return "[" + text + "]";
}

std::string frameText(unsigned program, unsigned procedure, const std::string& phy,
                      const std::vector<std::string>& arguments) {
    std::string text = hex(program) + "/" + std::to_string(procedure) + " " + phy;
    for (const std::string& argument : arguments)
        text += " " + argument;
    return text;
}

std::string phyText(unsigned adapter, unsigned phy) {
    return std::to_string(adapter) + "." + std::to_string(phy);
}

// The PHYs of a board's sessions by session id: a fresh board gives out 1, 2, 3 ...
std::map<unsigned, std::string> physOfSessions(const OrvaneSim::Board& board) {
    std::map<unsigned, std::string> phys;
    unsigned id = 0;
    for (const OrvaneSim::Request& opening : board.requestsOf("open_connection")) {
        const ordered_json arguments = argumentsOf(opening);
        phys[++id] =
            phyText(arguments.at("deviceIndex").get<unsigned>(), arguments.at("phyAddress").get<unsigned>());
    }
    return phys;
}

std::vector<std::string> argumentTexts(const ordered_json& arguments) {
    std::vector<std::string> texts;
    for (const auto& member : arguments.items()) {
        if (member.key() == "handle")
            continue;
        texts.push_back(member.value().is_array() ? list(member.value().get<std::vector<unsigned>>())
                                                  : hex(member.value().get<unsigned>()));
    }
    return texts;
}

} // namespace

bool operator==(const Outcome& left, const Outcome& right) {
    return left.result == right.result && left.log == right.log && left.error == right.error &&
           left.output == right.output;
}

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    return out << std::hex << outcome.result << std::dec << "\nlog: " << outcome.log
               << "\nstderr: " << outcome.error << "\nstdout: " << outcome.output;
}

LogInMemory::LogInMemory() : stream_(open_memstream(&text_, &size_)) {
    if (stream_ == nullptr)
        throw std::runtime_error("no memory stream");
    HW_EnableLogging(stream_);
}

LogInMemory::~LogInMemory() {
    HW_DisableLogging(0);
    std::fclose(stream_);
    std::free(text_);
}

std::string LogInMemory::text() {
    std::fflush(stream_);
    const std::string all(text_, size_);
    const std::string header = kHeader;
    if (all.compare(0, header.size(), header) != 0)
        throw std::runtime_error("the log does not begin with its header: " + all);
    return all.substr(header.size());
}

FlatInterface::FlatInterface() : board(lab.add(boardOfEightDevices())) {
    listDevicesOf(board);
    HW_Initialize();
    HW_SetDefaultAdapter(kDefaultAdapter);
    HW_SetDefault_PHY_ID(kDefaultPhy);
    for (unsigned adapter = 0; adapter < kAdapters; ++adapter)
        HW_OpenAdapter(adapter);
}

FlatInterface::~FlatInterface() {
    HW_DisableLogging(0);
    HW_Close();
}

void FlatInterface::delegateNothing() {
    for (int type = 0; type < 5; ++type)
        HW_SetDelegationType(type, kDefaultAdapter, 0);
}

std::vector<std::string> FlatInterface::frames() const {
    const std::map<unsigned, std::string> phys = physOfSessions(board);
    std::vector<std::string> texts;
    for (const OrvaneSim::Request& request : board.requests()) {
        if (request.program == "setup" || request.program == "keepAlive")
            continue;
        const ordered_json arguments = argumentsOf(request);
        const auto phy = phys.find(arguments.at("handle").get<unsigned>() & 0xFFU);
        texts.push_back(frameText(request.programNumber, request.procedureNumber,
                                  phy != phys.end() ? phy->second : "?", argumentTexts(arguments)));
    }
    return texts;
}

void FlatInterface::setRegister(unsigned adapter, unsigned phy, unsigned mmd, unsigned reg, unsigned value) {
    board.setRegister(OrvaneSim::Space::C45, adapter, phy, mmd << 16U | reg, value);
}

unsigned FlatInterface::registerOf(unsigned adapter, unsigned phy, unsigned mmd, unsigned reg) const {
    return board.registerValue(OrvaneSim::Space::C45, adapter, phy, mmd << 16U | reg);
}

unsigned Frame::prefix() const {
    return (adapter & 7U) << 29U | (phy & 0x1FU) << 24U;
}

std::string Frame::call(unsigned procedure, const std::vector<std::string>& arguments) const {
    return frameText(0x2FFFFFF2, procedure, phyText(adapter, phy), arguments);
}

std::string Frame::read(unsigned mmd, unsigned reg) const {
    return call(1, {list({prefix() | mmd << 16U | reg})});
}

std::string Frame::write(unsigned mmd, unsigned reg, unsigned value) const {
    return call(2, {"0", list({prefix() | mmd << 16U | reg}), list({value})});
}

std::string Frame::read22(unsigned reg) const {
    return call(11, {list({prefix() | reg})});
}

std::string Frame::write22(unsigned reg, unsigned value) const {
    return call(12, {"0", list({prefix() | reg}), list({value})});
}

std::string Frame::read32(unsigned address) const {
    return call(14, {list({address})});
}

std::string Frame::write32(unsigned address, unsigned value) const {
    return call(15, {"0", list({address}), list({value})});
}

std::string Frame::block(unsigned procedure, const std::vector<std::pair<unsigned, unsigned>>& writes,
                         const std::vector<unsigned>& reads, const std::vector<unsigned>& runs) const {
    std::vector<unsigned> addresses;
    std::vector<unsigned> values;
    for (const auto& [address, value] : writes) {
        addresses.push_back(address);
        values.push_back(value);
    }
    return call(procedure, {list(values), list(addresses), list(reads), list(runs)});
}

} // namespace OrvaneTest
