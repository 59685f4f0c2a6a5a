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
    Register reg; // of any space
    bool write = false;
    bool queued = false;
    int digits = 4; // hexadecimal digits of the value: 4, 8 or 16
    std::optional<std::uint64_t> value;

    std::string valueText() const; // 0x0A5C; "-" without a value
};

struct LogRecord {
    enum class Kind {
        Access,
        Fetched, // the value of a queued read that went before: adapter, PHY, value and digits of `access`
        Configuration, // an access of the configuration space, which names no PHY
        Note           // a line that is no record: the user's own
    };
    Kind kind = Kind::Note;
    LoggedAccess access;
    std::string_view note; // until the next record
};

// Takes a log apart: MDIO records, which are lines, and those of the 32- and 64-bit spaces, which run
// together. Nothing is an error: what is no record is a note. Keeps a quarter of a megabyte of the log at a
// time; a note that is longer than that comes in several. One thread.
class LogScanner {
public:
    // Reads the first `size` bytes of `file`, a descriptor that stays the caller's, by positions: scanners do
    // not disturb each other.
    LogScanner(int file, off_t size);

    // False at the end. Throws Failure when the file cannot be read.
    bool next(LogRecord& record);

private:
    void fill();
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
