// The MDIO facade: one request for each operation, and none for a session that cannot be used.
#include "ov_sys/Interface/buses/MDIO.h"

#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/MdioOperations.h"
#include "tests/support/NamedParam.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace OrvaneTest {
namespace {

using Orvane::mdio;
using Orvane::Exceptions::AccessDenied;
using Orvane::Exceptions::InvalidSession;
using OrvaneSim::Fault;
using testing::ElementsAre;
using testing::IsEmpty;

class MdioFacadeOperation : public testing::TestWithParam<MdioOperation>, protected SessionOnBoard {
protected:
    MdioFacadeOperation() { prepareRegisters(board); }
};

INSTANTIATE_TEST_SUITE_P(Each, MdioFacadeOperation, testing::ValuesIn(mdioOperations()), NamedParam{});

TEST_P(MdioFacadeOperation, SendsExactlyItsOneRequest) {
    GetParam().run(&session);
    EXPECT_THAT(wireCalls(board), ElementsAre(mdioCall(GetParam().procedure, GetParam().arguments)));
}

TEST_P(MdioFacadeOperation, ReturnsWhatTheBoardAnswered) {
    EXPECT_EQ(GetParam().run(&session), GetParam().values);
}

TEST_P(MdioFacadeOperation, AdvancesTheCallSequenceByOne) {
    GetParam().run(&session);
    EXPECT_EQ(session.identityWord(), identity(1));
}

TEST_P(MdioFacadeOperation, RefusesAnInvalidSessionWithoutARequest) {
    session.setSessionState(Orvane::PhySession::SESSION_INVALID);
    EXPECT_THROW(GetParam().run(&session), InvalidSession);
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

TEST_P(MdioFacadeOperation, RefusesANullSession) {
    EXPECT_THROW(GetParam().run(nullptr), InvalidSession);
}

TEST_P(MdioFacadeOperation, IsRepeatedUnchangedWhileTheBoardIsBusy) {
    board.inject({"mdio", "", Fault::Kind::ResultCode, 2, -16});
    const WireCall call = mdioCall(GetParam().procedure, GetParam().arguments);
    EXPECT_EQ(GetParam().run(&session), GetParam().values);
    EXPECT_THAT(wireCalls(board), ElementsAre(call, call, call));
}

TEST_P(MdioFacadeOperation, PassesOnThatTheBoardDeniesAccess) {
    board.inject({"mdio", "", Fault::Kind::ResultCode, 1, -13});
    const WrittenText written = textWritten([&] { EXPECT_THROW(GetParam().run(&session), AccessDenied); });
    EXPECT_EQ(written.error, "mdio Board in in use. AccessDenied exception...-13\n");
}

class MdioFacade : public testing::Test, protected SessionOnBoard {};

TEST_F(MdioFacade, RefusesANullSessionBeforeItLooksAtTheLists) {
    EXPECT_THROW(mdio.blockWrite(nullptr, {1, 2, 3}, {1}), InvalidSession);
}

TEST_F(MdioFacade, PutsTheSequenceOfEachCallIntoItsIdentityWord) {
    mdio.read(&session, 1);
    mdio.write_c22(&session, 2, 3);
    mdio.flush(&session);
    EXPECT_THAT(wireCalls(board),
                ElementsAre(mdioCall(1, readParam(identity(0), {0x25000001})),
                            mdioCall(12, writeParam(identity(1), {0x25000002}, {3})),
                            mdioCall(7, {{"handle", identity(2)}, {"deviceIndex", 1}, {"phyAddress", 5}})));
}

TEST_F(MdioFacade, WritesWhatItThenReads) {
    mdio.write(&session, 0x1E0005, 0xABCD);
    EXPECT_EQ(mdio.read(&session, 0x1E0005), 0xABCDU);
}

TEST_F(MdioFacade, IncrementsTheAddressRegisterBeforeAPreincrementAccess) {
    mdio.write_c22_zrExt32(&session, 0x100, 1);
    mdio.write_preinc_c22_zrExt32(&session, 2);
    mdio.write_curraddr_c22_zrExt32(&session, 3);
    EXPECT_EQ(mdio.read_c22_zrExt32(&session, 0x104), 3U);
}

TEST_F(MdioFacade, ServesSeveralThreadsThroughOneSession) {
    constexpr unsigned kThreads = 4;
    constexpr unsigned kReads = 50;
    for (unsigned reg = 0; reg < kThreads; ++reg)
        board.setRegister(OrvaneSim::Space::C45, 1, 5, 0x1E0100 + reg, 0xA000 + reg);
    std::vector<unsigned> wrong(kThreads);
    std::vector<std::thread> readers;
    for (unsigned reader = 0; reader < kThreads; ++reader)
        readers.emplace_back([&, reader] {
            for (unsigned i = 0; i < kReads; ++i)
                wrong[reader] += mdio.read(&session, 0x1E0100 + reader) != 0xA000 + reader;
        });
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_THAT(wrong, testing::Each(0U));
    EXPECT_EQ(session.identityWord(), identity(kThreads * kReads));
}

} // namespace
} // namespace OrvaneTest
