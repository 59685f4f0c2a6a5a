// The adapters of HWInterface: opening, closing, parameters and the session of a PHY.
#include "ov_sys/Interface/buses/MDIO.h"
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/sessions/PhySession.h"

#include <exception>
#include <utility>

namespace Orvane {

SimpleDeviceEntry& HWInterface::deviceAt(unsigned adapter) const {
    if (adapter >= devices.size())
        throw Exceptions::Standard("Invalid adapter index");
    return *devices[adapter];
}

bool HWInterface::openAdapter(unsigned adapter) {
    if (adapter >= devices.size())
        return false;
    devices[adapter]->open();
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

void HWInterface::close() {
    const std::lock_guard<std::mutex> guard(lock);
    for (const auto& entry : devices)
        if (entry->isOpen != 0)
            entry->close();
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
    SimpleDeviceEntry& device = deviceAt(static_cast<unsigned>(adapter));
    if (device.isOpen == 0)
        throw Exceptions::Standard("Adapter isn't open.");
    return device.getSession(phyId);
}

bool HWInterface::closePhyID(std::string deviceName, int /*ignored*/, int phyId) {
    try {
        return devices[static_cast<std::size_t>(deviceIndex(std::move(deviceName)))]->closePhyID(phyId);
    } catch (...) {
        return false;
    }
}

bool HWInterface::setAdapterMdioPortBroadcast(unsigned adapter, unsigned phyId, bool on) {
    SimpleSessionEntry& entry = resolve(adapter, phyId);
    try {
        mdio.setSingleWire(entry.session.get(), on);
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
