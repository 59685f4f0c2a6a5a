// orvane config: what holds, and where it comes from.
#include "tools/orvane/cli/Verb.h"
#include "tools/orvane/output/RecordSink.h"
#include "tools/orvane/verbs/Verbs.h"

#include <array>
#include <cstdlib>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options {};

struct Row {
    std::string name;
    std::string value;
    std::string from; // a variable or the file; empty: nobody says anything
};

// The variable that has a say of it, when it is set.
bool isSet(const char* variable) {
    const char* const value = std::getenv(variable); // NOLINT(concurrency-mt-unsafe)
    return value != nullptr && *value != '\0';
}

std::string joined(const std::vector<std::string>& list) {
    return fmt::format("{}", fmt::join(list, " "));
}

class Report {
public:
    explicit Report(const Context& context) : context_(context) {
        add("addresses", joined(context.addresses), "ORVANE_ADDRESS");
        add("maps", joined(context.mapFiles), "ORVANE_MAPS");
        add("log", context.logFile, "ORVANE_LOG");
        addSession();
        for (const auto& [alias, device] : context.settings().aliases)
            rows.push_back({"alias " + alias, device, context.settings().path});
    }

    std::vector<Row> rows;

private:
    void add(const char* name, const std::string& value, const char* variable) {
        rows.push_back({name, value,
                        value.empty()     ? ""
                        : isSet(variable) ? variable
                                          : context_.settings().path});
    }

    void addSession() {
        for (const auto& [variable, mode] :
             std::array<std::pair<const char*, const char*>, 3>{{{"EXCLUSIVE_KEY", "exclusive"},
                                                                 {"CONCURRENT_KEY", "concurrent"},
                                                                 {"SIMPLE_KEY", "simple"}}})
            if (isSet(variable)) {
                rows.push_back({"session", fmt::format("{} {}", mode, std::getenv(variable)),
                                context_.keyFromSettings ? context_.settings().path : variable});
                return;
            }
        rows.push_back({"session", "simple", ""});
    }

    const Context& context_;
};

int run(Context& context, const Options&) {
    RecordSink& records = context.records(
        {{"name", "text", "source"}, {{"name", "SETTING"}, {"text", "VALUE"}, {"source", "FROM"}}});
    for (const Row& row : Report(context).rows)
        records.put(std::move(Record("setting")
                                  .put("name", row.name)
                                  .put("text", Cell(row.value.empty() ? "-" : row.value, row.value))
                                  .put("source", Cell(row.from.empty() ? "-" : row.from, row.from))));
    return kSuccess;
}

} // namespace

void addConfig(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"config", "Show what is configured, and where it comes from",
                      "  orvane config\n"
                      " The file is ~/.config/orvane/config.toml ($XDG_CONFIG_HOME/orvane/config.toml):\n"
                      "\n"
                      "   addresses = [\"192.168.1.20\"]\n"
                      "   maps = [\"chip.json\"]\n"
                      "   log = \"/var/tmp/bench.log\"\n"
                      "   session = { mode = \"exclusive\", key = 0x4711 }\n"
                      "   [aliases]\n"
                      "   left = \"OV0001:0\"\n"
                      "\n"
                      " Options go before environment variables, and these before the file.\n"});
    addBoardOptions(verb, context);
    addMapOptions(verb, context);
    addFormatOptions(verb, context);
    setAction(verb, context, std::make_shared<Options>(), run);
}

} // namespace OrvaneTool
