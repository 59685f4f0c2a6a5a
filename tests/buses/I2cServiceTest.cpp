// I2C reads whose replies are longer or shorter than what was asked for, lengths beyond a byte, and block
// lists.
#include "ov_sys/Interface/buses/I2C.h"

#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/NamedParam.h"
#include "tests/support/ServiceOperations.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::i2c;
using Orvane::SessionWrapper;
using Orvane::Exceptions::Standard;
using OrvaneSim::Fault;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr unsigned kEeprom = 0x50;

// A board whose EEPROM on bus 0 begins with 0xA0, 0xA1, ... 0xA7.
class I2cOnBoard : protected SessionOnBoard {
protected:
    I2cOnBoard() { board.setEeprom(0, {0xA0, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7}); }
    // The next reply of the I2C service has that many bytes.
    void answerWith(std::int64_t count) { board.inject({"i2c", "", Fault::Kind::ReplyCount, 1, count}); }
};

struct I2cReading {
    std::string name;
    Bytes (*run)(SessionWrapper session, unsigned length); // from the EEPROM's beginning
};

const I2cReading kReadings[] = {
    {"Read", [](SessionWrapper s, unsigned length) { return i2c.read(s, 0, kEeprom, 0, length); }},
    {"ReadReg", [](SessionWrapper s, unsigned length) { return i2c.readReg(s, 0, kEeprom, 0, 1, length); }},
    {"BlockReadRegister",
     [](SessionWrapper s, unsigned length) {
         return i2c.blockReadRegister(s, {0}, {kEeprom}, {0}, {length}, {1});
     }},
};

class I2cReply : public testing::TestWithParam<I2cReading>, protected I2cOnBoard {};

INSTANTIATE_TEST_SUITE_P(To, I2cReply, testing::ValuesIn(kReadings), NamedParam{});

TEST_P(I2cReply, WithMoreBytesThanAskedForLosesTheSurplus) {
    answerWith(10);
    EXPECT_THAT(GetParam().run(&session, 2), ElementsAre(0xA0, 0xA1));
}

TEST_P(I2cReply, FarLongerThanAskedForLosesTheSurplus) {
    answerWith(1500);
    EXPECT_THAT(GetParam().run(&session, 2), ElementsAre(0xA0, 0xA1));
}

TEST_P(I2cReply, WithFewerBytesThanAskedForLeavesTheRestZero) {
    answerWith(1);
    EXPECT_THAT(GetParam().run(&session, 3), ElementsAre(0xA0, 0, 0));
}

TEST_P(I2cReply, WithoutBytesLeavesAllZero) {
    answerWith(0);
    EXPECT_THAT(GetParam().run(&session, 3), ElementsAre(0, 0, 0));
}

TEST_P(I2cReply, WithBytesNobodyAskedForIsDropped) {
    answerWith(3);
    EXPECT_THAT(GetParam().run(&session, 0), IsEmpty());
}

TEST_P(I2cReply, OfAFailedTransferIsNotReturned) {
    board.inject({"i2c", "", Fault::Kind::ResultCode, 1, -121});
    EXPECT_EQ(thrownText<Standard>([&] { GetParam().run(&session, 2); }), "raiseRemoteError: Error");
}

class I2cLengthBeyondAByte : public testing::TestWithParam<I2cReading>, protected I2cOnBoard {};

INSTANTIATE_TEST_SUITE_P(Of, I2cLengthBeyondAByte, testing::Values(kReadings[0], kReadings[1]), NamedParam{});

TEST_P(I2cLengthBeyondAByte, SendsItsLowByteAndReturnsItsFullLength) {
    Bytes expected{0xA0, 0xA1, 0xA2, 0xA3};
    expected.resize(0x104);
    EXPECT_EQ(GetParam().run(&session, 0x104), expected);
    EXPECT_EQ(wireCalls(board).at(0).arguments["length"], 4);
}

TEST_P(I2cLengthBeyondAByte, SendsZeroForAMultipleOf256) {
    EXPECT_EQ(GetParam().run(&session, 256), Bytes(256));
    EXPECT_EQ(wireCalls(board).at(0).arguments["length"], 0);
}

TEST_P(I2cLengthBeyondAByte, HasRoomForMoreThanTheLowByteSays) {
    answerWith(300);
    Bytes expected{0xA0, 0xA1, 0xA2, 0xA3};
    expected.resize(260, 0xEE);
    EXPECT_EQ(GetParam().run(&session, 0x104), expected);
}

class I2cBlock : public testing::Test, protected I2cOnBoard {};

TEST_F(I2cBlock, ReadReturnsTheBytesOfAllItsReads) {
    EXPECT_THAT(i2c.blockReadRegister(&session, {0, 0, 0}, {kEeprom, kEeprom, kEeprom}, {0, 4, 2}, {2, 1, 4},
                                      {1, 1, 1}),
                ElementsAre(0xA0, 0xA1, 0xA4, 0xA2, 0xA3, 0xA4, 0xA5));
}

TEST_F(I2cBlock, ReadHasTheSizeOfALengthBeyondAByte) {
    Bytes expected(300, 0xFF);
    for (unsigned char i = 0; i < 8; ++i)
        expected[i] = expected.at(256U + i) = static_cast<unsigned char>(0xA0 + i);
    EXPECT_EQ(i2c.blockReadRegister(&session, {0}, {kEeprom}, {0}, {300}, {1}), expected);
}

TEST_F(I2cBlock, ReadAddsItsLengthsIn32Bits) {
    board.inject({"i2c", "", Fault::Kind::ResultCode, 1, 0});
    EXPECT_THAT(i2c.blockReadRegister(&session, {0, 0}, {kEeprom, kEeprom}, {0, 0}, {0xFFFFFFFF, 4}, {1, 1}),
                ElementsAre(0, 0, 0));
}

TEST_F(I2cBlock, ReadOfNothingSendsEmptyLists) {
    EXPECT_THAT(i2c.blockReadRegister(&session, {}, {}, {}, {}, {}), IsEmpty());
    const Json lists{{"buses", Bytes{}},
                     {"addresses", Words{}},
                     {"registers", Words{}},
                     {"lengths", Words{}},
                     {"registerLengths", Words{}}};
    EXPECT_THAT(wireCalls(board),
                ElementsAre(WireCall{kI2cProgram, 5, {{"handle", identity()}, {"trans", lists}}}));
}

// Lists of five different lengths, as they travel.
Json unequalLists() {
    return {{"buses", Bytes{1}},
            {"addresses", Words{2, 3}},
            {"registers", Words{4, 5, 0xFFFFFFFF}},
            {"lengths", Words{}},
            {"registerLengths", Words{9, 8, 7, 6}}};
}

TEST_F(I2cBlock, ReadSendsEachListWithItsLength) {
    EXPECT_THROW(i2c.blockReadRegister(&session, {1}, {2, 3}, {4, 5, 0xFFFFFFFF}, {}, {9, 8, 7, 6}),
                 Standard);
    EXPECT_THAT(wireCalls(board),
                ElementsAre(WireCall{kI2cProgram, 5, {{"handle", identity()}, {"trans", unequalLists()}}}));
}

TEST_F(I2cBlock, WriteSendsEachListWithItsLength) {
    Bytes data{10, 11};
    EXPECT_THROW(i2c.blockWriteRegister(&session, {1}, {2, 3}, {4, 5, 0xFFFFFFFF}, data, {}, {9, 8, 7, 6}),
                 Standard);
    EXPECT_THAT(
        wireCalls(board),
        ElementsAre(WireCall{
            kI2cProgram, 4, {{"handle", identity()}, {"trans", unequalLists()}, {"data", Bytes{10, 11}}}}));
}

TEST_F(I2cBlock, MaskedWriteSendsEachListWithItsLengthAndTheMaskBehindThem) {
    Bytes data{10, 11};
    EXPECT_THROW(i2c.blockWriteMask(&session, {1}, {2, 3}, {4, 5, 0xFFFFFFFF}, data, {}, {9, 8, 7, 6}, 0x5A),
                 Standard);
    EXPECT_THAT(
        wireCalls(board),
        ElementsAre(WireCall{
            kI2cProgram,
            6,
            {{"handle", identity()}, {"trans", unequalLists()}, {"data", Bytes{10, 11}}, {"mask", 0x5A}}}));
}

} // namespace
} // namespace OrvaneTest
