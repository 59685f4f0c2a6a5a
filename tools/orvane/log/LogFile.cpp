// Queued reads and their values, paired in a first reading.
#include "tools/orvane/log/LogFile.h"

#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <map>
#include <unistd.h>

namespace OrvaneTool {

template <class Read>
decltype(auto) LogFile::reading(Read read) const {
    try {
        return read();
    } catch (const Failure& problem) {
        throw Failure(fmt::format("{}: cannot read: {}", path_, problem.what()));
    }
}

LogFile::LogFile(const std::string& path) : path_(path), file_(::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    reading([this] {
        if (!file_)
            throw Failure(errorText(errno));
        size_ = ::lseek(file_.get(), 0, SEEK_END);
        if (size_ < 0)
            copyToTemporaryFile();
        readThrough();
    });
    if (hasNotes_ && !hasRecords_)
        throw Failure(fmt::format("{}: it is no transaction log: there is no record in it", path_));
}

void LogFile::copyToTemporaryFile() {
    Orvane::FileDescriptor copy = temporaryFile();
    std::array<char, 65536> room{};
    ssize_t count = 0;
    size_ = 0;
    while ((count = ::read(file_.get(), room.data(), room.size())) > 0) {
        if (::write(copy.get(), room.data(), static_cast<std::size_t>(count)) != count)
            throw Failure(errorText(errno));
        size_ += count;
    }
    if (count < 0)
        throw Failure(errorText(errno));
    file_ = std::move(copy);
}

void LogFile::readThrough() {
    std::map<QueuedValues::Phy, std::uint64_t> without; // queued reads that have no value yet
    LogScanner scanner(file_.get(), size_);
    for (LogRecord record; scanner.next(record);) {
        count(record);
        pairQueuedRead(record, without);
    }
}

void LogFile::count(const LogRecord& record) {
    using Kind = LogRecord::Kind;
    (record.kind == Kind::Note ? hasNotes_ : hasRecords_) = true;
    configurationAccesses_ += record.kind == Kind::Configuration ? 1 : 0;
    events_ += record.kind == Kind::Event ? 1 : 0;
    if (record.kind == Kind::Service)
        ++services_[record.operation];
    const std::string& time = record.access.time;
    if (time.empty())
        return;
    hasRecords_ = true;
    if (begun_.empty() || time < begun_)
        begun_ = time;
    ended_ = std::max(ended_, time);
}

// A value is that of the PHY's oldest queued read that has none yet.
void LogFile::pairQueuedRead(const LogRecord& record, std::map<QueuedValues::Phy, std::uint64_t>& without) {
    const LoggedAccess& access = record.access;
    if (record.kind == LogRecord::Kind::Access && access.queued && !access.write)
        ++without[{access.adapter, access.phy}];
    if (record.kind != LogRecord::Kind::Fetched)
        return;
    std::uint64_t& reads = without[{access.adapter, access.phy}];
    if (reads == 0) {
        ++strayValues_;
        return;
    }
    --reads;
    values_.add({access.adapter, access.phy}, {*access.value, access.digits});
}

void LogFile::forEachNote(const std::function<void(std::string_view)>& take) const {
    if (!hasNotes_)
        return;
    reading([&] {
        LogScanner scanner(file_.get(), size_);
        for (LogRecord record; scanner.next(record);)
            if (record.kind == LogRecord::Kind::Note)
                take(record.note);
    });
}

LogFile::Entries::Entries(const LogFile& log, const Selection& selection)
    : log_(log), selection_(selection), scanner_(log.file_.get(), log.size_), values_(log.values_) {}

bool LogFile::Entries::isWanted(const LogRecord& record) const {
    switch (record.kind) {
    case LogRecord::Kind::Access:
    case LogRecord::Kind::Service:
        return selection_.has(record.access);
    case LogRecord::Kind::Event:
        return selection_.device.empty() || record.access.device == selection_.device;
    case LogRecord::Kind::Note:
        return true;
    default:
        return false;
    }
}

bool LogFile::Entries::next(LogRecord& record) {
    return log_.reading([&] {
        while (scanner_.next(record)) {
            LoggedAccess& found = record.access;
            if (record.kind == LogRecord::Kind::Access && found.queued && !found.write)
                if (const auto value = values_.next({found.adapter, found.phy})) {
                    found.value = value->bits;
                    found.digits = std::max(found.digits, static_cast<int>(value->digits));
                }
            if (isWanted(record))
                return true;
        }
        return false;
    });
}

bool LogFile::Accesses::next(LoggedAccess& access) {
    while (entries_.next(record_))
        if (record_.kind == LogRecord::Kind::Access) {
            access = record_.access;
            return true;
        }
    return false;
}

} // namespace OrvaneTool
