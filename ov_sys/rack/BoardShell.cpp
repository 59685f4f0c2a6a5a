// Commands on the board itself, pings, and what the board says of itself.
#include "ov_sys/rack/core/ServiceCall.h"
#include "ov_sys/rack/link/Endpoint.h"
#include "ov_sys/rack/link/SetupCalls.h"
#include "ov_sys/rack/Services.h"

namespace Orvane {

using RackCore::pointAt;
using RackCore::require;
using RackCore::requireCount;
using RackCore::runSimple;
using RackCore::ServiceCall;
using RackLink::Effect;
using RackLink::Program;

namespace {

// Output of a command, which ends where the board says.
template <class Counted>
std::string textOf(const Counted& member) {
    const auto& [length, text] = member;
    return text == nullptr ? std::string{} : std::string(text, length);
}

} // namespace

BoardShell::Outcome BoardShell::run(const std::string& command, std::chrono::seconds limit,
                                    const Cancellation* cancellation) const {
    constexpr std::chrono::seconds kMargin{5};
    require(limit.count() > 0, *session_, "run", "A command has a limit of 1 s at least.");
    ServiceCall<Command_Param, Command_Result> call(*session_, Program::Setup,
                                                    Programs::SetupProcedure::ExecuteCommand, Effect::Alone);
    const std::string terminated(command.c_str(), command.size() + 1);
    pointAt(call.argument.command, terminated);
    call.argument.word1 = static_cast<u_int>(limit.count());
    Within within = Orvane::within(limit + kMargin).once();
    within.cancellation = cancellation;
    call.run("run", within);
    return {call.result.status, textOf(call.result.output1), textOf(call.result.output2)};
}

namespace {

using Duration = std::chrono::microseconds;

template <class Call>
Duration timeOf(Call& call, const Within& within) {
    const auto begun = RackLink::Clock::now();
    call.run("ping", within);
    return std::chrono::duration_cast<Duration>(RackLink::Clock::now() - begun);
}

} // namespace

Duration BoardShell::ping(const Within& within) const {
    constexpr int kEcho = 123;
    ServiceCall<int, int> call(*session_, Program::Setup, Programs::SetupProcedure::Ping, Effect::Reads);
    call.session = nullptr; // a ping needs none
    call.argument = kEcho;
    const Duration spent = timeOf(call, within);
    requireCount(static_cast<std::size_t>(call.result), kEcho, *session_, "ping");
    return spent;
}

Duration BoardShell::pingSession(const Within& within) const {
    ServiceCall<ID_Param, Simple_Result> call(*session_, Program::Setup, Programs::SetupProcedure::PingClient,
                                              Effect::Reads);
    return timeOf(call, within);
}

Duration BoardShell::pingKeepAlive(const Within& within) const {
    ServiceCall<ID_Param, Simple_Result> call(*session_, Program::KeepAlive,
                                              Programs::KeepAliveProcedure::Ping, Effect::Reads);
    call.isPing = true;
    return timeOf(call, within);
}

BoardShell::ErrorRecord BoardShell::errorRecord(int code, const Within& within) const {
    const auto record =
        runSimple<Get_Error_Result>(*session_, Program::Setup, Programs::SetupProcedure::GetErrorMessage,
                                    Effect::Reads, static_cast<std::uint32_t>(code), "error record", within);
    return {record.byte1, record.int1};
}

std::map<std::string, std::uint16_t> BoardShell::services(const Within& within) const {
    RackLink::Limits limits(within);
    std::map<std::string, std::uint16_t> found;
    for (std::size_t i = 0; i < RackLink::indexOf(Program::PortMapper); ++i) {
        RackLink::LookUpCall call(static_cast<Program>(i));
        session_->check(RackLink::drive(session_->link(), call, limits), "services", nameOf(call.wanted),
                        limits);
        if (call.port() != 0)
            found.emplace(nameOf(call.wanted), call.port());
    }
    return found;
}

std::string BoardShell::address() const {
    return RackLink::dotted(session_->link().address());
}

} // namespace Orvane
