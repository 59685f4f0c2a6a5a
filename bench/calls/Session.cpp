// Opens and closes what the benchmarks call through.
#include "bench/calls/Session.h"

#include "ov_sys/Interface/buses/rpc/RPCSetup.h"

#include <cstdlib>
#include <orvane/orvane.h>
#include <stdexcept>

namespace OrvaneBench {
namespace {

constexpr Orvane::MdioExclusive kSimple{kPhy, 0, 1, 0, 1, 0, 0};

std::string firstDeviceAt(const std::string& host) {
    char* const serial = HW_DeviceByIp(host.c_str());
    if (serial == nullptr)
        throw std::runtime_error("no device at " + host);
    std::string name = std::string(serial) + ":0";
    std::free(serial);
    return name;
}

} // namespace

OpenedSession::OpenedSession(const std::string& host)
    : session_(Orvane::AddressResponse("BENCH", host), kSimple) {
    Orvane::Setup::openConnection(session_);
    session_.startKeepAlive();
}

OpenedSession::~OpenedSession() = default;

FlatDevice::FlatDevice(const std::string& host) {
    HW_Initialize();
    name_ = firstDeviceAt(host);
    if (HW_Open(name_.c_str()) != 1)
        throw std::runtime_error("cannot open " + name_);
    adapter_ = HW_GetDefaultAdapter();
}

FlatDevice::~FlatDevice() {
    HW_CloseAdapter(adapter_);
}

} // namespace OrvaneBench
