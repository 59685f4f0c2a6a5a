// Transaction logs of the library, of any size.
#pragma once

#include "tools/orvane/log/LogScanner.h"
#include "tools/orvane/log/QueuedValues.h"

#include <functional>
#include <string>

namespace OrvaneTool {

// The accesses that are asked about: of one adapter, of one PHY, or with -1 of all.
struct Selection {
    int adapter = -1;
    int phy = -1;

    bool has(const LoggedAccess& access) const {
        return (adapter < 0 || access.adapter == static_cast<unsigned>(adapter)) &&
               (phy < 0 || access.phy == static_cast<unsigned>(phy));
    }
};

// A log, read from its beginning to its end as often as it is asked about: what it takes of memory does not
// depend on its size. One thread.
class LogFile {
public:
    // Reads it once, for the values of queued reads, which stand behind them. A pipe is copied into a
    // temporary file. Throws Failure when it cannot be read; so does every other reading.
    explicit LogFile(const std::string& path);

    std::size_t configurationAccesses() const { return configurationAccesses_; }
    std::size_t strayValues() const { return strayValues_; } // of queued reads that are not in the log

    void forEachNote(const std::function<void(std::string_view)>& take) const;

    // Its accesses in order, with the values of queued reads.
    class Accesses {
    public:
        Accesses(const LogFile& log, const Selection& selection);
        // False behind the last.
        bool next(LoggedAccess& access);

    private:
        const LogFile& log_;
        Selection selection_;
        LogScanner scanner_;
        QueuedValues::Reader values_;
        LogRecord record_;
    };
    Accesses accesses(const Selection& selection) const { return {*this, selection}; }

private:
    void copyToTemporaryFile();
    void pairQueuedReads();
    // What `read` gives; a Failure of it names the log.
    template <class Read>
    decltype(auto) reading(Read read) const;

    std::string path_;
    Orvane::FileDescriptor file_;
    off_t size_ = 0;
    QueuedValues values_;
    std::size_t configurationAccesses_ = 0;
    std::size_t strayValues_ = 0;
    bool hasNotes_ = false;
};

} // namespace OrvaneTool
