// The records of the thermal service's calls, and its two kinds of call.
#include "ov_sys/Interface/buses/rpc/RPCThermal.h"

#include "ov_sys/Interface/buses/rpc/CallFrame.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

namespace Orvane::Thermal {
namespace {

template <class Param, class Result>
using Stub = clnt_stat (*)(Param, Result*, CLIENT*);

template <class Param, class Result>
Result call(Stub<Param, Result> stub, PhySession& session, const Param& param) {
    Result result{};
    DO_RPC(stub, param, &result, session, BoardConnection::THERMAL);
    return result;
}

Simple_Param plain(const PhySession& session) {
    return {0, session.identityWord()};
}

// The thermal records carry the identity word as a signed number.
int signedIdentity(const PhySession& session) {
    return static_cast<int>(session.identityWord());
}

float temperatureOf(Stub<THRM_Get_Temp_Arg, THRM_Get_Temp> stub, PhySession& session, unsigned channel) {
    return call(stub, session, THRM_Get_Temp_Arg{signedIdentity(session), channel}).temperature;
}

void force(Stub<THRM_Set_Temp_Arg, THRM_Result> stub, PhySession& session, unsigned channel,
           float temperature, unsigned char flag) {
    call(stub, session, THRM_Set_Temp_Arg{signedIdentity(session), temperature, flag, channel});
}

} // namespace

void RPC::connect(PhySession& session) {
    call(thrm_connect_1, session, plain(session));
}

void RPC::disconnect(PhySession& session) {
    call(thrm_disconnect_1, session, plain(session));
}

void RPC::stopControl(PhySession& session) {
    call(thrm_stopcontrol_1, session, plain(session));
}

void RPC::startControl(PhySession& session, unsigned channel) {
    call(thrm_startcontrol_1, session, THRM_Control_Arg{signedIdentity(session), channel});
}

int RPC::getState(PhySession& session) {
    return call(thrm_getstate_1, session, plain(session)).state;
}

float RPC::getTemperature(PhySession& session, unsigned channel) {
    return temperatureOf(thrm_gettemperature_1, session, channel);
}

float RPC::getSettledTemperature(PhySession& session, unsigned channel) {
    return temperatureOf(thrm_getsettledtemperature_1, session, channel);
}

void RPC::setTemperature(PhySession& session, unsigned channel, float temperature, unsigned char flag) {
    force(thrm_settemperature_1, session, channel, temperature, flag);
}

void RPC::setDefaultTemperature(PhySession& session, unsigned channel, float temperature,
                                unsigned char flag) {
    force(thrm_setdefaulttemperature_1, session, channel, temperature, flag);
}

} // namespace Orvane::Thermal
