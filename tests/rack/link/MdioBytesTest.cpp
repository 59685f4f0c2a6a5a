// Register reads that are coded by hand, held against libtirpc's coding.
#include "ov_sys/rack/link/MdioCalls.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using namespace Orvane::RackLink;

using Words = std::vector<std::uint32_t>;

std::string bytesOf(const Words& words) {
    std::string bytes(words.size() * 4, '\0');
    char* place = bytes.data();
    for (const std::uint32_t word : words)
        putWord(place, word);
    return bytes;
}

// Head of a reply that is as usual, with the status 0; count and values follow.
Words replyOf(const Words& values) {
    Words words{7, REPLY, MSG_ACCEPTED, AUTH_NONE, 0, SUCCESS, 0, static_cast<std::uint32_t>(values.size())};
    words.insert(words.end(), values.begin(), values.end());
    return words;
}

class MdioBytes : public testing::Test {
protected:
    Session session;
    Words addresses{0x6B1E0001, 0x6B1E0002, 0x6B010000};
    Words values{1, 2, 3};
    ReadCall call{Programs::MDIOProcedure::Read, Effect::Reads, session, values.data(), values.size()};

    MdioBytes() {
        call.id = 0x01020304;
        call.identity = 0x11223344;
        call.argument.addresses = {static_cast<u_int>(addresses.size()), addresses.data()};
    }

    std::optional<Trouble> decoded(std::string reply) {
        return decodeRead(reply.data(), reply.size(), values.data(), values.size());
    }
};

TEST_F(MdioBytes, RequestIsWhatTheGeneralCodingMakes) {
    alignas(4) char byHand[256];
    alignas(4) char general[256];
    const std::size_t length = call.encode(byHand, sizeof byHand);
    using General = TypedCall<MDIO_Read_Param, MDIO_Read_Result>;
    const std::size_t expected = call.General::encode(general, sizeof general);
    ASSERT_EQ(length, expected);
    EXPECT_EQ(std::string(byHand, length), std::string(general, length));
}

TEST_F(MdioBytes, RequestThatDoesNotFitIsNone) {
    char room[59];
    EXPECT_EQ(call.encode(room, sizeof room), 0U);
}

TEST_F(MdioBytes, UsualReplyGivesItsValues) {
    const std::optional<Trouble> ended = decoded(bytesOf(replyOf({0xA, 0xB, 0xFFFFFFFF})));
    ASSERT_TRUE(ended);
    EXPECT_FALSE(*ended);
    EXPECT_EQ(values, (Words{0xA, 0xB, 0xFFFFFFFF}));
}

TEST_F(MdioBytes, StatusOfTheBoardIsItsCodeAndNoValue) {
    Words reply = replyOf({});
    reply[6] = static_cast<std::uint32_t>(-5);
    const std::optional<Trouble> ended = decoded(bytesOf(reply));
    ASSERT_TRUE(ended);
    EXPECT_EQ(ended->kind(), FailureKind::BoardError);
    EXPECT_EQ(ended->code(), -5);
    EXPECT_EQ(values, (Words{1, 2, 3}));
}

TEST_F(MdioBytes, AnotherNumberOfValuesIsABadReply) {
    const Words none;
    const Words four{9, 9, 9, 9};
    for (const Words& sent : {none, four}) {
        const std::optional<Trouble> ended = decoded(bytesOf(replyOf(sent)));
        ASSERT_TRUE(ended);
        EXPECT_EQ(ended->kind(), FailureKind::BadReply);
    }
    EXPECT_EQ(values, (Words{1, 2, 3}));
}

TEST_F(MdioBytes, WhatIsNotAsUsualIsLeftToTheGeneralDecoding) {
    const Words usual = replyOf({4, 5, 6});
    for (const std::size_t changed : {1U, 2U, 3U, 4U, 5U, 7U}) {
        Words reply = usual;
        reply[changed] += 2;
        EXPECT_FALSE(decoded(bytesOf(reply))) << changed;
    }
    const std::string whole = bytesOf(usual);
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_FALSE(decoded(whole.substr(0, length))) << length;
    EXPECT_FALSE(decoded(whole + '\0'));
    EXPECT_EQ(values, (Words{1, 2, 3}));
}

} // namespace
} // namespace OrvaneTest
