// Events, the transaction log and counters, for C.
#include "ov_sys/rack/c/Failures.h"
#include "ov_sys/rack/c/Handles.h"

#include <chrono>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

using namespace Orvane::RackC;

static_assert(static_cast<int>(Orvane::Event::Kind::Opened) == ORVANE_EVENT_OPENED);
static_assert(static_cast<int>(Orvane::Event::Kind::Lost) == ORVANE_EVENT_LOST);
static_assert(static_cast<int>(Orvane::Event::Kind::Retried) == ORVANE_EVENT_RETRIED);
static_assert(static_cast<int>(Orvane::Event::Kind::Moved) == ORVANE_EVENT_MOVED);
static_assert(static_cast<int>(Orvane::Event::Kind::Reopened) == ORVANE_EVENT_REOPENED);
static_assert(static_cast<int>(Orvane::Event::Kind::PingLost) == ORVANE_EVENT_PING_LOST);
static_assert(static_cast<int>(Orvane::Event::Kind::Closed) == ORVANE_EVENT_CLOSED);
static_assert(static_cast<int>(Orvane::Event::Kind::LogFailed) == ORVANE_EVENT_LOG_FAILED);
static_assert(static_cast<int>(Orvane::Event::Level::Debug) == ORVANE_LEVEL_DEBUG);
static_assert(static_cast<int>(Orvane::Event::Level::Info) == ORVANE_LEVEL_INFO);
static_assert(static_cast<int>(Orvane::Event::Level::Warning) == ORVANE_LEVEL_WARNING);

struct orvane_latency {
    Orvane::LatencyHistogram histogram;
};

struct orvane_counters {
    explicit orvane_counters(std::map<std::string, Orvane::BoardCounters> counted) : all(std::move(counted)) {
        for (const auto& [board, counts] : all)
            add(board, counts);
    }

    const std::map<std::string, Orvane::BoardCounters> all; // what the others point into
    std::deque<orvane_latency> latencies;
    std::deque<std::vector<orvane_program_counters>> programs;
    std::vector<orvane_board_counters> boards;

private:
    void add(const std::string& board, const Orvane::BoardCounters& counts) {
        std::vector<orvane_program_counters>& list = programs.emplace_back();
        for (const auto& [program, of] : counts.programs)
            list.push_back({program.c_str(), of.calls, of.succeeded, of.failed, of.timedOut, of.boardErrors,
                            of.repeats, of.bytesSent, of.bytesReceived,
                            &latencies.emplace_back(orvane_latency{of.latency})});
        boards.push_back({board.c_str(), counts.opens, counts.reopens, counts.moves, counts.strays,
                          list.data(), list.size()});
    }
};

namespace {

orvane_event recordOf(const Orvane::Event& event) noexcept {
    return {std::chrono::duration<double>(event.time.time_since_epoch()).count(),
            static_cast<int>(event.kind),
            static_cast<int>(event.level),
            event.port,
            event.phy,
            event.board.c_str(),
            event.text.c_str()};
}

} // namespace

extern "C" {

int orvane_rack_on_event(orvane_rack* rack, orvane_event_callback callback, void* context,
                         orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack});
        if (callback == nullptr)
            return rack->rack.onEvent({});
        rack->rack.onEvent([callback, context](const Orvane::Event& event) {
            const orvane_event record = recordOf(event);
            callback(context, &record);
        });
    });
}

const char* orvane_event_kind_text(int kind) {
    return toText(static_cast<Orvane::Event::Kind>(kind));
}

int orvane_rack_log_to(orvane_rack* rack, const char* path, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack, path});
        rack->rack.logTo(std::string(path));
    });
}

int orvane_rack_log_to_sink(orvane_rack* rack, orvane_log_sink sink, void* context, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack, reinterpret_cast<const void*>(sink)});
        rack->rack.logTo([sink, context](std::string_view lines) {
            if (const int error = sink(context, lines.data(), lines.size()); error != 0)
                throw std::system_error(error, std::generic_category());
        });
    });
}

int orvane_rack_end_log(orvane_rack* rack, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack});
        rack->rack.endLog();
    });
}

int orvane_rack_note(orvane_rack* rack, const char* text, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack, text});
        rack->rack.note(text);
    });
}

int orvane_rack_counters(orvane_rack* rack, orvane_counters** counters, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack, counters});
        *counters = new orvane_counters(rack->rack.counters());
    });
}

size_t orvane_counters_size(const orvane_counters* counters) {
    return counters == nullptr ? 0 : counters->boards.size();
}

const orvane_board_counters* orvane_counters_at(const orvane_counters* counters, size_t index) {
    return index < orvane_counters_size(counters) ? &counters->boards[index] : nullptr;
}

void orvane_counters_free(orvane_counters* counters) {
    delete counters;
}

double orvane_latency_percentile(const orvane_latency* latency, double percent) {
    if (latency == nullptr)
        return 0;
    return std::chrono::duration<double>(latency->histogram.percentile(percent)).count();
}

} // extern "C"
