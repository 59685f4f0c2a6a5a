// A queue of MDIO accesses that reach the board in one call.
#pragma once

#include "ov_sys/Interface/buses/MDIO.h"
#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/SessionWrapper.h"

#include <mutex>
#include <vector>

namespace Orvane::MDIO {

// Collects reads and writes in the order in which they are queued; a session is named only when the queue is
// executed. The queue has no limit of its own. Any thread may queue; whoever queues while another executes
// waits for the board's answer.
class ORVANE_API MdioAsync {
public:
    std::vector<unsigned int> writeAddresses; // as given, in queued order
    std::vector<unsigned int> writeData;      // parallel to writeAddresses
    std::vector<unsigned int> readAddresses;  // as given, in queued order
    std::vector<unsigned int> runs;           // completed runs: writes, reads, writes and so on
    bool lastWasWrite = true;                 // kind of the run being counted
    std::recursive_mutex queueMutex;          // guards every member; held while the board executes the queue
    unsigned int currentRun = 0;              // operations in the run being counted

    MdioAsync();
    virtual ~MdioAsync();
    MdioAsync(const MdioAsync&) = delete;
    MdioAsync& operator=(const MdioAsync&) = delete;

    // Add accesses to the queue. Addresses are sent as they are, with the PHY and port of the executing
    // session. Do not block, unless another thread executes.
    void read(unsigned int address);
    void write(unsigned int address, unsigned int data);
    void blockRead(std::vector<unsigned int> addresses);
    // Aborts when the lists are equally long, with a text that wants them so (docs/limits.md, "Odd on
    // purpose"). Otherwise queues the addresses; when there are data it then
    // throws std::length_error and the addresses are not counted into the run.
    void blockWrite(std::vector<unsigned int> addresses, std::vector<unsigned int> datas);

    // Whether anything was counted since the last execution.
    bool haveQueued();
    // Closes the run being counted, if it has any operations.
    void finalize();
    // Forgets the queue, but not the count of the run that is open.
    void clear();

    // Send the queue as a Clause 45, Clause 22 or 32-bit extension block and return one value for each queued
    // read; an empty queue makes no call. Block and throw as the mixed blocks of RPCMDIO.h. An exception
    // leaves the queue finalised, not as it was: executed again at once it sends the same block; but what is
    // queued before that is counted in a run of the other kind (docs/limits.md, "Odd on purpose"), so clear()
    // it first.
    std::vector<unsigned int> execute(SessionWrapper session);
    std::vector<unsigned int> execute_c22(SessionWrapper session);
    std::vector<unsigned int> execute_c22_32bit(SessionWrapper session);

private:
    using Words = std::vector<unsigned int>;
    using MixedBlock = Words (MDIO::*)(SessionWrapper, Words const&, Words const&, Words const&,
                                       Words const&);

    void switchTo(bool write);
    Words executeAs(MixedBlock mixedBlock, SessionWrapper session);
};

} // namespace Orvane::MDIO
