// The part's data as JSON, written while the log is read.
#include "tools/orvane/report/LogReport.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <string_view>
#include <vector>

namespace OrvaneTool {

namespace {

constexpr std::size_t kMostTimelineBytes = std::size_t{4} * 1024 * 1024;
constexpr std::size_t kBars = 120; // of the picture of the activity

template <class List>
std::string listed(const List& list) {
    return fmt::format("[{}]", fmt::join(list, ","));
}

class Report {
public:
    Report(std::ostream& page, const LogFile& log, const Selection& selection, const LogSummary& summary,
           const KnownMaps& maps)
        : page_(page),
          log_(log),
          selection_(selection),
          summary_(summary),
          maps_(maps),
          limits_(limitsFor(summary)) {}

    void write() {
        page_ << ",\"accesses\":[";
        writeAccesses();
        page_ << "],\"registers\":[";
        writeRegisters();
        page_ << "],\"configuration\":" << log_.configurationAccesses() << ",\"stray\":" << log_.strayValues()
              << ",\"begun\":" << jsonText(log_.begun()) << ",\"ended\":" << jsonText(log_.ended())
              << ",\"timeline\":[";
        writeTimeline();
        if (limits_.thinned)
            writeWhatIsLeftOut();
        page_ << "}";
    }

private:
    // Of a register: how many accesses came by, and those that are on the page.
    struct Shown {
        std::size_t seen = 0;
        std::vector<std::uint32_t> at;
    };

    bool isShown(std::size_t place, std::size_t count) const {
        const std::size_t last = limits_.accesses / 2;
        return count <= limits_.accesses || place < limits_.accesses - last || place >= count - last;
    }

    void writeAccesses() {
        LogFile::Accesses accesses = log_.accesses(selection_);
        std::uint32_t written = 0;
        std::size_t place = 0;
        for (LoggedAccess access; accesses.next(access); ++place) {
            const PhyRegister reg = registerOf(access);
            Shown& shown = shown_[reg];
            if (limits_.thinned)
                ++(access.write ? writes_ : reads_)[place * kBars / summary_.accesses()];
            if (!isShown(shown.seen++, summary_.registers.at(reg).accesses()))
                continue;
            page_ << (written > 0 ? "," : "")
                  << fmt::format("[{:d},{:d},{}{}]", access.write, access.queued,
                                 access.value ? '"' + access.valueText() + '"' : "null",
                                 access.time.empty() ? "" : ',' + jsonText(access.time));
            shown.at.push_back(written++);
            if (limits_.thinned)
                places_.push_back(place);
        }
    }

    void writeRegisters() {
        const char* comma = "";
        for (const auto& [reg, history] : summary_.registers) {
            page_ << comma
                  << fmt::format(
                         R"({{{}"adapter":{},"phy":{},"address":"{}","reads":{},"writes":{},"changes":{},)"
                         R"("first":"{}","last":"{}","at":{})",
                         reg.device.empty() ? "" : "\"device\":" + jsonText(reg.device) + ",", reg.adapter,
                         reg.phy, reg.reg.text(), history.reads, history.writes, history.changes,
                         history.first.text(), history.last.text(), listed(shown_[reg].at));
            if (const Orvane::MapRegister* const mapped = maps_.find(reg.reg))
                writeMeaning(page_, *mapped);
            page_ << "}";
            comma = ",";
        }
    }

    // Services, events and notes, each behind the accesses that went before.
    void writeTimeline() {
        LogFile::Entries entries = log_.entries(selection_);
        std::size_t place = 0;
        std::size_t bytes = 0;
        std::size_t more = 0;
        for (LogRecord entry; entries.next(entry);) {
            if (entry.kind == LogRecord::Kind::Access) {
                ++place;
                continue;
            }
            const std::string line = timelineLine(entry, place);
            if (more > 0 || bytes + line.size() > kMostTimelineBytes)
                ++more;
            else
                page_ << (bytes > 0 ? "," : "") << line;
            bytes += line.size();
        }
        page_ << "]";
        if (more > 0)
            page_ << ",\"moreLines\":" << more;
    }

    // [place, time, device, what, arguments, result, outcome]
    static std::string timelineLine(const LogRecord& entry, std::size_t place) {
        const bool isNote = entry.kind == LogRecord::Kind::Note;
        return fmt::format("[{},{},{},{},{},{},{}]", place, jsonText(entry.access.time),
                           jsonText(entry.access.device), jsonText(isNote ? "note" : entry.operation),
                           jsonText(isNote ? entry.note : entry.arguments), jsonText(entry.result),
                           jsonText(entry.access.outcome));
    }

    void writeWhatIsLeftOut() {
        page_ << fmt::format(R"(,"places":{},"of":{{"accesses":{},"writes":{},"queued":{},"each":{}}})",
                             listed(places_), summary_.accesses(), summary_.writes, summary_.queued,
                             limits_.accesses)
              << fmt::format(R"(,"activity":{{"reads":{},"writes":{}}})", listed(reads_), listed(writes_));
    }

    std::ostream& page_;
    const LogFile& log_;
    const Selection& selection_;
    const LogSummary& summary_;
    const KnownMaps& maps_;
    ReportLimits limits_;
    std::map<PhyRegister, Shown> shown_;
    std::vector<std::uint64_t> places_; // of what is on the page, in the log; only when something is not
    std::array<std::size_t, kBars> reads_{};
    std::array<std::size_t, kBars> writes_{};
};

} // namespace

ReportLimits limitsFor(const LogSummary& summary) {
    std::size_t busiest = 1;
    for (const auto& [reg, history] : summary.registers)
        busiest = std::max(busiest, history.accesses());
    const auto fits = [&](std::size_t each) {
        std::size_t all = 0;
        for (const auto& [reg, history] : summary.registers)
            all += std::min(each, history.accesses());
        return all <= kMostAccesses;
    };
    std::size_t low = 1; // fits, or nothing does
    std::size_t high = busiest + 1;
    while (high - low > 1) {
        const std::size_t middle = low + (high - low) / 2;
        (fits(middle) ? low : high) = middle;
    }
    return {low, low < busiest};
}

void addLogReport(ReportPage& page, const std::string& title, const LogFile& log, const Selection& selection,
                  const LogSummary& summary, const KnownMaps& maps) {
    Report(page.part("log", title), log, selection, summary, maps).write();
}

} // namespace OrvaneTool
