// A call with its wire records.
#pragma once

#include "ov_sys/Interface/connection/CallMessage.h"
#include "ov_sys/Interface/rpc_protocol/Codec.h"
#include "ov_sys/rack/link/Call.h"

#include <type_traits>
#include <utility>

namespace Orvane::RackLink {

template <class T, class = void>
struct HasHandle : std::false_type {};
template <class T>
struct HasHandle<T, std::void_t<decltype(std::declval<T&>().handle)>> : std::true_type {};

template <class T, class = void>
struct HasStatus : std::false_type {};
template <class T>
struct HasStatus<T, std::void_t<decltype(std::declval<T&>().error)>> : std::true_type {};

// What a reply's outcome means.
inline Trouble troubleOf(clnt_stat status) noexcept {
    return status == RPC_SUCCESS ? Trouble{} : Trouble{FailureKind::BadReply};
}

// `argument` is filled by the caller, `result` read by it; what a decode allocates is freed with the call.
template <class Param, class Result>
class TypedCall : public Call {
public:
    using Call::Call;
    ~TypedCall() override {
        if (decoded_)
            freeDecoded(result);
    }

    Param argument{};
    Result result{};

    std::size_t encode(char* buffer, std::size_t capacity) override {
        if constexpr (HasHandle<Param>::value)
            argument.handle = static_cast<decltype(argument.handle)>(identity);
        return message().encodeTo(buffer, capacity);
    }

    Trouble decode(char* reply, std::size_t length) override {
        if (decoded_)
            freeDecoded(result);
        decoded_ = true;
        result = Result{};
        prepare();
        rpc_err error{};
        if (const Trouble bad = troubleOf(message().decodeFrom(reply, length, error)))
            return bad;
        if constexpr (HasStatus<Result>::value)
            if (result.error != 0)
                return {FailureKind::BoardError, result.error};
        return check();
    }

protected:
    // Presets buffers in `result`. They must stay announced through the decode: see WordsCall.
    virtual void prepare() {}
    // Whether a result that decodes is what was asked for.
    virtual Trouble check() { return {}; }

private:
    CallMessage message() noexcept {
        return {id,
                {numberOf(program), versionOf(program), procedure},
                xdrProcedure<Param>,
                &argument,
                xdrProcedure<Result>,
                &result};
    }

    bool decoded_ = false; // there may be something to free
};

} // namespace Orvane::RackLink
