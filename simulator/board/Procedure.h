// The frame around every procedure of a board: record, faults, session check, then the procedure itself.
#pragma once

#include "simulator/board/ReplyBending.h"
#include "simulator/board/Service.h"
#include "simulator/engine/RpcCall.h"
#include "simulator/protocol/RecordText.h"

#include <cerrno>
#include <optional>
#include <utility>

namespace OrvaneSim {

/// Decodes an encoded argument and shows it as JSON.
template <class Argument>
nlohmann::ordered_json describeArgument(std::string_view bytes, bool_t (*routine)(XDR*, Argument*)) {
    XDR xdr{};
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): only read
    xdrmem_create(&xdr, const_cast<char*>(bytes.data()), static_cast<u_int>(bytes.size()), XDR_DECODE);
    Argument argument{};
    auto json = routine(&xdr, &argument) ? toJson(argument) : nlohmann::ordered_json::object();
    xdr.x_op = XDR_FREE;
    routine(&xdr, &argument);
    return json;
}

template <class Argument, class = void>
struct HasIdentity : std::false_type {};
template <class Argument>
struct HasIdentity<Argument, std::void_t<decltype(std::declval<Argument&>().handle)>> : std::true_type {};

/// Finds the session of a call that carries an identity word; false when the board does not know it.
template <class Argument>
bool findSession(Service& service, const Argument& argument) {
    if constexpr (HasIdentity<Argument>::value) {
        service.session = service.board.sessions.find(static_cast<std::uint32_t>(argument.handle));
        return service.session != nullptr;
    }
    return true;
}

/// What was decided about a call before its procedure runs.
struct CallFate {
    std::optional<Fault> fault;
    CallCounts& counts;
    bool executed = true;
};

/// Records and counts a decoded call, lets it meet its fault and tells the board's observers.
CallFate beginCall(Service& service, const ProcedureInfo& info);

/// Whether a call that meets `fault` is executed; sets how the call is answered.
bool passesFault(const Fault& fault, RpcCall& call, Dice& dice);

/// Serves a decoded call: its fate, the check of its session, `function`. Returns whether a reply is to be
/// sent, as a dispatch function expects.
template <class Argument, class Result>
bool_t runProcedure(svc_req* request, const ProcedureInfo& info, Argument& argument, Result& result,
                    void (*function)(Service&, const Argument&, Result&)) {
    RpcCall& call = RpcCall::of(request);
    Service& service = *static_cast<Service*>(call.context());
    result = Result{};
    const CallFate fate = beginCall(service, info);
    if (!fate.executed) {
        if (fate.fault->kind != Fault::Kind::ResultCode)
            return FALSE;
        setStatus(result, fate.fault->value);
        return TRUE;
    }
    if (findSession(service, argument)) {
        ++fate.counts.executed;
        function(service, argument, result);
    } else {
        setStatus(result, -EBADRQC);
    }
    if (call.later())
        return FALSE;
    if (fate.fault && fate.fault->kind == Fault::Kind::OverrideWord)
        setFirstWord(result, fate.fault->value);
    if (fate.fault && fate.fault->kind == Fault::Kind::ReplyCount)
        setCounts(service, result, fate.fault->value);
    return TRUE;
}

} // namespace OrvaneSim

/// Defines what rpcgen's dispatch function calls for one procedure: `stub` is its name on the client's side,
/// `version` its program's, `function` a `void(Service&, const Argument&, Result&)` that leaves its status in
/// the result. `program` is the name under which the call is recorded.
#define ORVANE_SIM_PROCEDURE(program, version, stub, Argument, routine, Result, function)                    \
    extern "C" bool_t sim_##stub##_##version##_svc(Argument* argument, Result* result, svc_req* request) {   \
        static constexpr OrvaneSim::ProcedureInfo info{                                                      \
            program, #stub,                                                                                  \
            [](std::string_view bytes) { return OrvaneSim::describeArgument<Argument>(bytes, routine); }};   \
        return OrvaneSim::runProcedure<Argument, Result>(request, info, *argument, *result, function);       \
    }

/// Results are built in memory that goes with the request, so there is nothing to free.
#define ORVANE_SIM_RESULTS(program, version)                                                                 \
    extern "C" int sim_##program##_##version##_freeresult(SVCXPRT*, xdrproc_t, caddr_t) {                    \
        return TRUE;                                                                                         \
    }
