// Verbs of a board's services, each of them one operation of the service.
#pragma once

#include "tools/orvane/board/Targets.h"
#include "tools/orvane/cli/Verb.h"
#include "tools/orvane/output/RecordSink.h"

#include <chrono>
#include <orvane/rack.hpp>
#include <string>
#include <vector>

namespace OrvaneTool {

struct ServiceOptions {
    std::string device;
    unsigned phy = 0;               // whose session is used
    std::vector<std::string> words; // the operation's own arguments
    bool flag = false;              // whether its own option was given
};

// One operation that is being carried out.
class ServiceCall {
public:
    // Finds the device. `members` as in Operation. Throws UsageError, Failure, Orvane::Failure and
    // Interrupted.
    ServiceCall(Context& context, const ServiceOptions& options, std::string operation,
                const char* members = "", Pace pace = Pace::Together);

    const std::vector<std::string>& words() const { return options_.words; }
    // The word at that place; `fallback` when there are fewer.
    std::string word(std::size_t place, const char* fallback = "") const;
    bool flag() const { return options_.flag; }
    Stream& out() { return context_.console.out; }
    Context& context() { return context_; }
    const std::string& device() const { return target_.name; }
    const Orvane::Phy& phy() const { return phy_; }

    // Limits of a call, which a signal ends; once() for what must not be done twice.
    Orvane::Within within(std::chrono::nanoseconds time = std::chrono::seconds(5)) {
        return context_.within(time);
    }
    Orvane::Within once() { return within().once(); }

    // Whether the result is for people, who get it as text instead of records.
    bool isText() const { return records_.isText(); }
    // A record of this device and PHY, and its way to the user.
    Record record(const char* kind) const;
    void put(const Record& record) { records_.put(record); }
    // The record of an operation that has no result but that it was done.
    void putDone() { put(record("done").put("operation", operation_)); }

    // Returns what `work` returns. Throws what fail() throws instead of the library's failures.
    template <class Work>
    decltype(auto) attempt(Work work) {
        context_.interrupts().check();
        try {
            return work();
        } catch (const Orvane::Failure& failure) {
            fail(failure);
        }
    }
    // Throws Failure, or UsageError where nothing was sent, that names device, operation and cause; after a
    // signal Interrupted. `cause` is told instead of the failure's own where it is not empty.
    [[noreturn]] void fail(const Orvane::Failure& failure, const std::string& cause = "") const;

private:
    Context& context_;
    const ServiceOptions& options_;
    RecordSink& records_;
    Target target_;
    Orvane::Phy phy_;
    std::string operation_;
};

struct Operation {
    const char* name;
    const char* arguments; // as help shows them; empty: none
    int least;             // number of them
    int most;
    const char* summary;
    void (*run)(ServiceCall& call);
    const char* members = ""; // of its records beside those that all have, blanks between; empty: it has none
    const char* flag = nullptr; // an option and what it does, a comma between; null: there is none
};

constexpr int kAnyNumber = 255;

// The verb of a service, to which its operations are added.
CLI::App& addService(CLI::App& app, const VerbText& text);
void addOperation(CLI::App& service, Context& context, const Operation& operation);

// DEVICE, --phy and what every verb that reaches a board has.
void addServiceOptions(CLI::App& verb, Context& context, ServiceOptions& options);

// "LINE=LEVEL" and the like: the two numbers of each word. A word without "=" is refused unless that is
// allowed; its level is 0. Throws UsageError.
struct Pairs {
    std::vector<unsigned char> names;
    std::vector<unsigned char> levels;
    std::vector<unsigned char> lonely; // 1 for a word without "="
};
Pairs pairsOf(const std::vector<std::string>& words, bool loneAllowed);

// 0xC0 0xFF 0xEE
std::string bytesText(const std::vector<unsigned char>& bytes);

} // namespace OrvaneTool
