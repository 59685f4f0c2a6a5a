// Life cycle, devices and defaults of the flat interface.
#include "ov_sys/capi/ErrorState.h"
#include "ov_sys/capi/Globals.h"

#include "ov_sys/Interface/foundation/Exceptions.h"

#include <atomic>
#include <orvane/orvane.hpp>
#include <utility>

namespace {

using Orvane::globals;
using Orvane::guarded;
using Orvane::kQuiet;
using Orvane::kReported;
using Orvane::theInterface;

std::atomic<bool> initialized{false};

// A caller's name or address; null is that of no device.
std::string given(const char* text) {
    if (text == nullptr)
        throw Orvane::Exceptions::NoDevice();
    return text;
}

} // namespace

extern "C" {

// ---- Life cycle ----

int HW_Initialize(void) {
    return guarded(kQuiet, [] {
        if (initialized.exchange(true))
            return 1;
        HW_InitializeDelegations();
        HW_InitializeClause22();
        theInterface().initialize();
        return 1;
    });
}

int HW_Open(const char* name) {
    return guarded(kQuiet, [name] {
        const bool opened = theInterface().open(name);
        HW_SetDefaultAdapter(static_cast<unsigned>(HW_DeviceNumber(name)));
        return opened ? 1 : 0;
    });
}

void HW_Close(void) {
    guarded(kReported, [] {
        initialized = false;
        theInterface().close();
    });
}

int HW_OpenAdapter(unsigned int adapter) {
    return guarded(kReported, [adapter] { return theInterface().openAdapter(adapter) ? 1 : 0; });
}

// The other way round than HW_OpenAdapter(): docs/limits.md, "Odd on purpose".
unsigned int HW_CloseAdapter(unsigned int adapter) {
    return guarded(kReported, [adapter] { return theInterface().closeAdapter(adapter); });
}

// ---- Devices ----

unsigned int HW_NumberOfDevices(void) {
    return guarded(kQuiet, [] { return theInterface().numberOfDevices(); });
}

char** HW_DeviceList(void) {
    return guarded(kQuiet, [] { return theInterface().deviceList(); });
}

char* HW_Device(unsigned int index) {
    return guarded(kQuiet, [index] { return theInterface().device(index); });
}

char* HW_Device_FullName(unsigned int index) {
    return HW_Device(index);
}

unsigned int HW_Device_Revision(void) {
    return 0;
}

// 0 for a device that does not exist, too: docs/limits.md, "Odd on purpose".
int HW_DeviceNumber(const char* name) {
    return guarded(kReported, [name] { return theInterface().deviceNumber(given(name), ""); });
}

char* HW_DeviceByIp(const char* ip) {
    return guarded(kQuiet, [ip] { return theInterface().device(given(ip)); });
}

void HW_SetDeviceParameters(unsigned int adapter, unsigned int parameter, unsigned int value) {
    guarded(kReported, [=] { theInterface().setDeviceParameters(adapter, parameter, value); });
}

unsigned int HW_GetDeviceParameters(unsigned int adapter, unsigned int parameter) {
    return guarded(kReported, [=] { return theInterface().getDeviceParameters(adapter, parameter); });
}

// ---- Defaults ----

int HW_SetDefaultAdapter(unsigned int adapter) {
    return guarded(kReported, [adapter] { return theInterface().setDefaultAdapter(adapter) ? 1 : 0; });
}

unsigned int HW_GetDefaultAdapter(void) {
    return guarded(kReported, [] { return theInterface().defaultAdapter(); });
}

void HW_SetDefault_PHY_ID(unsigned int phyId) {
    __atomic_store_n(globals.defaultPhyId, phyId, __ATOMIC_RELAXED);
}

unsigned int HW_GetDefault_PHY_ID(void) {
    return __atomic_load_n(globals.defaultPhyId, __ATOMIC_RELAXED);
}

// ---- Sessions of callers that use the classes ----

Orvane::PhySession* HW_GlobalInterface_getPhySession(std::string deviceName, int phyId) {
    return theInterface().getPhySession(std::move(deviceName), phyId);
}

bool HW_GlobalInterface_setPhySession(Orvane::SessionWrapper session) {
    return theInterface().setSession(session);
}

bool HW_GlobalInterface_closePhyID(std::string deviceName, int ignored, int phyId) {
    return theInterface().closePhyID(std::move(deviceName), ignored, phyId);
}
}
