// The paged and the indexed registers of MMD 28.
#include "tests/support/capi/Steps.h"
#include "tests/support/NamedParam.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

// No delegation; the page register holds `page` before.
class PagedRegister : public FlatInterface {
protected:
    PagedRegister() { delegateNothing(); }

    void setPage(unsigned page) { setRegister(kDefaultAdapter, kPhy, 4, 0xC180, page); }
    static Outcome write(unsigned address) {
        return outcomeOf([=] { ZR_API_MDIO_Write(kPhy, 28, address, 0x1234); });
    }
    static Outcome read(unsigned address) {
        return outcomeOf([=] { return ZR_API_MDIO_Read(kPhy, 28, address); });
    }
    static Outcome outcome(const Steps& steps, unsigned result = 0) {
        return {result, logOf(kDefaultAdapter, kPhy, steps), "", ""};
    }
    static std::vector<std::string> expected(const Steps& steps) {
        return framesOf({kDefaultAdapter, kPhy}, steps);
    }
};

struct Page {
    std::string name;
    unsigned before;  // page register
    unsigned address; // of MMD 28
    unsigned after;   // page register, and what a write puts into the register
    unsigned reg;     // of MMD 4 that is written
    unsigned read;    // result of a read
};

const Page kPages[] = {
    {"FirstOfPage0", 0x0000, 0x000, 0x0000, 0xC200, 0x00},
    {"LastOfPage5", 0x0000, 0x5FF, 0x0005, 0xC2FF, 0x50},
    {"WithOtherBitsOfThePageRegister", 0xABCF, 0x312, 0xABCB, 0xC212, 0xBC},
    {"WithNibblesToExchange", 0x12A0, 0x2FE, 0x12A2, 0xC2FE, 0x2A},
};

class PageOf28 : public PagedRegister, public testing::WithParamInterface<Page> {
protected:
    PageOf28() { setPage(GetParam().before); }
};

TEST_P(PageOf28, GetsThePageValueAndNotTheCallersOnAWrite) {
    const Page& page = GetParam();
    const Steps steps{OrvaneTest::read(4, 0xC180, page.before), wrote(4, 0xC180, page.after),
                      wrote(4, page.reg, page.after)};
    EXPECT_EQ(write(page.address), outcome(steps));
    EXPECT_EQ(frames(), expected(steps));
}

TEST_P(PageOf28, ReadsAsItsNumberWithTheNibblesExchanged) {
    const Page& page = GetParam();
    const Steps steps{OrvaneTest::read(4, 0xC180, page.before), wrote(4, 0xC180, page.after)};
    EXPECT_EQ(read(page.address), outcome(steps, page.read));
    EXPECT_EQ(frames(), expected(steps));
}

INSTANTIATE_TEST_SUITE_P(Address, PageOf28, testing::ValuesIn(kPages), NamedParam());

TEST_F(PagedRegister, HoldsWhatTheWritePutThere) {
    setPage(0x00A0);
    write(0x312);
    EXPECT_EQ(registerOf(kDefaultAdapter, kPhy, 28, 0x312), 0xA3U);
}

class AddressBeyondThePages : public PagedRegister, public testing::WithParamInterface<unsigned> {};

TEST_P(AddressBeyondThePages, IsNotWritten) {
    EXPECT_EQ(write(GetParam()), Outcome{});
    EXPECT_THAT(frames(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Of28, AddressBeyondThePages,
                         testing::Values(0x600U, 0x7FFFU, 0x8000U, 0x8419U, 0x10000U, 0xFFFFFFFFU));

TEST_F(PagedRegister, BeyondThePagesReadsZero) {
    for (const unsigned address : {0x600U, 0x7FFFU, 0x10000U})
        EXPECT_EQ(read(address), Outcome{}) << std::hex << address;
    EXPECT_THAT(frames(), testing::IsEmpty());
}

// ---- Indexed registers ----

struct Indexed {
    std::string name;
    unsigned address;
    unsigned selector; // (lane << 5 | index) with its eight bits in reverse order
};

const Indexed kIndexed[] = {
    {"Lane0Index0", 0x8000, 0x00},  {"Lane0Index1", 0x8001, 0x80},  {"Lane1Index0", 0x8100, 0x04},
    {"Lane2Index5", 0x8205, 0xA2},  {"Lane3Index19", 0x8313, 0xCE}, {"Lane4Index0", 0x8400, 0x01},
    {"Lane4Index25", 0x8419, 0x99}, {"OtherBitsSet", 0xF205, 0xA2},
};

class IndexedRegister : public PagedRegister, public testing::WithParamInterface<Indexed> {
protected:
    IndexedRegister() {
        setPage(0xABCF);
        setRegister(kDefaultAdapter, kPhy, 28, GetParam().address & 0x8FFFU, 0xF9BC);
    }
};

TEST_P(IndexedRegister, IsReadOnPageZeroByItsSelector) {
    const Steps steps{OrvaneTest::read(4, 0xC180, 0xABCF), wrote(4, 0xC180, 0xABC8),
                      wrote(4, 0xC20B, GetParam().selector), OrvaneTest::read(4, 0xC2EF, 0xBC),
                      OrvaneTest::read(4, 0xC2FF, 0xF9)};
    EXPECT_EQ(read(GetParam().address), outcome(steps, 0x9BC));
    EXPECT_EQ(frames(), expected(steps));
}

INSTANTIATE_TEST_SUITE_P(Of28, IndexedRegister, testing::ValuesIn(kIndexed), NamedParam());

TEST_F(PagedRegister, OfALaneOrIndexThatDoesNotExistReadsZero) {
    for (const unsigned address : {0x8500U, 0x8F00U, 0x801AU, 0x80FFU, 0x841AU})
        EXPECT_EQ(read(address), Outcome{}) << std::hex << address;
    EXPECT_THAT(frames(), testing::IsEmpty());
}

TEST_F(PagedRegister, ReadsWhatTheMailboxWroteByItsIndex) {
    writeRegisterViaPifMailbox(kDefaultAdapter, kPhy, 28, 0x8213, 0x0ABC);
    EXPECT_EQ(read(0x8213).result, 0xABCU);
}

} // namespace
} // namespace OrvaneTest
