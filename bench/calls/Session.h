// Sessions of the library, as the benchmarks use them.
#pragma once

#include "ov_sys/Interface/sessions/PhySession.h"

#include <string>

namespace OrvaneBench {

constexpr int kPhy = 3;
constexpr unsigned kMmd = 1;
constexpr unsigned kRegister = 0x20;
constexpr unsigned kAddress = kMmd << 16U | kRegister;

// An open session on port 0 of a board, PHY 3, with its keep-alive thread.
class OpenedSession {
public:
    explicit OpenedSession(const std::string& host);
    ~OpenedSession();
    OpenedSession(const OpenedSession&) = delete;
    OpenedSession& operator=(const OpenedSession&) = delete;

    Orvane::PhySession* get() { return &session_; }

private:
    Orvane::PhySession session_;
};

// The flat interface with the first device of the board at `host` open as the default adapter; closes it at
// the end.
class FlatDevice {
public:
    explicit FlatDevice(const std::string& host);
    ~FlatDevice();
    FlatDevice(const FlatDevice&) = delete;
    FlatDevice& operator=(const FlatDevice&) = delete;

    unsigned adapter() const { return adapter_; }
    const std::string& name() const { return name_; }

private:
    std::string name_;
    unsigned adapter_ = 0;
};

} // namespace OrvaneBench
