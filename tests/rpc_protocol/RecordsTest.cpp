// The wire form of every record, and what a stream that ends early leaves behind.
#include "ov_sys/Interface/rpc_protocol/Records.h"

#include "tests/support/RecordSamples.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace {

// A record's memory, every scalar and count of which holds the byte 0xa5 and every pointer null.
class Marked {
public:
    explicit Marked(const RecordSample& sample) : sample_(sample), memory_(sample.size / 8 + 1) {
        for (const MemberSample& member : sample.members) {
            const std::size_t marked = member.kind == MemberSample::Kind::Scalar ? member.size
                                       : member.kind == MemberSample::Kind::List ? sizeof(u_int)
                                                                                 : 0;
            std::memset(at(member), 0xa5, marked);
        }
    }
    ~Marked() { sample_.freeDecoded(record()); }
    Marked(const Marked&) = delete;
    Marked& operator=(const Marked&) = delete;

    void* record() { return memory_.data(); }
    char* at(const MemberSample& member) { return reinterpret_cast<char*>(memory_.data()) + member.offset; }

private:
    const RecordSample& sample_;
    std::vector<unsigned long> memory_;
};

bool sameMember(const MemberSample& member, Marked& one, Marked& other) {
    return std::memcmp(one.at(member), other.at(member), member.size) == 0;
}

// Compares a record that was decoded from only `length` bytes, member by member.
void expectDecodedUpTo(const RecordSample& sample, std::size_t length, Marked& cut) {
    Marked untouched(sample);
    std::size_t start = 0;
    for (const MemberSample& member : sample.members) {
        const std::size_t end = start + member.bytes.size();
        const void* original = static_cast<const char*>(sample.filled) + member.offset;
        if (start > length) {
            EXPECT_TRUE(sameMember(member, cut, untouched)) << "the member at wire offset " << start;
        } else if (end <= length && member.kind == MemberSample::Kind::Scalar) {
            EXPECT_EQ(std::memcmp(cut.at(member), original, member.size), 0)
                << "the member at wire offset " << start;
        }
        start = end;
    }
}

WireBytes encoded(const RecordSample& sample, void* record) {
    EncodeStream stream;
    EXPECT_TRUE(sample.run(stream.get(), record));
    return stream.bytes();
}

constexpr const char* kOpenResultWire = "11111117 fedcba98 33333333 ffffffe4";

void expectSampleValues(const Open_Result& result) {
    EXPECT_EQ(result.word1, 0x11111117u);
    EXPECT_EQ(result.sessionId, 0xfedcba98u);
    EXPECT_EQ(result.word3, 0x33333333u);
    EXPECT_EQ(result.error, -28);
}

} // namespace

TEST(Records, EveryWireRecordHasASample) {
    std::set<std::string> listed;
#define LIST(Record) listed.insert(#Record);
    ORVANE_WIRE_RECORDS(LIST)
#undef LIST
    std::set<std::string> sampled;
    for (const RecordSample& sample : recordSamples())
        sampled.insert(sample.name);
    EXPECT_EQ(sampled, listed);
    EXPECT_EQ(recordSamples().size(), 50u);
}

TEST(Records, AFilledRecordEncodesToItsMembersInOrder) {
    for (const RecordSample& sample : recordSamples())
        EXPECT_EQ(encoded(sample, sample.filled), sample.bytes()) << sample.name;
}

TEST(Records, WireBytesDecodeToTheRecordThatEncodesToThemAndAreUsedUp) {
    for (const RecordSample& sample : recordSamples()) {
        SCOPED_TRACE(sample.name);
        WireBytes bytes = sample.bytes();
        DecodeStream stream(bytes);
        Marked decoded(sample);
        EXPECT_TRUE(sample.run(stream.get(), decoded.record()));
        EXPECT_EQ(stream.consumed(), bytes.size());
        expectDecodedUpTo(sample, bytes.size(), decoded);
        EXPECT_EQ(encoded(sample, decoded.record()), bytes);
    }
}

TEST(Records, AReplyCutAtAnyWordFailsAndLeavesTheLaterMembersAlone) {
    for (const RecordSample& sample : recordSamples()) {
        WireBytes whole = sample.bytes();
        for (std::size_t length = 0; length < whole.size(); length += 4) {
            SCOPED_TRACE(sample.name + " cut to " + std::to_string(length));
            WireBytes bytes(whole.begin(), whole.begin() + static_cast<long>(length));
            DecodeStream stream(bytes);
            Marked decoded(sample);
            EXPECT_FALSE(sample.run(stream.get(), decoded.record()));
            expectDecodedUpTo(sample, length, decoded);
        }
    }
}

TEST(Records, EncodingIntoTooLittleRoomFails) {
    for (const RecordSample& sample : recordSamples()) {
        const std::size_t whole = sample.bytes().size();
        for (std::size_t room = 0; room < whole; room += 4) {
            EncodeStream stream(room);
            EXPECT_FALSE(sample.run(stream.get(), sample.filled))
                << sample.name << " in " << room << " bytes";
        }
    }
}

TEST(Records, EmptyListsEncodeToASingleZeroCount) {
    for (const RecordSample& sample : recordSamples()) {
        if (sample.type == std::type_index(typeid(StringArrayEntry))) // a null string has no wire form
            continue;
        std::vector<unsigned long> empty(sample.size / 8 + 1);
        const WireBytes expected(sample.members.size() * 4, 0);
        EXPECT_EQ(encoded(sample, empty.data()), expected) << sample.name;
    }
}

TEST(Records, AnEmptyListDecodesToNoMemory) {
    WireBytes bytes = wire("00000000 00000000");
    DecodeStream stream(bytes);
    MDIO_Read_Result result{-1, {7, nullptr}};
    EXPECT_TRUE(xdr_MDIO_Read_Result(stream.get(), &result));
    EXPECT_EQ(result.data.data_len, 0u);
    EXPECT_EQ(result.data.data_val, nullptr);
}

TEST(Records, AByteTakesFourBytesOnTheWireAndItsLowEightBitsCount) {
    WireBytes bytes = wire("00000001 fffffe81 00000002");
    DecodeStream stream(bytes);
    MDIO_FlushPort_Param param{};
    EXPECT_TRUE(xdr_MDIO_FlushPort_Param(stream.get(), &param));
    EXPECT_EQ(param.byte1, 0x81);
    EXPECT_EQ(param.byte2, 2);
}

TEST(Records, AReadResultOfAnotherLengthThanAskedForDecodes) {
    WireBytes bytes = wire("00000000 00000003 0000000a 0000000b 0000000c");
    DecodeStream stream(bytes);
    MDIO_Read_Result result{};
    EXPECT_TRUE(xdr_MDIO_Read_Result(stream.get(), &result));
    ASSERT_EQ(result.data.data_len, 3u);
    EXPECT_EQ(result.data.data_val[2], 12u);
    Orvane::freeDecoded(result);
}

TEST(OpenResult, EncodesThroughTheInlineBufferAlone) {
    auto result = filled<Open_Result>();
    Refusal refusal;
    EncodeStream stream;
    refusal.ofWords(stream.get());
    EXPECT_TRUE(xdr_Open_Result(stream.get(), &result));
    EXPECT_EQ(stream.bytes(), wire(kOpenResultWire));
}

TEST(OpenResult, EncodesTheSameWithoutAnInlineBuffer) {
    auto result = filled<Open_Result>();
    Refusal refusal;
    EncodeStream stream;
    refusal.ofInline(stream.get());
    EXPECT_TRUE(xdr_Open_Result(stream.get(), &result));
    EXPECT_EQ(stream.bytes(), wire(kOpenResultWire));
    EXPECT_EQ(refusal.lengthsAsked(), std::vector<u_int>{16});
}

TEST(OpenResult, DecodesThroughTheInlineBufferAlone) {
    WireBytes bytes = wire(kOpenResultWire);
    Refusal refusal;
    DecodeStream stream(bytes);
    refusal.ofWords(stream.get());
    Open_Result result{};
    EXPECT_TRUE(xdr_Open_Result(stream.get(), &result));
    expectSampleValues(result);
}

TEST(OpenResult, DecodesTheSameWithoutAnInlineBuffer) {
    WireBytes bytes = wire(kOpenResultWire);
    Refusal refusal;
    DecodeStream stream(bytes);
    refusal.ofInline(stream.get());
    Open_Result result{};
    EXPECT_TRUE(xdr_Open_Result(stream.get(), &result));
    expectSampleValues(result);
    EXPECT_EQ(refusal.lengthsAsked(), std::vector<u_int>{16});
}

TEST(OpenResult, FreeingAsksNothingOfTheStream) {
    XDR stream{};
    stream.x_op = XDR_FREE;
    auto result = filled<Open_Result>();
    EXPECT_TRUE(xdr_Open_Result(&stream, &result));
    expectSampleValues(result);
}
