// orvane log: what is in a transaction log.
#include "tools/orvane/log/HtmlReport.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/verbs/Verbs.h"

#include <algorithm>
#include <cerrno>
#include <fmt/format.h>
#include <fstream>

namespace OrvaneTool {
namespace {

struct Options {
    std::string file;
    std::string reg;
    int adapter = -1;
    int phy = -1;
    bool changed = false;
    std::string html;
};

bool isWanted(const Options& options, unsigned adapter, unsigned phy) {
    return (options.adapter < 0 || adapter == static_cast<unsigned>(options.adapter)) &&
           (options.phy < 0 || phy == static_cast<unsigned>(options.phy));
}

// The accesses that are asked about; the rest is forgotten.
void filter(const Options& options, LogFile& log) {
    auto& all = log.accesses;
    all.erase(
        std::remove_if(all.begin(), all.end(),
                       [&](const LoggedAccess& each) { return !isWanted(options, each.adapter, each.phy); }),
        all.end());
}

Cell count(std::size_t number) {
    return {std::to_string(number), number};
}

void printTotals(Stream& out, const LogFile& log, const std::vector<RegisterHistory>& histories) {
    const auto writes = static_cast<std::size_t>(std::count_if(
        log.accesses.begin(), log.accesses.end(), [](const LoggedAccess& each) { return each.write; }));
    out.print("{} accesses: {} reads, {} writes, {} registers\n", log.accesses.size(),
              log.accesses.size() - writes, writes, histories.size());
    if (log.configurationAccesses > 0)
        out.print("{} accesses of the configuration space\n", log.configurationAccesses);
    if (log.strayValues > 0)
        out.print("{} values of queued reads that are not in the log\n", log.strayValues);
    for (const std::string& note : log.notes)
        out.print("note: {}\n", note);
}

void printSummary(Context& context, const Options& options, const LogFile& log,
                  const std::vector<RegisterHistory>& histories) {
    Stream& out = context.console.out;
    Table table({{"adapter", "ADAPTER", true},
                 {"phy", "PHY", true},
                 {"address", "ADDRESS"},
                 {"reads", "READS", true},
                 {"writes", "WRITES", true},
                 {"changes", "CHANGES", true},
                 {"first", "FIRST READ"},
                 {"last", "LAST READ"}});
    for (const RegisterHistory& each : histories) {
        if (options.changed && each.changes == 0)
            continue;
        Cell changes = count(each.changes);
        changes.painted = out.painted(each.changes > 0 ? Colour::Yellow : Colour::None, changes.text);
        table.add({count(each.adapter), count(each.phy), each.reg.text(), count(each.reads),
                   count(each.writes), changes, each.first, each.last});
    }
    if (context.format() == Format::Text)
        printTotals(out, log, histories);
    if (table.size() > 0 || context.format() != Format::Text)
        table.print(out, context.format());
}

// A row for each access to one register.
void addAccesses(Table& table, const Stream& out, const LogFile& log, const RegisterHistory& history) {
    std::optional<std::uint64_t> before; // what the register held as far as the log knows
    for (const std::size_t place : history.accesses) {
        const LoggedAccess& access = log.accesses[place];
        const std::uint64_t changed = before && access.value ? *before ^ *access.value : 0;
        const std::string bits = changed != 0 ? fmt::format("0x{:0{}X}", changed, access.digits) : "";
        table.add({count(place + 1),
                   count(history.adapter),
                   count(history.phy),
                   fmt::format("{}{}", access.queued ? "queued " : "", access.write ? "write" : "read"),
                   access.valueText(),
                   {bits, bits, out.painted(Colour::Yellow, bits)}});
        before = access.value ? access.value : before;
    }
}

void printHistory(Context& context, const Options& options, const LogFile& log,
                  const std::vector<RegisterHistory>& histories) {
    const bool wide = options.reg.find('.') == std::string::npos;
    const Register reg = parseRegisters(options.reg, wide ? Space::Ext32 : Space::C45).front();
    Stream& out = context.console.out;
    Table table({{"place", "PLACE", true},
                 {"adapter", "ADAPTER", true},
                 {"phy", "PHY", true},
                 {"access", "ACCESS"},
                 {"value", "VALUE"},
                 {"changed", "CHANGED"}});
    for (const RegisterHistory& history : histories)
        if (history.reg == reg)
            addAccesses(table, out, log, history);
    if (table.size() == 0)
        throw Failure(fmt::format("{}: there is no access to {} in it", options.file, reg.text()));
    table.print(out, context.format());
}

void writeReport(const Options& options, const LogFile& log, const std::vector<RegisterHistory>& histories) {
    std::ofstream file(options.html, std::ios::binary | std::ios::trunc);
    file << htmlReport(options.file.substr(options.file.rfind('/') + 1), log, histories);
    if (!file.flush())
        throw Failure(fmt::format("{}: cannot write: {}", options.html, errorText(errno)));
}

int run(Context& context, const Options& options) {
    LogFile log = readLog(options.file);
    filter(options, log);
    const std::vector<RegisterHistory> histories = historiesOf(log);
    if (!options.html.empty())
        writeReport(options, log, histories);
    else if (!options.reg.empty())
        printHistory(context, options, log, histories);
    else
        printSummary(context, options, log, histories);
    return kSuccess;
}

} // namespace

void addLog(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"log", "Summarise a transaction log of the library",
                      "  orvane log session.csv\n"
                      "  orvane log session.csv --changed             registers that read differently\n"
                      "  orvane log session.csv --register 30.0xC010  its accesses, in order\n"
                      "  orvane log session.csv --html report.html    a page to look around in\n"
                      " A log has no time, but order: places count its accesses from 1.\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("FILE", options->file, "The log")->required()->type_name("");
    verb.add_option("--register", options->reg, "History of this register")->type_name("ADDRESS");
    verb.add_option("--adapter", options->adapter, "Only this adapter")->type_name("N");
    verb.add_option("--phy", options->phy, "Only this PHY")->type_name("PHY");
    verb.add_flag("--changed", options->changed, "Only registers whose reads changed");
    verb.add_option("--html", options->html, "Write a report to this file")->type_name("FILE");
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
