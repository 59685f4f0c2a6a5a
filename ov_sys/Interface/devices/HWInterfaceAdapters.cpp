// The adapters of HWInterface: opening, closing, parameters and the session of a PHY.
#include "ov_sys/Interface/buses/MDIO.h"
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/devices/SessionClosing.h"
#include "ov_sys/Interface/foundation/Deadline.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/foundation/HWIHelper.h"
#include "ov_sys/Interface/foundation/ProcessExit.h"
#include "ov_sys/Interface/sessions/PhySession.h"

#include <exception>
#include <new>
#include <unistd.h>
#include <utility>

namespace Orvane {

namespace {

using Held = std::unique_lock<std::mutex>;

// Out of the way of accesses, which pass by there.
[[noreturn, gnu::noinline]] void refuseAdapter() {
    throw Exceptions::Standard("Invalid adapter index");
}

// Not owned when the mutex stays taken until then.
Held heldUntil(const Deadline& limit, std::mutex& mutex) {
    constexpr int kPollMs = 5;
    Held lock(mutex, std::try_to_lock);
    while (!lock && !limit.passed()) {
        HWIHelper::mSleep(kPollMs);
        static_cast<void>(lock.try_lock());
    }
    return lock;
}

} // namespace

SimpleDeviceEntry& HWInterface::deviceAt(unsigned adapter) const {
    if (adapter >= devices.size())
        refuseAdapter();
    return *devices[adapter];
}

bool HWInterface::openAdapter(unsigned adapter) {
    if (adapter >= devices.size())
        return false;
    ProcessExit::watch();
    process_ = getpid();
    deviceAt(adapter).open();
    return true;
}

unsigned HWInterface::closeAdapter(unsigned adapter) {
    try {
        SimpleDeviceEntry& device = deviceAt(adapter);
        if (device.isOpen != 0)
            device.close();
        return 0;
    } catch (...) {
        Diagnostics::error("closeAdapter failed");
        return 1;
    }
}

// Closes the open devices whose lock `hold` gives, and returns the sessions that they had.
template <class Hold>
SharedSessions HWInterface::closeDevices(Hold hold) {
    std::vector<std::pair<SimpleDeviceEntry*, Held>> held;
    SharedSessions sessions;
    for (const auto& device : devices) {
        if (device->isOpen == 0)
            continue;
        held.emplace_back(device.get(), hold(device->lock));
        if (!held.back().second)
            held.pop_back();
        else
            sessions.insert(sessions.end(), device->sessions.begin(), device->sessions.end());
    }
    closeSideBySide(sessions);
    for (const auto& [device, itsLock] : held) {
        device->sessions.clear();
        device->isOpen = 0;
    }
    return sessions;
}

void HWInterface::close() {
    try {
        closeDevices([](std::mutex& mutex) { return Held(mutex); });
    } catch (const std::bad_alloc&) { // one after the other, then
        for (const auto& device : devices)
            if (device->isOpen != 0)
                device->close();
    }
}

void HWInterface::closeAtExit() noexcept {
    if (process_ != getpid())
        return;
    const Deadline limit = Deadline::after(std::chrono::seconds(2));
    try {
        keptAtExit_ = closeDevices([limit](std::mutex& mutex) { return heldUntil(limit, mutex); });
    } catch (const std::exception&) { // no memory: the boards will miss the pings
    }
}

unsigned HWInterface::defaultAdapter() {
    return defaultAdapter_;
}

bool HWInterface::setDefaultAdapter(unsigned adapter) {
    defaultAdapter_ = adapter;
    return true;
}

void HWInterface::setDeviceParameters(unsigned adapter, unsigned /*parameter*/, unsigned value) {
    deviceAt(adapter).setKelSmbProto(value != 0 ? Direct32 : Paged16);
}

unsigned HWInterface::getDeviceParameters(unsigned adapter, unsigned /*parameter*/) {
    return static_cast<unsigned>(deviceAt(adapter).getKelSmbProto());
}

SimpleSessionEntry* HWInterface::getSimpleSession(int adapter, int phyId) {
    return resolve(static_cast<unsigned>(adapter), static_cast<unsigned>(phyId)).get();
}

bool HWInterface::closePhyID(std::string deviceName, int /*ignored*/, int phyId) {
    try {
        return deviceAt(static_cast<unsigned>(deviceIndex(std::move(deviceName)))).closePhyID(phyId);
    } catch (...) {
        return false;
    }
}

bool HWInterface::setAdapterMdioPortBroadcast(unsigned adapter, unsigned phyId, bool on) {
    const auto entry = resolve(adapter, phyId);
    try {
        mdio.setSingleWire(entry->session.get(), on);
        return true;
    } catch (const std::exception& problem) {
        Diagnostics::error("Couldn't set mdio port broadcast:\n", problem.what());
    } catch (...) {
        Diagnostics::error("Couldn't set mdio port broadcast:");
    }
    return false;
}

bool HWInterface::setMdioPortBroadcast(unsigned phyId, bool on) {
    return setAdapterMdioPortBroadcast(defaultAdapter_, phyId, on);
}

unsigned HWInterface::fail() {
    return failFlag;
}

char* HWInterface::errorMessage() {
    return cStringFrom(lastError);
}

unsigned HWInterface::maxQueueSize() {
    return 873;
}

unsigned HWInterface::blockReadQueueSize() {
    return blockQueueSize;
}

} // namespace Orvane
