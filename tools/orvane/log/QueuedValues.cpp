// Values in memory and, beyond its share, in chunks of a temporary file.
#include "tools/orvane/log/QueuedValues.h"

#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace OrvaneTool {
namespace {

constexpr std::size_t kMostWaiting = 1'000'000; // values in memory: 16 MB
constexpr std::size_t kLoaded = 4096;           // of one PHY at a time

[[noreturn]] void fail() {
    throw Failure("cannot use a temporary file: " + errorText(errno));
}

} // namespace

Orvane::FileDescriptor temporaryFile() {
    const char* folder = std::getenv("TMPDIR"); // NOLINT(concurrency-mt-unsafe)
    std::string name = std::string(folder && *folder ? folder : "/tmp") + "/orvane-XXXXXX";
    Orvane::FileDescriptor file(::mkostemp(name.data(), O_CLOEXEC));
    if (!file)
        fail();
    ::unlink(name.c_str());
    return file;
}

void QueuedValues::add(const Phy& phy, const Value& value) {
    phys_[phy].waiting.push_back(value);
    if (++waiting_ >= kMostWaiting)
        writeAll();
}

void QueuedValues::writeAll() {
    if (!file_)
        file_ = temporaryFile();
    for (auto& [phy, values] : phys_) {
        if (values.waiting.empty())
            continue;
        const char* bytes = reinterpret_cast<const char*>(values.waiting.data());
        const std::size_t size = values.waiting.size() * sizeof(Value);
        for (std::size_t done = 0; done < size;) {
            const ssize_t count =
                ::pwrite(file_.get(), bytes + done, size - done, end_ + static_cast<off_t>(done));
            if (count < 0 && errno != EINTR)
                fail();
            done += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
        }
        values.written.push_back({end_, values.waiting.size()});
        end_ += static_cast<off_t>(size);
        std::vector<Value>().swap(values.waiting);
    }
    waiting_ = 0;
}

std::vector<QueuedValues::Value> QueuedValues::load(const Values& values, std::size_t from) const {
    for (const Chunk& chunk : values.written) {
        if (from >= chunk.count) {
            from -= chunk.count;
            continue;
        }
        std::vector<Value> some(std::min(kLoaded, chunk.count - from));
        const std::size_t size = some.size() * sizeof(Value);
        if (::pread(file_.get(), some.data(), size, chunk.at + static_cast<off_t>(from * sizeof(Value))) !=
            static_cast<ssize_t>(size))
            fail();
        return some;
    }
    const auto begin =
        values.waiting.begin() + static_cast<std::ptrdiff_t>(std::min(from, values.waiting.size()));
    return {begin, begin + std::min(static_cast<std::ptrdiff_t>(kLoaded), values.waiting.end() - begin)};
}

std::optional<QueuedValues::Value> QueuedValues::Reader::next(const Phy& phy) {
    const auto found = all_.phys_.find(phy);
    if (found == all_.phys_.end())
        return std::nullopt;
    Position& position = positions_[phy];
    if (position.place == position.loaded.size()) {
        position.loaded = all_.load(found->second, position.next);
        position.next += position.loaded.size();
        position.place = 0;
    }
    if (position.loaded.empty())
        return std::nullopt;
    return position.loaded[position.place++];
}

} // namespace OrvaneTool
