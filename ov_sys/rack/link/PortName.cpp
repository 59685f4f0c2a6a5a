// What a name may consist of.
#include "ov_sys/rack/link/PortName.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace Orvane::RackLink {
namespace {

constexpr unsigned kMostPorts = 20;

bool isSerial(const std::string& text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < 0x7F; });
}

} // namespace

std::string PortName::upper(std::string text) {
    for (char& c : text)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    return text;
}

std::optional<PortName> PortName::read(const std::string& name) {
    PortName parsed;
    const std::size_t colon = name.find(':');
    if (colon == std::string::npos)
        return std::nullopt;
    parsed.board = upper(name.substr(0, colon));
    const char* const end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data() + colon + 1, end, parsed.port);
    if (error != std::errc{} || stop != end || parsed.port >= kMostPorts || !isSerial(parsed.board))
        return std::nullopt;
    return parsed;
}

PortName PortName::parse(const std::string& name, const char* operation) {
    if (std::optional<PortName> parsed = read(name))
        return *std::move(parsed);
    FailureDetails details;
    details.operation = operation;
    details.location = '"' + name + '"';
    details.advice =
        "A port is a board's serial number, a colon and a number from 0 to 19, such as OV0001:0.";
    throw Failure(std::move(details));
}

Failure notFound(Trouble trouble, const char* operation, const PortName& wanted) {
    FailureDetails details;
    details.kind = trouble.kind();
    details.code = trouble.code();
    details.board = wanted.board;
    details.port = wanted.board.empty() ? -1 : static_cast<int>(wanted.port);
    details.operation = operation;
    if (trouble.kind() == FailureKind::Unreachable)
        details.advice = "UDP port 12345 of this host is not to be had: end the program that keeps it.";
    return Failure(std::move(details));
}

} // namespace Orvane::RackLink
