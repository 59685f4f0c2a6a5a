// Closes sessions over twins of them, for their own connections may be in use.
#include "tools/orvane/board/OpenSessions.h"

#include "ov_sys/Interface/buses/rpc/RPCSetup.h"

#include <exception>
#include <mutex>
#include <orvane/orvane.hpp>

namespace OrvaneTool {
namespace {

// Tells the board over a session like that one.
void closeOnBoard(const Orvane::PhySession& session, const Orvane::SimpleDeviceEntry& device) {
    Orvane::PhySession twin(Orvane::AddressResponse(device.boardSerial, device.address), session.mdio);
    twin.initSessionInfo(session.sessionId, session.callSequence);
    Orvane::Setup::closeConnection(twin);
    twin.abandon();
}

} // namespace

bool haveSessions() {
    for (const auto& device : HW_Interface_Object.devices)
        if (device->isOpen != 0)
            return true;
    return false;
}

void closeSessionsFromOutside() {
    for (const auto& device : HW_Interface_Object.devices) {
        // Held while a session is being opened, which is not to be closed yet.
        const std::unique_lock<std::mutex> lock(device->lock, std::try_to_lock);
        if (device->isOpen == 0 || !lock)
            continue;
        for (const auto& entry : device->sessions) {
            try {
                closeOnBoard(*entry->session, *device);
            } catch (const std::exception&) { // the board is gone; so is its session, in a while
            }
        }
    }
}

} // namespace OrvaneTool
