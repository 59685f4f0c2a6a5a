// Keeps the texts of errors, from whichever thread they come.
#include "ov_sys/capi/ErrorState.h"

#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/ProcessExit.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>
#include <utility>

namespace {

std::atomic<unsigned char> errorFlag{0};
std::atomic<const char*> lastText{nullptr}; // one of the texts below, or null

// The texts of the errors recorded last, the latest first, each of them once. A text never changes: who has
// fetched one may go on reading while other threads record theirs. Nothing here has a destructor, so that
// texts can be read until the library is unloaded.
constexpr std::size_t kTexts = 256;
std::mutex textsMutex; // guards the array, and changes of lastText
std::array<char*, kTexts> texts{};

// The text's place, at the front from now on; null when there is no memory for it.
const char* kept(const char* text) noexcept {
    const auto isText = [text](const char* known) {
        return known == nullptr || std::strcmp(known, text) == 0;
    };
    auto place = std::find_if(texts.begin(), texts.end(), isText);
    if (place == texts.end() || *place == nullptr) {
        const std::size_t size = std::strlen(text) + 1;
        char* const copy = static_cast<char*>(std::malloc(size));
        if (copy == nullptr)
            return nullptr;
        std::memcpy(copy, text, size);
        if (place == texts.end())
            std::free(*--place);
        *place = copy;
    }
    std::rotate(texts.begin(), place, place + 1);
    return texts.front();
}

// Whether there was memory for the text.
bool remember(const char* text) noexcept {
    const std::lock_guard<std::mutex> lock(textsMutex);
    return (lastText = kept(text)) != nullptr;
}

void record(const char* text) noexcept {
    errorFlag = 1;
    if (!remember(text))
        Orvane::Diagnostics::error("\nError: Out of memory. Couldn't save interface error message:", text);
}

// When the library is unloaded, as the last thing that it does. At the exit of the process other threads may
// be reading a text.
[[gnu::destructor(101)]] void dropTexts() {
    if (Orvane::ProcessExit::begun())
        return;
    const std::lock_guard<std::mutex> lock(textsMutex);
    lastText = nullptr;
    for (char*& text : texts)
        std::free(std::exchange(text, nullptr));
}

} // namespace

extern "C" {

unsigned char HW_Fail(void) {
    return errorFlag;
}

const char* HW_Error(void) {
    return lastText;
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
