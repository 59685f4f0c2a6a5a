// The thread wrappers.
#include "ov_sys/Interface/foundation/Threads.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace Orvane {
namespace {

void* storeOne(void* place) {
    *static_cast<int*>(place) = 1;
    return nullptr;
}

TEST(CreateThread, RunsTheFunctionWithItsArgument) {
    int value = 0;
    const thread_id_t id = create_thread(storeOne, &value);
    thread_join(id);
    EXPECT_EQ(id.status, 0);
    EXPECT_EQ(value, 1);
}

TEST(IsThreadValid, IsTrueAndSilentForAStartedThread) {
    int value = 0;
    const thread_id_t id = create_thread(storeOne, &value);
    testing::internal::CaptureStderr();
    const bool valid = is_thread_valid(id);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(valid);
    thread_join(id);
}

TEST(IsThreadValid, TellsTheCurrentErrorNotTheStoredStatus) {
    thread_id_t id{};
    id.status = EPERM;
    testing::internal::CaptureStderr();
    errno = EAGAIN;
    const bool valid = is_thread_valid(id);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Thread is not valid: Resource temporarily unavailable\n");
    EXPECT_FALSE(valid);
}

TEST(ThreadJoin, ReturnsForAThreadThatWasNeverStarted) {
    thread_id_t id{};
    id.status = EAGAIN;
    thread_join(id);
    EXPECT_EQ(id.status, EAGAIN);
}

} // namespace
} // namespace Orvane
