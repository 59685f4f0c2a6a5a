// orvane log: what is in a transaction log.
#include "tools/orvane/cli/Verb.h"
#include "tools/orvane/log/HtmlReport.h"
#include "tools/orvane/names/FieldTable.h"
#include "tools/orvane/names/NamedPhy.h"
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
    Selection selection;
    bool changed = false;
    std::string html;
};

Cell count(std::size_t number) {
    return {std::to_string(number), number};
}

void printTotals(Stream& out, const LogFile& log, const LogSummary& summary) {
    out.print("{} accesses: {} reads, {} writes, {} registers\n", summary.accesses(), summary.reads,
              summary.writes, summary.registers.size());
    if (log.configurationAccesses() > 0)
        out.print("{} accesses of the configuration space\n", log.configurationAccesses());
    if (log.strayValues() > 0)
        out.print("{} values of queued reads that are not in the log\n", log.strayValues());
    log.forEachNote([&](std::string_view note) {
        out.print("note: {}\n", note);
        out.flushWhenFull();
    });
}

bool isShown(const Options& options, const RegisterHistory& history) {
    return !options.changed || history.changes > 0;
}

void printSummary(Context& context, const Options& options, const LogFile& log, const LogSummary& summary,
                  const KnownMaps& maps) {
    Stream& out = context.console.out;
    const bool named = showsFields(context, maps, {});
    const auto rows = [&](const auto& take) {
        for (const auto& [reg, history] : summary.registers) {
            if (!isShown(options, history))
                continue;
            Cell changes = count(history.changes);
            changes.painted = out.painted(history.changes > 0 ? Colour::Yellow : Colour::None, changes.text);
            const Orvane::MapRegister* const mapped = maps.find(reg.reg);
            take({count(reg.adapter), count(reg.phy), reg.reg.text(), mapped ? mapped->name() : "",
                  count(history.reads), count(history.writes), changes, history.first.text(),
                  history.last.text()});
        }
    };
    if (context.format() == Format::Text) {
        printTotals(out, log, summary);
        if (std::none_of(summary.registers.begin(), summary.registers.end(),
                         [&](const auto& each) { return isShown(options, each.second); }))
            return;
    }
    printRows(out, context.format(),
              {{"adapter", "ADAPTER", true},
               {"phy", "PHY", true},
               {"address", "ADDRESS"},
               {named ? "register" : "", named ? "REGISTER" : ""},
               {"reads", "READS", true},
               {"writes", "WRITES", true},
               {"changes", "CHANGES", true},
               {"first", "FIRST READ"},
               {"last", "LAST READ"}},
              rows);
}

// The fields of a value that differ from the value before; all of them when there is none.
std::string fieldsText(const Asked& asked, std::optional<std::uint64_t> before, std::uint64_t value) {
    std::string text;
    if (asked.mapped == nullptr || before == value)
        return text;
    for (const Orvane::DecodedField& each : Orvane::RegisterMap::decode(*asked.mapped, value)) {
        const bool changed = !before || each.field->extract(*before) != each.raw;
        if (changed && (asked.field == nullptr || asked.field == each.field))
            text += (text.empty() ? "" : ", ") + each.field->name + ' ' + meaningOf(each);
    }
    return text;
}

// A row for each access to one register.
void forEachRow(const Stream& out, LogFile::Accesses accesses, const PhyRegister& reg, const Asked& asked,
                const std::function<void(const Row&)>& take) {
    std::optional<std::uint64_t> before; // what the register held as far as the log knows
    LoggedAccess access;
    for (std::size_t place = 1; accesses.next(access); ++place) {
        const PhyRegister accessed = registerOf(access);
        if (reg < accessed || accessed < reg)
            continue;
        const std::uint64_t changed = before && access.value ? *before ^ *access.value : 0;
        const std::string bits = changed != 0 ? fmt::format("0x{:0{}X}", changed, access.digits) : "";
        take({count(place),
              count(reg.adapter),
              count(reg.phy),
              fmt::format("{}{}", access.queued ? "queued " : "", access.write ? "write" : "read"),
              access.valueText(),
              {bits, bits, out.painted(Colour::Yellow, bits)},
              access.value ? fieldsText(asked, before, *access.value) : ""});
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
    const bool decoded = showsFields(context, maps, {wanted});
    printRows(out, context.format(),
              {{"place", "PLACE", true},
               {"adapter", "ADAPTER", true},
               {"phy", "PHY", true},
               {"access", "ACCESS"},
               {"value", "VALUE"},
               {"changed", "CHANGED"},
               {decoded ? "fields" : "", decoded ? "FIELDS" : ""}},
              [&](const auto& take) {
                  for (const PhyRegister& each : asked)
                      forEachRow(out, log.accesses(options.selection), each, wanted, take);
              });
}

void writeReport(Context& context, const Options& options, const LogFile& log, const LogSummary& summary,
                 const KnownMaps& maps) {
    std::ofstream file(options.html, std::ios::binary | std::ios::trunc);
    writeHtmlReport(file, options.file.substr(options.file.rfind('/') + 1), log, options.selection, summary,
                    maps);
    if (!file.flush())
        throw Failure(fmt::format("{}: cannot write: {}", options.html, errorText(errno)));
    if (const ReportLimits limits = limitsFor(summary); limits.thinned)
        context.console.err.print("orvane: {}: the log is too long for one page: of each register it has the "
                                  "first {} and the last {} accesses; all are counted\n",
                                  options.html, limits.accesses - limits.accesses / 2, limits.accesses / 2);
    context.console.err.flushIfPossible();
}

int run(Context& context, const Options& options) {
    const KnownMaps maps(context);
    const LogFile log(options.file);
    const LogSummary summary = summaryOf(log, options.selection);
    if (!options.html.empty())
        writeReport(context, options, log, summary, maps);
    else if (!options.reg.empty())
        printHistory(context, options, log, summary, maps);
    else
        printSummary(context, options, log, summary, maps);
    return kSuccess;
}

} // namespace

void addLog(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"log", "Summarise a transaction log of the library",
                      "  orvane log session.csv\n"
                      "  orvane log session.csv --changed             registers that read differently\n"
                      "  orvane log session.csv --register 30.0xC010  its accesses, in order\n"
                      "  orvane log session.csv --register AN.STATUS --fields\n"
                      "  orvane log session.csv --html report.html    a page to look around in\n"
                      " A log has no time, but order: places count its accesses from 1.\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("FILE", options->file, "The log")->required()->type_name("");
    verb.add_option("--register", options->reg, "History of this register: an address or a name")
        ->type_name("ADDRESS");
    verb.add_option("--adapter", options->selection.adapter, "Only this adapter")->type_name("N");
    verb.add_option("--phy", options->selection.phy, "Only this PHY")->type_name("PHY");
    verb.add_flag("--changed", options->changed, "Only registers whose reads changed");
    verb.add_option("--html", options->html, "Write a report to this file")->type_name("FILE");
    addFieldOptions(verb, context);
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
