// orvane: boards and their PHYs from the command line.
#include "tools/orvane/board/Failures.h"
#include "tools/orvane/cli/HelpFormatter.h"
#include "tools/orvane/verbs/Verbs.h"

#include <array>
#include <csignal>
#include <exception>
#include <unistd.h>

namespace OrvaneTool {
namespace {

constexpr const char* kFooter =
    "Exit status: 0 success, 1 the board or an access failed or what was compared differs,\n"
    "2 wrong usage, 128 + signal after a signal.\n"
    "\n"
    "Environment: ORVANE_ADDRESS the addresses of --address, separated by commas; NO_COLOR no\n"
    "colours; ORVANE_MAPS register maps, separated by colons; EXCLUSIVE_KEY, CONCURRENT_KEY, SIMPLE_KEY how "
    "the library opens its sessions.\n"
    "\n"
    "'orvane VERB --help' explains a verb, with examples.";

constexpr std::array kVerbs{addList, addInfo,    addPing,   addRead, addWrite,  addModify,  addDump,
                            addDiff, addWatch,   addDecode, addMap,  addI2c,    addGpio,    addJtag,
                            addAdc,  addThermal, addExec,   addLog,  addReplay, addGenerate};

void addVerbs(CLI::App& app, Context& context) {
    app.formatter(std::make_shared<HelpFormatter>());
    app.footer(kFooter);
    app.set_version_flag("--version", "orvane " ORVANE_VERSION);
    app.fallthrough(false);
    for (const AddVerb add : kVerbs)
        add(app, context);
}

int complain(Context& context, const std::string& text, int status) {
    context.console.err.write("orvane: " + text + "\n");
    context.console.err.flushIfPossible();
    return status;
}

// The verb that the words name so far, for its help.
const CLI::App* givenVerb(const CLI::App* app) {
    while (!app->get_subcommands().empty())
        app = app->get_subcommands().front();
    return app;
}

std::string fullName(const CLI::App* app) {
    return app->get_parent() ? fullName(app->get_parent()) + " " + app->get_name() : app->get_name();
}

// The exit status after the command line was understood; -1 when the action is to run.
int parse(CLI::App& app, Context& context, int argc, char** argv) {
    try {
        app.parse(argc, argv);
        if (context.action)
            return -1;
        throw CLI::RequiredError("VERB");
    } catch (const CLI::CallForHelp&) {
        context.console.out.write(app.help());
    } catch (const CLI::CallForAllHelp&) {
        context.console.out.write(app.help("", CLI::AppFormatMode::All));
    } catch (const CLI::CallForVersion& version) {
        context.console.out.print("{}\n", version.what());
    } catch (const CLI::ParseError& problem) {
        return complain(
            context, fmt::format("{}\nTry '{} --help'.", problem.what(), fullName(givenVerb(&app))), kUsage);
    }
    context.console.out.flush();
    return kSuccess;
}

// What was printed before a failure is worth having, and so are the records.
int flushed(Context& context, int status) {
    try {
        context.endRecords();
        context.console.out.flush();
        return status;
    } catch (const Failure& problem) {
        return complain(context, problem.what(), kFailed);
    }
}

// A failure ends the records with one of its own.
int failed(Context& context, const Record& failure, const std::string& text, int status) {
    context.records({}).put(failure);
    flushed(context, status);
    return complain(context, text, status);
}

int run(Context& context) {
    try {
        const int status = context.action();
        return flushed(context, status);
    } catch (const UsageError& problem) {
        return failed(context, Record("failure").error({"usage", 0, problem.what()}), problem.what(), kUsage);
    } catch (const Failure& problem) {
        return failed(context, failureRecord(problem), problem.what(), kFailed);
    } catch (const Orvane::Failure& problem) {
        if (const int signal = context.interrupts().signal())
            return flushed(context, 128 + signal);
        return failed(context, failureRecord(problem), textOf(problem), kFailed);
    } catch (const Interrupted& interrupted) {
        return flushed(context, 128 + interrupted.signal);
    }
}

int runTool(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    Context context;
    try {
        CLI::App app{"Boards with Ethernet PHYs from the command line.", "orvane"};
        addVerbs(app, context);
        const int parsed = parse(app, context, argc, argv);
        return parsed >= 0 ? parsed : run(context);
    } catch (const OutputClosed&) {
        return kSuccess;
    } catch (const std::exception& problem) {
        return complain(context, problem.what(), kFailed);
    }
}

} // namespace
} // namespace OrvaneTool

int main(int argc, char** argv) {
    // The sessions are closed on their boards; the library's own end would wait for their threads.
    ::_exit(OrvaneTool::runTool(argc, argv));
}
