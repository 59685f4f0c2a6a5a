// Each kind of failure has its status, and each status its exception.
#include "ov_sys/rack/c/Failures.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace Orvane::RackC {
namespace {

static_assert(static_cast<int>(FailureKind::InvalidArgument) + 1 == ORVANE_INVALID_ARGUMENT);
static_assert(static_cast<int>(FailureKind::NoSuchPort) + 1 == ORVANE_NO_SUCH_PORT);
static_assert(static_cast<int>(FailureKind::Unreachable) + 1 == ORVANE_UNREACHABLE);
static_assert(static_cast<int>(FailureKind::TimedOut) + 1 == ORVANE_TIMED_OUT);
static_assert(static_cast<int>(FailureKind::Refused) + 1 == ORVANE_REFUSED);
static_assert(static_cast<int>(FailureKind::Busy) + 1 == ORVANE_BUSY);
static_assert(static_cast<int>(FailureKind::LostSession) + 1 == ORVANE_LOST_SESSION);
static_assert(static_cast<int>(FailureKind::BadReply) + 1 == ORVANE_BAD_REPLY);
static_assert(static_cast<int>(FailureKind::BoardError) + 1 == ORVANE_BOARD_ERROR);
static_assert(static_cast<int>(FailureKind::Cancelled) + 1 == ORVANE_CANCELLED);

bool isKind(int status) noexcept {
    return status >= ORVANE_INVALID_ARGUMENT && status <= ORVANE_CANCELLED;
}

FailureKind kindOf(int status) noexcept {
    return static_cast<FailureKind>(status - 1);
}

template <std::size_t size>
void copy(char (&room)[size], const char* text) noexcept {
    std::snprintf(room, size, "%s", text);
}

void copyCodeName(orvane_failure& out, int code) noexcept {
    const char* const name = strerrorname_np(-code);
    if (name != nullptr)
        copy(out.code_name, name);
    else
        std::snprintf(out.code_name, sizeof out.code_name, "%d", code);
}

} // namespace

int fail(orvane_failure* out, const Failure& failure) noexcept {
    const int kind = static_cast<int>(failure.kind()) + 1;
    if (out == nullptr)
        return kind;
    *out = {};
    out->kind = kind;
    out->code = failure.code();
    out->port = failure.port();
    out->phy = failure.phy();
    out->attempts = failure.attempts();
    out->seconds = std::chrono::duration<double>(failure.spent()).count();
    if (failure.code() != 0)
        copyCodeName(*out, failure.code());
    copy(out->board, failure.board().c_str());
    copy(out->operation, failure.operation().c_str());
    copy(out->location, failure.location().c_str());
    copy(out->advice, failure.advice().c_str());
    copy(out->message, failure.what());
    return kind;
}

int fail(orvane_failure* out, const char* message) noexcept {
    if (out != nullptr) {
        *out = {};
        out->kind = ORVANE_OUT_OF_RESOURCES;
        out->port = out->phy = -1;
        copy(out->message, message);
    }
    return ORVANE_OUT_OF_RESOURCES;
}

void rethrow(int status, const orvane_failure& said) {
    if (!isKind(status))
        throw std::runtime_error(said.message[0] != '\0' ? said.message : "The hook failed.");
    FailureDetails details;
    details.kind = kindOf(status);
    details.board = said.board;
    details.port = said.port;
    details.phy = said.phy;
    details.operation = said.operation[0] != '\0' ? said.operation : "reopen hook";
    details.location = said.location;
    details.code = said.code;
    details.attempts = said.attempts;
    details.spent =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::duration<double>(said.seconds));
    details.advice = said.advice;
    throw Failure(std::move(details));
}

void refuse(const char* advice) {
    FailureDetails details;
    details.advice = advice;
    throw Failure(std::move(details));
}

void need(std::initializer_list<const void*> pointers) {
    if (std::find(pointers.begin(), pointers.end(), nullptr) != pointers.end())
        refuse("A pointer is null.");
}

} // namespace Orvane::RackC

extern "C" const char* orvane_status_text(int status) {
    using namespace Orvane::RackC;
    if (status == ORVANE_DONE)
        return "done";
    if (status == ORVANE_OUT_OF_RESOURCES)
        return "out of resources";
    return isKind(status) ? toText(kindOf(status)) : "unknown status";
}
