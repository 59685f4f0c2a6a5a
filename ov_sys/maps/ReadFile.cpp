// Files that others wrote, read whole.
#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "ov_sys/maps/Loader.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Orvane::Maps {

namespace {

std::string errorText() {
    char buffer[128];
    return ::strerror_r(errno, buffer, sizeof buffer);
}

} // namespace

std::optional<std::string> readFile(const std::string& path, std::size_t most, Problems& problems) {
    const Position place{path, 0, {}};
    // A pipe without a writer must not hold the load up: only regular files count.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0) {
        problems.add(place, "cannot be read: " + errorText());
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode)) {
        problems.add(place, "is no file");
        return std::nullopt;
    }
    if (static_cast<std::size_t>(status.st_size) > most) {
        problems.add(place, "is larger than 8 MiB, with the files that include it");
        return std::nullopt;
    }
    std::string text(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t filled = 0;
    while (filled < text.size()) {
        const ssize_t count = ::read(file.get(), text.data() + filled, text.size() - filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0) {
            problems.add(place, "cannot be read: " + errorText());
            return std::nullopt;
        }
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    text.resize(filled);
    return text;
}

} // namespace Orvane::Maps
