// The records of the ADC service's calls, filled and read.
#include "ov_sys/Interface/buses/rpc/RPCADC.h"

#include "ov_sys/Interface/buses/rpc/CallInto.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

namespace Orvane::ADC {
namespace {

using Bytes = std::vector<unsigned char>;
constexpr BoardConnection::clientId kClient = BoardConnection::ADC;
constexpr std::size_t kReportBytes = 256;

template <class Param>
void send(clnt_stat (*stub)(Param, ADC_Result*, CLIENT*), PhySession& session, const Param& param) {
    ADC_Result result{};
    DO_RPC(stub, param, &result, session, kClient);
}

Simple_Param plain(const PhySession& session) {
    return {0, session.identityWord()};
}

// Takes up to `capacity` bytes and returns as many as the board sent.
template <class Param, class Result>
Bytes receive(clnt_stat (*stub)(Param, Result*, CLIENT*), PhySession& session, const Param& param,
              std::size_t capacity) {
    Bytes bytes(capacity);
    bytes.resize(callInto(stub, session, kClient, param, &Result::data, bytes.data(), bytes.size()));
    return bytes;
}

// Takes all that the board sends.
Bytes receiveAll(PhySession& session, const ADC_Data_Get_Param& param) {
    WireResult<ADC_Data> result;
    DO_RPC(adc_getdata_1, param, result.get(), session, kClient);
    return {result->data.data_val, result->data.data_val + result->data.data_len};
}

} // namespace

void RPC::initialize(PhySession& session) {
    send(adc_initialize_1, session, plain(session));
}

void RPC::start(PhySession& session) {
    send(adc_start_1, session, plain(session));
}

void RPC::stop(PhySession& session) {
    send(adc_stop_1, session, plain(session));
}

void RPC::setChannelMask(PhySession& session, unsigned mask) {
    send(adc_setchannelmask_1, session, ADC_ChannelMask{session.identityWord(), mask});
}

void RPC::setDumpFile(PhySession& session, std::string name) {
    send(adc_setdumpfile_1, session,
         ADC_Dump{session.identityWord(), {static_cast<u_int>(name.size()), name.data()}});
}

void RPC::setEventName(PhySession& session, std::string name) {
    send(adc_seteventname_1, session,
         ADC_Event{session.identityWord(), {static_cast<u_int>(name.size()), name.data()}});
}

Bytes RPC::getData(PhySession& session, int count) {
    const ADC_Data_Get_Param param{session.identityWord(), static_cast<u_int>(count)};
    return count == 0 ? receiveAll(session, param)
                      : receive(adc_getdata_1, session, param, static_cast<std::size_t>(count));
}

Bytes RPC::maxADC(PhySession& session) {
    return receive(adc_maxadc_1, session, plain(session), kReportBytes);
}

Bytes RPC::getEvents(PhySession& session) {
    return receive(adc_getevents_1, session, plain(session), kReportBytes);
}

} // namespace Orvane::ADC
