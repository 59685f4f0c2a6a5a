// Threads that are cancelled while they are in a flat function.
#include "tests/support/capi/FlatBoard.h"

#include <gtest/gtest.h>
#include <orvane/orvane.h>
#include <pthread.h>

namespace OrvaneTest {
namespace {

using OrvaneSim::Fault;

struct Reader {
    unsigned adapter = 0;
    unsigned value = 0;
    bool wentOn = false;
};

void* readOnce(void* argument) {
    Reader& reader = *static_cast<Reader*>(argument);
    reader.value = HW_Read_Abstracted(reader.adapter, 3, 1, 2);
    pthread_testcancel();
    reader.wentOn = true;
    return nullptr;
}

class Cancellation : public testing::Test, protected FlatBoard {};

TEST_F(Cancellation, OfAThreadInAFlatFunctionTakesEffectBehindTheCall) {
    Reader reader{openAdapter(0)};
    HW_Read_Abstracted(reader.adapter, 3, 1, 2); // opens the session
    board.setRegister(OrvaneSim::Space::C45, 0, 3, 0x10002, 0xCAFE);
    board.forgetRequests();
    board.inject({"mdio", "", Fault::Kind::DelayReply, 1, 300});
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, nullptr, readOnce, &reader), 0);
    board.waitFor([](const OrvaneSim::Request& request) { return request.program == "mdio"; });
    pthread_cancel(thread);
    void* result = nullptr;
    pthread_join(thread, &result);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_EQ(reader.value, 0xCAFEU);
    EXPECT_FALSE(reader.wentOn);
}

void* tellAndRead(void* argument) {
    pthread_cancel(pthread_self());
    HW_SetDelegationType(0, 3001, 1); // tells a line
    static_cast<Reader*>(argument)->value = HW_GetDelegationType(0, 3001);
    pthread_testcancel();
    return nullptr;
}

TEST_F(Cancellation, TakesNoEffectWhileALineIsTold) {
    Reader reader;
    pthread_t thread{};
    testing::internal::CaptureStdout();
    ASSERT_EQ(pthread_create(&thread, nullptr, tellAndRead, &reader), 0);
    void* result = nullptr;
    pthread_join(thread, &result);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Invalid adapter number 3001\nInvalid adapter number 3001\n");
    EXPECT_EQ(result, PTHREAD_CANCELED);
    EXPECT_EQ(reader.value, 100U);
}

} // namespace
} // namespace OrvaneTest
