#include "ov_sys/Interface/foundation/ProcessExit.h"

#include <cstdlib>
#include <semaphore.h>

extern "C" int __cxa_atexit(void (*function)(void*), void* argument, void* library);

namespace Orvane {
namespace {

// What is registered for no library is called at the exit alone. Function and argument must still be there
// when the library is not; so the argument is never freed.
sem_t* noticeOfExit() noexcept {
    auto* const notice = static_cast<sem_t*>(std::malloc(sizeof(sem_t)));
    if (notice == nullptr || sem_init(notice, 0, 0) != 0)
        return nullptr;
    const auto post = reinterpret_cast<void (*)()>(sem_post);
    __cxa_atexit(reinterpret_cast<void (*)(void*)>(post), notice, nullptr);
    return notice;
}

sem_t* notice = nullptr;

} // namespace

void ProcessExit::watch() noexcept {
    static const bool watched = (notice = noticeOfExit()) != nullptr;
    static_cast<void>(watched);
}

bool ProcessExit::begun() noexcept {
    int posts = 0;
    return notice != nullptr && sem_getvalue(notice, &posts) == 0 && posts > 0;
}

} // namespace Orvane
