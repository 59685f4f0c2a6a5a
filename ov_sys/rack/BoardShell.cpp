// Commands on the board itself, pings, and what the board says of itself.
#include "ov_sys/rack/core/ServiceCall.h"
#include "ov_sys/rack/link/Endpoint.h"
#include "ov_sys/rack/link/SetupCalls.h"
#include "ov_sys/rack/Services.h"

namespace Orvane {

using RackCore::LogEntry;
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
    LogEntry entry(*session_, "shell.run");
    entry.arguments.add("command", command).add("limit", limit.count());
    ServiceCall<Command_Param, Command_Result> call(entry, Program::Setup,
                                                    Programs::SetupProcedure::ExecuteCommand, Effect::Alone);
    const std::string terminated(command.c_str(), command.size() + 1);
    pointAt(call.argument.command, terminated);
    call.argument.word1 = static_cast<u_int>(limit.count());
    Within within = Orvane::within(limit + kMargin).once();
    within.cancellation = cancellation;
    call.run("run", within);
    Outcome outcome{call.result.status, textOf(call.result.output1), textOf(call.result.output2)};
    entry.result.add("status", outcome.status).add("output", outcome.output).add("errors", outcome.errors);
    entry.done();
    return outcome;
}

namespace {

using Duration = std::chrono::microseconds;

template <class Call>
Duration timeOf(Call& call, LogEntry& entry, const Within& within) {
    const auto begun = RackLink::Clock::now();
    call.run("ping", within);
    const auto spent = std::chrono::duration_cast<Duration>(RackLink::Clock::now() - begun);
    entry.result.add("microseconds", spent.count());
    return spent;
}

} // namespace

Duration BoardShell::ping(const Within& within) const {
    constexpr int kEcho = 123;
    LogEntry entry(*session_, "shell.ping");
    ServiceCall<int, int> call(entry, Program::Setup, Programs::SetupProcedure::Ping, Effect::Reads);
    call.session = nullptr; // a ping needs none
    call.argument = kEcho;
    const Duration spent = timeOf(call, entry, within);
    requireCount(static_cast<std::size_t>(call.result), kEcho, *session_, "ping");
    entry.done();
    return spent;
}

Duration BoardShell::pingSession(const Within& within) const {
    LogEntry entry(*session_, "shell.pingSession");
    ServiceCall<ID_Param, Simple_Result> call(entry, Program::Setup, Programs::SetupProcedure::PingClient,
                                              Effect::Reads);
    const Duration spent = timeOf(call, entry, within);
    entry.done();
    return spent;
}

Duration BoardShell::pingKeepAlive(const Within& within) const {
    LogEntry entry(*session_, "shell.pingKeepAlive");
    ServiceCall<ID_Param, Simple_Result> call(entry, Program::KeepAlive, Programs::KeepAliveProcedure::Ping,
                                              Effect::Reads);
    call.isPing = true;
    const Duration spent = timeOf(call, entry, within);
    entry.done();
    return spent;
}

BoardShell::ErrorRecord BoardShell::errorRecord(int code, const Within& within) const {
    LogEntry entry(*session_, "shell.errorRecord");
    entry.arguments.add("code", code);
    const auto record =
        runSimple<Get_Error_Result>(entry, Program::Setup, Programs::SetupProcedure::GetErrorMessage,
                                    Effect::Reads, static_cast<std::uint32_t>(code), "error record", within);
    entry.result.add("kind", record.byte1).add("detail", record.int1);
    entry.done();
    return {record.byte1, record.int1};
}

std::map<std::string, std::uint16_t> BoardShell::services(const Within& within) const {
    LogEntry entry(*session_, "shell.services");
    RackLink::Limits limits(within);
    std::map<std::string, std::uint16_t> found;
    for (std::size_t i = 0; i < RackLink::indexOf(Program::PortMapper); ++i) {
        RackLink::LookUpCall call(static_cast<Program>(i));
        entry.check(RackLink::drive(session_->link(), call, limits), "services", nameOf(call.wanted), limits);
        if (call.port() != 0)
            found.emplace(nameOf(call.wanted), call.port());
    }
    for (const auto& [name, port] : found)
        entry.result.add(name.c_str(), port);
    entry.done();
    return found;
}

std::string BoardShell::address() const {
    return RackLink::dotted(session_->link().address());
}

} // namespace Orvane
