// orvane watch: registers as they change.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/cli/RegisterOptions.h"
#include "tools/orvane/verbs/Verbs.h"

#include <chrono>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options : RegisterOptions {
    std::vector<std::string> addresses;
    unsigned interval = 500;
    unsigned long count = 0; // 0: until interrupted
};

struct Watched {
    Register reg;
    std::uint32_t value = 0;
    std::uint32_t changed = 0; // bits that differ from the sample before
    unsigned long changes = 0;
};

class Display {
public:
    Display(Context& context, const Options& options) : out_(context.console.out), options_(options) {}

    void show(unsigned long sample, const std::vector<Watched>& list) {
        // What does not fit on the screen cannot be drawn over.
        if (out_.isTerminal() && list.size() + 2 < out_.height())
            redraw(sample, list);
        else
            printChanges(sample, list);
        out_.flush();
    }

private:
    // Over what was drawn before.
    void redraw(unsigned long sample, const std::vector<Watched>& list) {
        if (lines_ > 0)
            out_.print("\033[{}A\033[J", lines_);
        out_.print("{} PHY {}, every {} ms, sample {}\n", options_.device, options_.phy, options_.interval,
                   sample);
        Table table({{"", "ADDRESS"}, {"", "VALUE"}, {"", "BITS"}, {"", "CHANGES", true}});
        for (const Watched& each : list) {
            const std::string changes = std::to_string(each.changes);
            table.add({each.reg.text(),
                       hexCell(out_, each.value, each.reg.space, each.changed),
                       bitsCell(out_, each.value, each.reg.space, each.changed),
                       {changes, each.changes,
                        out_.painted(each.changed ? Colour::Yellow : Colour::None, changes)}});
        }
        table.print(out_, Format::Text);
        lines_ = list.size() + 2;
    }

    // Everything at first, then what changed.
    void printChanges(unsigned long sample, const std::vector<Watched>& list) {
        for (const Watched& each : list) {
            const Space space = each.reg.space;
            if (sample == 1)
                out_.print("{} {} {}\n", sample, each.reg.text(), hexText(each.value, space));
            else if (each.changed != 0)
                out_.print("{} {} {} was {}, change {}\n", sample, each.reg.text(),
                           hexText(each.value, space), hexText(each.value ^ each.changed, space),
                           each.changes);
        }
    }

    Stream& out_;
    const Options& options_;
    std::size_t lines_ = 0;
};

void takeSample(Registers& registers, const std::vector<Register>& list, bool first,
                std::vector<Watched>& watched) {
    const std::vector<std::uint32_t> values = registers.read(list);
    for (std::size_t i = 0; i < watched.size(); ++i) {
        watched[i].changed = first ? 0 : watched[i].value ^ values[i];
        watched[i].changes += watched[i].changed != 0 ? 1U : 0U;
        watched[i].value = values[i];
    }
}

void watchRegisters(Context& context, const Options& options, Device& device,
                    const std::vector<Register>& list) {
    Registers registers(device, options.phy, options.way());
    std::vector<Watched> watched;
    watched.reserve(list.size());
    for (const Register& reg : list)
        watched.push_back({reg});
    Display display(context, options);
    for (unsigned long sample = 1; options.count == 0 || sample <= options.count; ++sample) {
        if (sample > 1)
            context.interrupts().sleep(std::chrono::milliseconds(options.interval));
        takeSample(registers, list, sample == 1, watched);
        display.show(sample, watched);
    }
}

int run(Context& context, const Options& options) {
    const std::vector<Register> list = options.registers(options.addresses);
    Device device(context, options.device);
    try {
        watchRegisters(context, options, device, list);
    } catch (const Interrupted&) { // the usual end
    }
    return kSuccess;
}

} // namespace

void addWatch(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"watch", "Read registers again and again and mark what changes",
                      "  orvane watch OV0001:0 3 1.0x0001 3.0x0001\n"
                      "  orvane watch OV0001:0 3 31.0x8030+8 --interval 50\n"
                      " On a terminal the values are redrawn in place, until Ctrl-C; elsewhere each\n"
                      " change is a line: sample, address, value, value before, number of changes.\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("ADDRESS", options->addresses, "Registers: ADDRESS, FIRST+COUNT or FIRST-LAST")
        ->required()
        ->type_name("");
    verb.add_option("--interval", options->interval, "Pause between samples (500)")->type_name("MS");
    verb.add_option("--count", options->count, "Stop after so many samples")->type_name("N");
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
