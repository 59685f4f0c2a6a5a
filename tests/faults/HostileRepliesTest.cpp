// Results that are cut, too long, or whose counts lie, record by record.
#include "ov_sys/Interface/rpc_protocol/DecodeGuard.h"
#include "ov_sys/Interface/rpc_protocol/XdrHelpers.h"
#include "tests/support/RecordSamples.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <malloc.h>

namespace {

// The memory of one record, all zero, freed with what a decode put into it.
class Decoded {
public:
    explicit Decoded(const RecordSample& sample) : sample_(sample), memory_(sample.size / 8 + 1) {}
    ~Decoded() { sample_.freeDecoded(memory_.data()); }
    Decoded(const Decoded&) = delete;
    Decoded& operator=(const Decoded&) = delete;

    bool from(WireBytes bytes) {
        DecodeStream stream(bytes);
        const bool done = sample_.run(stream.get(), memory_.data()) != FALSE;
        consumed = stream.consumed();
        return done;
    }

    // The pointer of a list or text.
    void* pointerOf(const MemberSample& member) {
        void* pointer = nullptr;
        std::memcpy(&pointer, placeOf(member), sizeof pointer);
        return pointer;
    }
    void setPointer(const MemberSample& member, void* pointer) {
        std::memcpy(placeOf(member), &pointer, sizeof pointer);
    }

    std::size_t consumed = 0;

private:
    char* placeOf(const MemberSample& member) {
        return reinterpret_cast<char*>(memory_.data()) + member.offset + member.size - sizeof(void*);
    }

    const RecordSample& sample_;
    std::vector<unsigned long> memory_;
};

// Calls `check` for every list and text of every record with the record's bytes in which that one's count is
// each of the wrong ones.
template <class Check>
void forEveryWrongCount(Check check) {
    std::vector<unsigned> counts{0x3fffffff, 0x40000000, 0x7fffffff, 0x80000000, 0xffffffff};
    for (unsigned count = 0; count <= 300; ++count)
        counts.push_back(count);
    for (const RecordSample& sample : recordSamples()) {
        std::size_t start = 0;
        for (const MemberSample& member : sample.members) {
            for (const unsigned count : counts) {
                if (member.kind == MemberSample::Kind::Scalar)
                    break;
                SCOPED_TRACE(sample.name + " at " + std::to_string(start) + " with " + std::to_string(count));
                WireBytes bytes = sample.bytes();
                WireBytes word;
                appendWord(word, count);
                std::copy(word.begin(), word.end(), bytes.begin() + static_cast<std::ptrdiff_t>(start));
                check(sample, member, bytes);
            }
            start += member.bytes.size();
        }
    }
}

// Elements of a caller's buffer, each as large as the largest that there is, and what they are filled with.
constexpr std::size_t kElements = 3;
struct Buffer {
    std::array<StringArrayEntry, kElements + 1> elements{};
};

} // namespace

TEST(AHostileResult, CutAtAnyByteIsRefused) {
    for (const RecordSample& sample : recordSamples()) {
        const WireBytes whole = sample.bytes();
        for (std::size_t length = 0; length < whole.size(); ++length) {
            Decoded decoded(sample);
            EXPECT_FALSE(decoded.from({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}))
                << sample.name << " cut to " << length;
        }
    }
}

TEST(AHostileResult, WithBytesBehindItIsReadToItsOwnEnd) {
    for (const RecordSample& sample : recordSamples())
        for (const std::size_t more : {1U, 3U, 4U, 100U, 9000U}) {
            WireBytes bytes = sample.bytes();
            const std::size_t end = bytes.size();
            bytes.resize(end + more, 0xEE);
            Decoded decoded(sample);
            EXPECT_TRUE(decoded.from(bytes)) << sample.name;
            EXPECT_EQ(decoded.consumed, end) << sample.name;
        }
}

TEST(AHostileResult, WithAnyWrongCountTakesNoMoreMemoryThanTheFirstHelping) {
    std::size_t checked = 0;
    forEveryWrongCount([&](const RecordSample& sample, const MemberSample& member, const WireBytes& bytes) {
        Decoded decoded(sample);
        decoded.from(bytes);
        constexpr std::size_t kRounding = 4096; // the allocator's
        EXPECT_LE(malloc_usable_size(decoded.pointerOf(member)), Orvane::Xdr::kFirstAllocation + kRounding);
        ++checked;
    });
    EXPECT_GT(checked, 40U * 300U);
}

TEST(AHostileResult, WithAnyWrongCountStaysInAnAnnouncedBuffer) {
    forEveryWrongCount([](const RecordSample& sample, const MemberSample& member, const WireBytes& bytes) {
        if (member.kind == MemberSample::Kind::Text)
            return; // its buffers are the library's own
        Buffer buffer;
        const StringArrayEntry last = buffer.elements.back();
        const Orvane::DecodeGuard guard(buffer.elements.data(), kElements);
        Decoded decoded(sample);
        decoded.setPointer(member, buffer.elements.data());
        decoded.from(bytes);
        EXPECT_EQ(decoded.pointerOf(member), buffer.elements.data());
        EXPECT_EQ(std::memcmp(&buffer.elements.back(), &last, sizeof last), 0);
    });
}
