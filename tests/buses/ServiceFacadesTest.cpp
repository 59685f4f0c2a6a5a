// The facades of the bus services: one request for each operation, and none for a session that cannot be
// used.
#include "ov_sys/Interface/buses/ADC.h"
#include "ov_sys/Interface/buses/GPIO.h"
#include "ov_sys/Interface/buses/JTAG.h"
#include "ov_sys/Interface/buses/KeepAlive.h"
#include "ov_sys/Interface/buses/rpc/RPCThermal.h"
#include "ov_sys/Interface/buses/Setup.h"
#include "ov_sys/Interface/buses/Thermal.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/NamedParam.h"
#include "tests/support/ServiceOperations.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <type_traits>

namespace OrvaneTest {
namespace {

using Orvane::PhySession;
using Orvane::PingRecord;
using Orvane::SessionWrapper;
using Orvane::Exceptions::AccessDenied;
using Orvane::Exceptions::InvalidSession;
using Orvane::Exceptions::Standard;
using OrvaneSim::Fault;
using testing::ElementsAre;
using testing::IsEmpty;

class ServiceFacadeOperation : public testing::TestWithParam<ServiceOperation>, protected SessionOnBoard {
protected:
    ServiceFacadeOperation() { prepareDevices(board); }

    bool isPing() const { return GetParam().call.arguments == Json{{"handle", 1}}; }
};

INSTANTIATE_TEST_SUITE_P(Each, ServiceFacadeOperation, testing::ValuesIn(serviceOperations()), NamedParam{});

TEST_P(ServiceFacadeOperation, SendsExactlyItsOneRequest) {
    GetParam().run(&session);
    EXPECT_THAT(wireCalls(board), ElementsAre(GetParam().call));
}

TEST_P(ServiceFacadeOperation, ReturnsWhatTheBoardAnswered) {
    EXPECT_EQ(GetParam().run(&session), GetParam().value);
}

TEST_P(ServiceFacadeOperation, AdvancesTheSequenceOfItsKindByOne) {
    GetParam().run(&session);
    EXPECT_EQ(session.identityWord(), identity(isPing() ? 0 : 1));
    EXPECT_EQ(session.pingIdentityWord(), isPing() ? 0x101U : 1U);
}

TEST_P(ServiceFacadeOperation, RefusesAnInvalidSessionWithoutARequest) {
    session.setSessionState(PhySession::SESSION_INVALID);
    EXPECT_THROW(GetParam().run(&session), InvalidSession);
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

TEST_P(ServiceFacadeOperation, RefusesANullSession) {
    EXPECT_THROW(GetParam().run(nullptr), InvalidSession);
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

TEST_P(ServiceFacadeOperation, IsRepeatedUnchangedWhileTheBoardIsBusy) {
    board.inject({GetParam().service, "", Fault::Kind::ResultCode, 2, -16});
    EXPECT_EQ(GetParam().run(&session), GetParam().value);
    EXPECT_THAT(wireCalls(board), ElementsAre(GetParam().call, GetParam().call, GetParam().call));
}

TEST_P(ServiceFacadeOperation, PassesOnThatTheBoardDeniesAccess) {
    board.inject({GetParam().service, "", Fault::Kind::ResultCode, 1, -13});
    const WrittenText written = textWritten([&] { EXPECT_THROW(GetParam().run(&session), AccessDenied); });
    EXPECT_EQ(written.error, GetParam().service + " Board in in use. AccessDenied exception...-13\n");
}

TEST_P(ServiceFacadeOperation, PassesOnThatTheBoardRefuses) {
    board.inject({GetParam().service, "", Fault::Kind::ResultCode, 1, -22});
    EXPECT_EQ(thrownText<Standard>([&] { GetParam().run(&session); }), "raiseRemoteError: Error");
    EXPECT_THAT(wireCalls(board), ElementsAre(GetParam().call));
}

class PingRecordOf : public testing::TestWithParam<PingRecord (*)(SessionWrapper)>,
                     protected SessionOnBoard {};

INSTANTIATE_TEST_SUITE_P(
    EachService, PingRecordOf,
    testing::Values([](SessionWrapper s) { return Orvane::Setup::Setup().getPingRecord(s); },
                    [](SessionWrapper s) { return Orvane::KeepAlive::KeepAlive().getPingRecord(s); }));

TEST_P(PingRecordOf, IsTheSessionsOwnWithoutARequest) {
    session.pingRecordType = 7;
    session.pingRecordSamples = {1, 0x1FFFFFFFFUL};
    const PingRecord record = GetParam()(&session);
    EXPECT_EQ(record.type, 7U);
    EXPECT_THAT(record.samples, ElementsAre(1U, 0x1FFFFFFFFUL));
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

TEST_P(PingRecordOf, IsRefusedForAnInvalidSession) {
    session.setSessionState(PhySession::SESSION_INVALID);
    EXPECT_THROW(GetParam()(&session), InvalidSession);
}

TEST_P(PingRecordOf, IsRefusedForANullSession) {
    EXPECT_THROW(GetParam()(nullptr), InvalidSession);
}

using Orvane::Thermal::Thermal;

class ThermalCommonCall : public testing::Test, protected SessionOnBoard {};

TEST_F(ThermalCommonCall, MakesTheGivenCall) {
    SessionWrapper wrapper(&session);
    Thermal().selectCommonCall(wrapper, Orvane::Thermal::RPC::disconnect);
    EXPECT_THAT(wireCalls(board),
                ElementsAre(WireCall{kThermalProgram, 2, {{"value", 0}, {"handle", identity()}}}));
}

TEST_F(ThermalCommonCall, RefusesAnInvalidSessionWithoutACall) {
    session.setSessionState(PhySession::SESSION_INVALID);
    SessionWrapper wrapper(&session);
    EXPECT_THROW(Thermal().selectCommonCall(wrapper, Orvane::Thermal::RPC::connect), InvalidSession);
    EXPECT_THAT(wireCalls(board), IsEmpty());
}

TEST_F(ThermalCommonCall, RefusesANullSessionWithoutACall) {
    SessionWrapper wrapper(nullptr);
    EXPECT_THROW(Thermal().selectCommonCall(wrapper, Orvane::Thermal::RPC::connect), InvalidSession);
}

TEST(ServiceFacades, RefuseANullSessionBeforeTheyLookAtTheLists) {
    EXPECT_THROW(Orvane::GPIO::GPIO().bitBang(nullptr, {1}, {}, {}), InvalidSession);
    EXPECT_THROW(Orvane::JTAG::JTAG().shiftMulti(nullptr, {"1"}, {}, {}), InvalidSession);
    EXPECT_THROW(Orvane::ADC::ADC().getData(nullptr, -1), InvalidSession);
}

template <class Facade>
constexpr bool kOnlyAVirtualDestructor = std::has_virtual_destructor_v<Facade> &&
                                         sizeof(Facade) == sizeof(void*);

TEST(ServiceFacades, HoldNoDataAndCanBeDestroyedThroughABase) {
    EXPECT_TRUE(kOnlyAVirtualDestructor<Orvane::JTAG::JTAG>);
    EXPECT_TRUE(kOnlyAVirtualDestructor<Orvane::ADC::ADC>);
    EXPECT_TRUE(kOnlyAVirtualDestructor<Thermal>);
    EXPECT_TRUE(kOnlyAVirtualDestructor<Orvane::Setup::Setup>);
}

} // namespace
} // namespace OrvaneTest
