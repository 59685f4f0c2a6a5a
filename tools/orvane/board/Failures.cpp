// Wording of failures.
#include "tools/orvane/board/Failures.h"

#include <cstdlib>
#include <fmt/format.h>

namespace OrvaneTool {

std::string causeOf(const Orvane::Failure& failure) {
    if (failure.kind() == Orvane::FailureKind::BoardError && failure.code() != 0)
        return fmt::format("the board answers: {} ({})", errorText(std::abs(failure.code())), failure.code());
    if (failure.kind() == Orvane::FailureKind::BadReply)
        return "the board's answer does not fit the question";
    const std::string all = failure.what();
    const std::size_t kind = all.find(std::string(": ") + Orvane::toText(failure.kind()));
    return kind == std::string::npos ? all : all.substr(kind + 2);
}

std::string textOf(const Orvane::Failure& failure) {
    std::string text = failure.board();
    if (failure.port() >= 0)
        text += fmt::format(":{}", failure.port());
    text += fmt::format("{}{}", text.empty() ? "" : ": ", failure.operation());
    if (failure.phy() >= 0)
        text += fmt::format(" PHY {}", failure.phy());
    if (!failure.location().empty())
        text += " " + failure.location();
    return text + ": " + causeOf(failure);
}

std::string textOf(const std::exception_ptr& problem) {
    try {
        std::rethrow_exception(problem);
    } catch (const Orvane::Failure& failure) {
        return textOf(failure);
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

} // namespace OrvaneTool
