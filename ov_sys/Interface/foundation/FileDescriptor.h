// The owner of one file descriptor.
#pragma once

#include <unistd.h>
#include <utility>

namespace Orvane {

// Closes its descriptor when it goes; moves, never copies. Throws nothing; one thread at a time.
class FileDescriptor {
public:
    FileDescriptor() noexcept = default;
    // Takes `fd` over; any negative number, as system calls return it, stands for none.
    explicit FileDescriptor(int fd) noexcept : fd_(fd < 0 ? kNone : fd) {}
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        reset(other.release());
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { reset(); }

    // The descriptor, still owned here; -1 when there is none.
    int get() const noexcept { return fd_; }
    explicit operator bool() const noexcept { return fd_ != kNone; }

    // Hands the descriptor over to the caller, -1 when there is none.
    int release() noexcept { return std::exchange(fd_, kNone); }

    // Closes the descriptor now, and takes `fd` over instead.
    void reset(int fd = kNone) noexcept {
        const int former = std::exchange(fd_, fd < 0 ? kNone : fd);
        if (former != kNone)
            ::close(former);
    }

private:
    static constexpr int kNone = -1;

    int fd_ = kNone;
};

} // namespace Orvane
