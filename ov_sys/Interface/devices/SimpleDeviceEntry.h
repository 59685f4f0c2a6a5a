// One device of the device list: a port of a board, and the sessions opened on it.
#pragma once

#include "ov_sys/Interface/devices/KelSmbProto.h"
#include "ov_sys/Interface/devices/SimpleSessionEntry.h"
#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/MdioExclusive.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace Orvane {

class PhySession;

// Created closed. Any thread may call any member function. A session that is closed while another thread
// calls through its bare pointer is that caller's fault; one that is held by shareSession() lives on, and its
// calls end in an error.
class ORVANE_API SimpleDeviceEntry {
public:
    SharedSessions sessions;           // in order of opening
    std::mutex lock;                   // guards `sessions`; held while a session is opened or closed
    std::string address;               // the board's address, dotted IPv4 text; may be empty; constant
    std::string name;                  // device name in upper case; constant
    std::string boardSerial;           // the part of the name before the colon; constant
    std::atomic<int> isOpen;           // 1 while open
    int port;                          // the part of the name behind the colon; constant
    std::atomic<KelSmbProto> smbProto; // how 32-bit registers are reached on an SMBus port

    // `name` is board serial number, colon, port. Throws Exceptions::InvalidName for any other name.
    explicit SimpleDeviceEntry(std::string name);
    SimpleDeviceEntry(std::string name, std::string address);
    ~SimpleDeviceEntry(); // close()
    SimpleDeviceEntry(const SimpleDeviceEntry&) = delete;
    SimpleDeviceEntry& operator=(const SimpleDeviceEntry&) = delete;

    // Reads a decimal number from the environment variable. True when the whole text was a number; a text
    // that only begins with one stores that and gives false. `key` is left alone when the variable is not
    // set.
    bool getKey(std::string variable, int& key);

    // Fills everything but the mode flags; `key`'s low 16 bits count, `fallbackKey` when `key` is 0.
    void commonCfg(MdioExclusive& mode, int phyId, unsigned key, unsigned short fallbackKey);

    // Open a session on the board in that mode. The caller owns it. Block and throw as openSession().
    PhySession* openExclusive(std::string boardSerial, int phyId, unsigned key, unsigned short fallbackKey);
    PhySession* openConcurrent(std::string boardSerial, int phyId, unsigned key, unsigned short fallbackKey);
    PhySession* openSimple(std::string boardSerial, int phyId, unsigned key, unsigned short fallbackKey);

    // Connects to the board, opens a session on it and starts its keep-alive thread. The caller owns the
    // session. Blocks for the connection and as Setup::openConnection(), and throws what that throws, after a
    // line on the standard error stream.
    PhySession* openSession(std::string boardSerial, MdioExclusive const& mode);

    // Marks the device open; sessions are opened by the first access.
    void open();
    // Closes every session and marks the device closed. Blocks as PhySession::close(), for all of them
    // together.
    void close();
    // Closes the first session of the PHY; false when there is none. Blocks as PhySession::close().
    bool closePhyID(int phyId);

    // The key of the first session of the PHY on this device's port; 0 when there is none.
    unsigned short getMdioExclusiveKey(int phyId);

    // The session of the PHY, opened on first use: exclusive, concurrent or simple, whichever of the
    // environment variables EXCLUSIVE_KEY and CONCURRENT_KEY is a number, simple otherwise with SIMPLE_KEY as
    // its key. The device owns it. Two threads that ask for one PHY get one session. Blocks and throws as
    // openSession().
    SimpleSessionEntry* getSession(int phyId);
    // The same for a caller that closing must not leave with a pointer to nothing; throws
    // Exceptions::Standard "Adapter isn't open." unless the device is open.
    std::shared_ptr<SimpleSessionEntry> shareSession(int phyId);

    // Always opens a new simple session with that key and appends it. The device owns it.
    SimpleSessionEntry* getSimpleSession(int phyId, unsigned short key);

    // Appends a session that was opened elsewhere and takes ownership of it; on an exception the session
    // stays the caller's. One that the device has already is left alone; throws Exceptions::InvalidSession
    // for one that another device has.
    void setSession(PhySession* session);

    // Get and set smbProto.
    KelSmbProto getKelSmbProto();
    void setKelSmbProto(KelSmbProto proto);

private:
    struct Mode {
        unsigned char simple;
        unsigned char exclusive;
        unsigned char shared;
    };

    PhySession* openAs(Mode flags, const std::string& serial, int phyId, unsigned key,
                       unsigned short fallbackKey);
    PhySession* openInConfiguredMode(int phyId);
    // These want `lock` to be held.
    unsigned short keyOf(int phyId) const;
    const std::shared_ptr<SimpleSessionEntry>& sessionOf(int phyId);
    const std::shared_ptr<SimpleSessionEntry>& openSessionOf(int phyId);
    void append(std::unique_ptr<PhySession>& session, int phyId, int sessionPort);
};

} // namespace Orvane
