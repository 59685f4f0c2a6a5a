// orvane thermal watch: a temperature as a curve.
#include "tools/orvane/verbs/ThermalWatch.h"

#include "tools/orvane/board/Gap.h"
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/Service.h"
#include "tools/orvane/output/Plot.h"
#include "tools/orvane/output/Units.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <fmt/format.h>
#include <utility>

namespace OrvaneTool {
namespace {

struct Options : ServiceOptions {
    unsigned interval = 1000;
    unsigned long count = 0; // 0: until interrupted
    bool strict = false;
};

constexpr unsigned kRows = 12;

// The curve so far, over the one before, between whole tens of degrees.
void redraw(Stream& out, const std::vector<double>& all, double target, bool first) {
    constexpr unsigned kBesideCurve = 12;
    constexpr double kGrid = 10;
    const std::size_t columns = std::max(out.width(), kBesideCurve + 1) - kBesideCurve;
    const std::vector<double> shown(all.end() - static_cast<std::ptrdiff_t>(std::min(columns, all.size())),
                                    all.end());
    auto [lowest, highest] = std::minmax_element(shown.begin(), shown.end());
    const bool known = !std::isnan(target);
    const double low = std::floor((known ? std::min(*lowest, target) : *lowest) / kGrid) * kGrid;
    const double high = std::floor((known ? std::max(*highest, target) : *highest) / kGrid + 1) * kGrid;
    if (!first)
        out.print("\033[{}A\033[J", kRows + 1);
    out.print("{:.2f}{}\n", all.back(), known ? fmt::format(", set point {:.2f}", target) : "");
    out.write(plot(shown, {low, high, static_cast<unsigned>(columns), kRows, 1}, target));
}

void putSample(ServiceCall& call, unsigned channel, const std::vector<double>& all, double target) {
    Record record = call.record("temperature");
    record.put("time", timeText(std::chrono::system_clock::now()))
        .put("sequence", all.size())
        .put("channel", channel)
        .put("celsius", celsiusCell(all.back()));
    if (!std::isnan(target))
        record.put("set_point", celsiusCell(target));
    call.put(record);
}

void putGap(ServiceCall& call, const Gap& gap) {
    Record record = call.record("gap");
    gap.addTo(record);
    call.put(record);
    if (call.isText())
        call.out().print("{}\n", gap.text());
}

// Temperatures until the count is reached or a signal comes; counts the gaps.
void watch(ServiceCall& call, const Options& options, unsigned channel, double target, std::size_t& gaps) {
    constexpr std::chrono::seconds kPatience{2}; // with one temperature
    const std::chrono::milliseconds interval(options.interval);
    std::vector<double> all;
    bool redrawn = false;
    while (options.count == 0 || all.size() < options.count) {
        if (!all.empty())
            call.context().interrupts().sleep(interval);
        const auto gap = call.attempt([&] {
            return throughGaps(call.context(), interval, [&] {
                all.push_back(
                    static_cast<double>(call.phy().thermal().temperature(channel, call.within(kPatience))));
            });
        });
        if (gap) {
            putGap(call, *gap);
            ++gaps;
            redrawn = false; // below the line of the gap
        }
        putSample(call, channel, all, target);
        if (call.isText() && call.out().isTerminal())
            redraw(call.out(), all, target, !std::exchange(redrawn, true));
        else if (call.isText())
            call.out().print("{} {:.2f}\n", all.size(), all.back());
        call.out().flush();
    }
}

int run(Context& context, const Options& options) {
    const auto channel = numberAs<unsigned>(options.words[0], 0xFFFFFFFF, "the channel");
    const double target =
        options.words.size() > 1 ? fraction(options.words[1], "the set point") : std::nan("");
    ServiceCall call(context, options, "thermal watch", "time sequence channel celsius set_point from until",
                     Pace::OneByOne);
    std::size_t gaps = 0;
    int status = kSuccess;
    try {
        watch(call, options, channel, target, gaps);
    } catch (const Interrupted& interrupted) { // the usual end, if by the user
        status = interrupted.signal == SIGINT ? kSuccess : 128 + interrupted.signal;
    }
    if (gaps > 0 && call.isText())
        call.out().print("{} gap{}\n", gaps, gaps == 1 ? "" : "s");
    return status == kSuccess && options.strict && gaps > 0 ? kFailed : status;
}

} // namespace

void addThermalWatch(CLI::App& service, Context& context) {
    CLI::App& verb = addVerb(service, {"watch", "Plot a temperature, against its set point", ""});
    auto options = std::make_shared<Options>();
    addServiceOptions(verb, context, *options);
    verb.add_option("CHANNEL [SET-POINT]", options->words,
                    "The channel, and a line to be drawn, in degrees Celsius")
        ->required()
        ->type_name("")
        ->expected(1, 2);
    verb.add_option("--interval", options->interval, "Pause between temperatures (1000)")->type_name("MS");
    verb.add_option("--count", options->count, "Stop after so many")->type_name("N");
    verb.add_flag("--strict", options->strict, "End with status 1 when the board did not answer for a while");
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
