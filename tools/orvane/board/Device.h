// A device that a command works on, and the boards that there are.
#pragma once

#include "tools/orvane/board/Context.h"
#include "tools/orvane/output/Errors.h"

#include <exception>
#include <orvane/orvane.hpp>
#include <string>
#include <utility>

namespace OrvaneTool {

// Fills the library's device list: the boards at the given addresses, or every board that answers a
// multicast. Blocks for that, with a spinner on a terminal. Throws Failure.
void discoverBoards(Context& context);

// Why an access failed, in words for the user: the exception's text, or what the library's lines tell better.
std::string causeOf(const std::exception& problem, const std::string& libraryLines);

// An open adapter. Its sessions are opened by first use and closed on the board by the destructor, which
// blocks for that; nothing may use them afterwards, and their keep-alive threads are left to the end of the
// process, in which the library's destructors must not run. One device in a process, one thread at a time.
class Device {
public:
    // Finds the device and opens it. Throws UsageError for a text that is no device name and Failure.
    Device(Context& context, const std::string& name);
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    const std::string& name() const { return name_; } // as the library writes it
    unsigned adapter() const { return adapter_; }
    std::string address() const;
    int port() const;
    bool isSmbus() const { return port() >= 10; }

    // The session of a PHY, opened on first use; the device owns it. Throws Failure.
    Orvane::PhySession& session(unsigned phy);

    // Returns what `work` returns. Throws Failure, which names this device, the operation and the cause, for
    // whatever the library throws, and Interrupted instead of doing anything after a signal.
    template <class Work>
    decltype(auto) attempt(const std::string& operation, Work work) {
        begin(operation);
        const Relay relay{context_};
        try {
            return work();
        } catch (const std::exception& problem) {
            throw Failure(prefix(operation) + causeOf(problem, context_.libraryLines()));
        }
    }

    // The same for functions of the flat interface, which only record their errors.
    template <class Work>
    auto attemptFlat(const std::string& operation, Work work) {
        return attempt(operation, [&] {
            const auto result = work();
            requireNoFlatError();
            return result;
        });
    }

    Context& context() { return context_; }

private:
    // Shows the library's lines of one operation if they are to be shown.
    struct Relay {
        Context& context;
        ~Relay() { context.libraryLines(); }
    };
    void begin(const std::string& operation);
    std::string prefix(const std::string& operation) const { return name_ + ": " + operation + ": "; }
    void requireNoFlatError();

    Context& context_;
    std::string name_;
    unsigned adapter_ = 0;
};

} // namespace OrvaneTool
