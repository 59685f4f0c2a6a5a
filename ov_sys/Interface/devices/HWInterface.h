// The device list, and register access by adapter number: what the flat interface stands on.
#pragma once

#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"
#include "ov_sys/Interface/devices/SimpleDeviceEntry.h"
#include "ov_sys/Interface/foundation/AppendOnlyList.h"
#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/SessionWrapper.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <unordered_map>
#include <vector>

namespace Orvane {

class AddressResponse;
class ListedNames;
class PhySession;

// Devices are found by discovery and only ever added; a device's position in the list is its adapter number
// for the life of the process. An adapter is opened before it is accessed; the first access to a PHY on it
// opens a session on the board.
//
// Any thread may call any member function, with these bounds: a block is filled and executed by one thread,
// and several threads that use one PHY on an SMBus port serialise themselves. An access to an adapter that is
// closed meanwhile ends in an error, or opens its session once more when the adapter is opened again; what it
// was given to keep (sessions, values of a block) is gone with the session. Discovery runs without the lock.
//
// Text results are allocated with malloc and freed by the caller with free().
class ORVANE_API HWInterface {
public:
    std::mutex lock; // held by lookups and by each addition to the list
    AppendOnlyList<std::unique_ptr<SimpleDeviceEntry>> devices; // grows under `lock`, read without it
    std::atomic<unsigned int> defaultAdapter_;                  // adapter of the functions that name none
    std::atomic<unsigned int> failFlag;                         // 0: nothing sets it
    std::atomic<unsigned int> blockQueueSize; // values of the last block execution, whichever thread made it
    std::string lastError;                    // empty: nothing sets it

    // No devices yet; does not block.
    HWInterface();
    ~HWInterface(); // closes every session, as close()
    HWInterface(const HWInterface&) = delete;
    HWInterface& operator=(const HWInterface&) = delete;

    // Closes as close() does while the process exits and other threads may go on calling: waits 2 s at most
    // for a device on which a session is being opened, and frees nothing; calls through what was closed end
    // in an error. Does nothing in a forked child of the process that opened the adapters.
    void closeAtExit() noexcept;

    // Sets default adapter, fail flag and block queue size to 0; the device list stays. Returns true.
    bool initialize();

    // ---- The device list ----

    // Looks for boards and adds their devices: the board at `address`; else, when `name` is given, the board
    // of that host name or the first to answer to the name (5.3 s at most, after what the system's resolver
    // takes); else every board (1.3 s, or until more than ten have answered). An address takes 15 s at most.
    // Throws what discovery throws.
    void refreshDevices(const std::string& name, std::string address);
    // Adds the devices that the found boards name and that are not in the list yet, sorted by name, 1,024 at
    // most: BoardFinder::dropped() counts those beyond, the next search may add them. Words that are no
    // device names are passed over in silence. The records stay the caller's.
    void updateSimpleDeviceList(std::vector<AddressResponse*>& found);

    // These two refresh the list first (1.3 s) and throw what discovery throws.
    unsigned numberOfDevices();
    // The names in list order and a null pointer behind them; the caller frees each name and the array. Null
    // when there are no devices or no memory.
    char** deviceList();

    // The name of the device at `index`. Out of range: reported on the standard error stream, null.
    char* device(unsigned index);
    // The board serial number of the first device at `address`, dotted IPv4 text, which is probed first; null
    // when there is none.
    char* device(std::string address);

    // Index of the device of that name, in any letter case. Throws Exceptions::NoDevice when it is not
    // listed.
    int deviceIndex(std::string name);
    // The same, with one discovery of the name when it is not listed yet.
    int deviceNumber(std::string name, std::string address);

    // Finds the device (discovering it if needed) and opens its adapter; false on any failure, a null name
    // included.
    bool open(const char* name);

    // The session of a PHY on the named device, which is discovered if needed; the device owns it. Throw as
    // deviceNumber() and getSimpleSession(int, int).
    SimpleSessionEntry* getSimpleSession(std::string name, int phyId);
    PhySession* getPhySession(std::string name, int phyId);

    // Takes over a session that was opened elsewhere, for the device of the session's name; false when its
    // adapter cannot be opened, and then the session stays the caller's. Throws Exceptions::InvalidSession
    // for a null or invalid session and as deviceNumber().
    bool setSession(SessionWrapper session);

    // Whether `name` has the form of a device name: board serial number, colon, port.
    bool isValidName(std::string name);
    // A malloc'ed copy; null without memory.
    char* cStringFrom(const std::string& text);

    // ---- Adapters ----

    // True when the adapter exists; it is open then.
    bool openAdapter(unsigned adapter);
    // 0 when the adapter is closed now, 1 (and a line on the standard error stream) when it does not exist.
    // Closes its sessions, all at once, and blocks as PhySession::close() for the slowest.
    unsigned closeAdapter(unsigned adapter);
    // Closes every open adapter, the sessions of all of them at once: blocks as PhySession::close() for the
    // slowest of 64, and for a session that is being opened. Look-ups go on meanwhile.
    void close();

    unsigned defaultAdapter();                // adapter of the functions that name none
    bool setDefaultAdapter(unsigned adapter); // unchecked; true

    // SMBus protocol of the adapter's device: Direct32 for any `value` but 0, else Paged16. `parameter` is
    // ignored. Throw Exceptions::Standard "Invalid adapter index".
    void setDeviceParameters(unsigned adapter, unsigned parameter, unsigned value);
    unsigned getDeviceParameters(unsigned adapter, unsigned parameter);

    // The session that every access to a PHY goes through, opened on first use. Throws Exceptions::Standard
    // "Invalid adapter index" or "Adapter isn't open.", and as SimpleDeviceEntry::getSession().
    SimpleSessionEntry* getSimpleSession(int adapter, int phyId);
    // Closes the first session of a PHY on the named device; false on any failure.
    bool closePhyID(std::string deviceName, int ignored, int phyId);

    // Single-wire mode of the PHY's MDIO port; false, and lines on the standard error stream, when the board
    // does not take it. Throw as getSimpleSession().
    bool setAdapterMdioPortBroadcast(unsigned adapter, unsigned phyId, bool on);
    bool setMdioPortBroadcast(unsigned phyId, bool on);

    unsigned fail();               // failFlag
    char* errorMessage();          // a malloc'ed copy of lastError
    unsigned maxQueueSize();       // 873, the most operations that one block should hold
    unsigned blockReadQueueSize(); // blockQueueSize

    // ---- Register access ----
    //
    // Forms with Adapter in their name take the adapter first; the others use the default adapter. All throw
    // as getSimpleSession(int, int) and as the access itself, and block for the board's answer.

    // Clause 45: `mmd` (8 bits) and `reg` (16 bits).
    void writeAdapter(unsigned adapter, unsigned phyId, unsigned mmd, unsigned reg, unsigned data);
    void write(unsigned phyId, unsigned mmd, unsigned reg, unsigned data);
    unsigned readAdapter(unsigned adapter, unsigned phyId, unsigned mmd, unsigned reg);
    unsigned read(unsigned phyId, unsigned mmd, unsigned reg);

    // Clause 22.
    void writeAdapter_c22(unsigned adapter, unsigned phyId, unsigned reg, unsigned data);
    void write_c22(unsigned phyId, unsigned reg, unsigned data);
    unsigned readAdapter_c22(unsigned adapter, unsigned phyId, unsigned reg);
    unsigned read_c22(unsigned phyId, unsigned reg);

    // Add a Clause 45 access to the PHY's block.
    void blockWriteAdapter(unsigned adapter, unsigned phyId, unsigned mmd, unsigned reg, unsigned data);
    void blockWrite(unsigned phyId, unsigned mmd, unsigned reg, unsigned data);
    void blockReadAdapter(unsigned adapter, unsigned phyId, unsigned mmd, unsigned reg);
    void blockRead(unsigned phyId, unsigned mmd, unsigned reg);

    // 32-bit registers; over SMBus in the device's protocol.
    void write32Adapter(unsigned adapter, unsigned phyId, unsigned address, unsigned data);
    void write32(unsigned phyId, unsigned address, unsigned data);
    unsigned read32Adapter(unsigned adapter, unsigned phyId, unsigned address);
    unsigned read32(unsigned phyId, unsigned address);
    void blockWrite32Adapter(unsigned adapter, unsigned phyId, unsigned address, unsigned data);
    void blockWrite32(unsigned phyId, unsigned address, unsigned data);
    void blockRead32Adapter(unsigned adapter, unsigned phyId, unsigned address);
    void blockRead32(unsigned phyId, unsigned address);

    // 64-bit registers have no transport: writes do nothing, reads give all ones, and no session is needed.
    void write64Adapter(unsigned adapter, unsigned phyId, unsigned address, unsigned long long data);
    void write64(unsigned phyId, unsigned address, unsigned long long data);
    unsigned long long read64Adapter(unsigned adapter, unsigned phyId, unsigned address);
    unsigned long long read64(unsigned phyId, unsigned address);
    void blockWrite64Adapter(unsigned adapter, unsigned phyId, unsigned address, unsigned long long data);
    void blockWrite64(unsigned phyId, unsigned address, unsigned long long data);
    void blockRead64Adapter(unsigned adapter, unsigned phyId, unsigned address);
    void blockRead64(unsigned phyId, unsigned address);

    // 32-bit registers at the PHY's address register, incremented first or as it stands.
    unsigned read32AdapterPreincrementAddress(unsigned adapter, unsigned phyId);
    unsigned read32PreincrementAddress(unsigned phyId);
    void write32AdapterPreincrementAddress(unsigned adapter, unsigned phyId, unsigned data);
    void write32PreincrementAddress(unsigned phyId, unsigned data);
    unsigned read32AdapterCurrentAddress(unsigned adapter, unsigned phyId);
    unsigned read32CurrentAddress(unsigned phyId);
    void write32AdapterCurrentAddress(unsigned adapter, unsigned phyId, unsigned data);
    void write32CurrentAddress(unsigned phyId, unsigned data);

    // Execute the PHY's block and store the number of values in blockQueueSize. The values belong to the
    // session and last until its next block; null when there are none.
    std::vector<unsigned>& executeBlock(unsigned adapter, unsigned phyId, MDIO::MDIO_clause frames);
    unsigned int* blockOperationExecuteAdapter(unsigned adapter, unsigned phyId);
    unsigned int* blockOperationExecute(unsigned phyId);
    unsigned int* blockOperationExecuteAdapter_c22(unsigned adapter, unsigned phyId);
    unsigned int* blockOperationExecute_c22(unsigned phyId);
    unsigned int* blockOperationExecuteAdapter_c22_ZrExt32(unsigned adapter, unsigned phyId);
    unsigned int* blockOperationExecute_c22_ZrExt32(unsigned phyId);

    // Raw accesses to the board's own registers are refused: a line on the standard error stream and
    // Exceptions::Standard "Interface Error.".
    void boardWrite(unsigned address, unsigned data);
    void boardWriteAdapter(unsigned adapter, unsigned address, unsigned data);
    unsigned boardRead(unsigned address);
    unsigned boardReadAdapter(unsigned adapter, unsigned address);
    void boardWrite32(unsigned address, unsigned data);
    void boardWrite32Adapter(unsigned adapter, unsigned address, unsigned data);
    unsigned boardRead32(unsigned address);
    unsigned boardRead32Adapter(unsigned adapter, unsigned address);
    void boardWrite64(unsigned address, unsigned long long data);
    void boardWrite64Adapter(unsigned adapter, unsigned address, unsigned long long data);
    unsigned long long boardRead64(unsigned address);
    unsigned long long boardRead64Adapter(unsigned adapter, unsigned address);

private:
    SimpleDeviceEntry& deviceAt(unsigned adapter) const;
    std::shared_ptr<SimpleSessionEntry> resolve(unsigned adapter, unsigned phyId) const {
        return deviceAt(adapter).shareSession(static_cast<int>(phyId));
    }
    void addDevice(const AddressResponse& candidate, ListedNames& listed);
    template <class Hold>
    SharedSessions closeDevices(Hold hold);

    std::unordered_map<std::string, int> indexOf_; // devices by the names they were added with; under `lock`
    std::size_t indexed_ = 0;                      // devices that `indexOf_` knows
    SharedSessions keptAtExit_;                    // closed, and perhaps in use
    std::atomic<pid_t> process_;                   // that opened an adapter last
};

} // namespace Orvane

// The one interface behind the flat functions. Destroyed when the library is unloaded, but not at the exit of
// the process, which only closes its sessions: other threads may still be calling.
extern ORVANE_API Orvane::HWInterface HW_Interface_Object;
