// orvane write: values into registers.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/names/FieldChange.h"
#include "tools/orvane/names/FieldTable.h"
#include "tools/orvane/names/NamedPhy.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options : RegisterOptions {
    std::vector<std::string> words; // ADDRESS VALUE, repeated
    bool readback = false;
};

struct Write {
    Asked asked;
    std::uint32_t value; // of the field, where one was named
};

std::vector<Write> writesOf(NamedPhy& phy, const Options& options) {
    if (options.words.size() % 2 != 0)
        throw UsageError(fmt::format("there is no value for {}", options.words.back()));
    std::vector<Write> writes;
    for (std::size_t i = 0; i < options.words.size(); i += 2)
        for (const Asked& each : phy.parse(options.words[i]))
            writes.push_back({each, valueFor(each, options.words[i + 1])});
    return writes;
}

// Reads each register once more and shows what it holds; 1 when one differs from what was written.
int readBack(Context& context, const Options& options, const std::string& device,
             const std::vector<Asked>& list, const std::vector<Access>& writes,
             const std::vector<std::uint32_t>& values, bool fields) {
    Stream& out = context.console.out;
    Table table({{"address", "ADDRESS"}, {"written", "WRITTEN"}, {"read", "READ BACK"}, {"", "BITS"}});
    FieldTable decoded(out, context.format(), true);
    std::string differing;
    for (std::size_t i = 0; i < writes.size(); ++i) {
        const Space space = writes[i].reg.space;
        const std::uint32_t changed = values[i] ^ *writes[i].written;
        if (changed != 0)
            differing += " " + writes[i].reg.text();
        table.add({writes[i].reg.text(), hexCell(out, *writes[i].written, space),
                   hexCell(out, values[i], space, changed), bitsCell(out, values[i], space, changed)});
        decoded.add(list[i], values[i], *writes[i].written);
    }
    fields ? decoded.print(out) : table.print(out, context.format());
    if (differing.empty())
        return kSuccess;
    throw Failure(fmt::format("{}: write PHY {}: the readback differs from what was written:{}", device,
                              options.phy, differing));
}

int run(Context& context, const Options& options) {
    NamedPhy phy(context, options);
    std::vector<Asked> list;
    std::vector<Access> writes;
    // Whole registers go together; a field needs to know what is beside it first.
    std::size_t done = 0;
    const auto writeOut = [&] {
        const std::vector<Access> some(writes.begin() + static_cast<std::ptrdiff_t>(done), writes.end());
        phy.run(some);
        done = writes.size();
    };
    for (const Write& each : writesOf(phy, options)) {
        std::uint32_t value = each.value;
        if (each.asked.field != nullptr) {
            writeOut();
            value = changedBy(each.asked, phy.read({each.asked}).front(), each.value);
        }
        list.push_back(each.asked);
        writes.push_back({each.asked.reg, value});
    }
    if (!options.readback) {
        writeOut();
        return kSuccess;
    }
    std::vector<Access> accesses(writes.begin() + static_cast<std::ptrdiff_t>(done), writes.end());
    for (const Access& write : writes)
        accesses.push_back({write.reg, std::nullopt});
    const std::vector<std::uint32_t> values = phy.run(accesses);
    return readBack(context, options, phy.device().name(), list, writes, values,
                    showsFields(context, phy.maps(), list));
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
              "  orvane write OV0001:0 3 CHIP.CONTROL.SPEED '100 Mb/s' --map chip.json\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("ADDRESS VALUE", options->words,
                    "A register, a range or a name, and what to write; repeatable")
        ->required()
        ->type_name("");
    verb.add_flag("--readback", options->readback, "Read what was written; status 1 when it differs");
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
