// orvane diff: dumps, and PHYs as they are now.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/board/Identifier.h"
#include "tools/orvane/names/DumpedPhy.h"
#include "tools/orvane/names/FieldTable.h"
#include "tools/orvane/names/Kinds.h"
#include "tools/orvane/names/PhyAccess.h"
#include "tools/orvane/names/RegisterRecord.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options : RegisterOptions {
    std::vector<std::string> words;
    bool live = false;
    bool force = false;
};

using Values = std::map<Register, std::uint32_t>;

// Something that is compared with the dump: another dump, or a PHY.
struct Other {
    std::string device;
    unsigned phy = 0;
    Values values;
    bool whole = true; // what is not in it is not there
};

class Differences {
public:
    Differences(Context& context, const KnownMaps& maps, const Dump& dump, bool many)
        : context_(context),
          maps_(maps),
          dump_(dump),
          shownAsFields_(showsFields(context, maps, {})),
          fields_(context.console.out, true, many),
          records_(context.records(registerForm(
              many, withFields({"before", "value", "changed"}, shownAsFields_),
              {{"before", "FIRST"}, {"value", "SECOND"}, {"changed", "CHANGED"}, {"digits", "BITS"}}))) {}

    // A row for each register that differs or is in one of them only.
    void add(const Other& other) {
        const Cell none{"-", nullptr};
        fields_.setPlace(other.device, other.phy);
        for (const auto& [reg, value] : dump_.values) {
            const auto found = other.values.find(reg);
            if (found != other.values.end())
                compare(other, reg, value, found->second);
            else if (other.whole)
                addMissing(other, reg, hex(value), none);
        }
        for (const auto& [reg, value] : other.values)
            if (dump_.values.count(reg) == 0)
                addMissing(other, reg, none, hex(value));
    }

    bool any() const { return any_; }

    void print() { fields_.print(context_.console.out); }

private:
    Cell hex(std::uint32_t value, std::uint32_t changed = 0) const {
        return hexCell(context_.console.out, value, dump_.header.space, changed);
    }

    void compare(const Other& other, const Register& reg, std::uint32_t value, std::uint32_t now) {
        const std::uint32_t changed = (value ^ now) & dump_.maskOf(reg);
        if (changed == 0)
            return;
        const Asked asked{reg, maps_.find(reg)};
        if (shownAsFields_ && records_.isText()) {
            any_ = true;
            return fields_.add(asked, now, now ^ changed, true);
        }
        Record record = recordOf(other, asked, hex(value), hex(now, changed));
        record.put("changed", hex(changed))
            .put("digits", bitsCell(context_.console.out, now, dump_.header.space, changed));
        if (shownAsFields_)
            putFields(record, asked, now, now ^ changed, true);
        records_.put(record);
    }

    Record recordOf(const Other& other, const Asked& asked, const Cell& first, const Cell& second) {
        any_ = true;
        return std::move(
            registerRecord(other.device, other.phy, asked).put("before", first).put("value", second));
    }

    // That one of them does not have.
    void addMissing(const Other& other, const Register& reg, const Cell& first, const Cell& second) {
        records_.put(std::move(recordOf(other, {reg, maps_.find(reg)}, first, second).show("changed", "-")));
    }

    Context& context_;
    const KnownMaps& maps_;
    const Dump& dump_;
    bool any_ = false;
    bool shownAsFields_;
    FieldTable fields_;
    RecordSink& records_;
};

// A PHY as a dump: the first of two that are compared live.
Dump dumpOf(Context& context, const Options& options) {
    Places places(context, options.words[0], options.words[1], 1);
    if (!places.isOne())
        throw UsageError("diff: the first one is one PHY of one device");
    Kinds kinds(context);
    const std::vector<std::string> ranges(options.words.begin() + 4, options.words.end());
    const auto lists =
        kinds.settle(places, [&](const KnownMaps& maps) { return askedFor(context, maps, options, ranges); });
    Dump dump;
    places.run("diff", [&](std::size_t place, const Orvane::Phy& phy) {
        const std::vector<Asked>& list = lists[kinds.of(place)];
        dump.header.space = list.front().reg.space;
        dump.header.identifier = identifierOf(phy, dump.header.space, context.within()).value_or("");
        const auto values =
            PhyAccess(context, phy, kinds.maps(kinds.of(place)), options.routed).read(list).all();
        for (std::size_t i = 0; i < list.size(); ++i)
            dump.values[list[i].reg] = values[i];
    });
    places.finish("diff");
    return dump;
}

int compareLive(Context& context, const Options& options, const Dump& dump, const std::string& name,
                const std::string& device, const std::string& phys) {
    Places places(context, device, phys, options.jobs);
    Kinds kinds(context);
    std::vector<std::string> leftOut;
    const auto lists = kinds.settle(
        places, [&](const KnownMaps& maps) { return registersOf(dump, maps, context.sideEffects, leftOut); });
    tellLeftOut(context.console.err, leftOut);
    std::vector<Other> others(places.size());
    places.run("diff", [&](std::size_t place, const Orvane::Phy& phy) {
        const std::string here = fmt::format("{}: diff PHY {}", places.device(place), places.phy(place));
        if (!options.force)
            requireSameKind(dump, name, phy, here, context.within());
        const std::vector<Asked>& list = lists[kinds.of(place)];
        const Outcome outcome =
            PhyAccess(context, phy, kinds.maps(kinds.of(place)), options.routed).read(list);
        Other& other = others[place];
        for (std::size_t i = 0; i < list.size(); ++i)
            if (outcome.values[i])
                other.values[list[i].reg] = *outcome.values[i];
        outcome.check();
    });
    Differences differences(context, kinds.maps(0), dump, !places.isOne());
    for (std::size_t place = 0; place < others.size(); ++place) {
        others[place].device = places.device(place);
        others[place].phy = places.phy(place);
        others[place].whole = false;
        differences.add(others[place]);
    }
    differences.print();
    const int status = places.finish("diff");
    return differences.any() ? kFailed : status;
}

int compareDumps(Context& context, const Options& options, const Dump& dump) {
    const Dump other = readDump(options.words[1]);
    if (other.header.space != dump.header.space)
        throw Failure(fmt::format("diff: {} holds {} registers, {} {}", options.words[0],
                                  nameOf(dump.header.space), options.words[1], nameOf(other.header.space)));
    const KnownMaps maps(context);
    Differences differences(context, maps, dump, false);
    differences.add({other.header.device, other.header.phy, other.values});
    differences.print();
    return differences.any() ? kFailed : kSuccess;
}

int run(Context& context, const Options& options) {
    const std::vector<std::string>& words = options.words;
    if (words.size() >= 5)
        return compareLive(context, options, dumpOf(context, options),
                           fmt::format("{} PHY {}", words[0], words[1]), words[2], words[3]);
    const Dump dump = readDump(words[0]);
    if (words.size() == 3)
        return compareLive(context, options, dump, words[0], words[1], words[2]);
    if (words.size() == 1 && options.live)
        return compareLive(context, options, dump, words[0], dump.header.device,
                           std::to_string(dump.header.phy));
    if (words.size() == 2 && !options.live)
        return compareDumps(context, options, dump);
    throw UsageError("diff: there is nothing to compare with: give a second dump, DEVICE PHY, or --live");
}

} // namespace

void addDiff(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"diff", "Compare dumps, or PHYs as they are now",
                      "  orvane diff before.dump after.dump\n"
                      "  orvane diff before.dump --live              the PHY that it was taken of\n"
                      "  orvane diff before.dump OV0002:0 3          another PHY, or many\n"
                      "  orvane diff OV0001:0 3 OV0002:0 3 1.0+256   two PHYs\n"
                      "  orvane diff before.dump after.dump --fields --map chip.json\n"
                      " The exit status is 1 when there are differences. A third number in a line of a dump\n"
                      " says which bits are compared. What a read changes is left out of PHYs.\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("DUMP OTHER", options->words,
                    "A dump, or DEVICE and PHY, twice; then, if there is no dump, registers")
        ->required()
        ->type_name("");
    verb.add_flag("--live", options->live, "Compare with the PHY that the dump was taken of");
    verb.add_flag("--routed", options->routed, "Read the PHY by the library's path for each register");
    verb.add_flag("--force", options->force, "Compare with a PHY of another kind, too");
    addSpaceOptions(verb, *options);
    addJobs(verb, options->jobs);
    addSideEffects(verb, context);
    addFieldOptions(verb, context);
    addFormatOptions(verb, context);
    addBoardOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
