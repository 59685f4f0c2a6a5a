// The exceptions that the class interface throws.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <exception>
#include <string>

// Every class derives directly from std::exception: catching Standard catches none of the others. The text
// that what() returns lives as long as the exception object.
namespace Orvane::Exceptions {

// A failure that carries its own message.
class ORVANE_API Standard : public std::exception {
public:
    // Keeps the message that what() returns.
    explicit Standard(std::string message);
    ~Standard() override;
    // The message.
    const char* what() const noexcept override;

    std::string text; // of what()
};

// A device name that does not read as board:port.
class ORVANE_API InvalidName : public std::exception {
public:
    // Keeps the offending name.
    explicit InvalidName(std::string name);
    ~InvalidName() override;
    // The offending name, unchanged.
    const char* what() const noexcept override;

    std::string text; // of what()
};

// An RPC client that is missing or of the wrong kind.
class ORVANE_API InvalidRPCClient : public std::exception {
public:
    // Makes the text of what() from the client's name.
    explicit InvalidRPCClient(std::string clientName);
    ~InvalidRPCClient() override;
    // "Invalid RPC client: " and the client's name.
    const char* what() const noexcept override;

    std::string text; // of what()
};

// No board or board port has the wanted name.
class ORVANE_API NoDevice : public std::exception {
public:
    ~NoDevice() override;
    // "Device not found."
    const char* what() const noexcept override;
};

// The board refuses the session.
class ORVANE_API AccessDenied : public std::exception {
public:
    ~AccessDenied() override;
    // "Device is in use or access denied."
    const char* what() const noexcept override;
};

// The board's RPC server cannot be reached.
class ORVANE_API DeviceConnection : public std::exception {
public:
    ~DeviceConnection() override;
    // "Problem with connection to rpc server on device."
    const char* what() const noexcept override;
};

// The board no longer knows the session.
class ORVANE_API InvalidSession : public std::exception {
public:
    ~InvalidSession() override;
    // "The board session is no longer valid."
    const char* what() const noexcept override;
};

} // namespace Orvane::Exceptions
