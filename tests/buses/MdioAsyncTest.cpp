// Queueing of MDIO accesses: what the queue holds before it is executed.
#include "ov_sys/Interface/buses/MdioAsync.h"

#include "tests/support/MdioOperations.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <thread>
#include <type_traits>

namespace OrvaneTest {
namespace {

using Orvane::MDIO::MdioAsync;
using testing::KilledBySignal;

static_assert(std::has_virtual_destructor_v<MdioAsync>);

// Everything that a queue holds, in one value.
struct Content {
    Words writeAddresses;
    Words writeData;
    Words readAddresses;
    Words runs;
    bool lastWasWrite = true;
    unsigned int currentRun = 0;
};

bool operator==(const Content& left, const Content& right) {
    return left.writeAddresses == right.writeAddresses && left.writeData == right.writeData &&
           left.readAddresses == right.readAddresses && left.runs == right.runs &&
           left.lastWasWrite == right.lastWasWrite && left.currentRun == right.currentRun;
}

void PrintTo(const Content& content, std::ostream* out) {
    *out << "writes " << testing::PrintToString(content.writeAddresses) << " = "
         << testing::PrintToString(content.writeData) << ", reads "
         << testing::PrintToString(content.readAddresses) << ", runs " << testing::PrintToString(content.runs)
         << ", " << (content.lastWasWrite ? "writing " : "reading ") << content.currentRun;
}

Content contentOf(const MdioAsync& queue) {
    return {queue.writeAddresses, queue.writeData,    queue.readAddresses,
            queue.runs,           queue.lastWasWrite, queue.currentRun};
}

bool canBeLockedByAnotherThread(MdioAsync& queue) {
    bool locked = false;
    std::thread([&] {
        locked = queue.queueMutex.try_lock();
        if (locked)
            queue.queueMutex.unlock();
    }).join();
    return locked;
}

class MdioQueue : public testing::Test {
protected:
    MdioAsync queue;
};

TEST_F(MdioQueue, IsEmptyAtFirstAndCountsAWriteRun) {
    EXPECT_EQ(contentOf(queue), (Content{{}, {}, {}, {}, true, 0}));
    EXPECT_FALSE(queue.haveQueued());
}

TEST_F(MdioQueue, BeginsWithAnEmptyWriteRunWhenARead) {
    queue.read(0x10);
    EXPECT_EQ(contentOf(queue), (Content{{}, {}, {0x10}, {0}, false, 1}));
    EXPECT_TRUE(queue.haveQueued());
}

TEST_F(MdioQueue, CountsWritesWithoutARunBeforeThem) {
    queue.write(0x10, 1);
    queue.write(0x11, 2);
    EXPECT_EQ(contentOf(queue), (Content{{0x10, 0x11}, {1, 2}, {}, {}, true, 2}));
    EXPECT_TRUE(queue.haveQueued());
}

TEST_F(MdioQueue, ClosesARunAtEveryChangeOfKind) {
    queue.read(0x10);
    queue.read(0x11);
    queue.write(0x12, 7);
    queue.read(0x13);
    EXPECT_EQ(contentOf(queue), (Content{{0x12}, {7}, {0x10, 0x11, 0x13}, {0, 2, 1}, false, 1}));
}

TEST_F(MdioQueue, KeepsAddressesAndDataAsTheyAreGiven) {
    queue.write(0xFFE00001, 0xFEDCBA98);
    queue.read(0xFFE00002);
    EXPECT_EQ(contentOf(queue), (Content{{0xFFE00001}, {0xFEDCBA98}, {0xFFE00002}, {1}, false, 1}));
}

TEST_F(MdioQueue, TakesAListOfReadsAsSoManyReads) {
    queue.write(1, 2);
    queue.blockRead({0x10, 0x11, 0x12});
    queue.read(0x13);
    EXPECT_EQ(contentOf(queue), (Content{{1}, {2}, {0x10, 0x11, 0x12, 0x13}, {1}, false, 4}));
}

TEST_F(MdioQueue, ChangesKindForAnEmptyListOfReads) {
    queue.blockRead({});
    EXPECT_EQ(contentOf(queue), (Content{{}, {}, {}, {0}, false, 0}));
    EXPECT_TRUE(queue.haveQueued());
}

TEST_F(MdioQueue, TakesWriteAddressesWithoutData) {
    queue.read(1);
    queue.blockWrite({0x10, 0x11}, {});
    EXPECT_EQ(contentOf(queue), (Content{{0x10, 0x11}, {}, {1}, {0, 1}, true, 2}));
}

std::string lengthErrorOf(MdioAsync& queue, const Words& addresses, const Words& data) {
    try {
        queue.blockWrite(addresses, data);
    } catch (const std::length_error& problem) {
        return problem.what();
    }
    return "(none)";
}

TEST_F(MdioQueue, RaisesALengthErrorForDataThatAreFewerThanTheirAddresses) {
    EXPECT_EQ(lengthErrorOf(queue, {0x10, 0x11}, {7}), "vector::_M_range_insert");
}

TEST_F(MdioQueue, RaisesALengthErrorForDataThatAreMoreThanTheirAddresses) {
    EXPECT_EQ(lengthErrorOf(queue, {}, {7}), "vector::_M_range_insert");
}

TEST_F(MdioQueue, KeepsTheAddressesUncountedAfterALengthError) {
    queue.read(1);
    lengthErrorOf(queue, {0x10, 0x11}, {7});
    EXPECT_EQ(contentOf(queue), (Content{{0x10, 0x11}, {}, {1}, {0, 1}, true, 0}));
}

TEST_F(MdioQueue, IsUnlockedAfterALengthError) {
    lengthErrorOf(queue, {0x10, 0x11}, {7});
    EXPECT_TRUE(canBeLockedByAnotherThread(queue));
}

class MdioQueueDeathTest : public MdioQueue {
protected:
    MdioQueueDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

constexpr const char* kEqualLengths = "^ov_sys/Interface/buses/MDIO: Assertion `Addresses list length must "
                                      "equal datas list length' failed\\.\n";

TEST_F(MdioQueueDeathTest, AbortsForListsOfEqualLength) {
    EXPECT_EXIT(queue.blockWrite({0x10, 0x11}, {1, 2}), KilledBySignal(SIGABRT), kEqualLengths);
}

TEST_F(MdioQueueDeathTest, AbortsForTwoEmptyLists) {
    EXPECT_EXIT(queue.blockWrite({}, {}), KilledBySignal(SIGABRT), kEqualLengths);
}

TEST_F(MdioQueue, ClosesTheOpenRunWhenFinalized) {
    queue.write(1, 2);
    queue.read(3);
    queue.finalize();
    EXPECT_EQ(contentOf(queue), (Content{{1}, {2}, {3}, {1, 1}, false, 0}));
    EXPECT_TRUE(queue.haveQueued());
}

TEST_F(MdioQueue, IsNotChangedByFinalizingItTwice) {
    queue.write(1, 2);
    queue.finalize();
    queue.finalize();
    EXPECT_EQ(contentOf(queue), (Content{{1}, {2}, {}, {1}, true, 0}));
}

TEST_F(MdioQueue, StaysEmptyWhenFinalizedEmpty) {
    queue.finalize();
    EXPECT_FALSE(queue.haveQueued());
}

TEST_F(MdioQueue, GoesOnCountingTheSameKindAfterItWasFinalized) {
    queue.read(1);
    queue.finalize();
    queue.read(2);
    EXPECT_EQ(contentOf(queue), (Content{{}, {}, {1, 2}, {0, 1}, false, 1}));
}

TEST_F(MdioQueue, ForgetsItsListsWhenCleared) {
    queue.write(1, 2);
    queue.read(3);
    queue.finalize();
    queue.clear();
    EXPECT_EQ(contentOf(queue), (Content{{}, {}, {}, {}, true, 0}));
    EXPECT_FALSE(queue.haveQueued());
}

TEST_F(MdioQueue, KeepsTheCountOfTheOpenRunWhenCleared) {
    queue.write(1, 2);
    queue.read(3);
    queue.read(4);
    queue.clear();
    EXPECT_EQ(contentOf(queue), (Content{{}, {}, {}, {}, true, 2}));
    EXPECT_TRUE(queue.haveQueued());
}

TEST_F(MdioQueue, KeepsTheCapacityOfItsListsWhenCleared) {
    queue.blockRead(Words(1000));
    const std::size_t capacity = queue.readAddresses.capacity();
    queue.clear();
    EXPECT_EQ(queue.readAddresses.capacity(), capacity);
}

TEST_F(MdioQueue, TakesAccessesOfSeveralThreads) {
    constexpr unsigned kThreads = 4;
    constexpr unsigned kEach = 500;
    std::vector<std::thread> threads;
    for (unsigned number = 0; number < kThreads; ++number)
        threads.emplace_back([&] {
            for (unsigned i = 0; i < kEach; ++i) {
                queue.read(i);
                queue.write(i, i);
                queue.haveQueued();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    queue.finalize();
    unsigned counted = 0;
    for (const unsigned run : queue.runs)
        counted += run;
    EXPECT_EQ(counted, 2 * kThreads * kEach);
    EXPECT_EQ(queue.readAddresses.size(), kThreads * kEach);
    EXPECT_EQ(queue.writeAddresses, queue.writeData);
}

} // namespace
} // namespace OrvaneTest
