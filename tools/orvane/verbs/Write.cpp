// orvane write: values into registers.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/verbs/Verbs.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options : RegisterOptions {
    std::vector<std::string> words; // ADDRESS VALUE, repeated
    bool readback = false;
};

std::vector<Access> writesOf(const Options& options) {
    if (options.words.size() % 2 != 0)
        throw UsageError(fmt::format("there is no value for {}", options.words.back()));
    std::vector<Access> writes;
    for (std::size_t i = 0; i < options.words.size(); i += 2) {
        const auto value =
            numberAs<std::uint32_t>(options.words[i + 1], largestValue(options.space()), "the value");
        for (const Register& reg : options.registers({options.words[i]}))
            writes.push_back({reg, value});
    }
    return writes;
}

// Reads each register once more and shows what it holds; 1 when one differs from what was written.
int readBack(Context& context, const Options& options, const std::string& device,
             const std::vector<Access>& writes, const std::vector<std::uint32_t>& values) {
    Stream& out = context.console.out;
    Table table({{"address", "ADDRESS"}, {"written", "WRITTEN"}, {"read", "READ BACK"}, {"", "BITS"}});
    std::string differing;
    for (std::size_t i = 0; i < writes.size(); ++i) {
        const std::uint32_t changed = values[i] ^ *writes[i].written;
        if (changed != 0)
            differing += " " + writes[i].reg.text();
        table.add({writes[i].reg.text(), hexCell(out, *writes[i].written, options.space()),
                   hexCell(out, values[i], options.space(), changed),
                   bitsCell(out, values[i], options.space(), changed)});
    }
    table.print(out, context.format());
    if (differing.empty())
        return kSuccess;
    throw Failure(fmt::format("{}: write PHY {}: the readback differs from what was written:{}", device,
                              options.phy, differing));
}

int run(Context& context, const Options& options) {
    std::vector<Access> accesses = writesOf(options);
    const std::vector<Access> writes = accesses;
    if (options.readback)
        for (const Access& write : writes)
            accesses.push_back({write.reg, std::nullopt});
    Device device(context, options.device);
    const std::vector<std::uint32_t> values = Registers(device, options.phy, options.way()).run(accesses);
    return options.readback ? readBack(context, options, device.name(), writes, values) : kSuccess;
}

} // namespace

void addWrite(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(
        app, {"write", "Write registers",
              "  orvane write OV0001:0 3 30.0xC010 0xCAFE\n"
              "  orvane write OV0001:0 3 30.0xC010 1 30.0xC011 2   both in one round trip\n"
              "  orvane write OV0001:0 3 30.0xC010+16 0 --readback  16 registers, and what they hold\n"
              "  orvane write OV0001:0 3 --ext32 0x80004000 0x12345678\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("ADDRESS VALUE", options->words, "A register or a range, and what to write; repeatable")
        ->required()
        ->type_name("");
    verb.add_flag("--readback", options->readback, "Read what was written; status 1 when it differs");
    addFormatOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
