// A stand-in for a client stub, whose answers a test decides.
#pragma once

#include <cstddef>
#include <functional>
#include <rpc/rpc.h>
#include <utility>
#include <vector>

namespace OrvaneTest {

// While one lives, `call` is a stub that asks it for every answer. At most one of a type at a time, called by
// one thread at a time.
template <class Param, class Result>
class ScriptedStub {
public:
    // Stores what the board would have answered into the result and returns the call's status; `number`
    // counts the calls from 1.
    using Answer = std::function<clnt_stat(std::size_t number, Result& result)>;

    explicit ScriptedStub(Answer answer) : answer_(std::move(answer)) { current_ = this; }
    ~ScriptedStub() { current_ = nullptr; }
    ScriptedStub(const ScriptedStub&) = delete;
    ScriptedStub& operator=(const ScriptedStub&) = delete;

    static clnt_stat call(Param param, Result* result, CLIENT*) {
        current_->params.push_back(param);
        return current_->answer_(++current_->calls, *result);
    }

    std::size_t calls = 0;
    std::vector<Param> params;

private:
    static inline ScriptedStub* current_ = nullptr;
    Answer answer_;
};

} // namespace OrvaneTest
