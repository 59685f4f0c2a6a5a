// POSIX threads with their status kept.
#include "ov_sys/Interface/foundation/Threads.h"

#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Sockets.h"

namespace Orvane {

thread_id_t create_thread(void* (*fn)(void*), void* arg) {
    thread_id_t id{};
    id.status = pthread_create(&id.handle, nullptr, fn, arg);
    return id;
}

bool is_thread_valid(thread_id_t id) {
    if (id.status == 0)
        return true;
    Diagnostics::error("Thread is not valid: ", get_last_error());
    return false;
}

void thread_join(thread_id_t id) {
    if (id.status == 0)
        pthread_join(id.handle, nullptr);
}

} // namespace Orvane
