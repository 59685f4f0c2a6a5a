// The texts of the exception classes.
#include "ov_sys/Interface/foundation/Exceptions.h"

#include <utility>

namespace Orvane::Exceptions {

Standard::Standard(std::string message) : text(std::move(message)) {}
Standard::~Standard() = default;
const char* Standard::what() const noexcept {
    return text.c_str();
}

InvalidName::InvalidName(std::string name) : text(std::move(name)) {}
InvalidName::~InvalidName() = default;
const char* InvalidName::what() const noexcept {
    return text.c_str();
}

InvalidRPCClient::InvalidRPCClient(std::string clientName) : text("Invalid RPC client: " + clientName) {}
InvalidRPCClient::~InvalidRPCClient() = default;
const char* InvalidRPCClient::what() const noexcept {
    return text.c_str();
}

NoDevice::~NoDevice() = default;
const char* NoDevice::what() const noexcept {
    return "Device not found.";
}

AccessDenied::~AccessDenied() = default;
const char* AccessDenied::what() const noexcept {
    return "Device is in use or access denied.";
}

DeviceConnection::~DeviceConnection() = default;
const char* DeviceConnection::what() const noexcept {
    return "Problem with connection to rpc server on device.";
}

InvalidSession::~InvalidSession() = default;
const char* InvalidSession::what() const noexcept {
    return "The board session is no longer valid.";
}

} // namespace Orvane::Exceptions
