// Verbs of a board's services, each of them one operation of the service.
#pragma once

#include "tools/orvane/board/Device.h"
#include "tools/orvane/cli/Verb.h"

#include <string>
#include <vector>

namespace OrvaneTool {

struct ServiceOptions {
    std::string device;
    unsigned phy = 0;               // whose session is used
    std::vector<std::string> words; // the operation's own arguments
};

// One operation that is being carried out.
class ServiceCall {
public:
    // `members` as in Operation.
    ServiceCall(Context& context, const ServiceOptions& options, std::string operation,
                const char* members = "", Pace pace = Pace::Together);

    const std::vector<std::string>& words() const { return options_.words; }
    // The word at that place; `fallback` when there are fewer.
    std::string word(std::size_t place, const char* fallback = "") const;
    Stream& out() { return device_.context().console.out; }
    Context& context() { return device_.context(); }
    const Device& device() const { return device_; }
    Orvane::PhySession* session() { return &session_; }

    // Whether the result is for people, who get it as text instead of records.
    bool isText() { return context().format() == Format::Text; }
    // A record of this device and PHY, and its way to the user.
    Record record(const char* kind) const;
    void put(const Record& record);
    // The record of an operation that has no result but that it was done.
    void putDone();

    // Returns what `work` returns. Throws Failure that names the operation and its arguments.
    template <class Work>
    decltype(auto) attempt(Work work) {
        return device_.attempt(operation_, work);
    }

private:
    const ServiceOptions& options_;
    RecordSink& records_;
    Device device_;
    Orvane::PhySession& session_;
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
