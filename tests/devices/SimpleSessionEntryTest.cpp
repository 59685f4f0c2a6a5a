// The accesses of a session entry on MDIO ports, and what an SMBus port refuses.
#include "ov_sys/Interface/devices/SimpleSessionEntry.h"

#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/sessions/PhySession.h"
#include "tests/support/devices/AccessTable.h"
#include "tests/support/MdioOperations.h"
#include "tests/support/NamedParam.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

using Orvane::Direct32;
using Orvane::KelSmbProto;
using Orvane::Paged16;
using Orvane::SimpleSessionEntry;
using Orvane::Exceptions::InvalidSession;
using Orvane::Exceptions::Standard;
using testing::ElementsAre;
using testing::IsEmpty;

struct MdioAccess {
    std::string name;
    unsigned (*run)(SimpleSessionEntry& entry); // the value read, 0 for a write
    unsigned procedure;
    nlohmann::ordered_json arguments; // of PHY 5 on port 9, whose device index has the low bits of 1
    unsigned value;
};

using Entry = SimpleSessionEntry;

const MdioAccess kMdioAccesses[] = {
    {"read_16bit_c45", [](Entry& e) { return e.read_16bit_c45(0xFFF1E0002UL); }, 1,
     readParam(identity(), {0x251E0002}), 0x4502},
    {"write_16bit_c45",
     [](Entry& e) {
         e.write_16bit_c45(0xFFF1E0002UL, 7);
         return 0U;
     },
     2, writeParam(identity(), {0x251E0002}, {7}), 0},
    {"read_16bit_c22", [](Entry& e) { return e.read_16bit_c22(0x11); }, 11,
     readParam(identity(), {0x25000011}), 0x2211},
    {"write_16bit_c22",
     [](Entry& e) {
         e.write_16bit_c22(0x11, 7);
         return 0U;
     },
     12, writeParam(identity(), {0x25000011}, {7}), 0},
    {"read_32bit", [](Entry& e) { return e.read_32bit(0xFFF000002UL, Paged16); }, 14,
     readParam(identity(), {0xFF000002}), 0x32000002},
    {"read_32bitInAnyProtocol", [](Entry& e) { return e.read_32bit(0xFF000002, KelSmbProto(2)); }, 14,
     readParam(identity(), {0xFF000002}), 0x32000002},
    {"write_32bit",
     [](Entry& e) {
         e.write_32bit(0xFFF000002UL, 0xFEDCBA98, Direct32);
         return 0U;
     },
     15, writeParam(identity(), {0xFF000002}, {0xFEDCBA98}), 0},
    {"write_32bitInAnyProtocol",
     [](Entry& e) {
         e.write_32bit(0xFF000002, 7, KelSmbProto(2));
         return 0U;
     },
     15, writeParam(identity(), {0xFF000002}, {7}), 0},
    {"read_32bit_preincrement_address",
     [](Entry& e) { return e.read_32bit_preincrement_address(); },
     16,
     {{"handle", identity()}},
     0x32000004},
    {"read_32bit_current_address",
     [](Entry& e) { return e.read_32bit_current_address(); },
     18,
     {{"handle", identity()}},
     0x32000000},
    {"write_32bit_preincrement_address",
     [](Entry& e) {
         e.write_32bit_preincrement_address(7);
         return 0U;
     },
     17,
     {{"handle", identity()}, {"value", 7}},
     0},
    {"write_32bit_current_address",
     [](Entry& e) {
         e.write_32bit_current_address(7);
         return 0U;
     },
     19,
     {{"handle", identity()}, {"value", 7}},
     0},
    {"executeBlock",
     [](Entry& e) {
         e.addBlockRead_16bit(0xFFF1E0002UL);
         e.addBlockWrite_16bit(0xFFF1E0003UL, 7);
         return e.executeBlock()->at(0);
     },
     9, mixedParam(identity(), {7}, {0x251E0003}, {0x251E0002}, {0, 1, 1}), 0x4502},
    {"executeBlock_c22",
     [](Entry& e) {
         e.addBlockWrite_16bit(0x12, 7);
         e.addBlockRead_16bit(0x11);
         return e.executeBlock_c22()->at(0);
     },
     13, mixedParam(identity(), {7}, {0x25000012}, {0x25000011}, {1, 1}), 0x2211},
    {"executeBlock_c22_32bit",
     [](Entry& e) {
         e.addBlockWrite_32bit(0xFFF000003UL, 0xFEDCBA98);
         e.addBlockRead_32bit(0xFFF000002UL);
         return e.executeBlock_c22_32bit()->at(0);
     },
     20, mixedParam(identity(), {0xFEDCBA98}, {0xFF000003}, {0xFF000002}, {1, 1}), 0x32000002},
};

// An entry for PHY 5 on port 9, the last MDIO port.
class EntryOnBoard : protected SessionOnBoard {
protected:
    EntryOnBoard() : SessionOnBoard(simpleMode(5, kLastMdioPort)), entry(owned.release(), 5, kLastMdioPort) {
        const auto prepare = [&](OrvaneSim::Space space, unsigned address, unsigned value) {
            board.setRegister(space, kLastMdioPort, 5, address, value);
        };
        prepare(OrvaneSim::Space::C45, 0x1E0002, 0x4502);
        prepare(OrvaneSim::Space::C22, 0x11, 0x2211);
        prepare(OrvaneSim::Space::Ext32, 0xFF000002, 0x32000002);
        prepare(OrvaneSim::Space::Ext32, 0, 0x32000000);
        prepare(OrvaneSim::Space::Ext32, 4, 0x32000004);
    }

    SimpleSessionEntry entry;
};

class MdioPortAccess : public testing::TestWithParam<MdioAccess>, protected EntryOnBoard {};

INSTANTIATE_TEST_SUITE_P(Of, MdioPortAccess, testing::ValuesIn(kMdioAccesses), NamedParam{});

TEST_P(MdioPortAccess, IsOneCallOfTheMdioService) {
    GetParam().run(entry);
    EXPECT_THAT(wireCalls(board), ElementsAre(mdioCall(GetParam().procedure, GetParam().arguments)));
}

TEST_P(MdioPortAccess, GivesTheBoardsWord) {
    EXPECT_EQ(GetParam().run(entry), GetParam().value);
}

class SessionEntryBlock : public testing::Test, protected EntryOnBoard {};

TEST_F(SessionEntryBlock, SendsNothingBeforeItIsExecuted) {
    entry.addBlockRead_16bit(1);
    entry.addBlockWrite_16bit(2, 3);
    entry.addBlockRead_32bit(4);
    entry.addBlockWrite_32bit(5, 6);
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

TEST_F(SessionEntryBlock, GivesTheValuesInTheEntrysOwnVector) {
    entry.addBlockRead_16bit(0x1E0002);
    entry.addBlockRead_16bit(0x1E0005);
    EXPECT_EQ(entry.executeBlock(), &entry.blockResult);
    EXPECT_THAT(entry.blockResult, ElementsAre(0x4502, 0));
}

TEST_F(SessionEntryBlock, IsEmptyWithoutACallWhenNothingWasAdded) {
    entry.addBlockRead_16bit(0x1E0002);
    entry.executeBlock();
    board.forgetRequests();
    EXPECT_THAT(*entry.executeBlock(), IsEmpty());
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

TEST_F(SessionEntryBlock, LosesItsEarlierValuesWhenItFails) {
    entry.addBlockRead_16bit(0x1E0002);
    entry.executeBlock();
    entry.addBlockRead_16bit(0x1E0002);
    entry.session->setSessionState(Orvane::PhySession::SESSION_INVALID);
    EXPECT_THROW(entry.executeBlock(), InvalidSession);
    EXPECT_THAT(entry.blockResult, IsEmpty());
}

TEST(SessionEntryOnMdioPort, PassesAMissingSessionOnAsInvalid) {
    SimpleSessionEntry entry(nullptr, 5, kLastMdioPort);
    EXPECT_THROW(entry.read_16bit_c22(1), InvalidSession);
}

TEST(SessionEntryOnNegativePort, IsAnMdioPort) {
    SimpleSessionEntry entry(nullptr, 5, -1);
    EXPECT_THROW(entry.read_16bit_c22(1), InvalidSession);
}

struct SmbusRefusal {
    std::string name;
    void (*run)(SimpleSessionEntry& entry);
    std::string message;
};

constexpr const char* kNoClause22 = "MDIO Clause 22 over SMBus is not implemented\n";
constexpr const char* kNoAddressRegister = "MDIO Clause 22 32bit smb is not supported\n";

const SmbusRefusal kSmbusRefusals[] = {
    {"read_16bit_c22", [](Entry& e) { e.read_16bit_c22(1); }, kNoClause22},
    {"write_16bit_c22", [](Entry& e) { e.write_16bit_c22(1, 2); }, kNoClause22},
    {"read_32bit_preincrement_address", [](Entry& e) { e.read_32bit_preincrement_address(); },
     kNoAddressRegister},
    {"read_32bit_current_address", [](Entry& e) { e.read_32bit_current_address(); }, kNoAddressRegister},
    {"write_32bit_preincrement_address", [](Entry& e) { e.write_32bit_preincrement_address(1); },
     kNoAddressRegister},
    {"write_32bit_current_address", [](Entry& e) { e.write_32bit_current_address(1); }, kNoAddressRegister},
};

class SmbusPortRefusal : public testing::TestWithParam<SmbusRefusal>, protected SessionOnBoard {
protected:
    SmbusPortRefusal() : SessionOnBoard(simpleMode(5, kFirstSmbusPort)) {}
    SimpleSessionEntry entry{owned.release(), 5, kFirstSmbusPort};
};

INSTANTIATE_TEST_SUITE_P(Of, SmbusPortRefusal, testing::ValuesIn(kSmbusRefusals), NamedParam{});

TEST_P(SmbusPortRefusal, IsReportedAndThrown) {
    std::string thrown;
    const WrittenText written =
        textWritten([&] { thrown = thrownText<Standard>([&] { GetParam().run(entry); }); });
    EXPECT_EQ(written.error, GetParam().message);
    EXPECT_EQ(thrown, "NotImplemented: MDIO C22 over SMB");
}

TEST_P(SmbusPortRefusal, SendsNothing) {
    EXPECT_THROW(GetParam().run(entry), Standard);
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

class SmbusPort : public testing::Test, protected SessionOnBoard {
protected:
    SmbusPort() : SessionOnBoard(simpleMode(5, kFirstSmbusPort)) {}
    SimpleSessionEntry entry{owned.release(), 5, kFirstSmbusPort};
};

TEST_F(SmbusPort, Reads0InAnUnknownProtocolWithoutATransfer) {
    EXPECT_EQ(entry.read_32bit(0x12345678, KelSmbProto(2)), 0U);
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

TEST_F(SmbusPort, WritesNothingInAnUnknownProtocol) {
    entry.write_32bit(0x12345678, 1, KelSmbProto(-1));
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

TEST_F(SmbusPort, GivesTheResultsOfItsReadsOnceInEachFormat) {
    for (const auto execute : {&SimpleSessionEntry::executeBlock, &SimpleSessionEntry::executeBlock_c22,
                               &SimpleSessionEntry::executeBlock_c22_32bit}) {
        entry.smbResults = {11, 12};
        EXPECT_THAT(*(entry.*execute)(), ElementsAre(11, 12));
        EXPECT_THAT(*(entry.*execute)(), IsEmpty());
    }
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

} // namespace
} // namespace OrvaneTest
