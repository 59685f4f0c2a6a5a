#include "ov_sys/capi/ErrorState.h"

#include "ov_sys/Interface/foundation/Diagnostics.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>
#include <new>
#include <string>

namespace {

std::atomic<unsigned char> errorFlag{0};
std::mutex textMutex;                // guards the two below
char* errorText = nullptr;           // heap; null when there is none or no memory for it
std::atomic<unsigned> errorCount{0}; // written under textMutex

// What HW_Error() last told this thread, so that the text stays while other threads record theirs.
struct ToldError {
    unsigned count = 0;
    bool present = false;
    std::string text;
};
thread_local ToldError told;

void record(const char* text) noexcept {
    errorFlag = 1;
    const std::size_t size = std::strlen(text) + 1;
    const std::lock_guard<std::mutex> lock(textMutex);
    ++errorCount;
    char* grown = static_cast<char*>(std::realloc(errorText, size));
    if (grown == nullptr) {
        Orvane::Diagnostics::error("\nError: Out of memory. Couldn't save interface error message:", text);
        std::free(errorText);
        errorText = nullptr;
        return;
    }
    errorText = grown;
    std::memcpy(errorText, text, size);
}

} // namespace

extern "C" {

unsigned char HW_Fail(void) {
    return errorFlag;
}

const char* HW_Error(void) {
    const std::lock_guard<std::mutex> lock(textMutex);
    if (told.count != errorCount) {
        try {
            told.text = errorText != nullptr ? errorText : "";
            told.present = errorText != nullptr;
        } catch (const std::bad_alloc&) {
            told.present = false;
        }
        told.count = errorCount;
    }
    return told.present ? told.text.c_str() : nullptr;
}

void HW_CallException(bool print) {
    try {
        throw;
    } catch (const std::exception& problem) {
        record(problem.what());
        if (print)
            Orvane::Diagnostics::error("\nError: ", problem.what());
    } catch (...) {
        record("Unknown error.");
    }
}
}
