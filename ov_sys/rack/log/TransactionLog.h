// The accesses of a rack as lines of text, in one order.
#pragma once

#include "ov_sys/rack/log/LogFields.h"
#include "ov_sys/rack/values/Batch.h"
#include "ov_sys/rack/values/Event.h"
#include "ov_sys/rack/values/LogSink.h"
#include "ov_sys/rack/values/Trouble.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Orvane::RackLog {

// Whose access it is.
struct Place {
    const std::string& board;
    int port = -1; // -1: the board as a whole
    int phy = -1;  // -1: none
};

// Eleven columns in each line: adapter,phy,op,mmd,address,value,time,port,outcome,arguments,result. Any
// thread.
//
// Nothing that goes wrong with the log leaves an access: it is told once, and the lines that are missing are
// counted where the next one stands.
class TransactionLog {
public:
    // Told of the first lines that could not be written. Called under the log's lock.
    using Complaint = std::function<void(std::string why)>;

    explicit TransactionLog(Complaint complain) : complain_(std::move(complain)) {}

    // Whether lines are wanted: to be asked before anything is put together.
    bool on() const noexcept { return on_.load(std::memory_order_relaxed); }

    // From now on lines go to the file, at its end. Throws std::system_error; then all stays as it is.
    void begin(const std::string& path);
    // The same to a function. `headed`: whether the columns' names have gone before.
    void begin(LogSink sink, bool headed = false);
    // Waits for a line that is being written.
    void end();

    // A register access that has ended. A value that was not read is not written.
    void access(const Place& place, const Batch::Operation& operation, RackLink::Trouble trouble) noexcept;
    // The operations of a batch, of which `failed` was the first that `trouble` ended.
    void batch(const Place& place, const std::vector<Batch::Operation>& operations,
               const std::vector<OperationOutcome>& outcomes, std::size_t failed,
               RackLink::Trouble trouble) noexcept;
    // An access of a service, "i2c.read" for example.
    void service(const Place& place, const char* operation, RackLink::Trouble trouble,
                 const Fields& arguments = Fields(false), const Fields& result = Fields(false)) noexcept;
    void event(const Event& event) noexcept;
    void note(std::string_view text) noexcept;

private:
    struct Row;

    // Has `write` add rows, and sends them off.
    template <class Write>
    void record(Write write) noexcept;
    void add(const Place& place, const Row& row);
    void addAccess(const Place& place, const Batch::Operation& operation, bool valued,
                   std::string_view outcome);
    void lose(const char* why) noexcept;

    const Complaint complain_;
    std::atomic<bool> on_{false};
    std::mutex mutex_; // guards everything below
    LogSink sink_;
    bool headed_ = false;                      // the names of the columns have been written
    std::map<std::string, unsigned> adapters_; // numbers of ports, by name
    std::string lines_;                        // being put together
    std::size_t count_ = 0;                    // of them
    std::string time_;                         // of them
    std::size_t missing_ = 0;                  // lines that could not be written
    std::string why_;                          // and the reason
    bool told_ = false;                        // of that
};

} // namespace Orvane::RackLog
