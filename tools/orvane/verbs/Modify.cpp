// orvane modify: some bits of a register.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/names/DryRun.h"
#include "tools/orvane/names/FieldChange.h"
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
    bool dryRun = false;
    std::string address;
    std::string value;
    std::string mask;
};

// What a register is to hold, of what it holds.
std::uint32_t wanted(const Asked& asked, const Options& options, std::uint32_t before) {
    if (asked.field != nullptr) {
        if (!options.mask.empty())
            throw UsageError(fmt::format("{} is a field: it has no mask", options.address));
        return changedBy(asked, before, valueFor(asked, options.value));
    }
    if (options.mask.empty())
        throw UsageError("MASK is required, but for a field");
    const auto value = numberAs<std::uint32_t>(options.value, largestValue(asked.reg.space), "the value");
    const auto mask = numberAs<std::uint32_t>(options.mask, largestValue(asked.reg.space), "the mask");
    if ((value & ~mask) != 0)
        throw UsageError(
            fmt::format("the value {} has bits that the mask {} leaves out", options.value, options.mask));
    return (before & ~mask) | value;
}

struct Modified {
    Asked asked;
    std::uint32_t before;
    std::uint32_t written;
    std::uint32_t after;
};

// Throws, behind what was done, Failure for what does not hold what was written.
void carryOut(PhyAccess& phy, const std::vector<Asked>& list, const Options& options,
              const std::string& place, std::vector<Modified>& done) {
    std::string differing;
    for (const Asked& each : list) {
        const std::uint32_t before = phy.read({each}).all().front();
        const std::uint32_t written = wanted(each, options, before);
        const std::uint32_t after = phy.run({{each.reg, written}, {each.reg, std::nullopt}}).all().back();
        done.push_back({each, before, written, after});
        if (after != written)
            differing += fmt::format(" {} ({})", each.reg.text(), hexText(after ^ written, each.reg.space));
    }
    if (!differing.empty())
        throw Failure(fmt::format("{}: the readback differs from what was written:{}", place, differing));
}

void print(Context& context, const Places& places, const std::vector<std::vector<Modified>>& all,
           bool fields) {
    Stream& out = context.console.out;
    const bool many = !places.isOne();
    RecordSink& records = context.records(registerForm(
        many, withFields({"before", "written", "value"}, fields),
        {{"before", "BEFORE"}, {"written", "WRITTEN"}, {"value", "READ BACK"}, {"digits", "BITS"}}));
    FieldTable decoded(out, true, many);
    for (std::size_t place = 0; place < all.size(); ++place) {
        decoded.setPlace(places.device(place), places.phy(place));
        for (const Modified& each : all[place]) {
            const Space space = each.asked.reg.space;
            Asked whole = each.asked;
            whole.field = nullptr;
            if (fields && records.isText()) {
                decoded.add(whole, each.after, each.before);
                continue;
            }
            Record record = registerRecord(places.device(place), places.phy(place), each.asked);
            record.put("before", hexCell(out, each.before, space))
                .put("written", hexCell(out, each.written, space, each.written ^ each.before))
                .put("value", hexCell(out, each.after, space, each.after ^ each.before))
                .put("digits", bitsCell(out, each.after, space, each.after ^ each.before));
            if (fields)
                putFields(record, whole, each.after, each.before);
            records.put(record);
        }
    }
    decoded.print(out);
}

std::string dryRun(Context& context, const Options& options, const KnownMaps& maps) {
    std::string text;
    for (const Asked& each : askedFor(context, maps, options, {options.address})) {
        wanted(each, options, 0); // refuses what is wrong
        const std::uint32_t most = largestValue(each.reg.space);
        const bool field = each.field != nullptr;
        const auto mask = field ? 0 : numberAs<std::uint32_t>(options.mask, most, "the mask");
        const auto value =
            field ? valueFor(each, options.value) : numberAs<std::uint32_t>(options.value, most, "the value");
        text += plannedChange(each, value, mask, maps, options.routed) +
                planned({{each.reg, std::nullopt}}, maps, options.routed);
    }
    return text;
}

int run(Context& context, const Options& options) {
    Kinds kinds(context);
    Places places = options.places(context);
    if (options.dryRun)
        return tellPlan(context, dryRun(context, options, kinds.unasked()));
    const auto lists = kinds.settle(places, [&](const KnownMaps& maps) {
        std::vector<Asked> list = askedFor(context, maps, options, {options.address});
        for (const Asked& each : list)
            wanted(each, options, 0); // refuses what is wrong before anything is sent
        return list;
    });
    std::vector<std::vector<Modified>> done(places.size());
    places.run("modify", [&](std::size_t place, const Orvane::Phy& phy) {
        PhyAccess access(context, phy, kinds.maps(kinds.of(place)), options.routed);
        carryOut(access, lists[kinds.of(place)], options,
                 fmt::format("{}: modify PHY {}", places.device(place), places.phy(place)), done[place]);
    });
    print(context, places, done, showsFields(context, kinds.maps(0), lists.front()));
    return places.finish("modify");
}

} // namespace

void addModify(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"modify", "Change some bits of registers: read, write, read back",
                      "  orvane modify OV0001:0 3 1.0x0000 0x8000 0x8000   set bit 15\n"
                      "  orvane modify OV0001:0 3 30.0xC010 0x0040 0x00F0  bits 4 to 7 become 4\n"
                      "  orvane modify OV0001:0 3 CHIP.CONTROL.SPEED 2 --map chip.json\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("ADDRESS", options->address, "The register, a range, a name or a field")
        ->required()
        ->type_name("");
    verb.add_option("VALUE", options->value, "The bits that are to be set; of a field its value or choice")
        ->required()
        ->type_name("");
    verb.add_option("MASK", options->mask, "The bits that may change; not for a field")->type_name("");
    addDryRun(verb, options->dryRun);
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
