// Decoding into a caller's own buffer of announced capacity.
#include "ov_sys/Interface/rpc_protocol/DecodeGuard.h"

#include "ov_sys/Interface/rpc_protocol/Codec.h"
#include "tests/support/rpc_protocol/WireBytes.h"

#include <array>
#include <gtest/gtest.h>
#include <memory>
#include <thread>

using Orvane::DecodeGuard;

namespace {

constexpr u_int kUnset = 0x5a5a5a5a;

// A read result whose data is preset to the first `capacity` words of a larger buffer.
struct ReadInto {
    explicit ReadInto(std::size_t capacity) : guard(words.data(), capacity) {
        words.fill(kUnset);
        result.data.data_val = words.data();
    }

    bool_t decode(WireBytes bytes) {
        DecodeStream stream(bytes);
        const bool_t done = xdr_MDIO_Read_Result(stream.get(), &result);
        left = bytes.size() - stream.consumed();
        return done;
    }

    std::array<u_int, 8> words{};
    DecodeGuard guard;
    MDIO_Read_Result result{};
    std::size_t left = 0;
};

// As ReadInto, of opaque data.
struct StatesInto {
    explicit StatesInto(std::size_t capacity) : guard(bytes.data(), capacity) {
        bytes.fill('.');
        result.states.states_val = bytes.data();
    }

    bool_t decode(WireBytes reply) {
        DecodeStream stream(reply);
        const bool_t done = xdr_GPIO_Read_Result(stream.get(), &result);
        left = reply.size() - stream.consumed();
        return done;
    }

    std::string text() const { return {bytes.begin(), bytes.end()}; }

    std::array<char, 8> bytes{};
    DecodeGuard guard;
    GPIO_Read_Result result{};
    std::size_t left = 0;
};

} // namespace

TEST(DecodeGuard, AnnouncesItsBufferWhileItLives) {
    int buffer = 0;
    std::size_t capacity = 0;
    {
        const DecodeGuard guard(&buffer, 12);
        EXPECT_TRUE(DecodeGuard::announced(&buffer, capacity));
    }
    EXPECT_EQ(capacity, 12u);
    EXPECT_FALSE(DecodeGuard::announced(&buffer, capacity));
}

TEST(DecodeGuard, NeverAnnouncesANullPointer) {
    const DecodeGuard guard(nullptr, 12);
    std::size_t capacity = 0;
    EXPECT_FALSE(DecodeGuard::announced(nullptr, capacity));
}

TEST(DecodeGuard, AnInnerGuardOfTheSameBufferHoldsUntilItEnds) {
    int buffer = 0;
    std::size_t inside = 0;
    std::size_t after = 0;
    const DecodeGuard outer(&buffer, 1);
    {
        const DecodeGuard inner(&buffer, 2);
        DecodeGuard::announced(&buffer, inside);
    }
    DecodeGuard::announced(&buffer, after);
    EXPECT_EQ(inside, 2u);
    EXPECT_EQ(after, 1u);
}

TEST(DecodeGuard, NestedGuardsAnnounceAllTheirBuffers) {
    int buffers[2] = {};
    const DecodeGuard outer(&buffers[0], 10);
    const DecodeGuard inner(&buffers[1], 20);
    std::size_t first = 0;
    std::size_t second = 0;
    EXPECT_TRUE(DecodeGuard::announced(&buffers[0], first));
    EXPECT_TRUE(DecodeGuard::announced(&buffers[1], second));
    EXPECT_EQ(first, 10u);
    EXPECT_EQ(second, 20u);
}

TEST(DecodeGuard, GuardsMayEndInAnyOrder) {
    int buffers[3] = {};
    auto first = std::make_unique<DecodeGuard>(&buffers[0], 10);
    auto second = std::make_unique<DecodeGuard>(&buffers[1], 20);
    const DecodeGuard third(&buffers[2], 30);
    first.reset();
    second.reset();
    std::size_t capacity = 0;
    EXPECT_FALSE(DecodeGuard::announced(&buffers[0], capacity));
    EXPECT_FALSE(DecodeGuard::announced(&buffers[1], capacity));
    EXPECT_TRUE(DecodeGuard::announced(&buffers[2], capacity));
    EXPECT_EQ(capacity, 30u);
}

TEST(DecodeGuard, AnnouncesNothingToOtherThreads) {
    int buffer = 0;
    const DecodeGuard guard(&buffer, 12);
    bool seen = true;
    std::thread([&] {
        std::size_t capacity = 0;
        seen = DecodeGuard::announced(&buffer, capacity);
    }).join();
    EXPECT_FALSE(seen);
}

TEST(GuardedArray, OfAsManyElementsAsAnnouncedIsStored) {
    ReadInto read(2);
    EXPECT_TRUE(read.decode(wire("00000000 00000002 00000001 00000002")));
    EXPECT_EQ(read.result.data.data_len, 2u);
    EXPECT_EQ(read.words, (std::array<u_int, 8>{1, 2, kUnset, kUnset, kUnset, kUnset, kUnset, kUnset}));
}

TEST(GuardedArray, OfFewerElementsLeavesTheRestOfTheBufferAlone) {
    ReadInto read(4);
    EXPECT_TRUE(read.decode(wire("00000000 00000001 00000009")));
    EXPECT_EQ(read.result.data.data_len, 1u);
    EXPECT_EQ(read.words[0], 9u);
    EXPECT_EQ(read.words[1], kUnset);
}

TEST(GuardedArray, OfNoElementsKeepsTheBuffer) {
    ReadInto read(4);
    EXPECT_TRUE(read.decode(wire("00000000 00000000")));
    EXPECT_EQ(read.result.data.data_len, 0u);
    EXPECT_EQ(read.result.data.data_val, read.words.data());
    EXPECT_EQ(read.words[0], kUnset);
}

TEST(GuardedArray, OfMoreElementsIsCutReadToItsEndAndCountedInFull) {
    ReadInto read(2);
    EXPECT_TRUE(read.decode(wire("00000000 00000004 00000001 00000002 00000003 00000004")));
    EXPECT_EQ(read.result.data.data_len, 4u);
    EXPECT_EQ(read.words[1], 2u);
    EXPECT_EQ(read.words[2], kUnset);
    EXPECT_EQ(read.left, 0u);
}

TEST(GuardedArray, IgnoresTheCountThatTheRecordHeldBefore) {
    ReadInto read(2);
    read.result.data.data_len = 0;
    EXPECT_TRUE(read.decode(wire("00000000 00000002 00000007 00000008")));
    EXPECT_EQ(read.words[1], 8u);
}

TEST(GuardedArray, OfAHugeCountFailsWhereTheReplyEnds) {
    ReadInto read(2);
    EXPECT_FALSE(read.decode(wire("00000000 ffffffff 00000001 00000002 00000003")));
    EXPECT_EQ(read.words[2], kUnset);
    EXPECT_EQ(read.left, 0u);
}

TEST(GuardedArray, LongerThanAnnouncedLetsTheMembersBehindItDecode) {
    std::array<char, 2> output{};
    const DecodeGuard guard(output.data(), 1);
    Command_Result result{};
    result.output1.output1_val = output.data();
    WireBytes bytes = wire("00000000 00000007 00000002 00000061 00000062 00000001 00000063");
    DecodeStream stream(bytes);
    EXPECT_TRUE(xdr_Command_Result(stream.get(), &result));
    EXPECT_EQ(result.output1.output1_len, 2u);
    EXPECT_EQ(output, (std::array<char, 2>{'a', '\0'}));
    ASSERT_EQ(result.output2.output2_len, 1u);
    EXPECT_EQ(result.output2.output2_val[0], 'c');
    Orvane::freeDecoded(result);
    EXPECT_EQ(result.output1.output1_val, output.data());
    EXPECT_EQ(result.output2.output2_val, nullptr);
}

TEST(GuardedArray, EncodesAsIfNoGuardWereThere) {
    std::array<u_int, 2> words{5, 6};
    const DecodeGuard guard(words.data(), 1);
    MDIO_Read_Param param{1, {2, words.data()}};
    EncodeStream stream;
    EXPECT_TRUE(xdr_MDIO_Read_Param(stream.get(), &param));
    EXPECT_EQ(stream.bytes(), wire("00000001 00000002 00000005 00000006"));
}

TEST(GuardedArray, OfBytesEncodesAsIfNoGuardWereThere) {
    std::array<u_char, 2> data{5, 6};
    const DecodeGuard guard(data.data(), 1);
    ADC_Data record{1, {2, data.data()}};
    EncodeStream stream;
    EXPECT_TRUE(xdr_ADC_Data(stream.get(), &record));
    EXPECT_EQ(stream.bytes(), wire("00000001 00000002 00000005 00000006"));
}

TEST(GuardedOpaque, EncodesAsIfNoGuardWereThere) {
    std::array<char, 2> indexes{'a', 'b'};
    const DecodeGuard guard(indexes.data(), 1);
    GPIO_Indexes_Param param{1, {2, indexes.data()}};
    EncodeStream stream;
    EXPECT_TRUE(xdr_GPIO_Indexes_Param(stream.get(), &param));
    EXPECT_EQ(stream.bytes(), wire("00000001 00000002 61620000"));
}

TEST(GuardedOpaque, OfAsManyBytesAsAnnouncedIsStored) {
    StatesInto states(3);
    EXPECT_TRUE(states.decode(wire("00000000 00000003 616263 00")));
    EXPECT_EQ(states.result.states.states_len, 3u);
    EXPECT_EQ(states.text(), "abc.....");
    EXPECT_EQ(states.left, 0u);
}

TEST(GuardedOpaque, OfFewerBytesLeavesTheRestOfTheBufferAlone) {
    StatesInto states(8);
    EXPECT_TRUE(states.decode(wire("00000000 00000002 6162 0000")));
    EXPECT_EQ(states.result.states.states_len, 2u);
    EXPECT_EQ(states.text(), "ab......");
}

TEST(GuardedOpaque, OfNoBytesKeepsTheBuffer) {
    StatesInto states(8);
    EXPECT_TRUE(states.decode(wire("00000000 00000000")));
    EXPECT_EQ(states.result.states.states_len, 0u);
    EXPECT_EQ(states.result.states.states_val, states.bytes.data());
}

TEST(GuardedOpaque, OfMoreBytesIsCutReadToTheEndOfItsPaddingAndCountedInFull) {
    StatesInto states(2);
    EXPECT_TRUE(states.decode(wire("00000000 00000005 6162636465 000000")));
    EXPECT_EQ(states.result.states.states_len, 5u);
    EXPECT_EQ(states.text(), "ab......");
    EXPECT_EQ(states.left, 0u);
}

TEST(GuardedOpaque, FarLongerThanAnnouncedIsReadToItsEnd) {
    StatesInto states(2);
    WireBytes reply = wire("00000000 00001389"); // 5001 bytes and 3 of padding
    reply.resize(reply.size() + 5004, 'x');
    EXPECT_TRUE(states.decode(reply));
    EXPECT_EQ(states.result.states.states_len, 5001u);
    EXPECT_EQ(states.text(), "xx......");
    EXPECT_EQ(states.left, 0u);
}

TEST(GuardedOpaque, OfAHugeCountFails) {
    StatesInto states(2);
    EXPECT_FALSE(states.decode(wire("00000000 ffffffff 61626364")));
    EXPECT_EQ(states.text(), "ab......");
}

TEST(GuardedOpaque, WithoutItsPaddingFails) {
    StatesInto states(8);
    EXPECT_FALSE(states.decode(wire("00000000 00000003 616263")));
}

TEST(GuardedString, EncodesAsIfNoGuardWereThere) {
    std::array<char, 3> text{"ab"};
    const DecodeGuard guard(text.data(), 1);
    StringArrayEntry entry{text.data(), 7};
    EncodeStream stream;
    EXPECT_TRUE(xdr_StringArrayEntry(stream.get(), &entry));
    EXPECT_EQ(stream.bytes(), wire("00000002 61620000 00000007"));
}

TEST(GuardedString, IsCutToOneLessThanAnnouncedAndTerminated) {
    std::array<char, 8> text{'.', '.', '.', '.', '.', '.', '.', '.'};
    const DecodeGuard guard(text.data(), 4);
    StringArrayEntry entry{text.data(), 0};
    WireBytes bytes = wire("00000006 616263646566 0000 00000009");
    DecodeStream stream(bytes);
    EXPECT_TRUE(xdr_StringArrayEntry(stream.get(), &entry));
    EXPECT_EQ((std::string{text.begin(), text.end()}), (std::string{"abc\0....", 8}));
    EXPECT_EQ(entry.length, 9u);
}

TEST(GuardedString, ShorterThanAnnouncedIsTerminatedAtItsEnd) {
    std::array<char, 8> text{'.', '.', '.', '.', '.', '.', '.', '.'};
    const DecodeGuard guard(text.data(), text.size());
    StringArrayEntry entry{text.data(), 0};
    WireBytes bytes = wire("00000002 6162 0000 00000002");
    DecodeStream stream(bytes);
    EXPECT_TRUE(xdr_StringArrayEntry(stream.get(), &entry));
    EXPECT_EQ((std::string{text.begin(), text.end()}), (std::string{"ab\0.....", 8}));
}

TEST(GuardedString, OfNoCapacityIsOnlyReadPast) {
    char text = '.';
    const DecodeGuard guard(&text, 0);
    StringArrayEntry entry{&text, 0};
    WireBytes bytes = wire("00000002 6162 0000 00000007");
    DecodeStream stream(bytes);
    EXPECT_TRUE(xdr_StringArrayEntry(stream.get(), &entry));
    EXPECT_EQ(text, '.');
    EXPECT_EQ(entry.length, 7u);
}

TEST(GuardedString, OfAHugeCountFails) {
    std::array<char, 4> text{};
    const DecodeGuard guard(text.data(), text.size());
    StringArrayEntry entry{text.data(), 3};
    WireBytes bytes = wire("ffffffff 61626364");
    DecodeStream stream(bytes);
    EXPECT_FALSE(xdr_StringArrayEntry(stream.get(), &entry));
    EXPECT_EQ(entry.length, 3u);
}

TEST(GuardedStringList, ReadsPastTheSurplusStringsAndDecodesTheStatusBehindThem) {
    std::array<char, 3> text{};
    std::array<StringArrayEntry, 1> entries{{{text.data(), 0}}};
    const DecodeGuard ofEntries(entries.data(), entries.size());
    const DecodeGuard ofText(text.data(), text.size());
    JTAG_ShiftMulti_Result result{};
    result.entries.entries_val = entries.data();
    WireBytes bytes = wire("00000003  00000003 313130 00 00000003  00000005 3030303030 000000 00000005"
                           "00000000 00000000  fffffff0");
    DecodeStream stream(bytes);
    EXPECT_TRUE(xdr_JTAG_ShiftMulti_Result(stream.get(), &result));
    EXPECT_EQ(result.entries.entries_len, 3u);
    EXPECT_STREQ(text.data(), "11");
    EXPECT_EQ(entries[0].length, 3u);
    EXPECT_EQ(result.error, -16);
}

TEST(FreeingUnderAGuard, LeavesTheBufferInTheRecordAndUnchanged) {
    ReadInto read(2);
    ASSERT_TRUE(read.decode(wire("00000000 00000004 00000001 00000002 00000003 00000004")));
    Orvane::freeDecoded(read.result);
    EXPECT_EQ(read.result.data.data_val, read.words.data());
    EXPECT_EQ(read.words[1], 2u);
}

TEST(FreeingUnderAGuard, LeavesOpaqueBuffersAlone) {
    StatesInto states(2);
    ASSERT_TRUE(states.decode(wire("00000000 00000003 616263 00")));
    Orvane::freeDecoded(states.result);
    EXPECT_EQ(states.result.states.states_val, states.bytes.data());
    EXPECT_EQ(states.text(), "ab......");
}

TEST(FreeingUnderAGuard, FreesTheStringsThatTheDecodeAllocatedInsideTheBuffer) {
    std::array<char, 4> text{};
    std::array<StringArrayEntry, 3> entries{{{nullptr, 0}, {nullptr, 0}, {text.data(), 0}}};
    const DecodeGuard ofEntries(entries.data(), entries.size());
    const DecodeGuard ofText(text.data(), text.size());
    JTAG_ShiftMulti_Result result{};
    result.entries.entries_val = entries.data();
    WireBytes bytes = wire("00000004  00000001 31 000000 00000001  00000001 32 000000 00000001"
                           "00000001 33 000000 00000001  00000001 34 000000 00000001  00000000");
    DecodeStream stream(bytes);
    ASSERT_TRUE(xdr_JTAG_ShiftMulti_Result(stream.get(), &result));
    ASSERT_STREQ(entries[0].text, "1");
    ASSERT_STREQ(entries[1].text, "2");
    Orvane::freeDecoded(result);
    EXPECT_EQ(result.entries.entries_val, entries.data());
    EXPECT_EQ(entries[0].text, nullptr);
    EXPECT_EQ(entries[1].text, nullptr);
    EXPECT_EQ(entries[2].text, text.data());
}
