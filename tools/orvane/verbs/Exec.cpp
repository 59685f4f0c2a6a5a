// orvane exec: a command on the board.
#include "tools/orvane/cli/Service.h"
#include "tools/orvane/verbs/Verbs.h"

#include <cerrno>
#include <chrono>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options : ServiceOptions {
    unsigned timeout = 60;
};

Orvane::BoardShell::Outcome runOnBoard(ServiceCall& call, const std::string& command, unsigned seconds) {
    try {
        return call.phy().shell().run(command, std::chrono::seconds(seconds),
                                      &call.context().interrupts().cancellation());
    } catch (const Orvane::Failure& failure) {
        const bool late = failure.kind() == Orvane::FailureKind::TimedOut || failure.code() == -ETIMEDOUT;
        call.fail(failure, late ? fmt::format("it did not end within {} s", seconds) : "");
    }
}

int run(Context& context, const Options& options) {
    // As a shell would have read them: one word is a whole command line.
    const std::string command = fmt::format("{}", fmt::join(options.words, " "));
    ServiceCall call(context, options, "exec", "command status stdout stderr");
    const Orvane::BoardShell::Outcome result = runOnBoard(call, command, options.timeout);
    if (!call.isText()) {
        call.put(call.record("command")
                     .put("command", command)
                     .put("status", result.status & 0xFF)
                     .put("stdout", result.output)
                     .put("stderr", result.errors));
        return result.status & 0xFF;
    }
    call.out().relay(result.output);
    call.out().flush();
    context.console.err.relay(result.errors);
    context.console.err.flushIfPossible();
    return result.status & 0xFF;
}

} // namespace

void addExec(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(app, {"exec", "Run a command on the board",
                                   "  orvane exec OV0001:0 hostname\n"
                                   "  orvane exec OV0001:0 --timeout 5 -- ls -l /tmp\n"
                                   " Its output, error output and exit status are those of this command.\n"});
    auto options = std::make_shared<Options>();
    addServiceOptions(verb, context, *options);
    verb.add_option("COMMAND", options->words,
                    "The command and its arguments, behind -- if one begins with -")
        ->required()
        ->type_name("");
    verb.add_option("--timeout", options->timeout, "Seconds that the command may take (60)")
        ->type_name("S")
        ->check(CLI::Range(1U, 86400U).description(""));
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
