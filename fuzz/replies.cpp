// Whole replies, decoded for the stub of every procedure.
#include "fuzz/Input.h"
#include "ov_sys/Interface/connection/CallMessage.h"
#include "ov_sys/Interface/rpc_protocol/Codec.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

#include <array>
#include <functional>

namespace {

using namespace OrvaneFuzz;

constexpr std::uint32_t kId = 7;

// A handle all of whose calls are answered with the same message.
class AnsweredWith {
public:
    explicit AnsweredWith(Bytes message) : message_(std::move(message)) {
        client_.cl_private = this;
        client_.cl_ops = &operations();
    }
    AnsweredWith(const AnsweredWith&) = delete;
    AnsweredWith& operator=(const AnsweredWith&) = delete;

    CLIENT* get() { return &client_; }

private:
    static CLIENT::clnt_ops& operations() {
        static CLIENT::clnt_ops table = [] {
            CLIENT::clnt_ops ours{};
            ours.cl_call = [](CLIENT* client, rpcproc_t procedure, xdrproc_t encode, void* argument,
                              xdrproc_t decode, void* result, timeval) {
                AnsweredWith& self = *static_cast<AnsweredWith*>(client->cl_private);
                const Orvane::CallMessage call(kId, {1, 1, static_cast<std::uint32_t>(procedure)}, encode,
                                               argument, decode, result);
                auto* const bytes = reinterpret_cast<char*>(self.message_.data());
                if (!call.isAnsweredBy(bytes, self.message_.size()))
                    return RPC_TIMEDOUT;
                rpc_err error{};
                return call.decodeFrom(bytes, self.message_.size(), error);
            };
            return ours;
        }();
        return table;
    }

    Bytes message_;
    CLIENT client_{};
};

template <class Param, class Result>
std::function<void(CLIENT*)> throughStub(clnt_stat (*stub)(Param, Result*, CLIENT*)) {
    return [stub](CLIENT* client) {
        Result result{};
        stub(Param{}, &result, client);
        Orvane::freeDecoded(result);
    };
}

// One stub of each kind of result, and the bare integer.
const auto& stubs() {
    static const std::array all{
        throughStub(open_connection_1), throughStub(close_connection_1),
        throughStub(get_error_msg_1),   throughStub(ping_1),
        throughStub(execute_command_1), throughStub(mdio_read_1),
        throughStub(mdio_write_1),      throughStub(mdio_read_preinc_c22_zrext32_1),
        throughStub(i2c_read_1),        throughStub(gpio_read_1),
        throughStub(jtag_shiftmulti_1), throughStub(adc_start_1),
        throughStub(adc_getdata_1),     throughStub(adc_maxadc_1),
        throughStub(adc_getevents_1),   throughStub(thrm_connect_1),
        throughStub(thrm_getstate_1),   throughStub(thrm_gettemperature_1),
    };
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input input(data, size);
    const auto& stub = stubs()[input.byte() % stubs().size()];
    AnsweredWith handle(input.rest());
    stub(handle.get());
    return 0;
}
