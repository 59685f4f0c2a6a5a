// orvane ping: round trips to a board's keep-alive service.
#include "tools/orvane/board/Device.h"
#include "tools/orvane/verbs/Verbs.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options {
    std::string device;
    unsigned count = 0; // 0: until interrupted
    unsigned interval = 1000;
    bool quiet = false;
};

struct Results {
    std::vector<double> milliseconds; // of the pings that came back
    unsigned sent = 0;
    unsigned lost() const { return sent - static_cast<unsigned>(milliseconds.size()); }
};

// The library does not tell a lost ping but by not counting it.
void pingOnce(Device& device, Orvane::PhySession& session, Results& results) {
    const unsigned before = session.pingSequence;
    const auto start = std::chrono::steady_clock::now();
    ++results.sent;
    device.attempt("ping", [&] { return Orvane::KeepAlive::KeepAlive().ping(&session); });
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    if (session.pingSequence != before)
        results.milliseconds.push_back(time.count());
}

// The value that at least that share of the sorted list does not exceed.
double quantile(const std::vector<double>& sorted, double share) {
    const auto rank = static_cast<std::size_t>(std::lround(share * static_cast<double>(sorted.size() - 1)));
    return sorted[rank];
}

void printSummary(Context& context, const Device& device, Results results) {
    std::vector<double>& times = results.milliseconds;
    std::sort(times.begin(), times.end());
    const double loss = results.sent == 0 ? 0 : 100.0 * results.lost() / results.sent;
    Stream& out = context.console.out;
    if (context.format() != Format::Text) {
        const bool any = !times.empty();
        const auto cell = [&](double share) {
            const double value = any ? quantile(times, share) : 0;
            return Cell(any ? fmt::format("{:.3f}", value) : "",
                        any ? nlohmann::ordered_json(value) : nlohmann::ordered_json());
        };
        Table table({{"device", ""},
                     {"sent", ""},
                     {"received", ""},
                     {"loss_percent", ""},
                     {"min_ms", ""},
                     {"median_ms", ""},
                     {"p99_ms", ""},
                     {"max_ms", ""}});
        table.add({device.name(),
                   {std::to_string(results.sent), results.sent},
                   {std::to_string(times.size()), times.size()},
                   {fmt::format("{:.1f}", loss), loss},
                   cell(0),
                   cell(0.5),
                   cell(0.99),
                   cell(1)});
        return table.print(out, context.format());
    }
    out.print("--- {} ---\n{} sent, {} received, {:.1f} % lost\n", device.name(), results.sent, times.size(),
              loss);
    if (!times.empty())
        out.print("min {:.3f} ms, median {:.3f} ms, p99 {:.3f} ms, max {:.3f} ms\n", times.front(),
                  quantile(times, 0.5), quantile(times, 0.99), times.back());
}

void pingRepeatedly(Context& context, const Options& options, Device& device, Orvane::PhySession& session,
                    Results& results) {
    while (options.count == 0 || results.sent < options.count) {
        if (results.sent > 0)
            context.interrupts().sleep(std::chrono::milliseconds(options.interval));
        const unsigned lostBefore = results.lost();
        pingOnce(device, session, results);
        if (options.quiet || context.format() != Format::Text)
            continue;
        if (results.lost() != lostBefore)
            context.console.out.print("{} at {}: seq={} lost\n", device.name(), device.address(),
                                      results.sent);
        else
            context.console.out.print("{} at {}: seq={} time={:.3f} ms\n", device.name(), device.address(),
                                      results.sent, results.milliseconds.back());
        context.console.out.flush();
    }
}

int run(Context& context, const Options& options) {
    Device device(context, options.device);
    Orvane::PhySession& session = device.session(0);
    session.stopKeepAlive(); // its pings would be counted as this command's
    Results results;
    try {
        pingRepeatedly(context, options, device, session, results);
    } catch (const Interrupted&) { // the usual end
    }
    printSummary(context, device, results);
    return results.milliseconds.empty() ? kFailed : kSuccess;
}

} // namespace

void addPing(CLI::App& app, Context& context) {
    CLI::App& verb = addVerb(app, {"ping", "Measure round trips to a board",
                                   "  orvane ping OV0001:0                 until Ctrl-C\n"
                                   "  orvane ping OV0001:0 -c 1000 -i 0 -q\n"});
    auto options = std::make_shared<Options>();
    addDevice(verb, options->device);
    verb.add_option("-c,--count", options->count, "Stop after so many pings")->type_name("N");
    verb.add_option("-i,--interval", options->interval, "Pause between pings (1000)")->type_name("MS");
    verb.add_flag("-q,--quiet", options->quiet, "Only the summary");
    addFormatOptions(verb, context);
    addBoardOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
