// Signs of life on a terminal: a spinner while something runs, a bar for what has a length.
#pragma once

#include "tools/orvane/output/Console.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace OrvaneTool {

// Turns on the stream while it lives, and leaves the line empty; does nothing when that is no terminal.
// Nobody else may write to the stream meanwhile.
class Spinner {
public:
    Spinner(Stream& stream, const std::string& text);
    ~Spinner();
    Spinner(const Spinner&) = delete;
    Spinner& operator=(const Spinner&) = delete;

    // What stands beside it from now on.
    void say(const std::string& text);

private:
    void turn();

    Stream& stream_;
    std::string text_;
    std::mutex mutex_; // guards `text_` and `done_`
    std::condition_variable ended_;
    bool done_ = false;
    std::thread thread_;
};

// A bar of `total` steps, after a second with their rate and the time that the rest will take; does nothing
// when the stream is no terminal. Leaves the line empty in the end.
class ProgressBar {
public:
    ProgressBar(Stream& stream, const std::string& text, std::size_t total);
    ~ProgressBar();
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    void show(std::size_t done);

private:
    std::string pace(std::size_t done) const;

    Stream& stream_;
    std::string text_;
    std::size_t total_;
    std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
    std::size_t before_ = 0; // steps that were done at the beginning
    bool shown_ = false;
};

} // namespace OrvaneTool
