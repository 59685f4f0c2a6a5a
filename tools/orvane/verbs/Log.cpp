// orvane log: what is in a transaction log.
#include "tools/orvane/cli/Verb.h"
#include "tools/orvane/log/LogRecords.h"
#include "tools/orvane/names/KnownMaps.h"
#include "tools/orvane/names/RegisterRecord.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/output/RecordSink.h"
#include "tools/orvane/report/LogReport.h"
#include "tools/orvane/report/ReportFile.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options {
    std::string file;
    std::string reg;
    Selection selection;
    bool changed = false;
    bool timeline = false;
    bool force = false;
    std::string html;
};

// "2 gpio.read, 1 i2c.read"
std::string callsText(const LogFile& log, std::size_t& calls) {
    std::string text;
    for (const auto& [operation, count] : log.services()) {
        text += fmt::format("{}{} {}", text.empty() ? "" : ", ", count, operation);
        calls += count;
    }
    return text;
}

void printTotals(Stream& out, const LogFile& log, const LogSummary& summary) {
    out.print("{} accesses: {} reads, {} writes, {} registers\n", summary.accesses(), summary.reads,
              summary.writes, summary.registers.size());
    if (log.configurationAccesses() > 0)
        out.print("{} accesses of the configuration space\n", log.configurationAccesses());
    if (log.strayValues() > 0)
        out.print("{} values of queued reads that are not in the log\n", log.strayValues());
    std::size_t calls = 0;
    if (const std::string text = callsText(log, calls); calls > 0)
        out.print("{} calls of services: {}\n", calls, text);
    if (log.events() > 0)
        out.print("{} events\n", log.events());
    if (log.hasTimes())
        out.print("from {} to {}\n", log.begun(), log.ended());
    log.forEachNote([&](std::string_view note) {
        out.print("note: {}\n", note);
        out.flushWhenFull();
    });
}

bool isShown(const Options& options, const RegisterHistory& history) {
    return !options.changed || history.changes > 0;
}

// The column that says whose registers they are.
Column placeColumn(const LogFile& log) {
    return log.hasTimes() ? Column{"device", "DEVICE"} : Column{"adapter", "ADAPTER", true};
}

Record historyRecord(const Stream& out, const PhyRegister& reg, const RegisterHistory& history,
                     const KnownMaps& maps) {
    Record record = recordOf("history", reg);
    if (const Orvane::MapRegister* const mapped = maps.find(reg.reg))
        record.put("name", mapped->name());
    Cell changes(history.changes);
    changes.painted = out.painted(history.changes > 0 ? Colour::Yellow : Colour::None, changes.text);
    const auto value = [](const RegisterHistory::Value& each) {
        return valueCell(each.digits > 0 ? std::optional(each.bits) : std::nullopt, each.digits);
    };
    return record.put("reads", history.reads)
        .put("writes", history.writes)
        .put("changes", changes)
        .put("first", value(history.first))
        .put("last", value(history.last));
}

void printSummary(Context& context, const Options& options, const LogFile& log, const LogSummary& summary,
                  const KnownMaps& maps) {
    Stream& out = context.console.out;
    std::vector<Column> columns{placeColumn(log), {"phy", "PHY", true}, {"at", "ADDRESS"}};
    if (showsFields(context, maps, {}))
        columns.push_back({"name", "REGISTER"});
    columns.insert(columns.end(), {{"reads", "READS", true},
                                   {"writes", "WRITES", true},
                                   {"changes", "CHANGES", true},
                                   {"first", "FIRST READ"},
                                   {"last", "LAST READ"}});
    RecordSink& records = context.records(
        {{"adapter", "space", "mmd", "register", "at", "name", "reads", "writes", "changes", "first", "last"},
         columns});
    if (records.isText())
        printTotals(out, log, summary);
    for (const auto& [reg, history] : summary.registers)
        if (isShown(options, history))
            records.put(historyRecord(out, reg, history, maps));
}

// A record for each access to one register, with its fields when they are to be decoded.
void forEachAccess(const Stream& out, LogFile::Accesses accesses, const PhyRegister& reg,
                   const Asked* decoded, const std::function<void(const Record&)>& take) {
    std::optional<std::uint64_t> before; // what the register held as far as the log knows
    LoggedAccess access;
    for (std::size_t place = 1; accesses.next(access); ++place) {
        const PhyRegister accessed = registerOf(access);
        if (reg < accessed || accessed < reg)
            continue;
        const std::uint64_t changed = before && access.value ? *before ^ *access.value : 0;
        Record record = recordOf("access", reg);
        record.put("place", place);
        if (!access.time.empty())
            record.put("time", access.time);
        record.put("access", accessText(access)).put("value", valueCell(access.value, access.digits));
        if (changed != 0) {
            const std::string bits = fmt::format("0x{:0{}X}", changed, access.digits);
            record.put("changed", {bits, changed, out.painted(Colour::Yellow, bits)});
        }
        if (decoded != nullptr && access.value)
            putFields(record, *decoded, *access.value, before, before.has_value());
        take(record);
        before = access.value ? access.value : before;
    }
}

// The register of --register: an address, or a name of a map.
Asked askedFor(const Options& options, Context& context, const KnownMaps& maps) {
    const bool wide = options.reg.find('.') == std::string::npos;
    context.sideEffects = true; // nothing is read
    std::vector<std::string> leftOut;
    const auto list = maps.parse(options.reg, wide ? Space::Ext32 : Space::C45, 1, leftOut);
    Asked asked = list.front();
    asked.reg.page = -1; // the log does not know it
    return asked;
}

void printHistory(Context& context, const Options& options, const LogFile& log, const LogSummary& summary,
                  const KnownMaps& maps) {
    const Asked wanted = askedFor(options, context, maps);
    std::vector<PhyRegister> asked;
    for (const auto& [each, history] : summary.registers)
        if (each.reg == wanted.reg)
            asked.push_back(each);
    if (asked.empty())
        throw Failure(fmt::format("{}: there is no access to {} in it", options.file, wanted.reg.text()));
    Stream& out = context.console.out;
    std::vector<Column> columns{{"place", "PLACE", true}, placeColumn(log), {"phy", "PHY", true}};
    if (log.hasTimes())
        columns.insert(columns.begin() + 1, {"time", "TIME"});
    columns.insert(columns.end(), {{"access", "ACCESS"}, {"value", "VALUE"}, {"changed", "CHANGED"}});
    const bool decoded = showsFields(context, maps, {wanted});
    if (decoded)
        columns.push_back({"fields", "FIELDS"});
    RecordSink& records = context.records({{"adapter", "space", "mmd", "register", "at", "place", "time",
                                            "access", "value", "changed", "fields"},
                                           columns});
    records.putAll([&](const auto& take) {
        for (const PhyRegister& each : asked)
            forEachAccess(out, log.accesses(options.selection), each, decoded ? &wanted : nullptr, take);
    });
}

void printTimeline(Context& context, const Options& options, const LogFile& log) {
    std::vector<Column> columns{{"place", "PLACE", true}, placeColumn(log),   {"phy", "PHY", true},
                                {"what", "WHAT"},         {"where", "WHERE"}, {"result", "RESULT"}};
    if (log.hasTimes()) {
        columns[0] = {"time", "TIME"};
        columns.push_back({"outcome", "OUTCOME"});
    }
    RecordSink& records =
        context.records({{"adapter", "place", "time", "space", "mmd", "register", "at", "access", "value",
                          "operation", "arguments", "result", "outcome", "text"},
                         columns});
    records.putAll([&](const auto& take) {
        LogFile::Entries entries = log.entries(options.selection);
        std::size_t place = 0;
        for (LogRecord entry; entries.next(entry);) {
            place += entry.kind == LogRecord::Kind::Access ? 1 : 0;
            take(timelineRecord(entry, place));
        }
    });
}

void writeReport(Context& context, const Options& options, const LogFile& log, const LogSummary& summary,
                 const KnownMaps& maps) {
    const std::string title = options.file.substr(options.file.rfind('/') + 1);
    writeReportFile(context, options.html, options.force, title, [&](ReportPage& page) {
        addLogReport(page, title, log, options.selection, summary, maps);
    });
    tellWhatIsLeftOut(context, options.html, summary);
}

int run(Context& context, const Options& options) {
    const KnownMaps maps(context);
    const LogFile log(options.file);
    if (options.timeline) {
        printTimeline(context, options, log);
        return kSuccess;
    }
    const LogSummary summary = summaryOf(log, options.selection);
    if (!options.html.empty()) {
        writeReport(context, options, log, summary, maps);
    } else if (!options.reg.empty()) {
        printHistory(context, options, log, summary, maps);
    } else {
        printSummary(context, options, log, summary, maps);
    }
    return kSuccess;
}

} // namespace

void addLog(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"log", "Summarise a transaction log",
                      "  orvane log session.csv\n"
                      "  orvane log session.csv --changed             registers that read differently\n"
                      "  orvane log session.csv --register 30.0xC010  its accesses, in order\n"
                      "  orvane log session.csv --register AN.STATUS --fields\n"
                      "  orvane log session.csv --html report.html    a page to look around in\n"
                      "  orvane log session.csv --timeline            everything in order, notes among it\n"
                      " Logs of --log have times. Those of the flat functions have none, but order: places\n"
                      " count accesses from 1.\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("FILE", options->file, "The log")->required()->type_name("");
    verb.add_option("--register", options->reg, "History of this register: an address or a name")
        ->type_name("ADDRESS");
    verb.add_option("--adapter", options->selection.adapter, "Only this adapter")
        ->type_name("N")
        ->check(CLI::Range(0, 1000000).description(""));
    verb.add_option("--phy", options->selection.phy, "Only this PHY")
        ->type_name("PHY")
        ->check(CLI::Range(0, 127).description(""));
    verb.add_option("--device", options->selection.device, "Only this port, in a log that names them")
        ->type_name("DEVICE");
    verb.add_flag("--timeline", options->timeline,
                  "Show all of it in order: accesses, services, events, notes");
    verb.add_flag("--changed", options->changed, "Only registers whose reads changed");
    verb.add_option("--html", options->html, "Write a report to this file")->type_name("FILE");
    verb.add_flag("--force", options->force, "Overwrite the file");
    addFieldOptions(verb, context);
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
