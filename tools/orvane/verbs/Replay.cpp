// orvane replay: the accesses of a transaction log once more.
#include "tools/orvane/board/Targets.h"
#include "tools/orvane/cli/Verb.h"
#include "tools/orvane/log/LogFile.h"
#include "tools/orvane/log/ServiceSteps.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>
#include <map>
#include <orvane/rack.hpp>
#include <set>
#include <string>

namespace OrvaneTool {
namespace {

struct Options {
    std::string file;
    std::string to;
    Selection selection;
    int phy = -1; // 0 and up: instead of those in the log
    bool dryRun = false;
    bool keepGoing = false;
};

const RecordForm kForm{{"place", "space", "at", "access", "operation", "arguments", "value", "logged",
                        "result", "writes", "reads", "calls", "differing", "skipped", "total"},
                       {}};

struct Counts {
    std::size_t writes = 0;
    std::size_t reads = 0;
    std::size_t calls = 0; // of services
    std::size_t differing = 0;

    std::size_t steps() const { return writes + reads + calls; }
};

// The steps of the log that can be repeated, of one port or adapter.
class Plan {
public:
    // Throws UsageError when it is not said which port, and Failure when the log has nothing of it.
    explicit Plan(const Options& options) : log_(options.file), selection_(options.selection) {
        std::set<std::string> places;
        LogFile::Entries entries = log_.entries(selection_);
        for (LogRecord entry; entries.next(entry);) {
            if (entry.kind != LogRecord::Kind::Access && entry.kind != LogRecord::Kind::Service)
                continue;
            places.insert(placeOf(entry.access));
            ++(isStep(entry) ? size_ : skipped_);
        }
        const std::string option = log_.hasTimes() ? "--device" : "--adapter";
        if (places.size() > 1)
            throw UsageError(fmt::format("{}: the log has accesses of {}{}: choose one with {}", options.file,
                                         log_.hasTimes() ? "" : "adapters ", fmt::join(places, ", "),
                                         option));
        if (places.empty())
            refuse(options);
    }

    std::size_t size() const { return size_; }
    std::size_t skipped() const { return skipped_; }

    // Until `work` returns false.
    template <class Work>
    void forEach(Work work) const {
        LogFile::Entries entries = log_.entries(selection_);
        for (LogRecord entry; entries.next(entry);)
            if (isStep(entry) && !work(entry))
                return;
    }

private:
    static std::string placeOf(const LoggedAccess& access) {
        return access.device.empty() ? std::to_string(access.adapter) : access.device;
    }

    // 64-bit registers have no transport; a queued read without a value was never executed, and what failed
    // may have been or not.
    static bool isStep(const LogRecord& entry) {
        const LoggedAccess& access = entry.access;
        if (entry.kind != LogRecord::Kind::Access)
            return canBeRepeated(entry);
        return access.value && *access.value <= 0xFFFFFFFF &&
               (access.outcome.empty() || access.outcome == "done");
    }

    // There is nothing of what was selected: says what there is instead.
    [[noreturn]] void refuse(const Options& options) const {
        std::set<std::string> places;
        LogFile::Accesses accesses = log_.accesses({});
        for (LoggedAccess access; accesses.next(access);)
            places.insert(placeOf(access));
        const std::string wanted = selection_.adapter >= 0 ? fmt::format(" of adapter {}", selection_.adapter)
                                   : selection_.device.empty() ? ""
                                                               : " of " + selection_.device;
        throw Failure(
            fmt::format("{}: there are no accesses{} in it{}", options.file, wanted,
                        places.empty() ? "" : fmt::format("; there are of {}", fmt::join(places, ", "))));
    }

    LogFile log_;
    Selection selection_;
    std::size_t size_ = 0;
    std::size_t skipped_ = 0;
};

unsigned phyOf(const Options& options, const LoggedAccess& access) {
    return options.phy >= 0 ? static_cast<unsigned>(options.phy) : access.phy;
}

// A step as a record: an access or a call, with what the log has of it.
Record stepRecord(const Options& options, const LogRecord& entry, std::size_t place) {
    const LoggedAccess& access = entry.access;
    const bool call = entry.kind == LogRecord::Kind::Service;
    Record record(call ? "call" : "access");
    if (!options.to.empty())
        record.device(options.to);
    record.phy(phyOf(options, access)).put("place", place);
    if (call)
        return std::move(record.put("operation", entry.operation).put("arguments", entry.arguments));
    return std::move(
        record.at(nameOf(access.reg.space), access.reg.mmd, access.reg.address, access.reg.text())
            .put("access", access.write ? "write" : "read"));
}

void printPlan(Context& context, const Options& options, const Plan& plan) {
    RecordSink& records = context.records(kForm);
    Stream& out = context.console.out;
    std::size_t place = 0;
    plan.forEach([&](const LogRecord& entry) {
        const LoggedAccess& access = entry.access;
        const unsigned phy = phyOf(options, access);
        const bool call = entry.kind == LogRecord::Kind::Service;
        ++place;
        if (!records.isText()) {
            Record record = stepRecord(options, entry, place);
            if (!call)
                record.put("value", *access.value);
            records.put(record);
        } else if (call) {
            out.print("call  PHY {} {} {}\n", phy, entry.operation, entry.arguments);
        } else {
            out.print("{} PHY {} {} {}\n", access.write ? "write" : "read ", phy, access.reg.text(),
                      access.valueText());
        }
        out.flushWhenFull();
        return true;
    });
}

Orvane::RegisterAddress addressOf(const Register& reg) {
    if (reg.space == Space::C22)
        return Orvane::clause22(reg.address);
    return reg.space == Space::Ext32 ? Orvane::ext32(reg.address)
                                     : Orvane::RegisterAddress{reg.mmd, reg.address};
}

// Carries out steps and compares what they give.
class Replay {
public:
    Replay(Context& context, const Options& options)
        : context_(context),
          options_(options),
          records_(context.records(kForm)),
          target_(findTarget(context, options.to)) {}

    // Whether the board still answers as in the log.
    bool repeat(const LogRecord& entry) {
        context_.interrupts().check();
        return entry.kind == LogRecord::Kind::Service ? repeatCall(entry) : repeatAccess(entry);
    }

    const Counts& counts() const { return counts_; }

private:
    // Kept, so that its session is opened once.
    const Orvane::Phy& phy(const LoggedAccess& access) {
        const unsigned id = phyOf(options_, access);
        const auto found = phys_.find(id);
        return found != phys_.end() ? found->second : phys_.emplace(id, target_.port->phy(id)).first->second;
    }

    bool repeatAccess(const LogRecord& entry) {
        const LoggedAccess& access = entry.access;
        const Orvane::RegisterAddress address = addressOf(access.reg);
        const auto logged = static_cast<std::uint32_t>(*access.value);
        if (access.write) {
            ++counts_.writes;
            phy(access).write(address, logged, context_.within());
            return true;
        }
        ++counts_.reads;
        const std::uint32_t now = phy(access).read(address, context_.within());
        if (now == logged)
            return true;
        ++counts_.differing;
        if (!records_.isText())
            records_.put(
                stepRecord(options_, entry, counts_.steps()).put("value", now).put("logged", logged));
        else
            context_.console.out.print("access {}: read PHY {} {}: {} in the log, 0x{:0{}X} now\n",
                                       counts_.steps(), phyOf(options_, access), access.reg.text(),
                                       access.valueText(), now, access.digits);
        return false;
    }

    bool repeatCall(const LogRecord& call) {
        ++counts_.calls;
        const std::string now = repeated(phy(call.access), call, context_.within());
        if (now.empty() || now == call.result)
            return true;
        ++counts_.differing;
        if (!records_.isText())
            records_.put(
                stepRecord(options_, call, counts_.steps()).put("result", now).put("logged", call.result));
        else
            context_.console.out.print("access {}: {} PHY {} {}: {} in the log, {} now\n", counts_.steps(),
                                       call.operation, phyOf(options_, call.access), call.arguments,
                                       call.result, now);
        return false;
    }

    Context& context_;
    const Options& options_;
    RecordSink& records_;
    Target target_;
    std::map<unsigned, Orvane::Phy> phys_;
    Counts counts_;
};

// What came of all of it, as a line or a record.
void tell(Context& context, const Options& options, const Plan& plan, const Counts& counts) {
    RecordSink& records = context.records(kForm);
    if (!records.isText()) {
        Record record("summary");
        record.device(options.to);
        records.put(record.put("writes", counts.writes)
                        .put("reads", counts.reads)
                        .put("calls", counts.calls)
                        .put("differing", counts.differing)
                        .put("skipped", plan.skipped())
                        .put("total", plan.size()));
        return;
    }
    context.console.out.print(
        "{} of {} accesses: {} writes, {} reads, {}{} differ{}\n", counts.steps(), plan.size(), counts.writes,
        counts.reads, counts.calls > 0 ? fmt::format("{} calls of services, ", counts.calls) : "",
        counts.differing, plan.skipped() > 0 ? fmt::format("; {} cannot be repeated", plan.skipped()) : "");
}

int run(Context& context, const Options& options) {
    const Plan plan(options);
    if (options.dryRun) {
        printPlan(context, options, plan);
        return kSuccess;
    }
    if (options.to.empty())
        throw UsageError("replay: say where to: --to DEVICE, or --dry-run");
    Replay replay(context, options);
    plan.forEach([&](const LogRecord& entry) { return replay.repeat(entry) || options.keepGoing; });
    tell(context, options, plan, replay.counts());
    return replay.counts().differing == 0 ? kSuccess : kFailed;
}

} // namespace

void addReplay(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"replay", "Repeat the accesses of a transaction log and compare the reads",
                      "  orvane replay session.csv --dry-run\n"
                      "  orvane replay session.csv --to OV0001:0              to the first difference\n"
                      "  orvane replay session.csv --to OV0001:0 --keep-going\n"
                      "  orvane replay session.csv --to OV0002:0 --adapter 1 --phy 4\n"
                      " Accesses go straight to their registers, one by one, in the log's order; queued\n"
                      " ones too. Calls of I2C, GPIO and the thermal unit are made again, others are not.\n"
                      " The exit status is 1 when a read differs.\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("FILE", options->file, "The log")->required()->type_name("");
    verb.add_option("--to", options->to, "Device that the accesses go to")->type_name("DEVICE");
    verb.add_option("--adapter", options->selection.adapter, "Repeat the accesses of this adapter of the log")
        ->type_name("N")
        ->check(CLI::Range(0, 1000000).description(""));
    verb.add_option("--device", options->selection.device, "Or those of this port, in a log that names them")
        ->type_name("DEVICE");
    verb.add_option("--phy", options->phy, "Send them to this PHY instead of those in the log")
        ->type_name("PHY")
        ->check(CLI::Range(0, 127).description(""));
    verb.add_flag("--dry-run", options->dryRun, "Print what would be sent, and send nothing");
    verb.add_flag("--keep-going", options->keepGoing, "Go on behind differences, and count them");
    addFormatOptions(verb, context);
    addBoardOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
