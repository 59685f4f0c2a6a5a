// The cancellation of a thread, put off and taken up again.
#include "ov_sys/Interface/foundation/Uncancelled.h"

#include <gtest/gtest.h>

namespace Orvane {
namespace {

// How far a thread comes that is cancelled at its next cancellation point.
struct Progress {
    bool inside = false;
    bool behindTheInner = false;
    bool behind = false;
};

void* goOn(void* argument) {
    auto& progress = *static_cast<Progress*>(argument);
    pthread_cancel(pthread_self());
    {
        const Uncancelled outer;
        {
            const Uncancelled inner;
            pthread_testcancel();
            progress.inside = true;
        }
        pthread_testcancel();
        progress.behindTheInner = true;
    }
    pthread_testcancel();
    progress.behind = true;
    return nullptr;
}

TEST(Uncancelled, PutsACancellationOffToItsOutermostEnd) {
    Progress progress;
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, nullptr, goOn, &progress), 0);
    void* result = nullptr;
    ASSERT_EQ(pthread_join(thread, &result), 0);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_TRUE(progress.inside);
    EXPECT_TRUE(progress.behindTheInner);
    EXPECT_FALSE(progress.behind);
}

} // namespace
} // namespace Orvane
