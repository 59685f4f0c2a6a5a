// Registers and fields by their names, against a PHY that behaves.
#include "tests/support/names/MappedBoard.h"

namespace OrvaneTest {
namespace {

using Orvane::Failure;
using Orvane::FailureKind;

class NamedTest : public testing::Test, protected MappedBoard {
protected:
    // What a refusal says, and that nothing was sent.
    template <class Action>
    std::string refusalOf(Action action) {
        const Failure failure = failureOf(action);
        EXPECT_EQ(failure.kind(), FailureKind::InvalidArgument);
        EXPECT_EQ(accesses(), Names{});
        return failure.what();
    }
    // What the board was asked to write, in order.
    Names written() const {
        Names values;
        for (const Request& request : board.requestsOf("mdio_write"))
            values.push_back(argumentsOf(request)["values"].dump());
        return values;
    }
    // How many registers each read asked for.
    Names lengthsOfReads() const {
        Names lengths;
        for (const Request& request : board.requestsOf("mdio_read"))
            lengths.push_back(std::to_string(argumentsOf(request)["addresses"].size()));
        return lengths;
    }
};

TEST_F(NamedTest, AFieldInPiecesIsReadAsItsNumber) {
    EXPECT_EQ(phy["CHIP.CONTROL.SPEED"].read(), 3U);
}

TEST_F(NamedTest, AFieldConvertsToItsNumber) {
    set(0, 0x0040);
    const std::uint64_t speed = phy["CHIP.CONTROL.SPEED"];
    EXPECT_EQ(speed, 2U);
}

TEST_F(NamedTest, AFieldIsShownByItsChoice) {
    set(0, 0x2000);
    EXPECT_EQ(phy["CHIP.CONTROL.SPEED"].text(), "100 Mb/s");
}

TEST_F(NamedTest, AWholeRegisterIsShownInHexadecimal) {
    EXPECT_EQ(phy["WORD"].text(), "0x12345678");
}

TEST_F(NamedTest, AWholeRegisterIsShownInAllItsDigits) {
    phy["WORD"] = 5;
    EXPECT_EQ(phy["WORD"].text(), "0x00000005");
}

TEST_F(NamedTest, AReadAsksForTheRegisterOnce_AndTwiceForItTwice) {
    phy["CHIP.ERRORS"].read();
    phy["CHIP.CONTROL.SPEED"].twice();
    phy["CHIP.CONTROL.LED"] = 1;
    EXPECT_EQ(lengthsOfReads(), (Names{"1", "2", "1"}));
}

TEST_F(NamedTest, AScaledFieldIsReadAndWrittenInItsUnit) {
    phy["CHIP.TEMPERATURE.VALUE"].writeScaled(-2.5);
    EXPECT_EQ(held(4), 0xFBU);
    EXPECT_EQ(phy["CHIP.TEMPERATURE.VALUE"].scaled(), -2.5);
}

TEST_F(NamedTest, AnAssignedFieldChangesItsBitsOnly) {
    set(0, 0x0C01);
    phy["CHIP.CONTROL.SPEED"] = 2;
    EXPECT_EQ(held(0), 0x0C41U);
    EXPECT_EQ(accesses(), (Names{"mdio_read", "mdio_write"}));
}

TEST_F(NamedTest, AFieldIsAssignedByTheNameOfAChoice) {
    set(0, 0);
    phy["CHIP.CONTROL.SPEED"] = "1000 Mb/s";
    EXPECT_EQ(held(0), 0x0040U);
}

TEST_F(NamedTest, AnAssignmentLeavesOtherAlarmsAlone_WhichOnesWouldClear) {
    phy["CHIP.ALARMS.LIMIT"] = 0x12;
    EXPECT_EQ(held(2), 0x1203U);
}

TEST_F(NamedTest, AnAlarmIsClearedAlone) {
    phy["CHIP.ALARMS.HOT"] = 1;
    EXPECT_EQ(held(2), 0x0002U);
}

TEST_F(NamedTest, AnAssignmentStartsNothingThatClearsItself) {
    set(0, 0xA000);
    phy["CHIP.CONTROL.LED"] = 1;
    EXPECT_EQ(written(), Names{"[8193]"}); // 0x2001
}

TEST_F(NamedTest, AnAssignmentGivesWriteOnlyBitsTheirResetValue_WithoutARead) {
    phy["CHIP.MODE.LEVEL"] = 0x22;
    EXPECT_EQ(written(), Names{"[290]"}); // 0x0122
    EXPECT_EQ(accesses(), Names{"mdio_write"});
}

TEST_F(NamedTest, AnAssignmentKeepsWhatIsReadAndResetsWhatIsNot) {
    give(R"("registers": {"MIXED": {"at": "30.16", "reset": "0xF1F1",
        "fields": {"SECRET": "15:8 wo", "HIGH": "7:4", "LOW": "3:0"}}})");
    phy["MIXED"] = 0x0004;
    phy["MIXED.HIGH"] = 2;
    EXPECT_EQ(written(), (Names{"[4]", "[61732]"})); // 0xF124
}

TEST_F(NamedTest, AnAssignmentReadsARegisterOfWhichOnlyTheLowestBitIsKept) {
    give(R"("registers": {"SWITCH": {"at": "30.16", "fields": {"LEVEL": "15:1", "ON": 0}}})");
    phy["SWITCH"] = 1;
    phy["SWITCH.LEVEL"] = 2;
    EXPECT_EQ(written(), (Names{"[1]", "[5]"}));
}

TEST_F(NamedTest, AWholeRegisterIsWrittenWithoutARead) {
    phy["CHIP.CONTROL"] = 0x2001;
    EXPECT_EQ(held(0), 0x2001U);
    EXPECT_EQ(accesses(), Names{"mdio_write"});
}

TEST_F(NamedTest, ALatchedLowIsTold_AndGoneAfterTheRead) {
    set(1, 0);
    set(1, 4);
    EXPECT_EQ(phy["CHIP.STATUS.LINK"].text(), "0: was low since the last read");
    EXPECT_EQ(phy["CHIP.STATUS.LINK"].text(), "1");
}

TEST_F(NamedTest, TwiceTellsWhatWasAndWhatIs_InOneCall) {
    set(1, 0);
    set(1, 4);
    const auto link = phy["CHIP.STATUS.LINK"].twice();
    EXPECT_EQ(link.before, 0U);
    EXPECT_EQ(link.now, 1U);
    EXPECT_EQ(accesses(), Names{"mdio_read"});
}

TEST_F(NamedTest, ARegisterThatAReadClearsIsAskedForOnce_WhenTheAnswerIsLost) {
    phy.open();
    inject(Fault::Kind::LoseReply, "mdio", "mdio_read", 1);
    const Failure failure = failureOf([&] { phy["CHIP.ERRORS"].read(Orvane::within(300ms)); });
    EXPECT_EQ(failure.kind(), FailureKind::TimedOut);
    EXPECT_EQ(count("mdio_read"), 1U);
    EXPECT_EQ(failure.location(), "CHIP.ERRORS (30.0xC003)");
}

TEST_F(NamedTest, AWriteOfARegisterThatAReadChangesIsSentOnce_WhenTheAnswerIsLost) {
    give(R"("registers": {"MIXED": {"at": "30.16", "fields": {"LEVEL": "7:0", "SEEN": "8 latching-high"}}})");
    phy.open();
    inject(Fault::Kind::LoseReply, "mdio", "mdio_write", 1);
    EXPECT_EQ(failureOf([&] { phy["MIXED"].write(7, Orvane::within(300ms)); }).kind(), FailureKind::TimedOut);
    EXPECT_EQ(count("mdio_write"), 1U);
}

TEST_F(NamedTest, ARegisterOnAPageThatAWholeRegisterSelectsIsReached) {
    give(R"("registers": {"PAGE": {"at": "30.31"}},
        "blocks": {"THREE": {"at": "30.16", "page": {"select": "PAGE", "value": "0x1003"},
                             "registers": {"HEIGHT": {"at": 0, "reset": 33}}}})");
    phy["PAGE"] = 0x2001;
    EXPECT_EQ(phy["THREE.HEIGHT"].read(), 33U);
    EXPECT_EQ(phy["PAGE"].read(), 0x2001U);
}

TEST_F(NamedTest, ARegisterOnAPageIsReached_AndThePageIsAsBefore) {
    set(0x1F, 0xAB01);
    EXPECT_EQ(phy["CHIP.TWO.HEIGHT"].read(), 22U);
    EXPECT_EQ(held(0x1F), 0xAB01U);
    EXPECT_EQ(accesses(), (Names{"mdio_read", "mdio_mixedblock"}));
}

TEST_F(NamedTest, ARegisterOnThePageThatIsSelectedIsReadWithoutWriting) {
    set(0x1F, 0xAB02);
    EXPECT_EQ(phy["CHIP.TWO.HEIGHT"].read(), 22U);
    EXPECT_EQ(held(0x1F), 0xAB02U);
}

TEST_F(NamedTest, ARegisterOnAPageIsWritten) {
    phy["CHIP.TWO.HEIGHT"] = 7;
    EXPECT_EQ(phy["CHIP.TWO.HEIGHT"].read(), 7U);
    EXPECT_EQ(phy["CHIP.ONE.HEIGHT"].read(), 11U);
}

TEST_F(NamedTest, AReadOnlyFieldIsNotWritten) {
    EXPECT_EQ(
        refusalOf([&] { phy["CHIP.STATUS.LINK"] = 1; }),
        "BOARD7:1 PHY 3: write CHIP.STATUS.LINK: invalid argument. Nothing can be written to it: its access "
        "is latching-low.");
}

TEST_F(NamedTest, AReadOnlyFieldOfAWritableRegisterIsNotWritten) {
    EXPECT_EQ(refusalOf([&] { phy["CHIP.CONTROL.MODEL"] = 1; }),
              "BOARD7:1 PHY 3: write CHIP.CONTROL.MODEL: invalid argument. Nothing can be written to it: its "
              "access is ro.");
}

TEST_F(NamedTest, ARegisterOfReadOnlyFieldsIsNotWritten_ThoughItsOwnAccessAllowsIt) {
    give(R"("registers": {"STATE": {"at": "30.16", "access": "rw", "fields": {"UP": "0 ro"}}})");
    EXPECT_EQ(refusalOf([&] { phy["STATE"] = 1; }),
              "BOARD7:1 PHY 3: write STATE: invalid argument. Nothing can be written to it: its access is "
              "rw.");
}

TEST_F(NamedTest, AValueThatDoesNotFitIsNotWritten) {
    EXPECT_EQ(refusalOf([&] { phy["CHIP.CONTROL.SPEED"] = 4; }),
              "BOARD7:1 PHY 3: write CHIP.CONTROL.SPEED: invalid argument. 0x4 does not fit: it has 2 bits.");
}

TEST_F(NamedTest, AChoiceThatIsNoneIsNotWritten) {
    EXPECT_EQ(refusalOf([&] { phy["CHIP.CONTROL.SPEED"] = "warp"; }),
              "BOARD7:1 PHY 3: write CHIP.CONTROL.SPEED: invalid argument. It has no value 'warp'.");
}

TEST_F(NamedTest, AValueThatDoesNotFitIntoABitIsNotWritten) {
    EXPECT_EQ(refusalOf([&] { phy["CHIP.CONTROL.LED"] = 2; }),
              "BOARD7:1 PHY 3: write CHIP.CONTROL.LED: invalid argument. 0x2 does not fit: it has 1 bit.");
}

TEST_F(NamedTest, AScaledValueThatDoesNotFitIsNotWritten) {
    EXPECT_EQ(refusalOf([&] { phy["CHIP.TEMPERATURE.VALUE"].writeScaled(64); }),
              "BOARD7:1 PHY 3: write CHIP.TEMPERATURE.VALUE: invalid argument. VALUE: 64 C does not fit into "
              "8 bits");
}

TEST_F(NamedTest, AWholeRegisterHasNoUnit) {
    EXPECT_EQ(
        refusalOf([&] { phy["CHIP.ALARMS"].scaled(); }),
        "BOARD7:1 PHY 3: read CHIP.ALARMS: invalid argument. It is a whole register: name a field of it.");
}

TEST_F(NamedTest, OfALongNameAndChoiceTheFirst128CharactersAreTold) {
    const std::string longText(129, 'X');
    const std::string told = longText.substr(1);
    EXPECT_EQ(failureOf([&] { phy[longText].read(); }).location(), told);
    EXPECT_EQ(failureOf([&] { phy["CHIP.CONTROL.SPEED"] = longText; }).advice(),
              "It has no value '" + told + "'.");
}

TEST_F(NamedTest, AWriteOnlyRegisterIsNotRead) {
    EXPECT_EQ(refusalOf([&] { phy["CHIP.KEY"].read(); }),
              "BOARD7:1 PHY 3: read CHIP.KEY: invalid argument. It is write-only: a read tells nothing.");
}

TEST_F(NamedTest, ARegisterThatNoBoardReachesIsRefused) {
    EXPECT_EQ(
        refusalOf([&] { phy["DEVICE"].read(); }),
        "BOARD7:1 PHY 3: read DEVICE: invalid argument. No board reaches it: it is wider than 32 bits, or an "
        "SMBus device's own.");
}

TEST_F(NamedTest, ANameThatIsNotThereIsAnsweredWithTheNearest) {
    EXPECT_EQ(refusalOf([&] { phy["CHIP.CONTROL.SPED"].read(); }),
              "BOARD7:1 PHY 3: find CHIP.CONTROL.SPED: invalid argument. there is no 'CHIP.CONTROL.SPED' in "
              "the map "
              "wren; did you mean 'CHIP.CONTROL.SPEED'?");
}

TEST_F(NamedTest, AnAccessThatFailsIsTheNames) {
    phy.open();
    inject(Fault::Kind::ResultCode, "mdio", "mdio_read", 1, -121);
    const Failure failure = failureOf([&] { phy["CHIP.CONTROL.LED"] = 1; });
    EXPECT_EQ(failure.kind(), FailureKind::BoardError);
    EXPECT_EQ(failure.location(), "CHIP.CONTROL.LED (30.0xC000)");
    EXPECT_EQ(failure.operation(), "write");
}

TEST_F(NamedTest, NamesAreThoseOfTheStandard_WhenNoMapWasSaid) {
    const Orvane::Phy other = rack.open("board7:0").phy(3);
    EXPECT_EQ(other["AN.STATUS.LINK"].read(), 0U);
}

TEST_F(NamedTest, AMapServesEveryHandleOfTheSession_AndNoOther) {
    EXPECT_EQ(rack.open("board7:1").phy(3).map().name(), "wren");
    EXPECT_EQ(rack.open("board7:1").phy(4).map().name(), "ieee8023");
}

TEST_F(NamedTest, ValuesAreDecodedByTheirAddresses) {
    const auto decoded = phy.decode({{{30, 0xC000}, 0x2000}, {{1, 1}, 5}, {Orvane::ext32(0x100), 7}});
    ASSERT_EQ(decoded.size(), 3U);
    EXPECT_EQ(decoded[0].reg->name(), "CHIP.CONTROL");
    EXPECT_EQ(decoded[0].fields[2].valueText(), "100 Mb/s");
    EXPECT_EQ(decoded[1].reg, nullptr);
    EXPECT_EQ(decoded[2].reg->name(), "WORD");
}

} // namespace
} // namespace OrvaneTest
