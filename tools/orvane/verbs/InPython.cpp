// orvane run, serve, metrics: the Python package carries out these verbs itself.
#include "tools/orvane/cli/Python.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

void addInPython(CLI::App& app, Context& context, const char* name, const char* summary,
                 const std::string& examples) {
    const std::string text = fmt::format(
        "{0} 'orvane {1} --help' is answered by the Python package orvane, as is the rest of the verb.\n",
        examples, name);
    CLI::App& verb = addVerb(app, {name, summary, text.c_str()});
    verb.set_help_flag();
    verb.prefix_command();
    verb.callback([&context, &verb, name] {
        context.action = [name, words = verb.remaining()]() -> int {
            becomePython(name, fmt::format("{}.__main__", name), words);
        };
    });
}

} // namespace

void addRun(CLI::App& app, Context& context) {
    addInPython(app, context, "run", "Measure sweeps of a Python program, show and compare data sets",
                "  orvane run sweep.py --plan\n"
                "  orvane run sweep.py --out drive-sweep.orvrun --resume\n"
                "  orvane run show drive-sweep.orvrun\n"
                "  orvane run diff monday.orvrun today.orvrun --tolerance eye=2\n");
}

void addServe(CLI::App& app, Context& context) {
    addInPython(app, context, "serve", "Show the rack in a browser",
                "  orvane serve\n"
                "  orvane serve 'OV00*' --write\n"
                "  orvane serve --log session.csv --run drive-sweep.orvrun\n");
}

void addMetrics(CLI::App& app, Context& context) {
    addInPython(app, context, "metrics", "Count what boards answer, for Prometheus",
                "  orvane metrics\n"
                "  orvane metrics 'OV00*:0' --textfile orvane.prom --interval 15\n");
}

} // namespace OrvaneTool
