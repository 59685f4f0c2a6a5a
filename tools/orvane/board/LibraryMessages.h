// Holds back what the library writes to the standard streams.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <string>
#include <sys/types.h>

namespace OrvaneTool {

// While one lives, the process's standard output and standard error lead into memory, and the real ones are
// the descriptors out() and err(): the library's lines never mix with a command's output. At most one at a
// time.
class LibraryMessages {
public:
    // Throws std::system_error.
    LibraryMessages();
    ~LibraryMessages(); // puts the real streams back
    LibraryMessages(const LibraryMessages&) = delete;
    LibraryMessages& operator=(const LibraryMessages&) = delete;

    int out() const { return out_.get(); }
    int err() const { return err_.get(); }

    // What the library wrote since the last call. Any thread of the library may be writing meanwhile.
    std::string take();

    // Some answers of a board make the library end the program. It then ends with a line for the user
    // instead: what is being done, by `activity`, on the real standard error, and exit status 1.
    static void explainAborts(int err, const std::string& activity);

private:
    Orvane::FileDescriptor out_;
    Orvane::FileDescriptor err_;
    Orvane::FileDescriptor memory_;
    off_t taken_ = 0;
};

} // namespace OrvaneTool
