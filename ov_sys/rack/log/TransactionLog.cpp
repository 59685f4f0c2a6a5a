// The columns of each kind of line, and what becomes of lines that cannot be written.
#include "ov_sys/rack/log/TransactionLog.h"

#include "ov_sys/Interface/foundation/Uncancelled.h"
#include "ov_sys/rack/log/LogFile.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <exception>
#include <memory>

namespace Orvane::RackLog {

using RackLink::Trouble;

// What a line says beside time and place.
struct TransactionLog::Row {
    std::string_view op;
    std::string_view outcome{};
    std::string_view arguments{};
    std::string_view result{};
    std::string_view mmd{};
    std::string_view address{};
    std::string_view value{};
};

namespace {

constexpr const char* kHeader = "adapter,phy,op,mmd,address,value,time,port,outcome,arguments,result\n";

const std::string kNoBoard;

// UTC, to the microsecond: "2026-11-22T02:08:33.123456Z".
std::string textOf(std::chrono::system_clock::time_point when) {
    const auto sinceEpoch = std::chrono::floor<std::chrono::microseconds>(when).time_since_epoch().count();
    const auto seconds = static_cast<std::time_t>(sinceEpoch / 1'000'000);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    char text[40];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts);
    std::snprintf(text + length, sizeof text - length, ".%06dZ", static_cast<int>(sinceEpoch % 1'000'000));
    return text;
}

// "done", or what went wrong, a board's own code behind it: "board error -121".
std::string textOf(Trouble trouble) {
    if (!trouble)
        return "done";
    const std::string kind = toText(trouble.kind());
    return trouble.code() == 0 ? kind : kind + ' ' + std::to_string(trouble.code());
}

std::string textOf(const OperationOutcome& outcome, Trouble trouble, bool failedFirst) {
    using State = OperationOutcome::State;
    if (outcome.state == State::NotSent && !failedFirst)
        return toText(State::NotSent);
    return textOf(outcome.state == State::Done ? Trouble{} : trouble);
}

void addNumber(std::string& to, int number) {
    if (number >= 0)
        to += std::to_string(number);
}

} // namespace

void TransactionLog::begin(const std::string& path) {
    const auto file = std::make_shared<LogFile>(path);
    begin([file](std::string_view lines) { file->append(lines); }, !file->empty());
}

void TransactionLog::begin(LogSink sink, bool headed) {
    const bool on = static_cast<bool>(sink);
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        sink_ = std::move(sink);
        headed_ = headed;
        adapters_.clear();
        missing_ = 0;
        told_ = false;
        on_.store(on, std::memory_order_relaxed);
    }
    record([] {}); // but for the names of the columns
}

void TransactionLog::end() {
    begin(LogSink{});
}

template <class Write>
void TransactionLog::record(Write write) noexcept {
    const Uncancelled uncancelled; // a thread must not end in the middle of a line
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!sink_)
        return;
    count_ = 0;
    try {
        time_ = textOf(std::chrono::system_clock::now());
        lines_ = headed_ ? "" : kHeader;
        if (missing_ > 0)
            add({kNoBoard}, {"note", {}, std::to_string(missing_) + " lines are missing here: " + why_});
        count_ = 0;
        write();
        if (!lines_.empty())
            sink_(lines_);
        headed_ = true;
        missing_ = 0;
    } catch (const std::exception& problem) {
        lose(problem.what());
    } catch (...) { // of a sink
        lose("unknown error");
    }
}

void TransactionLog::lose(const char* why) noexcept {
    missing_ += std::max<std::size_t>(count_, 1);
    try {
        why_.clear();
        appendText(why_, why);
        if (!std::exchange(told_, true))
            complain_(why);
    } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): no memory to say so
    }
}

void TransactionLog::add(const Place& place, const Row& row) {
    ++count_;
    std::string port;
    appendText(port, place.board);
    if (place.port >= 0) {
        port += ':' + std::to_string(place.port);
        const auto adapter = adapters_.emplace(port, static_cast<unsigned>(adapters_.size())).first;
        lines_ += std::to_string(adapter->second);
    }
    lines_ += ',';
    addNumber(lines_, place.phy);
    for (const std::string_view column : {row.op, row.mmd, row.address, row.value, std::string_view(time_),
                                          std::string_view(port), row.outcome, row.arguments, row.result})
        (lines_ += ',') += column;
    lines_ += '\n';
}

void TransactionLog::addAccess(const Place& place, const Batch::Operation& operation, bool valued,
                               std::string_view outcome) {
    using Space = RegisterAddress::Space;
    const RegisterAddress& at = operation.address;
    const bool clause22 = at.space == Space::Clause22;
    const bool clause45 = at.space == Space::Clause45;
    char mmd[12] = "";
    char address[12] = "";
    char value[12] = "";
    if (clause45)
        std::snprintf(mmd, sizeof mmd, "%02X", at.mmd);
    std::snprintf(address, sizeof address, "%0*X", clause22 ? 2 : clause45 ? 4 : 8, at.number);
    if (valued)
        std::snprintf(value, sizeof value, "%0*X", at.space == Space::Ext32 ? 8 : 4, operation.value);
    const char* const op = clause22 ? (operation.writes ? "2W" : "2R") : operation.writes ? "MW" : "MR";
    add(place, {op, outcome, {}, {}, mmd, address, value});
}

void TransactionLog::access(const Place& place, const Batch::Operation& operation, Trouble trouble) noexcept {
    record([&] { addAccess(place, operation, operation.writes || !trouble, textOf(trouble)); });
}

void TransactionLog::batch(const Place& place, const std::vector<Batch::Operation>& operations,
                           const std::vector<OperationOutcome>& outcomes, std::size_t failed,
                           Trouble trouble) noexcept {
    record([&] {
        for (std::size_t i = 0; i < operations.size(); ++i) {
            const bool done = outcomes[i].state == OperationOutcome::State::Done;
            Batch::Operation one = operations[i];
            if (done)
                one.value = outcomes[i].value;
            addAccess(place, one, one.writes || done, textOf(outcomes[i], trouble, i == failed));
        }
    });
}

void TransactionLog::service(const Place& place, const char* operation, Trouble trouble,
                             const Fields& arguments, const Fields& result) noexcept {
    record([&] { add(place, {operation, textOf(trouble), arguments.text(), result.text()}); });
}

void TransactionLog::event(const Event& event) noexcept {
    record([&] {
        std::string name = std::string("event.") + toText(event.kind);
        std::replace(name.begin(), name.end(), ' ', '-');
        Fields arguments(!event.text.empty());
        arguments.add("text", event.text);
        add({event.board, event.port, event.phy}, {name, {}, arguments.text()});
    });
}

void TransactionLog::note(std::string_view text) noexcept {
    record([&] {
        std::string shown;
        appendText(shown, text);
        add({kNoBoard}, {"note", {}, shown});
    });
}

} // namespace Orvane::RackLog
