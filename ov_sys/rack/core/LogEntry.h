// The line that an access of a service leaves in the transaction log.
#pragma once

#include "ov_sys/rack/core/OpenSession.h"
#include "ov_sys/rack/log/TransactionLog.h"

#include <string>
#include <utility>

namespace Orvane::RackCore {

// Lives as long as the access, and writes the line when it has ended, well or not. What is refused before
// anything is sent leaves none. One thread.
class LogEntry {
public:
    // `operation`: the names of the service and its member function, "i2c.read". The session is the caller's.
    LogEntry(OpenSession& session, const char* operation) noexcept
        : arguments(session.log().on()),
          result(session.log().on()),
          session_(session),
          operation_(operation) {}
    // An access that is neither done nor in trouble had an answer that is none.
    ~LogEntry() {
        if (stage_ == Stage::Checked)
            write(trouble_ ? trouble_ : FailureKind::BadReply);
    }
    LogEntry(const LogEntry&) = delete;
    LogEntry& operator=(const LogEntry&) = delete;

    RackLog::Fields arguments;
    RackLog::Fields result;

    OpenSession& session() const noexcept { return session_; }

    // The access has ended. Throws the Failure of `operation` at `location` when there is trouble.
    void check(RackLink::Trouble trouble, const char* operation, const std::string& location,
               const RackLink::Limits& limits) {
        trouble_ = trouble;
        stage_ = Stage::Checked;
        session_.check(trouble, operation, location, limits);
    }

    // It is what was asked for.
    void done() noexcept { write({}); }
    template <class Value>
    Value done(const char* name, Value value) noexcept {
        result.add(name, value);
        done();
        return value;
    }

private:
    enum class Stage { Begun, Checked, Written };

    void write(RackLink::Trouble trouble) noexcept {
        stage_ = Stage::Written;
        if (session_.log().on())
            session_.log().service(session_.place(), operation_, trouble, arguments, result);
    }

    OpenSession& session_;
    const char* const operation_;
    RackLink::Trouble trouble_;
    Stage stage_ = Stage::Begun;
};

} // namespace Orvane::RackCore
