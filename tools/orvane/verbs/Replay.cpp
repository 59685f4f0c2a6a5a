// orvane replay: the accesses of a transaction log once more.
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/log/LogFile.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>
#include <set>

namespace OrvaneTool {
namespace {

struct Options {
    std::string file;
    std::string device;
    int adapter = -1;
    int phy = -1;
    bool dryRun = false;
    bool keepGoing = false;
};

struct Counts {
    std::size_t writes = 0;
    std::size_t reads = 0;
    std::size_t differing = 0;
};

// The accesses of the log that can be repeated, of one adapter.
class Plan {
public:
    // Throws UsageError when it is not said which adapter.
    explicit Plan(const Options& options) : log_(options.file), selection_{options.adapter, -1} {
        std::set<unsigned> adapters;
        LogFile::Accesses accesses = log_.accesses(selection_);
        for (LoggedAccess access; accesses.next(access);) {
            adapters.insert(access.adapter);
            ++(canBeRepeated(access) ? size_ : skipped_);
        }
        if (adapters.size() > 1)
            throw UsageError(fmt::format("{}: the log has accesses of adapters {}: choose one with --adapter",
                                         options.file, fmt::join(adapters, ", ")));
    }

    std::size_t size() const { return size_; }
    std::size_t skipped() const { return skipped_; }

    // Until `work` returns false.
    template <class Work>
    void forEach(Work work) const {
        LogFile::Accesses accesses = log_.accesses(selection_);
        for (LoggedAccess access; accesses.next(access);)
            if (canBeRepeated(access) && !work(access))
                return;
    }

private:
    // 64-bit registers have no transport; a queued read without a value was never executed.
    static bool canBeRepeated(const LoggedAccess& access) {
        return access.value && *access.value <= 0xFFFFFFFF;
    }

    LogFile log_;
    Selection selection_;
    std::size_t size_ = 0;
    std::size_t skipped_ = 0;
};

unsigned phyOf(const Options& options, const LoggedAccess& access) {
    return options.phy >= 0 ? static_cast<unsigned>(options.phy) : access.phy;
}

void printPlan(Stream& out, const Options& options, const Plan& plan) {
    plan.forEach([&](const LoggedAccess& access) {
        out.print("{} PHY {} {} {}\n", access.write ? "write" : "read ", phyOf(options, access),
                  access.reg.text(), access.valueText());
        out.flushWhenFull();
        return true;
    });
}

// Whether the board still answers as in the log.
bool repeat(Device& device, unsigned phy, const LoggedAccess& access, Counts& counts) {
    const auto logged = static_cast<std::uint32_t>(*access.value);
    Registers registers(device, phy, Way::Single);
    if (access.write) {
        ++counts.writes;
        registers.run({{access.reg, logged}});
        return true;
    }
    ++counts.reads;
    const std::uint32_t now = registers.read({access.reg}).front();
    if (now == logged)
        return true;
    ++counts.differing;
    device.context().console.out.print("access {}: read PHY {} {}: {} in the log, 0x{:0{}X} now\n",
                                       counts.reads + counts.writes, phy, access.reg.text(),
                                       access.valueText(), now, access.digits);
    return false;
}

Counts repeatAll(Context& context, const Options& options, const Plan& plan) {
    Counts counts;
    Device device(context, options.device);
    plan.forEach([&](const LoggedAccess& access) {
        return repeat(device, phyOf(options, access), access, counts) || options.keepGoing;
    });
    return counts;
}

int run(Context& context, const Options& options) {
    const Plan plan(options);
    Stream& out = context.console.out;
    if (options.dryRun) {
        printPlan(out, options, plan);
        return kSuccess;
    }
    if (options.device.empty())
        throw UsageError("replay: say where to: --to DEVICE, or --dry-run");
    const Counts counts = repeatAll(context, options, plan);
    out.print("{} of {} accesses: {} writes, {} reads, {} differ{}\n", counts.reads + counts.writes,
              plan.size(), counts.writes, counts.reads, counts.differing,
              plan.skipped() > 0 ? fmt::format("; {} cannot be repeated", plan.skipped()) : "");
    return counts.differing == 0 ? kSuccess : kFailed;
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
                      " ones too. The exit status is 1 when a read differs.\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("FILE", options->file, "The log")->required()->type_name("");
    verb.add_option("--to", options->device, "Device that the accesses go to")->type_name("DEVICE");
    verb.add_option("--adapter", options->adapter, "Repeat the accesses of this adapter of the log")
        ->type_name("N");
    verb.add_option("--phy", options->phy, "Send them to this PHY instead of those in the log")
        ->type_name("PHY");
    verb.add_flag("--dry-run", options->dryRun, "Print what would be sent, and send nothing");
    verb.add_flag("--keep-going", options->keepGoing, "Go on behind differences, and count them");
    addBoardOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
