// The XDR routine of every wire record, decoding to fresh memory and into announced buffers.
#include "fuzz/Input.h"
#include "ov_sys/Interface/rpc_protocol/DecodeGuard.h"
#include "tests/support/RecordSamples.h"

#include <cstring>
#include <memory>

namespace {

using namespace OrvaneFuzz;

constexpr std::size_t kLargestElement = sizeof(StringArrayEntry);

// A record whose lists and texts, if `capacity` is not 0, point to announced buffers of so many elements.
class Record {
public:
    Record(const RecordSample& sample, std::size_t capacity)
        : sample_(sample), memory_(sample.size / sizeof(unsigned long) + 1) {
        for (const MemberSample& member : sample.members)
            if (capacity != 0 && member.kind != MemberSample::Kind::Scalar)
                announce(member, capacity);
    }
    ~Record() { sample_.freeDecoded(memory_.data()); }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;

    void* get() { return memory_.data(); }

private:
    void announce(const MemberSample& member, std::size_t capacity) {
        buffers_.push_back(std::make_unique<char[]>(capacity * kLargestElement));
        void* const buffer = buffers_.back().get();
        const bool isText = member.kind == MemberSample::Kind::Text;
        char* const place = reinterpret_cast<char*>(memory_.data()) + member.offset +
                            (isText ? 0 : member.size - sizeof buffer);
        std::memcpy(place, &buffer, sizeof buffer);
        guards_.push_back(std::make_unique<Orvane::DecodeGuard>(buffer, capacity));
    }

    const RecordSample& sample_;
    std::vector<unsigned long> memory_;
    std::vector<std::unique_ptr<char[]>> buffers_;
    std::vector<std::unique_ptr<Orvane::DecodeGuard>> guards_;
};

bool decode(const RecordSample& sample, Record& record, WireBytes bytes) {
    DecodeStream stream(bytes);
    return sample.run(stream.get(), record.get()) != FALSE;
}

WireBytes encode(const RecordSample& sample, Record& record, std::size_t room) {
    EncodeStream stream(room);
    mustHold(sample.run(stream.get(), record.get()) != FALSE);
    return stream.bytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const auto& samples = recordSamples();
    const RecordSample& sample = samples[input.byte() % samples.size()];
    const std::size_t capacity = input.byte() % 16U;
    const Bytes bytes = input.rest();
    Record record(sample, capacity);
    if (!decode(sample, record, bytes) || capacity != 0)
        return 0;
    // What was understood can be said again, and is then understood the same.
    const std::size_t room = bytes.size() + 64;
    const WireBytes again = encode(sample, record, room);
    Record second(sample, 0);
    mustHold(decode(sample, second, again));
    mustHold(encode(sample, second, room) == again);
    return 0;
}
