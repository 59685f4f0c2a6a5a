// orvane exec: a command on the board.
#include "tools/orvane/board/OpenSessions.h"
#include "tools/orvane/cli/Service.h"
#include "tools/orvane/verbs/Verbs.h"

#include <chrono>
#include <condition_variable>
#include <fmt/format.h>
#include <mutex>
#include <string_view>
#include <thread>
#include <unistd.h>

namespace OrvaneTool {
namespace {

struct Options : ServiceOptions {
    unsigned timeout = 60;
};

// The library runs a command that outlasts its time again, without end. This ends the program instead: after
// that time with a line and status 1, unless it was destroyed before.
class Deadline {
public:
    Deadline(std::chrono::milliseconds time, int err, std::string text)
        : thread_([this, time, err, line = std::move(text)] { wait(time, err, line); }) {}
    ~Deadline() {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            over_ = true;
        }
        ended_.notify_all();
        thread_.join();
    }
    Deadline(const Deadline&) = delete;
    Deadline& operator=(const Deadline&) = delete;

private:
    void wait(std::chrono::milliseconds time, int err, const std::string& text) {
        std::unique_lock<std::mutex> lock(mutex_);
        if (ended_.wait_for(lock, time, [this] { return over_; }))
            return;
        closeSessionsFromOutside();
        [[maybe_unused]] const ssize_t written = ::write(err, text.data(), text.size());
        ::_exit(kFailed);
    }

    std::mutex mutex_; // guards `over_`
    std::condition_variable ended_;
    bool over_ = false;
    std::thread thread_;
};

int run(Context& context, const Options& options) {
    // As a shell would have read them: one word is a whole command line.
    const std::string command = fmt::format("{}", fmt::join(options.words, " "));
    ServiceCall call(context, options, "exec", "command status stdout stderr");
    Orvane::CommandResult result{};
    {
        const Deadline deadline(std::chrono::milliseconds(options.timeout * 1000 + 500),
                                context.messages.err(),
                                fmt::format("orvane: {}: exec {}: it did not end within {} s\n",
                                            call.device().name(), visible(command), options.timeout));
        call.attempt([&] {
            return Orvane::Setup::Setup().runCommand(call.session(), command, options.timeout, result);
        });
    }
    if (!call.isText()) {
        call.put(call.record("command")
                     .put("command", command)
                     .put("status", result.exitCode & 0xFF)
                     .put("stdout", result.output)
                     .put("stderr", result.errorOutput));
        return result.exitCode & 0xFF;
    }
    call.out().relay(result.output);
    call.out().flush();
    context.console.err.relay(result.errorOutput);
    context.console.err.flushIfPossible();
    return result.exitCode & 0xFF;
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
