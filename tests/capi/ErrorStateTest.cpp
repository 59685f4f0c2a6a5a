// The error state: what is recorded and printed, and how long a text lasts.
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/WrittenText.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <new>
#include <orvane/orvane.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace OrvaneTest {
namespace {

template <class Problem>
void record(const Problem& problem, bool print) {
    try {
        throw problem;
    } catch (...) {
        HW_CallException(print);
    }
}

void recordText(const std::string& text) {
    record(std::runtime_error(text), false);
}

// The rest of the process may have recorded errors: the child starts anew.
TEST(ErrorStateDeathTest, HasNoErrorAtFirst) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(std::_Exit(HW_Fail() == 0 && HW_Error() == nullptr ? 0 : 1), testing::ExitedWithCode(0),
                testing::Eq(""));
}

TEST(ErrorState, RecordsAndPrintsAStandardException) {
    const WrittenText written = textWritten([] { record(std::runtime_error("no link"), true); });
    EXPECT_EQ(written.error, "\nError: no link\n");
    EXPECT_EQ(written.output, "");
    EXPECT_EQ(HW_Fail(), 1);
    EXPECT_STREQ(HW_Error(), "no link");
}

TEST(ErrorState, RecordsAStandardExceptionWithoutPrintingIt) {
    const WrittenText written = textWritten([] { record(Orvane::Exceptions::NoDevice(), false); });
    EXPECT_EQ(written.error, "");
    EXPECT_EQ(HW_Fail(), 1);
    EXPECT_STREQ(HW_Error(), "Device not found.");
}

TEST(ErrorState, RecordsAnyOtherExceptionAndNeverPrintsIt) {
    for (const bool print : {true, false}) {
        recordText("earlier");
        const WrittenText written = textWritten([print] { record(42, print); });
        EXPECT_EQ(written.error, "");
        EXPECT_STREQ(HW_Error(), "Unknown error.");
    }
}

TEST(ErrorState, TakesEachNewTextWhateverItsLength) {
    const std::string longText(100000, 'x');
    for (const std::string& text : {std::string("a"), longText, std::string("bc"), std::string()}) {
        recordText(text);
        EXPECT_EQ(HW_Error(), text);
    }
}

TEST(ErrorState, KeepsItsFlagOnceSet) {
    recordText("no link");
    HW_Initialize();
    HW_Close();
    EXPECT_EQ(HW_Fail(), 1);
    EXPECT_STREQ(HW_Error(), "no link");
}

TEST(ErrorState, LeavesATextWithItsReaderWhileAnotherThreadRecords) {
    recordText("first");
    const char* told = HW_Error();
    std::thread([] {
        recordText(std::string(100000, 'x'));
        recordText("second");
    }).join();
    EXPECT_STREQ(told, "first");
    EXPECT_STREQ(HW_Error(), "second");
}

TEST(ErrorState, TellsOneTextAtTheSamePlaceUntilThereIsANewOne) {
    recordText("first");
    const char* told = HW_Error();
    EXPECT_EQ(HW_Error(), told);
}

TEST(ErrorState, KeepsTheTextThatAThreadFetchedWhenTheThreadHasEnded) {
    recordText("told to a thread");
    const char* told = nullptr;
    std::thread([&] { told = HW_Error(); }).join();
    EXPECT_STREQ(told, "told to a thread");
}

const char* toldBeforeTheEnd = nullptr;

void comparedAtTheEnd() {
    std::fprintf(stderr, "%s, %s", toldBeforeTheEnd, HW_Error());
}

// Tells the text at the very end: objects are destroyed behind the functions that were registered later.
struct LastWord {
    LastWord() = default;
    LastWord(const LastWord&) = delete;
    LastWord& operator=(const LastWord&) = delete;
    ~LastWord() {
        if (toldBeforeTheEnd != nullptr)
            std::fprintf(stderr, ", %s", toldBeforeTheEnd);
    }
};
const LastWord lastWord;

TEST(ErrorStateDeathTest, KeepsTheTextForAtexitFunctionsAndDestructorsOfStaticObjects) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto end = [] {
        recordText("recorded just before the end");
        toldBeforeTheEnd = HW_Error();
        std::atexit(comparedAtTheEnd);
        std::exit(0); // NOLINT(concurrency-mt-unsafe): there is one thread here
    };
    EXPECT_EXIT(
        end(), testing::ExitedWithCode(0),
        testing::Eq(
            "recorded just before the end, recorded just before the end, recorded just before the end"));
}

TEST(ErrorState, KeepsATextWhile255OthersAreRecorded) {
    recordText("the first");
    const char* told = HW_Error();
    for (int other = 0; other < 255; ++other)
        recordText("other " + std::to_string(other));
    EXPECT_STREQ(told, "the first");
    EXPECT_STREQ(HW_Error(), "other 254");
}

TEST(ErrorState, TellsOneTextThatIsRecordedAgainAtTheSamePlace) {
    recordText("again");
    const char* told = HW_Error();
    recordText("another");
    recordText("again");
    EXPECT_EQ(HW_Error(), told);
}

TEST(ErrorState, HoldsNoMoreThan256Texts) {
    constexpr std::size_t kBytes = 4096;
    const auto recordMany = [](int first) {
        for (int number = first; number < first + 1000; ++number)
            recordText(std::to_string(number) + std::string(kBytes, 'x'));
    };
    recordMany(0);
    const auto before = mallinfo2().uordblks;
    recordMany(1000);
    EXPECT_LT(mallinfo2().uordblks, before + 100 * kBytes);
}

TEST(ErrorState, IsSharedByAllThreads) {
    std::thread([] { recordText("of another thread"); }).join();
    std::string told;
    std::thread([&] { told = HW_Error(); }).join();
    EXPECT_EQ(told, "of another thread");
}

TEST(ErrorState, TellsWholeTextsWhileThreadsRecord) {
    constexpr int kTexts = 2000;
    const std::string texts[] = {std::string(10, 'a'), std::string(3000, 'b')};
    recordText(texts[0]);
    std::atomic<int> recording{2};
    std::vector<std::thread> threads;
    for (const std::string& text : texts)
        threads.emplace_back([&] {
            for (int i = 0; i < kTexts; ++i)
                recordText(text);
            --recording;
        });
    int strange = 0;
    do {
        const std::string told = HW_Error();
        strange += told != texts[0] && told != texts[1];
    } while (recording > 0);
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(strange, 0);
}

} // namespace
} // namespace OrvaneTest
