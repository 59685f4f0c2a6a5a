// Memory that a decode allocates: it grows with what arrives, and a failed decode leaves nothing unfreed.
#include "ov_sys/Interface/rpc_protocol/XdrHelpers.h"

#include "tests/support/rpc_protocol/WireBytes.h"

#include <gtest/gtest.h>
#include <malloc.h>

namespace {

// What a failed decode may hold for a reply of a few bytes.
constexpr std::size_t kSmall = 2 * Orvane::Xdr::kFirstAllocation;

// A record stream in memory, in both directions.
struct RecordStream {
    explicit RecordStream(xdr_op operation) {
        xdrrec_create(&stream, 400, 400, this, read, write);
        stream.x_op = operation;
    }
    ~RecordStream() { XDR_DESTROY(&stream); }
    RecordStream(const RecordStream&) = delete;
    RecordStream& operator=(const RecordStream&) = delete;

    static int read(void* self, void* to, int room) {
        auto& from = *static_cast<RecordStream*>(self);
        const std::size_t length =
            std::min(static_cast<std::size_t>(room), from.bytes.size() - from.position);
        std::memcpy(to, from.bytes.data() + from.position, length);
        from.position += length;
        return length == 0 ? -1 : static_cast<int>(length);
    }

    static int write(void* self, void* from, int length) {
        const auto* first = static_cast<const unsigned char*>(from);
        append(static_cast<RecordStream*>(self)->bytes, {first, first + length});
        return length;
    }

    XDR stream{};
    WireBytes bytes;
    std::size_t position = 0;
};

} // namespace

TEST(AllocatingDecode, OfAHugeArrayCountFailsHoldingLittleMemory) {
    WireBytes bytes = wire("00000000 ffffffff 00000001 00000002");
    DecodeStream stream(bytes);
    MDIO_Read_Result result{};
    EXPECT_FALSE(xdr_MDIO_Read_Result(stream.get(), &result));
    ASSERT_NE(result.data.data_val, nullptr);
    EXPECT_LE(malloc_usable_size(result.data.data_val), kSmall);
    EXPECT_EQ(result.data.data_val[1], 2u);
    EXPECT_EQ(result.data.data_len, 3u);
    Orvane::freeDecoded(result);
    EXPECT_EQ(result.data.data_val, nullptr);
}

TEST(AllocatingDecode, OfAHugeByteArrayCountFailsHoldingLittleMemory) {
    WireBytes bytes = wire("00000000 ffffffff 00000001");
    DecodeStream stream(bytes);
    ADC_Data result{};
    EXPECT_FALSE(xdr_ADC_Data(stream.get(), &result));
    ASSERT_NE(result.data.data_val, nullptr);
    EXPECT_LE(malloc_usable_size(result.data.data_val), kSmall);
    Orvane::freeDecoded(result);
    EXPECT_EQ(result.data.data_val, nullptr);
}

TEST(AllocatingDecode, OfACountThatOverflowsTheSizeOfItsElementsFails) {
    WireBytes bytes = wire("10000001 00000001 61 000000 00000001");
    DecodeStream stream(bytes);
    JTAG_ShiftMulti_Result result{};
    EXPECT_FALSE(xdr_JTAG_ShiftMulti_Result(stream.get(), &result));
    ASSERT_NE(result.entries.entries_val, nullptr);
    EXPECT_LE(malloc_usable_size(result.entries.entries_val), kSmall);
    EXPECT_STREQ(result.entries.entries_val[0].text, "a");
    Orvane::freeDecoded(result);
    EXPECT_EQ(result.entries.entries_val, nullptr);
}

TEST(AllocatingDecode, ThatFailsInsideAStringListFreesTheStringsItHas) {
    WireBytes bytes = wire("00000003  00000001 61 000000 00000001  00000002 6263 0000");
    DecodeStream stream(bytes);
    JTAG_ShiftMulti_Result result{};
    EXPECT_FALSE(xdr_JTAG_ShiftMulti_Result(stream.get(), &result));
    EXPECT_EQ(result.entries.entries_len, 2u);
    EXPECT_STREQ(result.entries.entries_val[1].text, "bc");
    Orvane::freeDecoded(result);
    EXPECT_EQ(result.entries.entries_val, nullptr);
}

TEST(AllocatingDecode, OfAHugeOpaqueLengthFailsHoldingNothing) {
    WireBytes bytes = wire("00000000 ffffffff 61626364");
    DecodeStream stream(bytes);
    GPIO_Read_Result result{};
    EXPECT_FALSE(xdr_GPIO_Read_Result(stream.get(), &result));
    EXPECT_EQ(result.states.states_val, nullptr);
    EXPECT_EQ(result.states.states_len, 0u);
}

TEST(AllocatingDecode, OfAHugeStringLengthFailsHoldingNothing) {
    for (const char* const length : {"ffffffff", "10000000"}) {
        WireBytes bytes = wire(std::string(length) + "61626364");
        DecodeStream stream(bytes);
        StringArrayEntry entry{};
        EXPECT_FALSE(xdr_StringArrayEntry(stream.get(), &entry));
        EXPECT_EQ(entry.text, nullptr);
    }
}

TEST(AllocatingDecode, OfNoOpaqueBytesYieldsANullPointer) {
    WireBytes bytes = wire("00000000 00000000");
    DecodeStream stream(bytes);
    GPIO_Read_Result result{};
    EXPECT_TRUE(xdr_GPIO_Read_Result(stream.get(), &result));
    EXPECT_EQ(result.states.states_val, nullptr);
    EXPECT_EQ(result.states.states_len, 0u);
}

TEST(AllocatingDecode, OfAnEmptyStringYieldsAnEmptyString) {
    WireBytes bytes = wire("00000000 00000005");
    DecodeStream stream(bytes);
    StringArrayEntry entry{};
    EXPECT_TRUE(xdr_StringArrayEntry(stream.get(), &entry));
    EXPECT_STREQ(entry.text, "");
    EXPECT_EQ(entry.length, 5u);
    Orvane::freeDecoded(entry);
    EXPECT_EQ(entry.text, nullptr);
}

TEST(AllocatingDecode, OfALongArrayYieldsEveryElement) {
    constexpr u_int kCount = 100000;
    WireBytes bytes = wire("00000000");
    appendWord(bytes, kCount);
    for (u_int i = 0; i < kCount; ++i)
        appendWord(bytes, i);
    DecodeStream stream(bytes);
    MDIO_Read_Result result{};
    ASSERT_TRUE(xdr_MDIO_Read_Result(stream.get(), &result));
    ASSERT_EQ(result.data.data_len, kCount);
    u_int right = 0;
    while (right < kCount && result.data.data_val[right] == right)
        ++right;
    EXPECT_EQ(right, kCount);
    Orvane::freeDecoded(result);
}

TEST(AllocatingDecode, OfLongOpaqueDataYieldsEveryByteAndEndsBehindThePadding) {
    constexpr u_int kLength = 300001;
    WireBytes bytes = wire("00000000");
    appendWord(bytes, kLength);
    for (u_int i = 0; i < kLength; ++i)
        bytes.push_back(static_cast<unsigned char>(i % 251));
    append(bytes, wire("000000"));
    DecodeStream stream(bytes);
    GPIO_Read_Result result{};
    ASSERT_TRUE(xdr_GPIO_Read_Result(stream.get(), &result));
    ASSERT_EQ(result.states.states_len, kLength);
    EXPECT_EQ(std::memcmp(result.states.states_val, bytes.data() + 8, kLength), 0);
    EXPECT_EQ(stream.consumed(), bytes.size());
    Orvane::freeDecoded(result);
}

TEST(AllocatingDecode, OfALongStringYieldsEveryCharacterAndTheTerminator) {
    constexpr u_int kLength = 200002;
    WireBytes bytes;
    appendWord(bytes, kLength);
    bytes.resize(bytes.size() + kLength, 's');
    append(bytes, wire("0000 00000001"));
    DecodeStream stream(bytes);
    StringArrayEntry entry{};
    ASSERT_TRUE(xdr_StringArrayEntry(stream.get(), &entry));
    EXPECT_EQ(std::string(entry.text), std::string(kLength, 's'));
    EXPECT_EQ(entry.length, 1u);
    Orvane::freeDecoded(entry);
}

TEST(AllocatingDecode, FromARecordStreamOfManyFragmentsYieldsWhatWasSent) {
    std::vector<u_char> data(70000, 0xa7);
    data.back() = 0x01;
    ADC_Data sent{-7, {static_cast<u_int>(data.size()), data.data()}};
    RecordStream out(XDR_ENCODE);
    ASSERT_TRUE(xdr_ADC_Data(&out.stream, &sent));
    ASSERT_TRUE(xdrrec_endofrecord(&out.stream, TRUE));
    RecordStream in(XDR_DECODE);
    in.bytes = out.bytes;
    ASSERT_TRUE(xdrrec_skiprecord(&in.stream));
    ADC_Data got{};
    EXPECT_TRUE(xdr_ADC_Data(&in.stream, &got));
    EXPECT_EQ(got.error, -7);
    EXPECT_EQ((std::vector<u_char>{got.data.data_val, got.data.data_val + got.data.data_len}), data);
    Orvane::freeDecoded(got);
}

TEST(AllocatingDecode, OfAHugeCountFromARecordStreamFailsHoldingLittleMemory) {
    RecordStream in(XDR_DECODE);
    in.bytes = wire("8000000c 00000000 fffffff0 00000001");
    ASSERT_TRUE(xdrrec_skiprecord(&in.stream));
    MDIO_Read_Result result{};
    EXPECT_FALSE(xdr_MDIO_Read_Result(&in.stream, &result));
    EXPECT_LE(malloc_usable_size(result.data.data_val), kSmall);
    Orvane::freeDecoded(result);
    EXPECT_EQ(result.data.data_val, nullptr);
}

TEST(PresetDecode, WithoutAGuardFillsTheGivenBuffer) {
    u_int words[3] = {0, 0, 0};
    MDIO_Read_Result result{0, {0, words}};
    WireBytes bytes = wire("00000000 00000003 00000001 00000002 00000003");
    DecodeStream stream(bytes);
    EXPECT_TRUE(xdr_MDIO_Read_Result(stream.get(), &result));
    EXPECT_EQ(result.data.data_len, 3u);
    EXPECT_EQ(result.data.data_val, words);
    EXPECT_EQ(words[2], 3u);
}

TEST(PresetDecode, WithoutAGuardFillsTheGivenBytes) {
    char states[4] = {'.', '.', '.', '.'};
    GPIO_Read_Result result{0, {0, states}};
    WireBytes bytes = wire("00000000 00000002 6162 0000");
    DecodeStream stream(bytes);
    EXPECT_TRUE(xdr_GPIO_Read_Result(stream.get(), &result));
    EXPECT_EQ(result.states.states_val, states);
    EXPECT_EQ((std::string{states, 4}), "ab..");
}

TEST(PresetDecode, WithoutAGuardFillsAndTerminatesTheGivenText) {
    char text[4] = {'.', '.', '.', '.'};
    StringArrayEntry entry{text, 0};
    WireBytes bytes = wire("00000002 6364 0000 00000002");
    DecodeStream stream(bytes);
    EXPECT_TRUE(xdr_StringArrayEntry(stream.get(), &entry));
    EXPECT_EQ(entry.text, text);
    EXPECT_EQ((std::string{text, 4}), (std::string{"cd\0.", 4}));
}

TEST(Words, ThatDoNotLieInOnePieceAreCarriedOneByOne) {
    std::vector<u_int> data(873);
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<u_int>(0x01020304 + i);
    MDIO_Read_Param sent{7, {static_cast<u_int>(data.size()), data.data()}};
    RecordStream out(XDR_ENCODE);
    ASSERT_TRUE(xdr_MDIO_Read_Param(&out.stream, &sent));
    ASSERT_TRUE(xdrrec_endofrecord(&out.stream, TRUE));
    RecordStream in(XDR_DECODE);
    in.bytes = out.bytes;
    ASSERT_TRUE(xdrrec_skiprecord(&in.stream));
    std::vector<u_int> words(data.size());
    const Orvane::DecodeGuard guard(words.data(), words.size());
    MDIO_Read_Param got{0, {0, words.data()}};
    EXPECT_TRUE(xdr_MDIO_Read_Param(&in.stream, &got));
    EXPECT_EQ(got.handle, 7u);
    EXPECT_EQ(words, data);
}
