// The local socket through which a running lab is controlled.
#pragma once

#include "simulator/control/LabControl.h"
#include "simulator/engine/EventLoop.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

namespace OrvaneSim {

// Environment variable that names the control socket of the lab that a command runs in.
constexpr const char* kControlVariable = "ORVANE_LAB_CONTROL";

// Where the control socket of this process is when no path is given: orvane-sim-PID.sock in
// $XDG_RUNTIME_DIR, or in /tmp.
std::string defaultControlPath();

// Serves a lab's control protocol: one JSON object on each line, answered by one line each. Runs on a thread
// of its own.
class ControlServer {
public:
    // Makes the socket, for this user only, in place of one that nobody serves any more; what is no socket
    // is never removed. `lab` must outlive the object. Throws std::system_error or std::runtime_error when
    // `path` cannot be had.
    ControlServer(Lab& lab, std::string path);
    // Removes the socket.
    ~ControlServer(); // NOLINT(bugprone-exception-escape)
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    const std::string& path() const { return path_; }

private:
    struct Connection {
        Orvane::FileDescriptor socket;
        std::string received;
        std::string unsent;
        EventLoop::Watch watch;
    };
    void accept();
    void serve(std::uint64_t id, std::uint32_t events);
    void receive(Connection& connection, bool& open);

    LabControl control_;
    std::string path_;
    Orvane::FileDescriptor listener_;
    EventLoop loop_;
    EventLoop::Watch watch_;
    std::map<std::uint64_t, Connection> connections_;
    std::uint64_t lastConnection_ = 0;
};

// The path to use when none is given: that of the lab that this process runs in, else the only one in the
// usual places that this user or root serves. Throws std::runtime_error when there is none or more than one.
std::string findControlPath();

// Sends one line to a control socket and gives the answer. Throws std::runtime_error when another user than
// this one or root serves it, and when there is no whole answer within `limit`.
std::string askControl(const std::string& path, const std::string& line,
                       std::chrono::milliseconds limit = std::chrono::seconds(30));

} // namespace OrvaneSim
