// Finding and opening a device, and the library's failures in words for the user.
#include "tools/orvane/board/Device.h"

#include "tools/orvane/output/Progress.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

auto& library() {
    return HW_Interface_Object;
}

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char each) { return static_cast<char>(std::toupper(each)); });
    return text;
}

std::string knownDevices() {
    std::string names;
    for (const auto& device : library().devices)
        names += (names.empty() ? "" : ", ") + device->name;
    return names;
}

// The text of the line that has `mark` in it, from behind the mark on; the last one when there are several.
std::string behind(const std::string& mark, const std::string& lines) {
    const std::size_t found = lines.rfind(mark);
    if (found == std::string::npos)
        return {};
    const std::size_t begin = found + mark.size();
    return lines.substr(begin, lines.find('\n', begin) - begin);
}

bool isListed(const std::string& name) {
    try {
        library().deviceIndex(name);
        return true;
    } catch (const Orvane::Exceptions::NoDevice&) {
        return false;
    }
}

// What to do about a device that was not found.
std::string advice(const Context& context) {
    const std::string known = knownDevices();
    if (!known.empty())
        return fmt::format("device not found; there are {}", known);
    if (context.addresses.empty())
        return "device not found; no board of that name answers on the local networks (--address asks one "
               "directly)";
    return fmt::format("device not found; no board answers at {}", fmt::join(context.addresses, ", "));
}

} // namespace

std::string causeOf(const std::exception& problem, const std::string& libraryLines) {
    std::string text = problem.what();
    const std::string code = behind("Result Error: ", libraryLines);
    if (text == "raiseRemoteError: Error" && !code.empty())
        return fmt::format("the board answers: {} ({})",
                           errorText(std::abs(static_cast<int>(std::strtol(code.c_str(), nullptr, 10)))),
                           code);
    return text;
}

void discoverBoards(Context& context) {
    context.interrupts();
    LibraryMessages::explainAborts(context.messages.err(), "discovery");
    try {
        const Spinner spinner(context.console.err, "looking for boards");
        for (const std::string& address : context.addresses)
            library().refreshDevices("", address);
        if (context.addresses.empty())
            library().refreshDevices("", "");
    } catch (const std::exception& problem) {
        throw Failure(std::string("discovery: ") + causeOf(problem, context.libraryLines()));
    }
    context.libraryLines();
    context.interrupts().check();
}

Device::Device(Context& context, const std::string& name) : context_(context), name_(upperCase(name)) {
    if (!library().isValidName(name))
        throw UsageError(fmt::format(
            "'{}' is no device name: it is BOARD:PORT, such as OV0001:0 ('orvane list' shows them)", name));
    context_.interrupts();
    if (!context_.addresses.empty())
        discoverBoards(context_);
    HW_Initialize();
    begin("open");
    try {
        if (context_.addresses.empty()) {
            const Spinner spinner(context_.console.err, "looking for " + name_);
            library().deviceNumber(name, "");
        }
    } catch (const std::exception&) { // told below
    }
    context_.libraryLines();
    context_.interrupts().check();
    if (!isListed(name))
        throw Failure(prefix("open") + advice(context_));
    adapter_ = static_cast<unsigned>(library().deviceIndex(name));
    library().openAdapter(adapter_);
}

Device::~Device() {
    context_.interrupts().closing();
    // Closing the adapter would wait for the sessions' keep-alive threads, 200 ms each. The board is told,
    // and the process ends without them.
    for (const auto& entry : library().devices[adapter_]->sessions)
        Orvane::Setup::closeConnection(*entry->session);
    context_.libraryLines();
}

std::string Device::address() const {
    return library().devices[adapter_]->address;
}

int Device::port() const {
    return library().devices[adapter_]->port;
}

Orvane::PhySession& Device::session(unsigned phy) {
    return attempt(fmt::format("open session for PHY {}", phy), [&]() -> Orvane::PhySession& {
        return *library().getSimpleSession(static_cast<int>(adapter_), static_cast<int>(phy))->session;
    });
}

void Device::begin(const std::string& operation) {
    context_.interrupts().check();
    LibraryMessages::explainAborts(context_.messages.err(), name_ + ": " + operation);
}

// The indirect paths to a register tell of their own failures in lines only.
void Device::requireNoFlatError() {
    if (HW_Fail() != 0) {
        const char* text = HW_Error();
        throw Orvane::Exceptions::Standard(text ? text : "unknown error");
    }
    const std::string cause = behind("Error: ", context_.libraryLines());
    if (!cause.empty())
        throw Orvane::Exceptions::Standard(cause);
}

} // namespace OrvaneTool
