// orvane thermal watch: a temperature as a curve.
#include "tools/orvane/verbs/ThermalWatch.h"

#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/Service.h"
#include "tools/orvane/output/Plot.h"
#include "tools/orvane/output/Units.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options : ServiceOptions {
    unsigned interval = 1000;
    unsigned long count = 0; // 0: until interrupted
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

void watch(ServiceCall& call, const Options& options, unsigned channel, double target) {
    std::vector<double> all;
    while (options.count == 0 || all.size() < options.count) {
        if (!all.empty())
            call.context().interrupts().sleep(std::chrono::milliseconds(options.interval));
        all.push_back(static_cast<double>(call.attempt(
            [&] { return Orvane::Thermal::Thermal().getTemperature(call.session(), channel); })));
        putSample(call, channel, all, target);
        if (call.isText() && call.out().isTerminal())
            redraw(call.out(), all, target, all.size() == 1);
        else if (call.isText())
            call.out().print("{} {:.2f}\n", all.size(), all.back());
        call.out().flush();
    }
}

int run(Context& context, const Options& options) {
    const auto channel = numberAs<unsigned>(options.words[0], 0xFFFFFFFF, "the channel");
    const double target =
        options.words.size() > 1 ? fraction(options.words[1], "the set point") : std::nan("");
    ServiceCall call(context, options, "thermal watch", "time sequence channel celsius set_point",
                     Pace::OneByOne);
    try {
        watch(call, options, channel, target);
    } catch (const Interrupted&) { // the usual end
    }
    return kSuccess;
}

} // namespace

void addThermalWatch(CLI::App& service, Context& context) {
    CLI::App& verb = addVerb(service, {"watch", "Plot a temperature, against its set point", ""});
    auto options = std::make_shared<Options>();
    addServiceOptions(verb, context, *options);
    verb.add_option("CHANNEL [SET-POINT]", options->words, "The channel, and a line to be drawn")
        ->required()
        ->type_name("")
        ->expected(1, 2);
    verb.add_option("--interval", options->interval, "Pause between temperatures (1000)")->type_name("MS");
    verb.add_option("--count", options->count, "Stop after so many")->type_name("N");
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
