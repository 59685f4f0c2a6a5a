// The forms of records, and the window that they are looked for in.
#include "tools/orvane/log/LogScanner.h"

#include "tools/orvane/log/TimedLine.h"
#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <fmt/format.h>
#include <system_error>
#include <unistd.h>

namespace OrvaneTool {
namespace {

constexpr std::size_t kWindow = std::size_t{256} * 1024;
constexpr std::size_t kLookAhead = std::size_t{128} * 1024;               // more than any record has
constexpr std::string_view kHeader = "adapter,phy,op,mmd,address,value,"; // with times there are more
constexpr std::size_t kWordDigits = 8;
constexpr std::size_t kLongDigits = 16;
constexpr std::size_t kWideAddressDigits = 6; // an MMD never has as many

// Reads fields of a text from left to right.
class Cursor {
public:
    explicit Cursor(std::string_view text) : text_(text) {}

    bool done() const { return text_.empty(); }
    std::string_view rest() const { return text_; }
    void skip(std::size_t count) { text_.remove_prefix(std::min(count, text_.size())); }

    // The characters before the next comma; fails when a line ends before it.
    std::optional<std::string_view> field() {
        const std::size_t end = text_.find_first_of(",\n");
        if (end == std::string_view::npos || text_[end] != ',')
            return std::nullopt;
        const std::string_view found = text_.substr(0, end);
        skip(end + 1);
        return found;
    }
    // The hexadecimal digits here, whatever follows.
    std::string_view digits() const {
        std::size_t count = 0;
        while (count < text_.size() && isDigit(text_[count]))
            ++count;
        return text_.substr(0, count);
    }
    bool endsLine() const { return text_.empty() || text_[0] == '\n'; }

private:
    static bool isDigit(char each) {
        return std::isdigit(static_cast<unsigned char>(each)) != 0 || (each >= 'A' && each <= 'F');
    }
    std::string_view text_;
};

template <class Integer>
std::optional<Integer> numberIn(std::string_view text, int base) {
    Integer value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, problem] = std::from_chars(text.data(), end, value, base);
    return !text.empty() && problem == std::errc() && stop == end ? std::make_optional(value) : std::nullopt;
}

// Reads one record at the beginning of a text.
class RecordReader {
public:
    RecordReader(std::string_view text, LogRecord& record) : cursor_(text), record_(record) {}

    // Whether there is one; then it is in the record, and rest() is behind it.
    bool read() {
        record_ = {};
        LoggedAccess& access = record_.access;
        const auto adapter = decimal();
        auto operation = cursor_.field();
        if (!adapter || !operation)
            return false;
        if (*operation == "CW" || *operation == "CR" || *operation == "ACW" || *operation == "ACR")
            return configuration(*operation);
        const auto phy = numberIn<unsigned>(*operation, 10);
        operation = cursor_.field();
        if (!phy || !operation || operation->size() != 2)
            return false;
        access.adapter = *adapter;
        access.phy = *phy;
        access.queued = operation->front() == 'A';
        access.write = operation->back() == 'W';
        if (*operation == "AF")
            return fetched(access);
        if (*operation != "MW" && *operation != "MR" && *operation != "AW" && *operation != "AR")
            return false;
        return registerAccess(access);
    }
    std::string_view rest() const { return cursor_.rest(); }

private:
    std::optional<unsigned> decimal() {
        const auto text = cursor_.field();
        return text ? numberIn<unsigned>(*text, 10) : std::nullopt;
    }

    // What follows the operation: MMD, address and value; or a longer address and value, which run on.
    bool registerAccess(LoggedAccess& access) {
        record_.kind = LogRecord::Kind::Access;
        const auto first = cursor_.field();
        if (!first)
            return false;
        const bool wideRead = first->empty(); // of a queued one
        const bool wide = wideRead || first->size() >= kWideAddressDigits;
        if (!wide && !take(numberIn<unsigned>(*first, 16), access.reg.mmd))
            return false;
        access.reg.space = wide ? Space::Ext32 : Space::C45;
        access.digits = wide ? kWordDigits : 4;
        const auto address = wide && !wideRead ? first : cursor_.field();
        if (!address || !take(numberIn<std::uint32_t>(*address, 16), access.reg.address))
            return false;
        if (!access.queued || access.write)
            return wide ? runOnValue(access) : lineValue(access);
        if (!wide)
            cursor_.skip(1); // the line's end
        return true;
    }

    static bool take(std::optional<std::uint32_t> found, std::uint32_t& place) {
        place = found.value_or(0);
        return found.has_value();
    }

    bool lineValue(LoggedAccess& access) {
        const std::string_view digits = cursor_.digits();
        access.value = numberIn<std::uint64_t>(digits, 16);
        cursor_.skip(digits.size());
        const bool ends = access.value && cursor_.endsLine();
        cursor_.skip(1);
        return ends;
    }

    // The next record's adapter follows at once: of its digits, none belongs to the value.
    bool runOnValue(LoggedAccess& access) {
        const std::size_t count = cursor_.digits().size();
        if (count < kWordDigits)
            return false;
        const std::size_t digits = count >= kLongDigits ? kLongDigits : kWordDigits;
        access.digits = static_cast<int>(digits);
        access.value = numberIn<std::uint64_t>(cursor_.rest().substr(0, digits), 16);
        cursor_.skip(digits);
        return access.value.has_value();
    }

    // The value of the PHY's oldest queued read that has none yet.
    bool fetched(LoggedAccess& access) {
        record_.kind = LogRecord::Kind::Fetched;
        const auto noMmd = cursor_.field();
        const auto noAddress = cursor_.field();
        if (!noMmd || !noAddress || !noMmd->empty() || !noAddress->empty())
            return false;
        const std::size_t count = cursor_.digits().size();
        const std::string_view behind = cursor_.rest().substr(count);
        const bool line = !behind.empty() && behind[0] == '\n' && count <= kWordDigits;
        return line ? lineValue(access) : runOnValue(access);
    }

    // Words with commas between them, the last of a queued read being followed by one as well.
    bool configuration(std::string_view operation) {
        record_.kind = LogRecord::Kind::Configuration;
        const std::size_t words = operation == "CR" ? 2 : operation == "ACR" ? 1 : 3;
        for (std::size_t i = 0; i < words; ++i) {
            if (cursor_.digits().size() < kWordDigits)
                return false;
            cursor_.skip(kWordDigits);
            if (i + 1 < words || operation == "ACR")
                cursor_.skip(1);
        }
        return true;
    }

    Cursor cursor_;
    LogRecord& record_;
};

// The access of a line with times; false when it is none.
bool takeAccess(const TimedLine& line, LogRecord& record) {
    LoggedAccess& access = record.access;
    const bool clause22 = line.op == "2R" || line.op == "2W";
    if (!clause22 && line.op != "MR" && line.op != "MW")
        return false;
    access.write = line.op.back() == 'W';
    const auto mmd = numberIn<unsigned>(line.mmd, 16);
    const auto address = numberIn<std::uint32_t>(line.address, 16);
    if (!address || (!mmd && !line.mmd.empty()))
        return false;
    access.reg = {clause22 ? Space::C22 : mmd ? Space::C45 : Space::Ext32, mmd.value_or(0), *address};
    access.value = numberIn<std::uint64_t>(line.value, 16);
    access.digits = valueDigits(access.reg.space);
    record.kind = LogRecord::Kind::Access;
    return true;
}

// False when the line is no record.
bool takeLine(const TimedLine& line, LogRecord& record) {
    record = {};
    LoggedAccess& access = record.access;
    access.adapter = numberIn<unsigned>(line.adapter, 10).value_or(0);
    const auto phy = numberIn<unsigned>(line.phy, 10);
    record.hasPhy = phy.has_value();
    access.phy = phy.value_or(0);
    access.time = line.time;
    access.device = line.port;
    access.outcome = line.outcome;
    record.operation = line.op;
    record.arguments = line.arguments;
    record.result = line.result;
    if (takeAccess(line, record))
        return true;
    if (line.op == "note") {
        record.kind = LogRecord::Kind::Note;
        record.note = unescaped(line.arguments);
        return true;
    }
    const bool ofSession = line.op.compare(0, 6, "event.") == 0 || line.op.compare(0, 8, "session.") == 0;
    record.kind = ofSession ? LogRecord::Kind::Event : LogRecord::Kind::Service;
    return line.op.find('.') != std::string_view::npos;
}

} // namespace

std::string LoggedAccess::valueText() const {
    return value ? fmt::format("0x{:0{}X}", *value, digits) : "-";
}

LogScanner::LogScanner(int file, off_t size) : file_(file), size_(size) {}

bool LogScanner::next(LogRecord& record) {
    for (;;) {
        if (window_.size() - begin_ < kLookAhead)
            fill();
        if (rest().empty())
            return false;
        if (!inNote_ && takeTimedLine(record))
            return true;
        if (RecordReader reader(rest(), record); !inNote_ && reader.read()) {
            begin_ = window_.size() - reader.rest().size();
            return true;
        }
        takeNote(record);
        if (record.kind == LogRecord::Kind::Header || !record.note.empty())
            return true;
    }
}

bool LogScanner::takeTimedLine(LogRecord& record) {
    const auto length = timedLineAt(rest());
    const auto line = length ? timedLine(rest().substr(0, *length)) : std::nullopt;
    if (!line || !takeLine(*line, record))
        return false;
    begin_ += std::min(*length + 1, rest().size());
    return true;
}

void LogScanner::takeNote(LogRecord& record) {
    const std::size_t end = rest().find('\n');
    const bool whole = end != std::string_view::npos;
    record = {};
    const std::string_view line = rest().substr(0, end);
    if (!inNote_ && line.substr(0, kHeader.size()) == kHeader)
        record.kind = LogRecord::Kind::Header;
    else
        record.note = line;
    begin_ += line.size() + (whole ? 1 : 0);
    inNote_ = !whole;
}

void LogScanner::fill() {
    window_.erase(0, begin_);
    begin_ = 0;
    while (window_.size() < kWindow && read_ < size_) {
        const std::size_t before = window_.size();
        const auto left = static_cast<std::uint64_t>(size_ - read_);
        window_.resize(before + static_cast<std::size_t>(std::min<std::uint64_t>(kWindow - before, left)));
        const ssize_t count = ::pread(file_, &window_[before], window_.size() - before, read_);
        const int problem = errno;
        window_.resize(before + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (count < 0 && problem != EINTR)
            throw Failure(errorText(problem));
        if (count == 0)
            size_ = read_; // cut meanwhile
        read_ += std::max<ssize_t>(count, 0);
    }
}

} // namespace OrvaneTool
