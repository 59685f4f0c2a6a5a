// A call frame over a stub whose answers a test decides.
#pragma once

#include "ov_sys/Interface/rpc_protocol/Records.h"
#include "tests/support/ScriptedStub.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace OrvaneTest {

template <class Param>
class ScriptedFrame : public testing::Test, public SessionOnBoard {
protected:
    using Stub = ScriptedStub<Param, Simple_Result>;

    struct Outcome {
        std::string error;
        std::string thrown;
    };

    // What `frame` writes and throws while the stub that it calls answers as `answer` says.
    template <class Frame>
    Outcome outcomeOf(const typename Stub::Answer& answer, Frame frame) {
        Stub stub(answer);
        Outcome outcome;
        outcome.error = textWritten([&] {
                            try {
                                frame();
                            } catch (const std::exception& problem) {
                                outcome.thrown = problem.what();
                            }
                        }).error;
        calls = stub.calls;
        params = stub.params;
        return outcome;
    }

    static clnt_stat answer(Simple_Result& answered, int code) {
        answered.error = code;
        return RPC_SUCCESS;
    }

    Simple_Result result{};
    std::size_t calls = 0;
    std::vector<Param> params;
};

} // namespace OrvaneTest
