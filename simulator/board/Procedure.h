// The frame around every procedure of a board: decoding, record, faults, session check, then the procedure
// itself and its reply.
#pragma once

#include "simulator/board/ProcedureCall.h"
#include "simulator/board/ReplyBending.h"
#include "simulator/protocol/DecodedRecord.h"
#include "simulator/protocol/RecordText.h"

#include <cerrno>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace OrvaneSim {

template <class Argument, class = void>
struct HasIdentity : std::false_type {};
template <class Argument>
struct HasIdentity<Argument, std::void_t<decltype(std::declval<Argument&>().handle)>> : std::true_type {};

// Finds the session of a call that carries an identity word; false when the board does not know it.
template <class Argument>
bool findSession(ProcedureCall& call, const Argument& argument) {
    if constexpr (HasIdentity<Argument>::value) {
        call.session = call.board.sessions.find(static_cast<std::uint32_t>(argument.handle));
        return call.session != nullptr;
    }
    return true;
}

// What was decided about a call before its procedure runs.
struct CallFate {
    std::optional<Fault> fault;
    CallCounts& counts;
    bool executed = true;
};

// Records and counts a decoded call, lets it meet its fault and tells the board's observers.
CallFate beginCall(ProcedureCall& call);

// Whether a call that meets `fault` is executed; sets how the call is answered.
bool passesFault(const Fault& fault, RpcCall& call, Dice& dice);

// Takes a decoded call to its result: its fate, the check of its session, `function`. Returns whether the
// result is to be sent.
template <class Argument, class Result>
bool perform(ProcedureCall& call, void (*function)(ProcedureCall&, const Argument&, Result&),
             const Argument& argument, Result& result) {
    const CallFate fate = beginCall(call);
    if (!fate.executed) {
        if (fate.fault->kind != Fault::Kind::ResultCode)
            return false;
        setStatus(result, fate.fault->value);
        return true;
    }
    if (findSession(call, argument)) {
        ++fate.counts.executed;
        function(call, argument, result);
    } else {
        setStatus(result, -EBADRQC);
    }
    if (call.rpc.later())
        return false;
    if (fate.fault && fate.fault->kind == Fault::Kind::OverrideWord)
        setFirstWord(result, fate.fault->value);
    if (fate.fault && fate.fault->kind == Fault::Kind::ReplyCount)
        setCounts(call, result, fate.fault->value);
    return true;
}

// Makes the handler of a function; argument and result are decoded and encoded as its parameters say.
template <class Function, Function function>
struct HandlerOf;
template <class Argument, class Result, void (*function)(ProcedureCall&, const Argument&, Result&)>
struct HandlerOf<void (*)(ProcedureCall&, const Argument&, Result&), function> {
    static void serve(ProcedureCall& call) {
        DecodedRecord<Argument> argument(call.rpc.arguments());
        Result result{};
        if (!argument)
            call.rpc.refuse(GARBAGE_ARGS);
        else if (perform(call, function, *argument, result))
            call.rpc.succeed(openRoutine<Result>(), &result);
    }
    static std::string describe(std::string_view arguments) {
        DecodedRecord<Argument> argument(arguments);
        return argument ? jsonText(*argument) : "{}";
    }
};

// The handler of a `void(ProcedureCall&, const Argument&, Result&)` that leaves its status in the result.
template <auto function>
inline constexpr Handler handler{HandlerOf<decltype(function), function>::serve,
                                 HandlerOf<decltype(function), function>::describe};

} // namespace OrvaneSim
