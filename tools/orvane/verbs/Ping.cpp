// orvane ping: round trips to a board's keep-alive service.
#include "tools/orvane/board/Targets.h"
#include "tools/orvane/names/Gaps.h"
#include "tools/orvane/output/Errors.h"
#include "tools/orvane/output/RecordSink.h"
#include "tools/orvane/verbs/Verbs.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct Options {
    std::string device;
    unsigned count = 0; // 0: until interrupted
    unsigned interval = 1000;
    bool quiet = false;
    bool strict = false;
};

struct Results {
    std::vector<double> milliseconds; // of the pings that came back
    unsigned sent = 0;
    Gaps gaps;
    unsigned lost() const { return sent - static_cast<unsigned>(milliseconds.size()); }
};

// Throws what does not pass.
void pingOnce(Context& context, const Orvane::Phy& phy, Results& results) {
    ++results.sent;
    try {
        const auto time = phy.shell().pingKeepAlive(context.within(std::chrono::seconds(1)).once());
        results.milliseconds.push_back(static_cast<double>(time.count()) / 1000);
    } catch (const Orvane::Failure& failure) {
        if (context.interrupts().signal() != 0)
            --results.sent;
        context.interrupts().check();
        if (!isAway(failure))
            throw;
        results.gaps.note(failure);
    }
}

// The value that at least that share of the sorted list does not exceed.
double quantile(const std::vector<double>& sorted, double share) {
    const auto rank = static_cast<std::size_t>(std::lround(share * static_cast<double>(sorted.size() - 1)));
    return sorted[rank];
}

void printSummary(Context& context, const std::string& device, Results results) {
    std::vector<double>& times = results.milliseconds;
    std::sort(times.begin(), times.end());
    const double loss = results.sent == 0 ? 0 : 100.0 * results.lost() / results.sent;
    Stream& out = context.console.out;
    RecordSink& records = context.records({});
    if (!records.isText()) {
        Record record("summary");
        record.device(device).put("sent", results.sent).put("received", times.size());
        record.put("loss_percent", {fmt::format("{:.1f}", loss), loss}).put("gaps", results.gaps.count());
        for (const auto& [name, share] : {std::pair("min_ms", 0.0), std::pair("median_ms", 0.5),
                                          std::pair("p99_ms", 0.99), std::pair("max_ms", 1.0)})
            if (!times.empty())
                record.put(name, {fmt::format("{:.3f}", quantile(times, share)), quantile(times, share)});
        return records.put(record);
    }
    out.print("--- {} ---\n{} sent, {} received, {:.1f} % lost{}\n", device, results.sent, times.size(), loss,
              results.gaps.summary());
    if (!times.empty())
        out.print("min {:.3f} ms, median {:.3f} ms, p99 {:.3f} ms, max {:.3f} ms\n", times.front(),
                  quantile(times, 0.5), quantile(times, 0.99), times.back());
}

void print(Stream& out, const std::string& place, const std::optional<Gap>& gap, bool lost,
           const Results& results) {
    if (gap)
        out.print("{}: {}\n", place, gap->text());
    if (lost)
        out.print("{}: seq={} lost\n", place, results.sent);
    else
        out.print("{}: seq={} time={:.3f} ms\n", place, results.sent, results.milliseconds.back());
}

void put(RecordSink& records, const std::string& device, const std::optional<Gap>& gap, bool lost,
         const Results& results) {
    if (gap) {
        Record absence("gap");
        absence.device(device);
        gap->addTo(absence);
        records.put(absence);
    }
    Record record("ping");
    record.device(device).put("sequence", results.sent);
    if (lost)
        record.error({"timed_out", 0, "lost"});
    else
        record.put("milliseconds",
                   {fmt::format("{:.3f}", results.milliseconds.back()), results.milliseconds.back()});
    records.put(record);
}

void pingRepeatedly(Context& context, const Options& options, const Target& target, const Orvane::Phy& phy,
                    Results& results) {
    Stream& out = context.console.out;
    while (options.count == 0 || results.sent < options.count) {
        if (results.sent > 0)
            context.interrupts().sleep(std::chrono::milliseconds(options.interval));
        const unsigned lostBefore = results.lost();
        pingOnce(context, phy, results);
        const bool lost = results.lost() != lostBefore;
        const std::optional<Gap> gap = lost ? std::nullopt : results.gaps.close();
        if (options.quiet)
            continue;
        if (context.format() == Format::Text)
            print(out, fmt::format("{} at {}", target.name, phy.shell().address()), gap, lost, results);
        else
            put(context.records({}), target.name, gap, lost, results);
        out.flush();
        out.requireReader();
    }
}

int run(Context& context, const Options& options) {
    context.records({{"sequence", "milliseconds", "from", "until", "sent", "received", "loss_percent", "gaps",
                      "min_ms", "median_ms", "p99_ms", "max_ms"},
                     {}},
                    Pace::OneByOne);
    const Target target = findTarget(context, options.device);
    const Orvane::Phy phy = target.port->phy(0);
    Results results;
    try { // so that the first ping does not open the session
        phy.open(context.within(std::chrono::seconds(2)));
    } catch (const Orvane::Failure& failure) {
        if (!isAway(failure))
            throw;
    }
    const auto end = [&] {
        printSummary(context, target.name, results);
        return results.milliseconds.empty() || (options.strict && results.lost() > 0) ? kFailed : kSuccess;
    };
    try {
        pingRepeatedly(context, options, target, phy, results);
    } catch (const Interrupted& interrupted) {
        const int status = end();
        if (interrupted.signal != SIGINT) // Ctrl-C is the usual end
            throw;
        return status;
    }
    return end();
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
    verb.add_flag("--strict", options->strict, "Status 1 when a ping was lost");
    addFormatOptions(verb, context);
    addBoardOptions(verb, context);
    setAction(verb, context, options, run);
}

} // namespace OrvaneTool
