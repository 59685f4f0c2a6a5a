// orvane watch: registers as they change.
#include "tools/orvane/board/Bits.h"
#include "tools/orvane/names/FieldTable.h"
#include "tools/orvane/names/NamedPhy.h"
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
    Asked asked;
    std::uint32_t value = 0;
    std::uint32_t changed = 0; // bits that differ from the sample before
    unsigned long changes = 0;
};

class Display {
public:
    Display(Context& context, const Options& options, bool fields)
        : out_(context.console.out), options_(options), fields_(fields) {}

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
        lines_ = (fields_ ? drawFields(list) : drawValues(list)) + 2;
    }

    // They return the number of rows.
    std::size_t drawValues(const std::vector<Watched>& list) {
        Table table({{"", "ADDRESS"}, {"", "VALUE"}, {"", "BITS"}, {"", "CHANGES", true}});
        for (const Watched& each : list) {
            const std::string changes = std::to_string(each.changes);
            const Space space = each.asked.reg.space;
            table.add({each.asked.reg.text(),
                       hexCell(out_, each.value, space, each.changed),
                       bitsCell(out_, each.value, space, each.changed),
                       {changes, each.changes,
                        out_.painted(each.changed ? Colour::Yellow : Colour::None, changes)}});
        }
        table.print(out_, Format::Text);
        return table.size();
    }

    std::size_t drawFields(const std::vector<Watched>& list) {
        FieldTable table(out_, Format::Text, true);
        for (const Watched& each : list)
            table.add(each.asked, each.value, each.value ^ each.changed);
        table.print(out_);
        return table.size();
    }

    // Everything at first, then what changed.
    void printChanges(unsigned long sample, const std::vector<Watched>& list) {
        for (const Watched& each : list) {
            const Space space = each.asked.reg.space;
            if (sample > 1 && each.changed == 0)
                continue;
            out_.print("{} {} {}", sample, each.asked.reg.text(), hexText(each.value, space));
            if (sample > 1)
                out_.print(" was {}, change {}", hexText(each.value ^ each.changed, space), each.changes);
            out_.write("\n");
            if (fields_)
                printFields(sample, each);
        }
    }

    // Those that changed, at first all of them.
    void printFields(unsigned long sample, const Watched& each) {
        if (each.asked.mapped == nullptr)
            return;
        for (const Orvane::DecodedField& field :
             Orvane::RegisterMap::decode(*each.asked.mapped, each.value)) {
            const bool changed = (field.field->mask & each.changed) != 0;
            if ((sample > 1 && !changed) || (each.asked.field != nullptr && field.field != each.asked.field))
                continue;
            const std::uint64_t raw = field.field->extract(each.value ^ each.changed);
            const Orvane::DecodedField before{field.field, raw, field.field->number(raw),
                                              field.field->scaled(raw), field.field->choice(raw)};
            out_.print("{} {}.{} {}{}\n", sample, each.asked.mapped->name(), field.field->name,
                       meaningOf(field), sample > 1 ? " was " + before.valueText() : "");
        }
    }

    Stream& out_;
    const Options& options_;
    bool fields_;
    std::size_t lines_ = 0;
};

void takeSample(NamedPhy& phy, const std::vector<Asked>& list, bool first, std::vector<Watched>& watched) {
    const std::vector<std::uint32_t> values = phy.read(list);
    for (std::size_t i = 0; i < watched.size(); ++i) {
        watched[i].changed = first ? 0 : watched[i].value ^ values[i];
        watched[i].changes += watched[i].changed != 0 ? 1U : 0U;
        watched[i].value = values[i];
    }
}

void watchRegisters(Context& context, const Options& options, NamedPhy& phy, const std::vector<Asked>& list) {
    std::vector<Watched> watched;
    watched.reserve(list.size());
    for (const Asked& each : list)
        watched.push_back({each});
    Display display(context, options, showsFields(context, phy.maps(), list));
    for (unsigned long sample = 1; options.count == 0 || sample <= options.count; ++sample) {
        if (sample > 1)
            context.interrupts().sleep(std::chrono::milliseconds(options.interval));
        takeSample(phy, list, sample == 1, watched);
        display.show(sample, watched);
    }
}

int run(Context& context, const Options& options) {
    NamedPhy phy(context, options);
    const std::vector<Asked> list = phy.parse(options.addresses);
    phy.device();
    try {
        watchRegisters(context, options, phy, list);
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
                      "  orvane watch OV0001:0 3 'PCS.*' AN.STATUS --fields\n"
                      " On a terminal the values are redrawn in place, until Ctrl-C; elsewhere each\n"
                      " change is a line: sample, address, value, value before, number of changes.\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("ADDRESS", options->addresses,
                    "Registers: ADDRESS, FIRST+COUNT, FIRST-LAST, names or patterns")
        ->required()
        ->type_name("");
    addSideEffects(verb, context);
    verb.add_option("--interval", options->interval, "Pause between samples (500)")->type_name("MS");
    verb.add_option("--count", options->count, "Stop after so many samples")->type_name("N");
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
