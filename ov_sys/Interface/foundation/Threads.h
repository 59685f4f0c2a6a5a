// Thin wrappers over POSIX threads.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <pthread.h>

namespace Orvane {

// The result of starting a thread.
struct thread_id_t {
    int status;       // what pthread_create returned, 0 on success
    pthread_t handle; // the thread; meaningful when status is 0
};

// Starts fn(arg) on a joinable thread with default attributes. Never throws; failure is in the status.
ORVANE_API thread_id_t create_thread(void* (*fn)(void*), void* arg);

// Whether the thread was started. If not, writes "Thread is not valid: " and the text of the current errno
// (not of the stored status) to the standard error stream.
ORVANE_API bool is_thread_valid(thread_id_t id);

// Waits, without limit, for the end of the thread and drops its result. A thread that was never started is
// not waited for. Call it once for each started thread.
ORVANE_API void thread_join(thread_id_t id);

} // namespace Orvane
