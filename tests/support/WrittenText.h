// What a piece of work writes to the standard streams, and what it throws.
#pragma once

#include <gtest/gtest.h>
#include <string>

namespace OrvaneTest {

struct WrittenText {
    std::string error;
    std::string output;
};

// Runs `work` and returns what this process wrote meanwhile; an exception is shown as a failure with
// the texts, and passes. One thread at a time.
template <class Work>
WrittenText textWritten(Work&& work) {
    const auto end = [] {
        const std::string output = testing::internal::GetCapturedStdout();
        return WrittenText{testing::internal::GetCapturedStderr(), output};
    };
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    try {
        work();
    } catch (...) {
        const WrittenText written = end();
        ADD_FAILURE() << "written before the exception:\n" << written.error << written.output;
        throw;
    }
    return end();
}

// The text of the `Expected` that `work` throws; a text that tells so when it throws something else or
// nothing.
template <class Expected, class Work>
std::string thrownText(Work&& work) {
    try {
        work();
    } catch (const Expected& problem) {
        return problem.what();
    } catch (const std::exception& other) {
        return std::string("(thrown instead: ") + other.what() + ")";
    } catch (...) {
        return "(thrown instead: no std::exception)";
    }
    return "(nothing thrown)";
}

} // namespace OrvaneTest
