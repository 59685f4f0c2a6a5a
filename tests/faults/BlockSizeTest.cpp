// What the largest queued block needs on the wire.
#include "ov_sys/Interface/buses/MdioAsync.h"
#include "ov_sys/Interface/connection/RPCHandle.h"
#include "ov_sys/Interface/devices/HWInterface.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/rpc_protocol/Records.h"
#include "tests/support/SessionOnBoard.h"
#include "tests/support/WrittenText.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace Orvane {
namespace {

using OrvaneTest::kPhy;
using OrvaneTest::kPort;
using OrvaneTest::SessionOnBoard;
using OrvaneTest::textWritten;
using OrvaneTest::thrownText;

constexpr std::size_t kDatagram = 8800; // the largest request and reply
constexpr std::size_t kCallHeader = 40;
constexpr std::size_t kReplyHeader = 24;

// The request of a block of so many writes, reads and runs, in bytes.
std::size_t requestBytes(std::size_t writes, std::size_t reads, std::size_t runs) {
    std::vector<u_int> words(std::max({writes, reads, runs}) + 1);
    const auto list = [&](std::size_t count) { return static_cast<u_int>(count); };
    MDIO_Mixed_Param param{0,
                           {list(writes), words.data()},
                           {list(writes), words.data()},
                           {list(reads), words.data()},
                           {list(runs), words.data()}};
    return kCallHeader + xdr_sizeof(reinterpret_cast<xdrproc_t>(xdr_MDIO_Mixed_Param), &param);
}

// The most runs into which so many accesses can be mixed, the empty write run before a read among them.
std::size_t mostRuns(std::size_t writes, std::size_t reads) {
    return writes > reads ? 2 * reads + 1 : 2 * writes + (reads > writes ? 2 : 1);
}

std::size_t worstRequestOf(std::size_t operations) {
    std::size_t worst = 0;
    for (std::size_t writes = 0; writes <= operations; ++writes)
        worst =
            std::max(worst, requestBytes(writes, operations - writes, mostRuns(writes, operations - writes)));
    return worst;
}

// Queues reads and writes by turns, a read first.
void fillWorst(MDIO::MdioAsync& queue, unsigned operations) {
    constexpr unsigned kFirst = 0x1C000;
    for (unsigned i = 0; i < operations; ++i) {
        if (i % 2 == 0)
            queue.read(kFirst + i / 2);
        else
            queue.write(kFirst + i / 2, i);
    }
}

TEST(TheLargestBlock, FitsIntoADatagramInItsWorstMixAndOneMoreAccessDoesNot) {
    const std::size_t most = HWInterface().maxQueueSize();
    EXPECT_EQ(most, 873U);
    EXPECT_EQ(worstRequestOf(most), 8792U);
    EXPECT_LE(worstRequestOf(most), kDatagram);
    EXPECT_GT(worstRequestOf(most + 1), kDatagram);
}

TEST(TheLargestBlock, OfReadsAloneIsAnsweredWithinADatagram) {
    std::vector<u_int> values(HWInterface().maxQueueSize());
    MDIO_Read_Result result{0, {static_cast<u_int>(values.size()), values.data()}};
    const auto bytes = kReplyHeader + xdr_sizeof(reinterpret_cast<xdrproc_t>(xdr_MDIO_Read_Result), &result);
    EXPECT_EQ(bytes, 3524U);
    EXPECT_LE(bytes, kDatagram);
}

TEST(TheLargestBlock, OfReadsAndWritesByTurnsIsExecuted) {
    SessionOnBoard lab;
    MDIO::MdioAsync queue;
    fillWorst(queue, 873);
    EXPECT_EQ(queue.runs.size(), 873U); // the open one is the 874th
    EXPECT_EQ(queue.execute(&lab.session).size(), 437U);
    EXPECT_EQ(lab.board.registerValue(OrvaneSim::Space::C45, kPort, kPhy, 0x1C000 + 435), 871U);
}

TEST(ABlockBeyondTheLargest, InTheWorstMixIsRefusedWithoutACall) {
    SessionOnBoard lab;
    MDIO::MdioAsync queue;
    fillWorst(queue, 874);
    std::string problem;
    textWritten([&] { problem = thrownText<Exceptions::Standard>([&] { queue.execute(&lab.session); }); });
    EXPECT_EQ(problem, "Remote error.");
    EXPECT_EQ(lab.count("mdio_mixedblock"), 0U);
}

} // namespace
} // namespace Orvane
