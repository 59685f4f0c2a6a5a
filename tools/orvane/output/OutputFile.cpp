// Writing of files that must not take the place of others.
#include "tools/orvane/output/OutputFile.h"

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "tools/orvane/output/Errors.h"

#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

namespace OrvaneTool {
namespace {

[[noreturn]] void refuse(const std::string& path) {
    throw Failure(fmt::format("{}: it exists; --force overwrites it", path));
}

} // namespace

void requireNewFile(const std::string& path, bool force) {
    if (!force && ::access(path.c_str(), F_OK) == 0)
        refuse(path);
}

void writeFile(const std::string& path, std::string_view content, bool force) {
    constexpr mode_t kMode = 0666; // as the user's mask leaves it
    const Orvane::FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | (force ? O_TRUNC : O_EXCL), kMode));
    if (!file && errno == EEXIST)
        refuse(path);
    bool written = static_cast<bool>(file);
    while (written && !content.empty()) {
        const ssize_t count = ::write(file.get(), content.data(), content.size());
        if (count >= 0)
            content.remove_prefix(static_cast<std::size_t>(count));
        else
            written = errno == EINTR;
    }
    if (!written)
        throw Failure(fmt::format("{}: cannot write: {}", path, errorText(errno)));
}

} // namespace OrvaneTool
