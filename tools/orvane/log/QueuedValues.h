// The values that queued reads got, however many there are.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <cstdint>
#include <map>
#include <optional>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace OrvaneTool {

// An unnamed file in $TMPDIR, or in /tmp. Throws Failure.
Orvane::FileDescriptor temporaryFile();

// Of each PHY, the values in the order of its queued reads. Beyond a million, they wait in a temporary file.
class QueuedValues {
public:
    using Phy = std::pair<unsigned, unsigned>; // with its adapter
    struct Value {
        std::uint64_t bits;
        std::int64_t digits;
    };

    // Throws Failure when the file cannot be written.
    void add(const Phy& phy, const Value& value);

    // Gives each PHY's values, one after the other. The values must outlive it and stay as they are.
    class Reader {
    public:
        explicit Reader(const QueuedValues& all) : all_(all) {}
        // None behind the last. Throws Failure when the file cannot be read.
        std::optional<Value> next(const Phy& phy);

    private:
        struct Position {
            std::vector<Value> loaded;
            std::size_t place = 0; // in `loaded`
            std::size_t next = 0;  // the first that is not loaded yet
        };
        const QueuedValues& all_;
        std::map<Phy, Position> positions_;
    };

private:
    struct Chunk {
        off_t at;
        std::size_t count;
    };
    struct Values {
        std::vector<Chunk> written;
        std::vector<Value> waiting;
    };
    void writeAll();
    std::vector<Value> load(const Values& values, std::size_t from) const;

    std::map<Phy, Values> phys_;
    std::size_t waiting_ = 0;
    Orvane::FileDescriptor file_;
    off_t end_ = 0;
};

} // namespace OrvaneTool
