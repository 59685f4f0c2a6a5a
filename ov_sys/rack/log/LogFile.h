// A file that grows by whole lines.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <string>
#include <string_view>

namespace Orvane::RackLog {

// Several processes may write to the same one. One thread at a time.
class LogFile {
public:
    // Makes it if need be, and opens it for writing at its end. Throws std::system_error.
    explicit LogFile(const std::string& path);

    // Whether nothing is in it; also of what is no regular file.
    bool empty() const noexcept;
    // Throws std::system_error when not all of it could be written. What was written is then taken back;
    // where that cannot be done, the line that was cut is ended by "#cut" before the next.
    void append(std::string_view lines);

private:
    std::string_view write(std::string_view text) const noexcept;
    bool takeBack(std::size_t bytes) const noexcept;

    FileDescriptor file_;
    bool pipe_ = false;
    bool cut_ = false;
};

} // namespace Orvane::RackLog
