// orvane: boards and their PHYs from the command line.
#include "tools/commandline/Documents.h"
#include "tools/commandline/HelpFormatter.h"
#include "tools/orvane/board/Failures.h"
#include "tools/orvane/cli/Suggestion.h"
#include "tools/orvane/verbs/Verbs.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <exception>
#include <string_view>
#include <unistd.h>

namespace OrvaneTool {
namespace {

constexpr const char* kFooter =
    "Exit status: 0 success, 1 the board or an access failed or what was compared differs,\n"
    "2 wrong usage, 128 + signal after a signal.\n"
    "\n"
    "Environment: ORVANE_ADDRESS the addresses of --address, separated by commas; NO_COLOR no\n"
    "colours; ORVANE_MAPS register maps, separated by colons; ORVANE_LOG the transaction log of --log;\n"
    "ORVANE_PYTHON the Python of 'orvane run';\n"
    "EXCLUSIVE_KEY, CONCURRENT_KEY, SIMPLE_KEY how sessions are opened. 'orvane config' shows what holds.\n"
    "\n"
    "'orvane VERB --help' explains a verb, with examples.";

struct Named {
    std::string_view name;
    AddVerb add;
};

constexpr std::array kVerbs{
    Named{"list", addList},         Named{"info", addInfo},        Named{"scan", addScan},
    Named{"ping", addPing},         Named{"read", addRead},        Named{"write", addWrite},
    Named{"modify", addModify},     Named{"dump", addDump},        Named{"restore", addRestore},
    Named{"diff", addDiff},         Named{"watch", addWatch},      Named{"decode", addDecode},
    Named{"map", addMap},           Named{"i2c", addI2c},          Named{"gpio", addGpio},
    Named{"jtag", addJtag},         Named{"adc", addAdc},          Named{"thermal", addThermal},
    Named{"exec", addExec},         Named{"log", addLog},          Named{"replay", addReplay},
    Named{"export", addExport},     Named{"run", addRun},          Named{"serve", addServe},
    Named{"metrics", addMetrics},   Named{"note", addNote},        Named{"config", addConfig},
    Named{"complete", addComplete}, Named{"generate", addGenerate}};

// Of all verbs, but for a command line that begins with the name of one: to define the others takes longer
// than to read a register. That which prints the definitions wants all of them.
bool isWanted(const Named& verb, std::string_view first) {
    const auto isFirst = [first](const Named& each) { return each.name == first; };
    return verb.name == first || first == "generate" || std::none_of(kVerbs.begin(), kVerbs.end(), isFirst);
}

void addVerbs(CLI::App& app, Context& context, std::string_view first) {
    app.formatter(std::make_shared<HelpFormatter>(context.console.out.width()));
    app.footer(kFooter);
    app.set_version_flag("--version", "orvane " ORVANE_VERSION);
    app.fallthrough(false);
    app.require_subcommand(0, 1); // a second verb's name is a word of the first
    for (const Named& verb : kVerbs)
        if (isWanted(verb, first))
            verb.add(app, context);
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

// What is wrong with the words, and what they may have meant.
std::string complaintOf(const CLI::ExtrasError& problem, const CLI::App& verb) {
    for (const std::string& word : verb.remaining()) {
        std::vector<std::string> known;
        const bool isOption = word.size() > 1 && word[0] == '-';
        if (isOption)
            for (const CLI::Option* option : verb.get_options())
                for (const std::string& name : option->get_lnames())
                    known.push_back("--" + name);
        else
            for (const CLI::App* each : shownVerbs(verb))
                known.push_back(each->get_name());
        if (known.empty())
            break;
        const std::string meant = nearest(word, known);
        return fmt::format("no {} {}{}", isOption ? "option" : "verb", word,
                           meant.empty() ? "" : fmt::format("; did you mean {}?", meant));
    }
    return problem.what();
}

// What a number may be, from the parser's "NAME: Value V not in range LOW to HIGH".
std::string complaintOf(const CLI::ValidationError& problem) {
    constexpr std::size_t kLongest = 20; // digits of a limit that says something
    const std::string text = problem.what();
    const std::size_t name = text.find(": Value ");
    const std::size_t low = text.rfind(" range ");
    const std::size_t high = text.find(" to ", low);
    if (name == std::string::npos || high == std::string::npos)
        return text;
    const auto limit = [&](std::size_t from, std::size_t to) {
        std::string number = text.substr(from, to - from);
        if (number.find('.') != std::string::npos) {
            number.erase(number.find_last_not_of('0') + 1);
            number.erase(number.find_last_not_of('.') + 1);
        }
        return number;
    };
    const std::string least = limit(low + 7, high);
    const std::string most = limit(high + 4, text.size());
    return text.substr(0, name) +
           (most.size() > kLongest ? " must be positive" : fmt::format(" must be {} to {}", least, most));
}

// From the parser's "Could not convert: NAME = V".
std::string complaintOf(const CLI::ConversionError& problem) {
    constexpr std::string_view kBegin = "Could not convert: ";
    const std::string text = problem.what();
    const std::size_t sign = text.find(" = ");
    if (text.compare(0, kBegin.size(), kBegin) != 0 || sign == std::string::npos)
        return text;
    return fmt::format("{} must be a number from 0 on, not '{}'",
                       text.substr(kBegin.size(), sign - kBegin.size()), text.substr(sign + 3));
}

int misused(Context& context, const CLI::App& app, const std::string& text) {
    return complain(context, fmt::format("{}\nTry '{} --help'.", text, fullName(givenVerb(&app))), kUsage);
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
    } catch (const CLI::ExtrasError& problem) {
        return misused(context, app, complaintOf(problem, *givenVerb(&app)));
    } catch (const CLI::ValidationError& problem) {
        return misused(context, app, complaintOf(problem));
    } catch (const CLI::ConversionError& problem) {
        return misused(context, app, complaintOf(problem));
    } catch (const CLI::ParseError& problem) {
        return misused(context, app, problem.what());
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
        context.useSettings();
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
        addVerbs(app, context, argc > 1 ? argv[1] : "");
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
