// Owner of one file descriptor.
#pragma once

#include <unistd.h>
#include <utility>

namespace OrvaneSim {

/// Closes its descriptor when it goes; moves, never copies. Belongs to one thread at a time.
class FileDescriptor {
public:
    FileDescriptor() = default;
    /// Takes `fd` over; -1 means none.
    explicit FileDescriptor(int fd) : fd_(fd) {}
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() { reset(); }

    /// The descriptor, still owned here; -1 when there is none.
    int get() const { return fd_; }
    explicit operator bool() const { return fd_ >= 0; }
    /// Closes the descriptor now.
    void reset() {
        if (fd_ >= 0)
            ::close(std::exchange(fd_, -1));
    }
    /// Hands the descriptor to the caller.
    int release() { return std::exchange(fd_, -1); }

private:
    int fd_ = -1;
};

} // namespace OrvaneSim
