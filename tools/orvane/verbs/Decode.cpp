// orvane decode: what values mean, without a board.
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/names/FieldTable.h"
#include "tools/orvane/names/RegisterRecord.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options : RegisterOptions {
    std::vector<std::string> words; // ADDRESS VALUE, repeated
};

int run(Context& context, const Options& options) {
    if (options.words.size() % 2 != 0)
        throw UsageError(fmt::format("there is no value for {}", options.words.back()));
    context.sideEffects = true; // nothing is read
    const KnownMaps maps(context);
    RecordSink& records = context.records({{"space", "at", "name", "value", "fields"}, {}});
    FieldTable table(context.console.out);
    std::vector<std::string> leftOut;
    for (std::size_t i = 0; i < options.words.size(); i += 2)
        for (const Asked& each : maps.parse(options.words[i], options.space(), options.distance(), leftOut)) {
            if (each.mapped == nullptr)
                throw Failure(fmt::format("no map has {}", each.reg.text()));
            const auto value =
                numberAs<std::uint32_t>(options.words[i + 1], largestValue(each.reg.space), "the value");
            table.add(each, value);
            Record record = registerRecord(each);
            putFields(record.put("value", value), each, value);
            records.put(record);
        }
    if (records.isText())
        table.print(context.console.out);
    return kSuccess;
}

} // namespace

void addDecode(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(app, {"decode", "Explain what registers hold, without a board",
                                   "  orvane decode 7.1 0x0029\n"
                                   "  orvane decode AN.STATUS 0x0029 --json\n"
                                   "  orvane decode CHIP.CONTROL 0x2041 --map chip.json\n"});
    auto options = std::make_shared<Options>();
    verb.add_option("ADDRESS VALUE", options->words, "A register or its name, and what it holds; repeatable")
        ->required()
        ->type_name("");
    addSpaceOptions(verb, *options);
    addMapOptions(verb, context);
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
