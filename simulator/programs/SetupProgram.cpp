// Sessions and pings.
#include "simulator/board/Procedure.h"
#include "simulator/programs/Programs.h"

namespace OrvaneSim {
namespace {

// The call sequence that a client starts from.
constexpr u_int kFirstSequence = 100;

void openConnection(ProcedureCall& call, const sim_Open_Param& argument, sim_Open_Result& result) {
    if (argument.exclusive != 0 && argument.simple != 0) {
        result.error = -EINVAL;
        return;
    }
    Session wanted;
    wanted.key = argument.sessionId;
    wanted.mode = argument.exclusive != 0 ? OpenMode::Exclusive
                  : argument.simple != 0  ? OpenMode::Simple
                                          : OpenMode::Concurrent;
    wanted.deviceIndex = static_cast<unsigned>(argument.deviceIndex);
    wanted.phyAddress = static_cast<unsigned>(argument.phyAddress);
    const Sessions::Opening opening = call.board.sessions.open(wanted);
    result.error = opening.error;
    result.id = opening.id;
    result.sessionId = opening.key;
    result.sequence = opening.error == 0 ? kFirstSequence : 0;
}

void closeConnection(ProcedureCall& call, const sim_Close_Param& argument, sim_Simple_Result&) {
    call.board.sessions.close(argument.handle);
    call.board.interrupts.release(Sessions::idOf(argument.handle));
    call.session = nullptr;
}

void getErrorMessage(ProcedureCall&, const sim_Simple_Param&, sim_Get_Error_Result&) {
    // No error is ever left pending: each call carries its own status.
}

void ping(ProcedureCall&, const int& argument, int& result) {
    result = argument;
}

void pingClient(ProcedureCall&, const sim_ID_Param&, sim_Simple_Result&) {
    // That the session was found is the whole answer.
}

// The command text, which clients send with its terminating NUL.
std::string commandText(const sim_Command_Param& argument) {
    std::string text(argument.command.command_val, argument.command.command_len);
    return text.substr(0, text.find('\0'));
}

void fillOutcome(const ProcedureCall& call, sim_Command_Result& result, int status, const std::string& output,
                 const std::string& errors) {
    result.status = status;
    call.fill(result.output.output_len, result.output.output_val, output);
    call.fill(result.errors.errors_len, result.errors.errors_val, errors);
}

void answerFromShell(const std::shared_ptr<LaterReply>& reply, const ShellRunner::Outcome& outcome) {
    std::string output = outcome.output;
    std::string errors = outcome.errors;
    sim_Command_Result result{};
    result.error = outcome.timedOut ? -ETIMEDOUT : 0;
    result.status = outcome.status;
    result.output = {static_cast<u_int>(output.size()), output.data()};
    result.errors = {static_cast<u_int>(errors.size()), errors.data()};
    // libtirpc's routine type leaves the parameters open.
    reply->send(reinterpret_cast<xdrproc_t>(xdr_sim_Command_Result), &result);
}

// A board without a shell answers from its table, after the time that the table says; with one, the shell's
// outcome is the answer. A command that outlasts its time-out (in seconds) ends as timed out.
void executeCommand(ProcedureCall& call, const sim_Command_Param& argument, sim_Command_Result& result) {
    const std::string text = commandText(argument);
    if (call.board.shell) {
        call.board.shell->run(text, std::chrono::seconds(argument.seconds),
                              [reply = call.rpc.answerLater()](const ShellRunner::Outcome& outcome) {
                                  answerFromShell(reply, outcome);
                              });
        return;
    }
    const CommandOutcome outcome = call.board.commands.find(text);
    if (outcome.seconds > 0)
        call.rpc.delivery.delay = std::chrono::seconds(std::min(outcome.seconds, argument.seconds));
    if (outcome.seconds > argument.seconds)
        result.error = -ETIMEDOUT;
    else
        fillOutcome(call, result, outcome.status, outcome.output, outcome.errors);
}

constexpr Procedure kProcedures[] = {
    {SIM_OPEN_CONNECTION, "open_connection", handler<openConnection>},
    {SIM_CLOSE_CONNECTION, "close_connection", handler<closeConnection>},
    {SIM_GET_ERROR_MSG, "get_error_msg", handler<getErrorMessage>},
    {SIM_PING, "ping", handler<ping>},
    {SIM_PINGCLIENT, "pingclient", handler<pingClient>},
    {SIM_EXECUTE_COMMAND, "execute_command", handler<executeCommand>},
};

} // namespace

const Program kSetupProgram{"setup", SIM_SETUP, SIM_SETUP_VERSION, kProcedures};

} // namespace OrvaneSim
