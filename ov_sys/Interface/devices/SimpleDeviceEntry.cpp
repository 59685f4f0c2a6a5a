// How a device opens, finds, shares and closes its sessions.
#include "ov_sys/Interface/devices/SimpleDeviceEntry.h"

#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/devices/SessionClosing.h"
#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/foundation/HWIHelper.h"
#include "ov_sys/Interface/sessions/PhySession.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <locale>
#include <sstream>
#include <utility>

namespace Orvane {
namespace {

using Lock = std::lock_guard<std::mutex>;

// Out of the way of accesses, which pass by there.
[[noreturn, gnu::noinline]] void refuseAccess() {
    throw Exceptions::Standard("Adapter isn't open.");
}

// A session that failed to open is released without a close request.
struct Abandon {
    void operator()(PhySession* session) const {
        session->abandon();
        delete session;
    }
};

} // namespace

SimpleDeviceEntry::SimpleDeviceEntry(std::string name_)
    : SimpleDeviceEntry(std::move(name_), std::string()) {}

SimpleDeviceEntry::SimpleDeviceEntry(std::string name_, std::string address_)
    : address(std::move(address_)), name(name_), isOpen(0), port(0), smbProto(Paged16) {
    HWIHelper::str_to_upper(name);
    HWIHelper::splitBoardSNPort(std::move(name_), boardSerial, port);
}

SimpleDeviceEntry::~SimpleDeviceEntry() {
    close();
}

bool SimpleDeviceEntry::getKey(std::string variable, int& key) {
    const char* text = std::getenv(variable.c_str()); // NOLINT(concurrency-mt-unsafe)
    if (text == nullptr)
        return false;
    std::istringstream number(text);
    number.imbue(std::locale::classic());
    number >> key;
    return number.rdstate() == std::ios_base::eofbit;
}

void SimpleDeviceEntry::commonCfg(MdioExclusive& mode, int phyId, unsigned key, unsigned short fallbackKey) {
    mode.phyAddress = phyId;
    mode.deviceIndex = static_cast<unsigned int>(port);
    mode.key = key != 0 ? static_cast<unsigned short>(key) : fallbackKey;
    mode.reserved = 0;
}

PhySession* SimpleDeviceEntry::openAs(Mode flags, const std::string& serial, int phyId, unsigned key,
                                      unsigned short fallbackKey) {
    MdioExclusive mode{};
    commonCfg(mode, phyId, key, fallbackKey);
    mode.simple = flags.simple;
    mode.exclusive = flags.exclusive;
    mode.shared = flags.shared;
    return openSession(serial, mode);
}

PhySession* SimpleDeviceEntry::openExclusive(std::string serial, int phyId, unsigned key,
                                             unsigned short fallbackKey) {
    return openAs({0, 1, 0}, serial, phyId, key, fallbackKey);
}

PhySession* SimpleDeviceEntry::openConcurrent(std::string serial, int phyId, unsigned key,
                                              unsigned short fallbackKey) {
    return openAs({0, 0, 1}, serial, phyId, key, fallbackKey);
}

PhySession* SimpleDeviceEntry::openSimple(std::string serial, int phyId, unsigned key,
                                          unsigned short fallbackKey) {
    return openAs({1, 0, 1}, serial, phyId, key, fallbackKey);
}

PhySession* SimpleDeviceEntry::openSession(std::string serial, MdioExclusive const& mode) {
    const Diagnostics::BoardScope board(serial);
    std::unique_ptr<PhySession, Abandon> session(new PhySession(AddressResponse(serial, address), mode));
    try {
        Setup::openConnection(*session);
        if (session->isRemote())
            session->startKeepAlive();
    } catch (const std::exception& problem) {
        Diagnostics::error("Error while opening connection: ", problem.what());
        throw;
    } catch (...) {
        Diagnostics::error("Unknown error while opening connection.");
        throw;
    }
    return session.release();
}

void SimpleDeviceEntry::open() {
    isOpen = 1;
}

void SimpleDeviceEntry::close() {
    const Lock guard(lock);
    closeSideBySide(sessions);
    sessions.clear();
    isOpen = 0;
}

bool SimpleDeviceEntry::closePhyID(int phyId) {
    const Lock guard(lock);
    const auto entry = std::find_if(sessions.begin(), sessions.end(),
                                    [phyId](const auto& candidate) { return candidate->phyId == phyId; });
    if (entry == sessions.end())
        return false;
    closeSideBySide({*entry});
    sessions.erase(entry);
    return true;
}

unsigned short SimpleDeviceEntry::getMdioExclusiveKey(int phyId) {
    const Lock guard(lock);
    return keyOf(phyId);
}

unsigned short SimpleDeviceEntry::keyOf(int phyId) const {
    for (const auto& entry : sessions)
        if (entry->phyId == phyId && entry->port == port)
            return entry->session->mdio.key;
    return 0;
}

PhySession* SimpleDeviceEntry::openInConfiguredMode(int phyId) {
    int key = keyOf(phyId);
    if (getKey("EXCLUSIVE_KEY", key))
        return openExclusive(boardSerial, phyId, static_cast<unsigned>(key), 0);
    if (getKey("CONCURRENT_KEY", key))
        return openConcurrent(boardSerial, phyId, static_cast<unsigned>(key), 0);
    getKey("SIMPLE_KEY", key);
    return openSimple(boardSerial, phyId, static_cast<unsigned>(key), 0);
}

void SimpleDeviceEntry::append(std::unique_ptr<PhySession>& session, int phyId, int sessionPort) {
    sessions.push_back(std::make_shared<SimpleSessionEntry>(nullptr, phyId, sessionPort));
    session->adopt();
    sessions.back()->session = std::move(session);
}

const std::shared_ptr<SimpleSessionEntry>& SimpleDeviceEntry::sessionOf(int phyId) {
    for (const auto& entry : sessions)
        if (entry->phyId == phyId)
            return entry;
    return openSessionOf(phyId);
}

const std::shared_ptr<SimpleSessionEntry>& SimpleDeviceEntry::openSessionOf(int phyId) {
    std::unique_ptr<PhySession> opened(openInConfiguredMode(phyId));
    append(opened, phyId, port);
    return sessions.back();
}

SimpleSessionEntry* SimpleDeviceEntry::getSession(int phyId) {
    const Lock guard(lock);
    return sessionOf(phyId).get();
}

std::shared_ptr<SimpleSessionEntry> SimpleDeviceEntry::shareSession(int phyId) {
    const Lock guard(lock);
    if (isOpen == 0)
        refuseAccess();
    return sessionOf(phyId);
}

SimpleSessionEntry* SimpleDeviceEntry::getSimpleSession(int phyId, unsigned short key) {
    std::unique_ptr<PhySession> opened(openSimple(boardSerial, phyId, 0, key));
    const Lock guard(lock);
    append(opened, phyId, port);
    return sessions.back().get();
}

void SimpleDeviceEntry::setSession(PhySession* session) {
    const Lock guard(lock);
    for (const auto& entry : sessions)
        if (entry->session.get() == session)
            return;
    if (!session->adopt())
        throw Exceptions::InvalidSession();
    std::unique_ptr<PhySession> owned(session);
    try {
        append(owned, session->mdio.phyAddress, static_cast<int>(session->mdio.deviceIndex));
    } catch (...) { // no memory
        owned.release()->disown();
        throw;
    }
}

KelSmbProto SimpleDeviceEntry::getKelSmbProto() {
    return smbProto;
}

void SimpleDeviceEntry::setKelSmbProto(KelSmbProto proto) {
    smbProto = proto;
}

} // namespace Orvane
