// Reading and running of time lines.
#include "simulator/script/Timeline.h"

#include "simulator/script/ActionText.h"

#include <map>
#include <memory>

namespace OrvaneSim {
namespace {

constexpr std::int64_t kMostRequests = INT64_MAX / 2;
constexpr double kLongest = 31536000; // seconds

void readAfter(ObjectReader& after, TimelineEntry& entry) {
    const bool byRequests = after.find("request") != nullptr;
    const bool byTime = after.find("seconds") != nullptr;
    if (byRequests == byTime)
        throw ScriptError(after.path(), R"(needs either "request" or "seconds")");
    if (byRequests) {
        entry.requests = static_cast<std::uint64_t>(after.number("request", 1, 1, kMostRequests));
        entry.procedure = after.text("procedure", "");
    } else {
        entry.time = std::chrono::milliseconds(std::int64_t(after.real("seconds", 0, 0, kLongest) * 1000));
    }
    after.finish();
}

// The entries of one board that wait for requests. Belongs to the lab's thread.
class Waiting {
public:
    explicit Waiting(Board& board) : board_(board) {}

    void add(const TimelineEntry& entry) { entries_.push_back(entry); }

    void see(const Request& request) {
        if (request.program == "portmap")
            return;
        for (TimelineEntry& entry : entries_) {
            const bool counts = entry.procedure.empty() || entry.procedure == request.procedure;
            if (counts && entry.requests > 0 && --entry.requests == 0)
                board_.apply(entry.action);
        }
    }

private:
    Board& board_;
    std::vector<TimelineEntry> entries_;
};

} // namespace

std::vector<TimelineEntry> readTimeline(const std::vector<const Json*>& list, const std::string& path) {
    std::vector<TimelineEntry> entries;
    for (const Json* element : list) {
        ObjectReader reader(*element, elementPath(path, entries.size()));
        TimelineEntry entry;
        ObjectReader after(reader.need("after"), reader.at("after"));
        readAfter(after, entry);
        entry.board = reader.text("board", "all");
        entry.action = readAction(reader);
        reader.finish();
        entries.push_back(std::move(entry));
    }
    return entries;
}

void startTimeline(Lab& lab, const std::vector<TimelineEntry>& entries) {
    std::map<Board*, std::shared_ptr<Waiting>> waiting;
    for (const TimelineEntry& entry : entries) {
        const std::vector<Board*> boards =
            entry.board == "all" ? lab.boards() : std::vector<Board*>{&lab.board(entry.board)};
        for (Board* board : boards) {
            if (entry.requests == 0) {
                lab.after(entry.time, [board, action = entry.action] { board->apply(action); });
                continue;
            }
            auto& list = waiting[board];
            if (!list)
                list = std::make_shared<Waiting>(*board);
            list->add(entry);
        }
    }
    for (const auto& [board, list] : waiting)
        board->onRequest([list = list](const Request& request) { list->see(request); });
}

} // namespace OrvaneSim
