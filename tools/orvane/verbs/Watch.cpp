// orvane watch: registers as they change.
#include "tools/orvane/names/Condition.h"
#include "tools/orvane/names/Gaps.h"
#include "tools/orvane/names/Kinds.h"
#include "tools/orvane/names/PhyAccess.h"
#include "tools/orvane/names/RegisterRecord.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/output/Keys.h"
#include "tools/orvane/verbs/Verbs.h"
#include "tools/orvane/watch/Display.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <deque>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

struct Options : RegisterOptions {
    std::vector<std::string> addresses;
    unsigned interval = 500;
    unsigned long count = 0; // 0: until interrupted
    std::string until;
    double timeout = 0; // seconds; 0: none
    bool strict = false;
};

// What is watched of each kind of PHY.
struct Wanted {
    std::vector<Asked> list;
    std::optional<Condition> until{};
    std::size_t untilAt = 0; // in the list
};

// One PHY, whose session stays open.
struct Source {
    Orvane::Phy phy;
    const KnownMaps* maps;
    const Wanted* wanted;
    Gaps gaps{};
};

class Watching {
public:
    Watching(Context& context, const Options& options)
        : context_(context), options_(options), kinds_(context) {}

    int run() {
        records_ = &context_.records(
            registerForm(
                true,
                withFields({"sequence", "value", "before", "changes", "from", "until"}, context_.fields), {}),
            Pace::OneByOne);
        Places places = options_.places(context_);
        const std::vector<Wanted> wanted =
            kinds_.settle(places, [this](const KnownMaps& maps) { return wantedOf(maps); });
        open(places, wanted);
        bool met = false;
        try {
            met = watch(places, wanted);
        } catch (const Interrupted& interrupted) {
            if (interrupted.signal != SIGINT) // Ctrl-C is the usual end
                throw;
        }
        const bool whole = tellGaps();
        const int status = places.finish("watch");
        if (!options_.until.empty() && !met)
            throw Failure(fmt::format("watch: {} did not come true", options_.until));
        return options_.strict && !whole ? kFailed : status;
    }

private:
    Wanted wantedOf(const KnownMaps& maps) const {
        Wanted wanted{askedFor(context_, maps, options_, options_.addresses)};
        if (options_.until.empty())
            return wanted;
        wanted.until = Condition::parse(options_.until, maps, options_.space());
        const auto there = std::find_if(wanted.list.begin(), wanted.list.end(), [&](const Asked& each) {
            return each.reg == wanted.until->asked.reg;
        });
        wanted.untilAt = static_cast<std::size_t>(there - wanted.list.begin());
        if (there == wanted.list.end())
            wanted.list.push_back(wanted.until->asked);
        return wanted;
    }

    void open(Places& places, const std::vector<Wanted>& wanted) {
        std::vector<std::optional<Orvane::Phy>> opened(places.size());
        places.run("watch", [&](std::size_t place, const Orvane::Phy& phy) {
            phy.open(context_.within());
            opened[place] = phy;
        });
        for (std::size_t place = 0; place < places.size(); ++place) {
            if (!opened[place])
                continue;
            const std::size_t kind = kinds_.of(place);
            sources_.push_back({*opened[place], &kinds_.maps(kind), &wanted[kind]});
            WatchedPhy& watched = phys_.emplace_back();
            watched.device = places.device(place);
            watched.phy = places.phy(place);
            for (const Asked& each : wanted[kind].list)
                watched.registers.emplace_back().asked = each;
        }
    }

    // Whether the condition came true.
    bool watch(const Places& places, const std::vector<Wanted>& wanted) {
        if (phys_.empty())
            return false;
        const std::string what = places.isOne() ? fmt::format("{} PHY {}", phys_[0].device, phys_[0].phy)
                                                : fmt::format("{} PHYs", phys_.size());
        Display display(context_.console.out, *records_,
                        fmt::format("{}, every {} ms", what, options_.interval),
                        showsFields(context_, kinds_.maps(0), wanted.front().list), keys_.available());
        const Clock::time_point end =
            options_.timeout > 0 ? Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                                      std::chrono::duration<double>(options_.timeout))
                                 : Clock::time_point::max();
        for (unsigned long sample = 1; options_.count == 0 || sample <= options_.count; ++sample) {
            if (sample > 1 && !pause(end, display, sample - 1))
                return false;
            for (std::size_t i = 0; i < sources_.size(); ++i)
                take(sources_[i], phys_[i]);
            display.show(sample, phys_);
            context_.console.out.requireReader();
            if (holds())
                return true;
        }
        return false;
    }

    // While the board is away, values stay as they were. Throws what does not pass.
    void take(Source& source, WatchedPhy& phy) {
        try {
            PhyAccess access(context_, source.phy, *source.maps, options_.routed);
            access.setPatience(std::chrono::seconds(1)); // there will be another sample
            const std::vector<std::uint32_t> values = access.read(source.wanted->list).all();
            phy.take(values, source.gaps.close());
        } catch (const Orvane::Failure& failure) {
            context_.interrupts().check();
            if (!isAway(failure))
                throw;
            source.gaps.note(failure);
            phy.miss(Orvane::toText(failure.kind()));
        }
    }

    bool holds() const {
        if (options_.until.empty())
            return false;
        for (std::size_t i = 0; i < phys_.size(); ++i) {
            const Wanted& wanted = *sources_[i].wanted;
            if (!phys_[i].known || !phys_[i].away.empty() ||
                !wanted.until->holds(phys_[i].registers[wanted.untilAt].value))
                return false;
        }
        return !phys_.empty();
    }

    // Until the next sample; false when the time is over or the user has enough.
    bool pause(Clock::time_point end, Display& display, unsigned long sample) {
        const Clock::time_point next = Clock::now() + Milliseconds(options_.interval);
        if (next > end)
            return false;
        for (;;) {
            const auto left = std::chrono::ceil<Milliseconds>(next - Clock::now());
            context_.interrupts().check();
            if (left <= Milliseconds(0))
                return true;
            const Key key = keys_.wait(left, context_.interrupts().cancellation().descriptor());
            if (key == Key::Quit)
                return false;
            if (key != Key::None)
                display.scroll(key, sample, phys_);
        }
    }

    // Whether there were none.
    bool tellGaps() {
        bool none = true;
        for (std::size_t i = 0; i < sources_.size(); ++i) {
            Stream& err = context_.console.err;
            if (const std::optional<Gap> open = sources_[i].gaps.close())
                err.print("orvane: {} PHY {}: {}\n", phys_[i].device, phys_[i].phy, open->text());
            if (sources_[i].gaps.count() > 0)
                err.print("orvane: {} PHY {}{}\n", phys_[i].device, phys_[i].phy, sources_[i].gaps.summary());
            none = none && sources_[i].gaps.count() == 0;
        }
        context_.console.err.flushIfPossible();
        return none;
    }

    Context& context_;
    const Options& options_;
    Kinds kinds_;
    RecordSink* records_ = nullptr;
    Keys keys_{context_.console.out.isTerminal() && context_.format() == Format::Text};
    std::vector<Source> sources_;
    std::vector<WatchedPhy> phys_; // of each source
};

int run(Context& context, const Options& options) {
    return Watching(context, options).run();
}

} // namespace

void addWatch(CLI::App& app, Context& context) {
    CLI::App& verb =
        addVerb(app, {"watch", "Read registers again and again and mark what changes",
                      "  orvane watch OV0001:0 3 1.0x0001 3.0x0001\n"
                      "  orvane watch OV0001:0 3 31.0x8030+8 --interval 50\n"
                      "  orvane watch OV0001:0 3 'PCS.*' AN.STATUS --fields\n"
                      "  orvane watch OV0001:0 3 AN.STATUS --until 'AN.STATUS.LINK==1' --timeout 10\n"
                      " On a terminal the values are redrawn in place, until Ctrl-C or q; arrows, space and\n"
                      " b scroll. Elsewhere each change is a line: sample, address, value, value before,\n"
                      " number of changes. A board that is away for a while leaves a gap.\n"});
    auto options = std::make_shared<Options>();
    addRegisterOptions(verb, context, *options);
    verb.add_option("ADDRESS", options->addresses,
                    "Registers: ADDRESS, FIRST+COUNT, FIRST-LAST, names or patterns")
        ->required()
        ->type_name("");
    addSideEffects(verb, context);
    addFormatOptions(verb, context);
    verb.add_option("--interval", options->interval, "Pause between samples (500)")->type_name("MS");
    verb.add_option("--count", options->count, "Stop after so many samples")->type_name("N");
    CLI::Option* const until =
        verb.add_option(
                "--until", options->until,
                "Stop when a register or field is so: NAME==VALUE, or with != < <= > >=; status 1 when "
                "it ends otherwise")
            ->type_name("CONDITION");
    verb.add_option("--timeout", options->timeout, "Do not wait longer for it")
        ->type_name("S")
        ->check(CLI::PositiveNumber.description(""))
        ->needs(until);
    verb.add_flag("--strict", options->strict, "Status 1 when the board was away meanwhile");
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
