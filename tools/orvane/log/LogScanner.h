// The records of a transaction log, one after the other.
#pragma once

#include "tools/orvane/board/RegisterAddress.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace OrvaneTool {

// One access of a register, in the place of its record in the log. A queued read has its value when the block
// that it was in was executed.
struct LoggedAccess {
    unsigned adapter = 0;
    unsigned phy = 0;
    Register reg; // in a log without times, of Clause 45 or of the 32-bit space
    bool write = false;
    bool queued = false;
    int digits = 4; // hexadecimal digits of the value: 4, 8 or 16
    std::optional<std::uint64_t> value;

    // In a log with times: when it ended, the port ("OV0001:0"), and "done" or what went wrong.
    std::string time;
    std::string device;
    std::string outcome;

    std::string valueText() const; // 0x0A5C; "-" without a value
};

struct LogRecord {
    enum class Kind {
        Access,
        Fetched, // the value of a queued read that went before: adapter, PHY, value and digits of `access`
        Configuration, // an access of the configuration space, which names no PHY
        Service,       // a call of a service, in a log with times
        Event,         // what happened to a session or a board, likewise
        Header,        // the names of the columns
        Note           // the user's own: in a log without times, a line that is no record
    };
    Kind kind = Kind::Note;
    LoggedAccess access; // of services, events and notes: PHY, time, port and outcome
    bool hasPhy = true;
    std::string operation; // "i2c.read", "event.reopened"
    std::string arguments; // and what they were, see LogFields
    std::string result;
    std::string note;
};

// Takes a log apart: lines with times; MDIO records, which are lines, and those of the 32- and 64-bit spaces,
// which run together. Nothing is an error: what is no record is a note. Keeps a quarter of a megabyte of the
// log at a time; a note that is longer than that comes in several. One thread.
class LogScanner {
public:
    // Reads the first `size` bytes of `file`, a descriptor that stays the caller's, by positions: scanners do
    // not disturb each other.
    LogScanner(int file, off_t size);

    // False at the end. Throws Failure when the file cannot be read.
    bool next(LogRecord& record);

private:
    void fill();
    bool takeTimedLine(LogRecord& record);
    void takeNote(LogRecord& record);
    std::string_view rest() const { return std::string_view(window_).substr(begin_); }

    int file_;
    off_t size_;
    off_t read_ = 0;
    std::string window_;
    std::size_t begin_ = 0;
    bool inNote_ = false;
};

} // namespace OrvaneTool
