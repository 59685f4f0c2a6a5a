// The records of the GPIO service's calls, filled and read.
#include "ov_sys/Interface/buses/rpc/RPCGPIO.h"

#include "ov_sys/Interface/buses/rpc/CallInto.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

namespace Orvane::GPIO {
namespace {

using Bytes = std::vector<unsigned char>;
constexpr BoardConnection::clientId kClient = BoardConnection::GPIO;

// Opaque data are characters on the wire's side.
char* opaque(Bytes const& bytes) {
    return reinterpret_cast<char*>(wirePointer(bytes));
}

template <class Param>
void send(clnt_stat (*stub)(Param, Simple_Result*, CLIENT*), PhySession& session, const Param& param) {
    Simple_Result result{};
    DO_RPC(stub, param, &result, session, kClient);
}

template <class Param>
u_int readStates(clnt_stat (*stub)(Param, GPIO_Read_Result*, CLIENT*), PhySession& session,
                 const Param& param, Bytes& states) {
    return callInto(stub, session, kClient, param, &GPIO_Read_Result::states, states.data(), states.size());
}

GPIO_Indexes_Param indexesParam(const PhySession& session, Bytes const& indexes) {
    return {session.identityWord(), {wireLength(indexes), opaque(indexes)}};
}

GPIO_States_Param statesParam(const PhySession& session, Bytes const& indexes, Bytes const& states) {
    return {
        session.identityWord(), {wireLength(indexes), opaque(indexes)}, {wireLength(states), opaque(states)}};
}

} // namespace

void RPC::set(PhySession& session, Bytes const& indexes, Bytes const& states) {
    send(gpio_write_1, session, statesParam(session, indexes, states));
}

void RPC::enableOutput(PhySession& session, Bytes const& indexes, Bytes const& enables) {
    Bytes sent = enables;
    sent.resize(indexes.size());
    send(gpio_enableoutput_1, session, statesParam(session, indexes, sent));
}

Bytes RPC::read(PhySession& session, Bytes const& indexes) {
    Bytes states(indexes.size());
    readStates(gpio_read_1, session, indexesParam(session, indexes), states);
    return states;
}

Bytes RPC::readOutputEnable(PhySession& session, Bytes const& indexes) {
    Bytes enables(indexes.size());
    enables.resize(readStates(gpio_readoutputenable_1, session, indexesParam(session, indexes), enables));
    return enables;
}

void RPC::setDefault(PhySession& session, Bytes const& indexes) {
    send(gpio_setdefault_1, session, indexesParam(session, indexes));
}

void RPC::reset(PhySession& session) {
    send(gpio_reset_1, session, Simple_Param{0, session.identityWord()});
}

Bytes RPC::bitBang(PhySession& session, Bytes const& first, Bytes const& second, Bytes const& third) {
    if (first.size() != second.size() || first.size() != third.size())
        throw Exceptions::Standard("GPIO Bitbang: parameter array lengths don't match.");
    const GPIO_BitBang_Param param{session.identityWord(),
                                   {wireLength(first), opaque(first)},
                                   {wireLength(second), opaque(second)},
                                   {wireLength(third), opaque(third)}};
    Bytes bytes(first.size());
    bytes.resize(readStates(gpio_bitbang_1, session, param, bytes));
    return bytes;
}

} // namespace Orvane::GPIO
