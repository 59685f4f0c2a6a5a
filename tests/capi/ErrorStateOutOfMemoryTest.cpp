// The error state when there is no memory for a text.
#include <cstdlib>
#include <cstring>
#include <exception>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <orvane/orvane.h>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define ORVANE_TEST_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ORVANE_TEST_SANITIZED
#endif
#endif

namespace OrvaneTest {
namespace {

constexpr std::size_t kTextBytes = std::size_t{2} << 20;

// An exception whose text is too long to be copied and lies outside of the heap.
class LongProblem : public std::exception {
public:
    explicit LongProblem(const char* text) : text_(text) {}
    const char* what() const noexcept override { return text_; }

private:
    const char* text_;
};

char* longText() {
    void* memory = mmap(nullptr, kTextBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        std::_Exit(2);
    char* text = static_cast<char*>(memory);
    std::memset(text, 'x', kTextBytes - 1);
    return text;
}

void record(const LongProblem& problem) {
    try {
        throw problem;
    } catch (...) {
        HW_CallException(false);
    }
}

// Lets the heap give no more large pieces.
void exhaustMemory() {
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = 1;
    setrlimit(RLIMIT_AS, &limit);
}

[[noreturn]] void recordWithoutMemory() {
    const LongProblem problem(longText());
    exhaustMemory();
    record(problem);
    std::_Exit(HW_Fail() == 1 && HW_Error() == nullptr ? 0 : 1);
}

// The child has no memory for the text, so that it is made when the child is gone.
MATCHER(ReportsTheLostText, "reports the text") {
    const std::string reported =
        "\nError: Out of memory. Couldn't save interface error message:" + std::string(kTextBytes - 1, 'x') +
        "\n";
    return arg.find(reported) != std::string::npos;
}

TEST(ErrorStateOutOfMemoryDeathTest, ReportsTheTextItCannotKeepAndHasNone) {
#ifdef ORVANE_TEST_SANITIZED
    GTEST_SKIP() << "a sanitizer's operator new ends the process where it should throw";
#endif
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(recordWithoutMemory(), testing::ExitedWithCode(0), ReportsTheLostText());
}

} // namespace
} // namespace OrvaneTest
