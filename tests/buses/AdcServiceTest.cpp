// ADC replies that are longer or shorter than the room for them.
#include "ov_sys/Interface/buses/ADC.h"

#include "ov_sys/Interface/connection/BoardConnection.h"
#include "tests/support/CannedReplies.h"
#include "tests/support/NamedParam.h"
#include "tests/support/ServiceOperations.h"
#include "tests/support/SessionOnBoard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

namespace OrvaneTest {
namespace {

using Orvane::SessionWrapper;
using OrvaneSim::Fault;
using testing::ElementsAre;
using testing::IsEmpty;
using Adc = Orvane::ADC::ADC;

constexpr unsigned char kFilling = 0xEE; // what a lengthened reply is filled with

// A board whose capture runs and sees 10, 11, 12, 13 over and over.
class AdcOnBoard : protected SessionOnBoard {
protected:
    AdcOnBoard() {
        board.setWaveform(0, {OrvaneSim::Waveform::Shape::Ramp, 10, 4, 4});
        adc.start(&session);
        board.forgetRequests();
    }
    // The next reply of the ADC service has that many bytes.
    void answerWith(std::int64_t count) { board.inject({"adc", "", Fault::Kind::ReplyCount, 1, count}); }

    Adc adc;
};

class AdcData : public testing::Test, protected AdcOnBoard {};

TEST_F(AdcData, BeyondTheCountAskedForAreZeros) {
    answerWith(6);
    EXPECT_THAT(adc.getData(&session, 3), ElementsAre(10, 11, 12, 0, 0, 0));
}

TEST_F(AdcData, FarBeyondTheCountAskedForAreZeros) {
    answerWith(60000);
    Bytes expected{10, 11, 12};
    expected.resize(60000);
    EXPECT_EQ(adc.getData(&session, 3), expected);
}

TEST_F(AdcData, AreAsManyAsTheBoardSentWhenItSentFewer) {
    answerWith(2);
    EXPECT_THAT(adc.getData(&session, 5), ElementsAre(10, 11));
}

TEST_F(AdcData, AreNoneWhenTheBoardSentNone) {
    answerWith(0);
    EXPECT_THAT(adc.getData(&session, 5), IsEmpty());
}

TEST_F(AdcData, OfACountOfZeroAreTheBoardsBytesAsTheyAre) {
    answerWith(3);
    EXPECT_THAT(adc.getData(&session, 0), ElementsAre(kFilling, kFilling, kFilling));
    EXPECT_THAT(wireCalls(board),
                ElementsAre(WireCall{kAdcProgram, 4, {{"handle", identity(1)}, {"count", 0}}}));
}

TEST_F(AdcData, OfACountOfZeroMayBeMany) {
    answerWith(60000);
    EXPECT_EQ(adc.getData(&session, 0), Bytes(60000, kFilling));
}

TEST_F(AdcData, OfACountOfZeroForgetThoseOfABusyReply) {
    Orvane::RPCClient& client = *session.connection->getClient(Orvane::BoardConnection::ADC);
    const CannedReplies canned(client, {wire("FFFFFFF0 00000003 00000001 00000002 00000003"),
                                        wire("00000000 00000002 00000008 00000009")});
    EXPECT_THAT(adc.getData(&session, 0), ElementsAre(8, 9));
    EXPECT_EQ(canned.calls, 2U);
}

TEST_F(AdcData, OfANegativeCountAreRefusedWithoutACall) {
    EXPECT_THROW(adc.getData(&session, -1), std::length_error);
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

struct Report {
    std::string name;
    Bytes (*run)(SessionWrapper session);
    Bytes bytes; // what the board answers
};

const Report kReports[] = {
    {"MaxADC", [](SessionWrapper s) { return Adc().maxADC(s); }, {13}},
    {"GetEvents", [](SessionWrapper s) { return Adc().getEvents(s); }, {'0', ' ', 'e', '\n'}},
};

class AdcReport : public testing::TestWithParam<Report>, protected AdcOnBoard {
protected:
    AdcReport() {
        adc.setEventName(&session, "e");
        adc.getData(&session, 5);
    }
    // The board's bytes, lengthened to that many by the fault.
    static Bytes filledTo(std::size_t count) {
        Bytes bytes = GetParam().bytes;
        bytes.resize(count, kFilling);
        return bytes;
    }
};

INSTANTIATE_TEST_SUITE_P(Of, AdcReport, testing::ValuesIn(kReports), NamedParam{});

TEST_P(AdcReport, HasTheBoardsLength) {
    EXPECT_EQ(GetParam().run(&session), GetParam().bytes);
}

TEST_P(AdcReport, OfThreeBytesHasThree) {
    answerWith(3);
    EXPECT_EQ(GetParam().run(&session), filledTo(3));
}

TEST_P(AdcReport, WithoutBytesIsEmpty) {
    answerWith(0);
    EXPECT_THAT(GetParam().run(&session), IsEmpty());
}

TEST_P(AdcReport, Of256BytesIsTakenWhole) {
    answerWith(256);
    EXPECT_EQ(GetParam().run(&session), filledTo(256));
}

TEST_P(AdcReport, LongerThan256BytesGoesOnWithZeros) {
    answerWith(1000);
    Bytes expected = filledTo(256);
    expected.resize(1000);
    EXPECT_EQ(GetParam().run(&session), expected);
}

} // namespace
} // namespace OrvaneTest
