// An environment variable for one test.
#pragma once

#include <cstdlib>
#include <string>

namespace OrvaneTest {

// While one lives the variable has `value`, null being unset; then it is unset. No other thread may use the
// environment when one is made or ends.
// NOLINTBEGIN(concurrency-mt-unsafe)
class EnvironmentVariable {
public:
    EnvironmentVariable(const char* name, const char* value) : name_(name) {
        if (value == nullptr)
            unsetenv(name);
        else
            setenv(name, value, 1);
    }
    ~EnvironmentVariable() { unsetenv(name_.c_str()); }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    std::string name_;
};
// NOLINTEND(concurrency-mt-unsafe)

} // namespace OrvaneTest
