// TGE registers, GFE SMI registers and GFE indirect registers.
#include "tests/support/capi/Steps.h"
#include "tests/support/NamedParam.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace OrvaneTest {
namespace {

Steps smiSet(unsigned reg, unsigned value) {
    return {wrote(29, 0xC204, value), wrote(29, 0xC203, 0x8000 + reg)};
}

Steps smiGet(unsigned reg, unsigned value) {
    return {wrote(29, 0xC203, 0xC000 + reg), read(29, 0xC204, value)};
}

// Indirect registers by control word, (bank << 7) + address.
Steps indirectSet(unsigned control, unsigned value) {
    return smiSet(23, value) + smiSet(20, 0x4000 + control);
}

Steps indirectGet(unsigned control, unsigned value) {
    return smiSet(20, 0x8000 + control) + smiGet(21, value);
}

struct GfeAccess {
    std::string name;
    unsigned long long (*access)();
    unsigned reg; // of MMD 11, where the value that is read comes from
    Steps steps;
    unsigned result = 0;
};

const GfeAccess kGfeAccesses[] = {
    {"SmiSet", call<gfeSmiRegisterSet, 3, kPhy, 0x1F, 0x1234>, 0x1F, smiSet(0x1F, 0x1234)},
    {"SmiSetOfANumberBeyondFiveBits", call<gfeSmiRegisterSet, 3, kPhy, 0xFFFFFFE2, 0x1234>, 2,
     smiSet(2, 0x1234)},
    {"SmiGet", call<gfeSmiRegisterGet, 3, kPhy, 0x1F>, 0x1F, smiGet(0x1F, kFound), kFound},
    {"SmiGetOfANumberBeyondFiveBits", call<gfeSmiRegisterGet, 3, kPhy, 0x21>, 1, smiGet(1, kFound), kFound},
    {"IndirectSet", call<gfeIndirectRegisterSet, 3, kPhy, 0x12, 3, 0x1234>, 0x4012,
     indirectSet(0x192, 0x1234)},
    {"IndirectGet", call<gfeIndirectRegisterGet, 3, kPhy, 0x12, 3>, 0x4012, indirectGet(0x192, kFound),
     kFound},
    {"IndirectSetBeyondItsBits", call<gfeIndirectRegisterSet, 3, kPhy, 0xFFFFFFFF, 0xFFFFFFFF, 0x1234>,
     0x807F, indirectSet(0x3FF, 0x1234)},
    {"IndirectGetBeyondItsBits", call<gfeIndirectRegisterGet, 3, kPhy, 0x81, 9>, 0x2001,
     indirectGet(0x81, kFound), kFound},
    {"TgeWriteOfBlock0", call<tgeIndirectRegisterWrite, 3, kPhy, 0x0010, 0x1234>, 0x10, smiSet(0x10, 0x1234)},
    {"TgeReadOfBlock0", call<tgeIndirectRegisterRead, 3, kPhy, 0x0010>, 0x10, smiGet(0x10, kFound), kFound},
    {"TgeWriteOfBlock0BeyondFiveBits", call<tgeIndirectRegisterWrite, 3, kPhy, 0x0FE2, 0x1234>, 2,
     smiSet(2, 0x1234)},
    {"TgeWriteOfBlock1", call<tgeIndirectRegisterWrite, 3, kPhy, 0x1012, 0x1234>, 0x1012,
     indirectSet(0x012, 0x1234)},
    {"TgeReadOfBlock1", call<tgeIndirectRegisterRead, 3, kPhy, 0x1012>, 0x1012, indirectGet(0x012, kFound),
     kFound},
    {"TgeWriteOfBlock2", call<tgeIndirectRegisterWrite, 3, kPhy, 0x2012, 0x1234>, 0x2012,
     indirectSet(0x092, 0x1234)},
    {"TgeReadOfBlock2", call<tgeIndirectRegisterRead, 3, kPhy, 0x2012>, 0x2012, indirectGet(0x092, kFound),
     kFound},
    {"TgeWriteOfBlock3", call<tgeIndirectRegisterWrite, 3, kPhy, 0x3FFF, 0x1234>, 0x307F,
     indirectSet(0x17F, 0x1234)},
    {"TgeReadOfBlock3", call<tgeIndirectRegisterRead, 3, kPhy, 0x3FFF>, 0x307F, indirectGet(0x17F, kFound),
     kFound},
    {"TgeReadAboveSixteenBits", call<tgeIndirectRegisterRead, 3, kPhy, 0xABCD1012>, 0x1012,
     indirectGet(0x012, kFound), kFound},
};

class Gfe : public FlatInterface, public testing::WithParamInterface<GfeAccess> {
protected:
    Gfe() { setRegister(3, kPhy, 11, GetParam().reg, kFound); }
};

TEST_P(Gfe, MakesItsStepsAndLogsThem) {
    EXPECT_EQ(outcomeOf(GetParam().access),
              (Outcome{GetParam().result, logOf(3, kPhy, GetParam().steps), "", ""}));
    EXPECT_EQ(frames(), framesOf({3, kPhy}, GetParam().steps));
}

INSTANTIATE_TEST_SUITE_P(Access, Gfe, testing::ValuesIn(kGfeAccesses), NamedParam());

using TgeRegister = FlatInterface;

TEST_F(TgeRegister, ReadsBackWhatWasWrittenInEveryBlock) {
    for (const unsigned address : {0x0010U, 0x1012U, 0x2012U, 0x3012U})
        tgeIndirectRegisterWrite(3, kPhy, address, 0x1000 + address);
    for (const unsigned address : {0x0010U, 0x1012U, 0x2012U, 0x3012U})
        EXPECT_EQ(tgeIndirectRegisterRead(3, kPhy, address), 0x1000 + address);
}

TEST_F(TgeRegister, IsTheOneThatTheMailboxReaches) {
    writeRegisterViaPifMailbox(3, kPhy, 11, 0x2012, 0x4321);
    EXPECT_EQ(tgeIndirectRegisterRead(3, kPhy, 0x2012), 0x4321U);
}

class UnsupportedTgeBlock : public FlatInterface, public testing::WithParamInterface<unsigned> {
protected:
    const unsigned address = GetParam() << 12U | 0x12U;
    const std::string message =
        "Error: unsupported TGE register block ID: " + std::to_string(GetParam()) + "\n";
};

TEST_P(UnsupportedTgeBlock, IsReportedAndReadsZero) {
    EXPECT_EQ(outcomeOf([&] { return tgeIndirectRegisterRead(3, kPhy, address); }),
              (Outcome{0, "", message, ""}));
    EXPECT_THAT(frames(), testing::IsEmpty());
}

TEST_P(UnsupportedTgeBlock, IsReportedAndNotWritten) {
    EXPECT_EQ(outcomeOf([&] { tgeIndirectRegisterWrite(3, kPhy, address, 0x1234); }),
              (Outcome{0, "", message, ""}));
    EXPECT_THAT(frames(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Number, UnsupportedTgeBlock, testing::Values(4U, 10U, 15U));

} // namespace
} // namespace OrvaneTest
