// The handler that the process runs when it exits, and an unloading does not.
#include "ov_sys/Interface/foundation/ProcessExit.h"

#include <semaphore.h>
#include <sys/mman.h>

extern "C" int __cxa_atexit(void (*function)(void*), void* argument, void* library);

namespace Orvane {
namespace {

// What is registered for a library that is never unloaded, for there is none, is called at the exit alone.
// (For null, the thread sanitizer forgets the argument.) Function and argument must still be there when this
// library is not; so the argument has a page of its own, which is never given back.
sem_t* noticeOfExit() noexcept {
    void* const page =
        mmap(nullptr, sizeof(sem_t), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    auto* const notice = static_cast<sem_t*>(page);
    if (page == MAP_FAILED || sem_init(notice, 0, 0) != 0)
        return nullptr;
    const auto post = reinterpret_cast<void (*)()>(sem_post);
    __cxa_atexit(reinterpret_cast<void (*)(void*)>(post), notice, notice);
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
