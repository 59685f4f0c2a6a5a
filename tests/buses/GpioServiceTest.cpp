// GPIO lists that do not fit each other, and replies that are longer or shorter than what was asked for.
#include "ov_sys/Interface/buses/GPIO.h"

#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/buses/ListLengths.h"
#include "tests/support/NamedParam.h"
#include "tests/support/ServiceOperations.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::SessionWrapper;
using Orvane::Exceptions::Standard;
using OrvaneSim::Fault;
using testing::ElementsAre;
using testing::IsEmpty;
using Gpio = Orvane::GPIO::GPIO;

// A board whose lines 4 and 5 are high, being outputs.
class GpioOnBoard : protected SessionOnBoard {
protected:
    GpioOnBoard() {
        gpio.set(&session, {4, 5}, {1, 1});
        gpio.enableOutput(&session, {4, 5}, {1, 1});
        board.forgetRequests();
    }
    // The next reply of the GPIO service has that many bytes.
    void answerWith(std::int64_t count) { board.inject({"gpio", "", Fault::Kind::ReplyCount, 1, count}); }

    Gpio gpio;
};

struct GpioReading {
    std::string name;
    Bytes (*two)(SessionWrapper session);     // of the two high lines
    Bytes (*nothing)(SessionWrapper session); // of no lines
};

const GpioReading kByTheBoardsLength[] = {
    {"ReadOutputEnable",
     [](SessionWrapper s) {
         return Gpio().readOutputEnable(s, {4, 5});
     },
     [](SessionWrapper s) { return Gpio().readOutputEnable(s, {}); }},
    {"BitBang",
     [](SessionWrapper s) {
         return Gpio().bitBang(s, {4, 5}, {1, 1}, {0, 0});
     },
     [](SessionWrapper s) { return Gpio().bitBang(s, {}, {}, {}); }},
};

class GpioReplyOfItsOwnLength : public testing::TestWithParam<GpioReading>, protected GpioOnBoard {};

INSTANTIATE_TEST_SUITE_P(To, GpioReplyOfItsOwnLength, testing::ValuesIn(kByTheBoardsLength), NamedParam{});

TEST_P(GpioReplyOfItsOwnLength, GivesAsManyBytesAsLinesWhenTheyAgree) {
    EXPECT_THAT(GetParam().two(&session), ElementsAre(1, 1));
}

TEST_P(GpioReplyOfItsOwnLength, WithMoreBytesThanLinesIsFilledUpWithZeros) {
    answerWith(5);
    EXPECT_THAT(GetParam().two(&session), ElementsAre(1, 1, 0, 0, 0));
}

TEST_P(GpioReplyOfItsOwnLength, FarLongerThanTheListIsFilledUpWithZeros) {
    answerWith(5000);
    Bytes expected{1, 1};
    expected.resize(5000);
    EXPECT_EQ(GetParam().two(&session), expected);
}

TEST_P(GpioReplyOfItsOwnLength, WithFewerBytesThanLinesShortensTheResult) {
    answerWith(1);
    EXPECT_THAT(GetParam().two(&session), ElementsAre(1));
}

TEST_P(GpioReplyOfItsOwnLength, WithoutBytesGivesNothing) {
    answerWith(0);
    EXPECT_THAT(GetParam().two(&session), IsEmpty());
}

TEST_P(GpioReplyOfItsOwnLength, WithBytesThatNobodyAskedForGivesZeros) {
    answerWith(3);
    EXPECT_THAT(GetParam().nothing(&session), ElementsAre(0, 0, 0));
}

class GpioRead : public testing::Test, protected GpioOnBoard {};

TEST_F(GpioRead, DropsBytesBeyondItsLines) {
    answerWith(5);
    EXPECT_THAT(gpio.read(&session, {4, 5}), ElementsAre(1, 1));
}

TEST_F(GpioRead, DropsAReplyFarLongerThanItsLines) {
    answerWith(5000);
    EXPECT_THAT(gpio.read(&session, {4, 5}), ElementsAre(1, 1));
}

TEST_F(GpioRead, KeepsItsLengthWhenTheBoardAnswersFewer) {
    answerWith(1);
    EXPECT_THAT(gpio.read(&session, {4, 5, 4}), ElementsAre(1, 0, 0));
}

TEST_F(GpioRead, KeepsItsLengthWhenTheBoardAnswersNothing) {
    answerWith(0);
    EXPECT_THAT(gpio.read(&session, {4, 5}), ElementsAre(0, 0));
}

TEST_F(GpioRead, OfNoLinesDropsWhatTheBoardAnswers) {
    answerWith(3);
    EXPECT_THAT(gpio.read(&session, {}), IsEmpty());
}

WireCall statesCall(unsigned procedure, const Bytes& indexes, const Bytes& states) {
    return {kGpioProgram, procedure, {{"handle", identity(2)}, {"indexes", indexes}, {"states", states}}};
}

class GpioLists : public testing::Test, protected GpioOnBoard {};

TEST_F(GpioLists, OfFewerEnablesThanIndexesAreSentWithZerosForTheMissingOnes) {
    gpio.enableOutput(&session, {1, 2, 3, 4}, {1, 1});
    EXPECT_THAT(wireCalls(board), ElementsAre(statesCall(5, {1, 2, 3, 4}, {1, 1, 0, 0})));
}

TEST_F(GpioLists, OfMoreEnablesThanIndexesAreSentWithoutTheSurplus) {
    gpio.enableOutput(&session, {1, 2}, {0, 1, 1, 1});
    EXPECT_THAT(wireCalls(board), ElementsAre(statesCall(5, {1, 2}, {0, 1})));
}

TEST_F(GpioLists, OfEnablesWithoutIndexesAreSentEmpty) {
    gpio.enableOutput(&session, {}, {1});
    EXPECT_THAT(wireCalls(board), ElementsAre(statesCall(5, {}, {})));
}

TEST_F(GpioLists, OfStatesAndIndexesAreSentEachWithItsLength) {
    EXPECT_THROW(gpio.set(&session, {1, 2, 3}, {1}), Standard);
    EXPECT_THAT(wireCalls(board), ElementsAre(statesCall(2, {1, 2, 3}, {1})));
}

class GpioBitBang : public testing::TestWithParam<ListLengths>, protected GpioOnBoard {};

INSTANTIATE_TEST_SUITE_P(With, GpioBitBang,
                         testing::Values(ListLengths{"AShorterThirdList", 3, 3, 2},
                                         ListLengths{"AShorterSecondList", 3, 2, 3},
                                         ListLengths{"AShorterFirstList", 2, 3, 3},
                                         ListLengths{"AnEmptyThirdList", 1, 1, 0}),
                         NamedParam{});

TEST_P(GpioBitBang, IsRefusedWithoutACall) {
    const ListLengths& lengths = GetParam();
    EXPECT_EQ(thrownText<Standard>([&] {
                  gpio.bitBang(&session, Bytes(lengths.first), Bytes(lengths.second), Bytes(lengths.third));
              }),
              "GPIO Bitbang: parameter array lengths don't match.");
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

TEST_F(GpioLists, OfNothingAreBitBangedAsThreeEmptyLists) {
    EXPECT_THAT(gpio.bitBang(&session, {}, {}, {}), IsEmpty());
    EXPECT_THAT(
        wireCalls(board),
        ElementsAre(WireCall{
            kGpioProgram,
            6,
            {{"handle", identity(2)}, {"indexes", Bytes{}}, {"states", Bytes{}}, {"modes", Bytes{}}}}));
}

} // namespace
} // namespace OrvaneTest
