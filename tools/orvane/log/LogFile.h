// Transaction logs of the library, of any size.
#pragma once

#include "tools/orvane/log/LogScanner.h"
#include "tools/orvane/log/QueuedValues.h"

#include <functional>
#include <map>
#include <string>

namespace OrvaneTool {

// The accesses that are asked about: of one adapter, of one PHY, or with -1 of all.
struct Selection {
    int adapter = -1;
    int phy = -1;
    std::string device = ""; // of this port, in a log with times; empty: of all

    bool has(const LoggedAccess& access) const {
        return (adapter < 0 || access.adapter == static_cast<unsigned>(adapter)) &&
               (phy < 0 || access.phy == static_cast<unsigned>(phy)) &&
               (device.empty() || access.device == device);
    }
};

// A log, read from its beginning to its end as often as it is asked about: what it takes of memory does not
// depend on its size. One thread.
class LogFile {
public:
    // Reads it once, for the values of queued reads, which stand behind them. A pipe is copied into a
    // temporary file. Throws Failure when it cannot be read, as every other reading does, and when it is no
    // log.
    explicit LogFile(const std::string& path);

    std::size_t configurationAccesses() const { return configurationAccesses_; }
    std::size_t strayValues() const { return strayValues_; } // of queued reads that are not in the log

    // Calls of services and the like, in a log with times.
    const std::map<std::string, std::size_t>& services() const { return services_; }
    std::size_t events() const { return events_; }
    // Of the first line and the last; empty: the log has none.
    const std::string& begun() const { return begun_; }
    const std::string& ended() const { return ended_; }
    bool hasTimes() const { return !begun_.empty(); }

    // Its records in order, with the values of queued reads: accesses, calls of services, events and notes.
    // Those without a port or a PHY pass any selection.
    class Entries {
    public:
        Entries(const LogFile& log, const Selection& selection);
        // False behind the last.
        bool next(LogRecord& record);

    private:
        bool isWanted(const LogRecord& record) const;

        const LogFile& log_;
        Selection selection_;
        LogScanner scanner_;
        QueuedValues::Reader values_;
    };
    Entries entries(const Selection& selection) const { return {*this, selection}; }

    // Of these, the accesses.
    class Accesses {
    public:
        Accesses(const LogFile& log, const Selection& selection) : entries_(log, selection) {}
        // False behind the last.
        bool next(LoggedAccess& access);

    private:
        Entries entries_;
        LogRecord record_;
    };
    Accesses accesses(const Selection& selection) const { return {*this, selection}; }

    void forEachNote(const std::function<void(std::string_view)>& take) const;

private:
    void copyToTemporaryFile();
    void readThrough();
    void count(const LogRecord& record);
    void pairQueuedRead(const LogRecord& record, std::map<QueuedValues::Phy, std::uint64_t>& without);
    // What `read` gives; a Failure of it names the log.
    template <class Read>
    decltype(auto) reading(Read read) const;

    std::string path_;
    Orvane::FileDescriptor file_;
    off_t size_ = 0;
    QueuedValues values_;
    std::size_t configurationAccesses_ = 0;
    std::size_t strayValues_ = 0;
    std::map<std::string, std::size_t> services_; // calls, by what they are
    std::size_t events_ = 0;
    std::string begun_;
    std::string ended_;
    bool hasNotes_ = false;
    bool hasRecords_ = false; // or the names of the columns
};

} // namespace OrvaneTool
