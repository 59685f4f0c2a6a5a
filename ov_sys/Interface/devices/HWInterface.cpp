// The device list: discovery, look-ups, and what begins and ends with the object.
#include "ov_sys/Interface/devices/HWInterface.h"

#include "ov_sys/Interface/devices/ListedNames.h"
#include "ov_sys/Interface/discovery/BoardFinder.h"
#include "ov_sys/Interface/discovery/FoundBoards.h"
#include "ov_sys/Interface/discovery/SearchLimits.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/foundation/HWIHelper.h"
#include "ov_sys/Interface/sessions/PhySession.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <memory>
#include <unistd.h>
#include <utility>

namespace Orvane {
namespace {

using Lock = std::lock_guard<std::mutex>;
using Candidates = std::vector<AddressResponse>;

std::string typeWord() {
    std::string word = "Orvane";
    HWIHelper::str_to_lower(word);
    return word;
}

// Asks the board at `board.address` for its name and keeps the record when it has one.
void probe(const std::string& name, AddressResponse& board, FoundBoards& found) {
    try {
        BoardFinder::find_ports(name, board);
    } catch (const Exceptions::Standard&) { // the name stays as it was
    }
    if (board.name.empty())
        return;
    auto record = std::make_unique<AddressResponse>(board);
    found.records.push_back(record.get());
    static_cast<void>(record.release());
}

} // namespace

HWInterface::HWInterface() : defaultAdapter_(0), failFlag(0), blockQueueSize(0), process_(getpid()) {}

HWInterface::~HWInterface() {
    close();
}

bool HWInterface::initialize() {
    defaultAdapter_ = 0;
    failFlag = 0;
    blockQueueSize = 0;
    return true;
}

void HWInterface::refreshDevices(const std::string& name, std::string address) {
    constexpr unsigned kAnyBoardMs = 1000;
    constexpr unsigned kAnyBoardCount = 10;
    constexpr unsigned kOneBoardMs = 5000;
    FoundBoards found;
    if (!address.empty()) {
        AddressResponse board("", std::move(address));
        probe("", board, found);
    } else if (name.empty()) {
        BoardFinder::find("", found.records, kAnyBoardMs, kAnyBoardCount);
    } else {
        AddressResponse board;
        if (BoardFinder::findByHostName(name, board))
            probe(name, board, found);
        if (found.records.empty())
            BoardFinder::find(name, found.records, kOneBoardMs, 0);
    }
    updateSimpleDeviceList(found.records);
}

void HWInterface::updateSimpleDeviceList(std::vector<AddressResponse*>& found) {
    const std::string wholeBoard = typeWord();
    Candidates candidates;
    ListedNames listed(devices);
    const auto offer = [&](const std::string& name, const std::string& address) {
        if (candidates.size() == SearchLimits::kNew)
            ++SearchLimits::excess;
        else if (const Lock guard(lock); !listed.contains(name))
            candidates.emplace_back(name, address);
    };
    for (const AddressResponse* board : found) {
        if (board->name == wholeBoard)
            offer(wholeBoard + ":0", board->address);
        const std::vector<std::string> words = HWIHelper::split(board->name, " ");
        for (std::size_t i = 1; i < words.size(); ++i)
            if (HWIHelper::isDeviceName(words[i]))
                offer(words[i], board->address);
    }
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    for (const AddressResponse& candidate : candidates)
        addDevice(candidate, listed);
}

void HWInterface::addDevice(const AddressResponse& candidate, ListedNames& listed) {
    const Lock guard(lock);
    try {
        if (listed.contains(candidate.name))
            return;
    } catch (...) {
        Diagnostics::error("Error getting device: ", candidate.name, " from the list.");
        return;
    }
    devices.push_back(std::make_unique<SimpleDeviceEntry>(candidate.name, candidate.address));
}

unsigned HWInterface::numberOfDevices() {
    refreshDevices("", "");
    return static_cast<unsigned>(devices.size());
}

char** HWInterface::deviceList() {
    refreshDevices("", "");
    const Lock guard(lock);
    if (devices.empty())
        return nullptr;
    char** names = static_cast<char**>(std::calloc(devices.size() + 1, sizeof(char*)));
    if (names == nullptr) {
        Diagnostics::error("Out of memory!");
        return nullptr;
    }
    char** next = names;
    for (const auto& entry : devices)
        *next++ = cStringFrom(entry->name);
    return names;
}

char* HWInterface::device(unsigned index) {
    const Lock guard(lock);
    try {
        if (index >= devices.size())
            throw Exceptions::NoDevice();
        return cStringFrom(devices[index]->name);
    } catch (const Exceptions::NoDevice&) {
        Diagnostics::error("No device at index ", index);
        return nullptr;
    }
}

char* HWInterface::device(std::string address) {
    refreshDevices("", address);
    const Lock guard(lock);
    for (const auto& entry : devices) {
        if (entry->address != address)
            continue;
        std::string serial;
        int port = 0;
        HWIHelper::splitBoardSNPort(entry->name, serial, port);
        return serial.empty() ? nullptr : cStringFrom(serial);
    }
    return nullptr;
}

int HWInterface::deviceIndex(std::string name) {
    HWIHelper::str_to_upper(name);
    const Lock guard(lock);
    for (; indexed_ < devices.size(); ++indexed_) // of twins the first is found
        indexOf_.emplace(devices[indexed_]->name, static_cast<int>(indexed_));
    const auto known = indexOf_.find(name);
    if (known != indexOf_.end() && devices[static_cast<std::size_t>(known->second)]->name == name)
        return known->second;
    const auto found = std::find_if(devices.begin(), devices.end(), // an entry that was renamed
                                    [&name](const auto& entry) { return entry->name == name; });
    if (found == devices.end())
        throw Exceptions::NoDevice();
    return static_cast<int>(found - devices.begin());
}

int HWInterface::deviceNumber(std::string name, std::string address) {
    try {
        return deviceIndex(name);
    } catch (const Exceptions::NoDevice&) { // not seen yet
    }
    try {
        refreshDevices(name, std::move(address));
        return deviceIndex(name);
    } catch (const Exceptions::NoDevice&) {
        throw;
    } catch (const std::exception& problem) {
        Diagnostics::error(problem.what(), "\nDeviceNumber: Device not found");
        throw Exceptions::NoDevice();
    }
}

bool HWInterface::open(const char* name) {
    try {
        return name != nullptr && openAdapter(static_cast<unsigned>(deviceNumber(name, "")));
    } catch (...) {
        return false;
    }
}

SimpleSessionEntry* HWInterface::getSimpleSession(std::string name, int phyId) {
    return getSimpleSession(deviceNumber(std::move(name), ""), phyId);
}

PhySession* HWInterface::getPhySession(std::string name, int phyId) {
    return getSimpleSession(std::move(name), phyId)->session.get();
}

bool HWInterface::setSession(SessionWrapper session) {
    PhySession& adopted = session.usable();
    const unsigned adapter = static_cast<unsigned>(deviceNumber(adopted.name(), ""));
    if (!openAdapter(adapter))
        return false;
    deviceAt(adapter).setSession(&adopted);
    return true;
}

bool HWInterface::isValidName(std::string name) {
    try {
        std::string serial;
        int port = 0;
        HWIHelper::splitBoardSNPort(std::move(name), serial, port);
        return true;
    } catch (const Exceptions::InvalidName&) {
        return false;
    }
}

char* HWInterface::cStringFrom(const std::string& text) {
    char* copy = static_cast<char*>(std::calloc(text.size() + 1, 1));
    if (copy != nullptr)
        text.copy(copy, text.size());
    return copy;
}

} // namespace Orvane
