// JTAG shifts: lists that do not fit each other, and results of every length.
#include "ov_sys/Interface/buses/JTAG.h"

#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/buses/ListLengths.h"
#include "tests/support/CannedReplies.h"
#include "tests/support/NamedParam.h"
#include "tests/support/ServiceOperations.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::Exceptions::Standard;
using OrvaneSim::Fault;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

constexpr unsigned kBusyCode = 0xFFFFFFF0; // -16

// The result record as a board sends it.
WireBytes reply(const Texts& texts, unsigned error = 0) {
    WireBytes bytes;
    appendWord(bytes, static_cast<unsigned>(texts.size()));
    for (const std::string& text : texts) {
        appendWord(bytes, static_cast<unsigned>(text.size()));
        bytes.insert(bytes.end(), text.begin(), text.end());
        bytes.resize((bytes.size() + 3) / 4 * 4);
        appendWord(bytes, 0xFFFFFFFF); // the length beside the text says nothing
    }
    appendWord(bytes, error);
    return bytes;
}

class JtagOnBoard : protected SessionOnBoard {
protected:
    // Shifts with second lists' entries of these lengths; the board answers with the replies.
    Texts shiftAnswered(const std::vector<std::size_t>& lengths, const std::vector<WireBytes>& replies) {
        Texts texts;
        for (const std::size_t length : lengths)
            texts.emplace_back(length, '1');
        const CannedReplies canned(*session.connection->getClient(Orvane::BoardConnection::JTAG), replies);
        return jtag.shiftMulti(&session, Texts(lengths.size()), texts, Texts(lengths.size()));
    }

    Orvane::JTAG::JTAG jtag;
};

struct ResultText {
    std::string name;
    std::size_t length; // of the second list's entry
    std::string sent;   // by the board
    std::string result;
};

const ResultText kResults[] = {
    {"OfTheSameLengthIsTheText", 4, "1010", "1010"},
    {"LongerThanTheEntryIsCut", 4, "10110", "1011"},
    {"FarLongerThanTheEntryIsCut", 4, "1011" + std::string(20000, '0'), "1011"},
    {"OneShorterEndsWithItsTerminator", 5, "1010", std::string("1010\0", 5)},
    {"ShorterIsFilledUpBehindItsTerminator", 7, "1010", std::string("1010\0XX", 7)},
    {"OfNothingIsATerminatorAndFilling", 3, "", std::string("\0XX", 3)},
    {"ForAnEntryOfOneIsOneCharacter", 1, "01", "0"},
    {"ForAnEmptyEntryIsEmpty", 0, "1010", ""},
    {"WithANulInsideKeepsWhatIsBehindIt", 6,
     std::string("10\0"
                 "11",
                 5),
     std::string("10\0"
                 "11\0",
                 6)},
};

class JtagResult : public testing::TestWithParam<ResultText>, protected JtagOnBoard {};

INSTANTIATE_TEST_SUITE_P(Text, JtagResult, testing::ValuesIn(kResults), NamedParam{});

TEST_P(JtagResult, HasTheLengthOfTheSecondListsEntry) {
    EXPECT_THAT(shiftAnswered({GetParam().length}, {reply({GetParam().sent})}),
                ElementsAre(GetParam().result));
}

class JtagReply : public testing::Test, protected JtagOnBoard {};

TEST_F(JtagReply, WithFewerEntriesLeavesTheOthersFilled) {
    EXPECT_THAT(shiftAnswered({2, 3, 4}, {reply({"01"})}), ElementsAre("01", "XXX", "XXXX"));
}

TEST_F(JtagReply, WithoutEntriesLeavesAllFilled) {
    EXPECT_THAT(shiftAnswered({2, 0, 3}, {reply({})}), ElementsAre("XX", "", "XXX"));
}

TEST_F(JtagReply, WithMoreEntriesLosesTheSurplus) {
    EXPECT_THAT(shiftAnswered({2}, {reply({"01", "11", std::string(5000, '1')})}), ElementsAre("01"));
}

TEST_F(JtagReply, WithEntriesNobodyAskedForIsDropped) {
    EXPECT_THAT(shiftAnswered({}, {reply({"01", "11"})}), IsEmpty());
}

TEST_F(JtagReply, CutsEachTextToItsOwnEntry) {
    EXPECT_THAT(shiftAnswered({1, 3, 2}, {reply({"111", "0", "00"})}),
                ElementsAre("1", std::string("0\0X", 3), "00"));
}

TEST_F(JtagReply, OfABusyBoardLeavesNothingBehind) {
    EXPECT_THAT(shiftAnswered({4, 4}, {reply({"1111", "1111"}, kBusyCode), reply({"00"})}),
                ElementsAre(std::string("00\0X", 4), "XXXX"));
}

TEST_F(JtagReply, OfARefusingBoardIsNotReturned) {
    EXPECT_THROW(shiftAnswered({4}, {reply({"1111"}, static_cast<unsigned>(-22))}), Standard);
}

TEST_F(JtagReply, WithNoEntryGivesASingleShiftFillingOnly) {
    board.inject({"jtag", "", Fault::Kind::ReplyCount, 1, 0});
    EXPECT_EQ(jtag.shift(&session, "1", "11111", ""), "XXXXX");
}

TEST_F(JtagReply, WithManyEntriesGivesASingleShiftTheFirst) {
    board.inject({"jtag", "", Fault::Kind::ReplyCount, 1, 400});
    EXPECT_EQ(jtag.shift(&session, "1", "11111", ""), "11111");
}

Json entry(const std::string& text, std::size_t length) {
    return {{"text", text}, {"length", length}};
}

WireCall shiftCall(Json first, Json second, Json third) {
    return {kJtagProgram,
            3,
            {{"handle", identity()},
             {"data", std::move(first)},
             {"tms", std::move(second)},
             {"tmsAfter", std::move(third)}}};
}

class JtagLists : public testing::Test, protected JtagOnBoard {};

TEST_F(JtagLists, WithNothingInThemAreSentEmptyAndGiveNothing) {
    EXPECT_THAT(jtag.shiftMulti(&session, {}, {}, {}), IsEmpty());
    EXPECT_THAT(wireCalls(board), ElementsAre(shiftCall(Json::array(), Json::array(), Json::array())));
}

TEST_F(JtagLists, WithANulInATextSendTheTextBeforeItAndTheFullLength) {
    EXPECT_THAT(jtag.shiftMulti(&session,
                                {std::string("1\0"
                                             "0",
                                             3)},
                                {std::string("11\0"
                                             "01111",
                                             8)},
                                {""}),
                ElementsAre(std::string("11\0XXXXX", 8)));
    EXPECT_THAT(wireCalls(board),
                ElementsAre(shiftCall(Json::array({entry("1", 3)}), Json::array({entry("11", 8)}),
                                      Json::array({entry("", 0)}))));
}

class JtagUnequalLists : public testing::TestWithParam<ListLengths>, protected JtagOnBoard {};

INSTANTIATE_TEST_SUITE_P(With, JtagUnequalLists,
                         testing::Values(ListLengths{"ALongerThirdList", 2, 2, 3},
                                         ListLengths{"ALongerSecondList", 2, 3, 2},
                                         ListLengths{"ALongerFirstList", 3, 2, 2},
                                         ListLengths{"AnEmptyThirdList", 1, 1, 0}),
                         NamedParam{});

TEST_P(JtagUnequalLists, AreRefusedWithoutACall) {
    const ListLengths& lengths = GetParam();
    EXPECT_EQ(thrownText<Standard>([&] {
                  jtag.shiftMulti(&session, Texts(lengths.first), Texts(lengths.second),
                                  Texts(lengths.third));
              }),
              "Jtag Multiple Shift: The length of the data and both tms arrays must be the same length.");
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

} // namespace
} // namespace OrvaneTest
