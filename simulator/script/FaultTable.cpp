// The table of faults.
#include "simulator/script/FaultTable.h"

#include <algorithm>
#include <cerrno>
#include <stdexcept>

namespace OrvaneSim {
namespace {

using Kind = Fault::Kind;

constexpr std::int64_t kHour = 3600000; // milliseconds
constexpr std::int64_t kMostBytes = 60000;

FaultForm plain(const char* name, Kind kind, const char* effect) {
    return {name, kind, nullptr, 0, 0, 0, nullptr, nullptr, effect};
}
FaultForm timed(const char* name, Kind kind, std::int64_t fallback, const char* effect) {
    return {name, kind, "milliseconds", fallback, 0, kHour, nullptr, nullptr, effect};
}
FaultForm sized(const char* name, Kind kind, std::int64_t fallback, const char* effect) {
    return {name, kind, "bytes", fallback, 0, kMostBytes, nullptr, nullptr, effect};
}
FaultForm preset(const char* name, Kind kind, std::int64_t value, const char* program, const char* procedure,
                 const char* effect) {
    return {name, kind, nullptr, value, value, value, program, procedure, effect};
}

} // namespace

const std::vector<FaultForm>& faultForms() {
    static const std::vector<FaultForm> forms{
        plain("lose-request", Kind::LoseRequest, "neither executes nor answers"),
        plain("lose-reply", Kind::LoseReply, "executes, does not answer"),
        timed("delay", Kind::DelayReply, 100, "executes at once, answers later"),
        plain("duplicate", Kind::DuplicateReply, "answers twice"),
        timed("reorder", Kind::ReorderReply, 1000,
              "holds the answer until the client's next one has left, at most so long"),
        sized("truncate", Kind::TruncateReply, 8, "cuts the reply to its first bytes"),
        sized("lengthen", Kind::LengthenReply, 4, "adds made-up bytes to the reply"),
        sized("corrupt", Kind::CorruptReply, 1, "changes some bytes of the reply"),
        sized("garbage", Kind::GarbageReply, 32, "answers with made-up bytes only"),
        {"result", Kind::ResultCode, "code", -EIO, INT32_MIN, INT32_MAX, nullptr, nullptr,
         "does not execute, answers with a status"},
        {"elements", Kind::ReplyCount, "elements", 0, 0, 65536, nullptr, nullptr,
         "cuts or fills every list of the reply"},
        {"word", Kind::OverrideWord, "word", 0, INT32_MIN, UINT32_MAX, nullptr, nullptr,
         "changes the first word of the reply beside its status"},
        plain("body", Kind::ReplyBody, "answers with the result that \"hex\" encodes"),
        plain("wrong-id", Kind::WrongTransaction, "answers under another transaction id"),
        plain("wrong-port", Kind::WrongPort, "answers from another port (UDP; lost over TCP)"),
        plain("refuse", Kind::RefuseProgram, "answers that the program is unavailable"),
        plain("close", Kind::CloseConnection, "closes the connection instead of executing"),
        sized("close-mid-reply", Kind::CloseMidReply, 8,
              "closes the connection after so many bytes of the reply (lost over UDP)"),
        sized("half-open", Kind::HalfOpen, 8,
              "leaves the connection open but mute after so many bytes (lost over UDP)"),
        timed("trickle", Kind::TrickleReply, 10, "answers byte by byte (TCP), so far apart"),
        plain("silent", Kind::Silent, "neither executes nor answers; a probed connection stays open"),
        preset("refuse-open", Kind::ResultCode, -EACCES, "setup", "open_connection", "refuses a session"),
        preset("portmapper-silent", Kind::Silent, 0, "portmap", "", "the port mapper does not answer"),
        preset("portmapper-none", Kind::ResultCode, 0, "portmap", "portmap_getport",
               "the port mapper knows no program"),
        preset("discovery-silent", Kind::Silent, 0, "discovery", "", "does not answer discovery"),
        preset("discovery-twice", Kind::DuplicateReply, 0, "discovery", "", "answers discovery twice"),
        preset("discovery-garbage", Kind::GarbageReply, 32, "discovery", "",
               "answers discovery with made-up bytes"),
        preset("probe-silent", Kind::Silent, 0, "probe", "", "leaves a TCP probe open and unanswered"),
    };
    return forms;
}

const FaultForm* faultForm(const std::string& name) {
    const auto& forms = faultForms();
    const auto found =
        std::find_if(forms.begin(), forms.end(), [&](const FaultForm& form) { return name == form.name; });
    return found == forms.end() ? nullptr : &*found;
}

const FaultForm& faultForm(Fault::Kind kind) {
    const auto& forms = faultForms();
    const auto found =
        std::find_if(forms.begin(), forms.end(), [&](const FaultForm& form) { return kind == form.kind; });
    if (found == forms.end())
        throw std::logic_error("a kind of fault without a name");
    return *found;
}

} // namespace OrvaneSim
