// Holds back what the library has to tell.
#pragma once

#include <mutex>
#include <string>
#include <unistd.h>

namespace OrvaneTool {

// While one lives, the library's lines are collected here and never mix with a command's output. At most one
// at a time.
class LibraryMessages {
public:
    // Also gives a program that was started without a standard stream one that leads nowhere, so that no file
    // or connection takes its place. Throws std::system_error.
    LibraryMessages();
    ~LibraryMessages(); // the lines go to the standard streams again
    LibraryMessages(const LibraryMessages&) = delete;
    LibraryMessages& operator=(const LibraryMessages&) = delete;

    // Descriptors of the standard streams.
    static int out() { return STDOUT_FILENO; }
    static int err() { return STDERR_FILENO; }

    // What the library told since the last call, a line each. Any thread of the library may be telling
    // meanwhile.
    std::string take();

    // Some answers of a board make the library end the program. It then ends with a line for the user
    // instead: what is being done, by `activity`, on the standard error stream, and exit status 1.
    static void explainAborts(int err, const std::string& activity);

private:
    std::mutex mutex_; // guards the lines
    std::string lines_;
};

} // namespace OrvaneTool
