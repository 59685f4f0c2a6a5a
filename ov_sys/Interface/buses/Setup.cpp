// The setup service: a live session, then the call.
#include "ov_sys/Interface/buses/Setup.h"

#include <utility>

namespace Orvane::Setup {

Setup::~Setup() = default;

int Setup::ping(SessionWrapper session) {
    return RPC::ping(session.usable());
}

PingRecord Setup::getPingRecord(SessionWrapper session) {
    return RPC::getPingRecord(session.usable());
}

int Setup::runCommand(SessionWrapper session, std::string command, unsigned timeoutSeconds,
                      CommandResult& result) {
    CommandResult answer{};
    const int status = RPC::runCommand(session.usable(), command, timeoutSeconds, answer.exitCode,
                                       answer.output, answer.errorOutput);
    result = std::move(answer);
    return status;
}

} // namespace Orvane::Setup
