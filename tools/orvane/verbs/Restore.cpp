// orvane restore: what a dump holds, written back.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/names/DryRun.h"
#include "tools/orvane/names/DumpedPhy.h"
#include "tools/orvane/names/Kinds.h"
#include "tools/orvane/names/PhyAccess.h"
#include "tools/orvane/names/RegisterRecord.h"
#include "tools/orvane/names/Writable.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/verbs/Verbs.h"

#include <algorithm>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options : RegisterOptions {
    std::string file;
    std::vector<std::string> only;
    bool force = false;
    bool dryRun = false;
};

// One register that is brought back.
struct Step {
    Asked asked;
    std::uint32_t value; // that the dump has
    Restoring how;
};

std::vector<Step> stepsOf(Context& context, const Options& options, const Dump& dump, const KnownMaps& maps) {
    std::vector<Asked> only;
    if (!options.only.empty())
        only = askedFor(context, maps, options, options.only);
    std::vector<Step> steps;
    for (const auto& [reg, value] : dump.values) {
        const Asked asked{reg, maps.find(reg)};
        const auto named = [&, at = reg](const Asked& each) { return each.reg == at; };
        if (!only.empty() && std::none_of(only.begin(), only.end(), named))
            continue;
        if (const Restoring how = restoring(asked, value); how.mask != 0)
            steps.push_back({asked, value, how});
    }
    if (steps.empty())
        throw Failure(fmt::format("{}: there is nothing in it that can be written", options.file));
    return steps;
}

std::vector<Access> writesOf(const std::vector<Step>& steps) {
    std::vector<Access> writes;
    for (const Step& each : steps)
        writes.push_back({each.asked.reg, each.how.written});
    return writes;
}

// What does not hold what was written.
struct Refused {
    Register reg;
    std::uint32_t wanted;
    std::uint32_t held;
};

std::vector<Refused> carryOut(PhyAccess phy, const std::vector<Step>& steps) {
    phy.run(writesOf(steps)).check();
    std::vector<Asked> list;
    for (const Step& each : steps)
        if (each.asked.mapped == nullptr || each.asked.mapped->isSafeToRead())
            list.push_back(each.asked);
    const std::vector<std::uint32_t> values = phy.read(list).all();
    std::vector<Refused> refused;
    std::size_t next = 0;
    for (const Step& each : steps)
        if (next < list.size() && list[next].reg == each.asked.reg)
            if (const std::uint32_t held = values[next++]; ((held ^ each.value) & each.how.mask) != 0)
                refused.push_back({each.asked.reg, each.value, held});
    return refused;
}

void print(Context& context, const Places& places, const std::vector<std::vector<Refused>>& all) {
    RecordSink& records =
        context.records(registerForm(!places.isOne(), {"written", "value", "operation", "registers"},
                                     {{"written", "WANTED"}, {"value", "READ BACK"}}));
    Stream& out = context.console.out;
    for (std::size_t place = 0; place < all.size(); ++place)
        for (const Refused& each : all[place])
            records.put(registerRecord(places.device(place), places.phy(place), {each.reg})
                            .put("written", hexCell(out, each.wanted, each.reg.space))
                            .put("value", hexCell(out, each.held, each.reg.space, each.held ^ each.wanted)));
}

// For programs: that all of it took.
void putRestored(Context& context, const Places& places, std::size_t place, std::size_t registers) {
    if (context.format() == Format::Text)
        return;
    Record record("done");
    record.device(places.device(place)).phy(places.phy(place)).put("operation", "restore");
    context.records({}).put(record.put("registers", registers));
}

int run(Context& context, const Options& given) {
    const Dump dump = readDump(given.file);
    Options options = given;
    options.device = options.device.empty() ? dump.header.device : options.device;
    options.phy = options.phy.empty() ? std::to_string(dump.header.phy) : options.phy;
    options.c22 = dump.header.space == Space::C22;
    options.ext32 = dump.header.space == Space::Ext32;
    Kinds kinds(context);
    if (options.dryRun) {
        const KnownMaps& maps = kinds.unasked(dump.header.identifier);
        return tellPlan(context,
                        planned(writesOf(stepsOf(context, options, dump, maps)), maps, options.routed));
    }
    Places places = options.places(context);
    const auto steps =
        kinds.settle(places, [&](const KnownMaps& maps) { return stepsOf(context, options, dump, maps); });
    std::vector<std::vector<Refused>> refused(places.size());
    places.run("restore", [&](std::size_t place, const Orvane::Phy& phy) {
        const std::string here = fmt::format("{}: restore PHY {}", places.device(place), places.phy(place));
        if (!options.force)
            requireSameKind(dump, options.file, phy, here, context.within());
        const std::size_t kind = kinds.of(place);
        refused[place] = carryOut(PhyAccess(context, phy, kinds.maps(kind), options.routed), steps[kind]);
        if (!refused[place].empty())
            throw Failure(fmt::format("{}: {} of {} registers did not take", here, refused[place].size(),
                                      steps[kind].size()));
    });
    print(context, places, refused);
    const int status = places.finish("restore");
    for (std::size_t place = 0; place < places.size(); ++place)
        if (places.isGood(place))
            putRestored(context, places, place, steps[kinds.of(place)].size());
    if (status == kSuccess && context.format() == Format::Text)
        context.console.out.print("{}: {} registers written\n", options.file, steps.front().size());
    return status;
}

} // namespace

void addRestore(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(
        app, {"restore", "Write a dump back, and read whether it took",
              "  orvane restore before.dump                  to the PHY that it was taken of\n"
              "  orvane restore before.dump OV0002:0 3       to another one, or many, of the same kind\n"
              "  orvane restore before.dump --only 30.0xC000+256 --dry-run\n"
              " Of registers that a map has, only what can be read and written is written: nothing is\n"
              " started, cleared or reset by it. All others are written as the dump has them.\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("DUMP", options->file, "The dump")->required()->type_name("");
    verb.add_option("DEVICE", options->device, "Devices, instead of the dump's own")->type_name("");
    verb.add_option("PHY", options->phy, "PHY addresses on them")->type_name("");
    verb.add_option("--only", options->only,
                    "Of the dump only these registers: ranges, names, patterns; repeatable")
        ->type_name("REGISTERS")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    verb.add_flag("--dry-run", options->dryRun, "Show what would be written, and send nothing");
    verb.add_flag("--routed", options->routed, "Write by the library's path for each register");
    verb.add_flag("--force", options->force, "Write to a PHY of another kind, too");
    addJobs(verb, options->jobs);
    addMapOptions(verb, context);
    addFormatOptions(verb, context);
    addBoardOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
