// orvane write: values into registers.
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
    std::vector<std::string> words; // ADDRESS VALUE, repeated
    bool readback = false;
};

struct Write {
    Asked asked;
    std::uint32_t value; // of the field, where one was named
};

std::vector<Write> writesOf(Context& context, const KnownMaps& maps, const Options& options) {
    if (options.words.size() % 2 != 0)
        throw UsageError(fmt::format("there is no value for {}", options.words.back()));
    std::vector<Write> writes;
    for (std::size_t i = 0; i < options.words.size(); i += 2)
        for (const Asked& each : askedFor(context, maps, options, {options.words[i]}))
            writes.push_back({each, valueFor(each, options.words[i + 1])});
    return writes;
}

// The values that registers were given, and what they held when they were read back.
struct Written {
    std::vector<Asked> list;
    std::vector<std::uint32_t> values;
    std::vector<std::uint32_t> readBack;

    std::vector<Register> differing() const {
        std::vector<Register> registers;
        for (std::size_t i = 0; i < readBack.size(); ++i)
            if (readBack[i] != values[i])
                registers.push_back(list[i].reg);
        return registers;
    }
};

// Whole registers go together; a field needs to know what is beside it first.
Written carryOut(PhyAccess& phy, const std::vector<Write>& writes, bool readback) {
    Written written;
    std::vector<Access> waiting;
    const auto writeOut = [&] {
        phy.run(waiting).check();
        waiting.clear();
    };
    for (const Write& each : writes) {
        std::uint32_t value = each.value;
        if (each.asked.field != nullptr) {
            writeOut();
            value = changedBy(each.asked, phy.read({each.asked}).all().front(), each.value);
        }
        written.list.push_back(each.asked);
        written.values.push_back(value);
        waiting.push_back({each.asked.reg, value});
    }
    if (!readback) {
        writeOut();
        return written;
    }
    const auto readsFrom = static_cast<std::ptrdiff_t>(waiting.size());
    for (const Asked& each : written.list)
        waiting.push_back({each.reg, std::nullopt});
    const std::vector<std::uint32_t> all = phy.run(waiting).all();
    written.readBack.assign(all.begin() + readsFrom, all.end());
    return written;
}

// What was written and what is there, of all places.
void print(Context& context, const Places& places, const std::vector<Written>& all, bool fields) {
    Stream& out = context.console.out;
    const bool many = !places.isOne();
    RecordSink& records =
        context.records(registerForm(many, withFields({"written", "value"}, fields),
                                     {{"written", "WRITTEN"}, {"value", "READ BACK"}, {"digits", "BITS"}}));
    FieldTable decoded(out, true, many);
    for (std::size_t place = 0; place < all.size(); ++place) {
        const Written& one = all[place];
        decoded.setPlace(places.device(place), places.phy(place));
        for (std::size_t i = 0; i < one.list.size(); ++i) {
            const Space space = one.list[i].reg.space;
            Record record = registerRecord(places.device(place), places.phy(place), one.list[i]);
            record.put("written", hexCell(out, one.values[i], space));
            if (one.readBack.empty()) {
                if (!records.isText()) // people see what was read back
                    records.put(record);
                continue;
            }
            if (fields && records.isText()) {
                decoded.add(one.list[i], one.readBack[i], one.values[i]);
                continue;
            }
            const std::uint32_t changed = one.readBack[i] ^ one.values[i];
            record.put("value", hexCell(out, one.readBack[i], space, changed))
                .put("digits", bitsCell(out, one.readBack[i], space, changed));
            if (fields)
                putFields(record, one.list[i], one.readBack[i], one.values[i]);
            records.put(record);
        }
    }
    decoded.print(out);
}

std::string dryRun(const std::vector<Write>& writes, const KnownMaps& maps, const Options& options) {
    std::string text;
    for (const Write& each : writes)
        text += each.asked.field == nullptr ? planned({{each.asked.reg, each.value}}, maps, options.routed)
                                            : plannedChange(each.asked, each.value, 0, maps, options.routed);
    for (const Write& each : writes)
        if (options.readback)
            text += planned({{each.asked.reg, std::nullopt}}, maps, options.routed);
    return text;
}

int run(Context& context, const Options& options) {
    Kinds kinds(context);
    Places places = options.places(context);
    if (options.dryRun) {
        const KnownMaps& maps = kinds.unasked();
        return tellPlan(context, dryRun(writesOf(context, maps, options), maps, options));
    }
    const auto writes =
        kinds.settle(places, [&](const KnownMaps& maps) { return writesOf(context, maps, options); });
    std::vector<Written> written(places.size());
    places.run("write", [&](std::size_t place, const Orvane::Phy& phy) {
        PhyAccess access(context, phy, kinds.maps(kinds.of(place)), options.routed);
        written[place] = carryOut(access, writes[kinds.of(place)], options.readback);
        if (const std::vector<Register> differing = written[place].differing(); !differing.empty())
            throw Failure(fmt::format("{}: write PHY {}: the readback differs from what was written: {}",
                                      places.device(place), places.phy(place), rangesText(differing)));
    });
    std::vector<Asked> list;
    for (const Write& each : writes.front())
        list.push_back(each.asked);
    print(context, places, written, showsFields(context, kinds.maps(0), list));
    return places.finish("write");
}

} // namespace

void addWrite(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(
        app, {"write", "Write registers",
              "  orvane write OV0001:0 3 30.0xC010 0xCAFE\n"
              "  orvane write OV0001:0 3 30.0xC010 1 30.0xC011 2   both in one round trip\n"
              "  orvane write OV0001:0 3 30.0xC010+16 0 --readback  16 registers, and what they hold\n"
              "  orvane write OV0001:0 3 --ext32 0x80004000 0x12345678\n"
              "  orvane write OV0001:0 3 AN.CONTROL.RESTART 1       a field: read, changed, written\n"
              "  orvane write OV0001:0 3 CHIP.CONTROL.SPEED '100 Mb/s' --map chip.json\n"
              "  orvane write 'OV*:0' 0-3 30.0xC010 0               four PHYs of every board\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("ADDRESS VALUE", options->words,
                    "A register, a range or a name, and what to write; repeatable")
        ->required()
        ->type_name("");
    verb.add_flag("--readback", options->readback, "Read what was written; status 1 when it differs");
    addDryRun(verb, options->dryRun);
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
