// What a caller had put into a result record before a decode is not freed with what the decode allocated.
#include "ov_sys/Interface/rpc_protocol/KeptMembers.h"

#include "ov_sys/Interface/rpc_protocol/Codec.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

namespace Orvane {
namespace {

// As a decode allocates it.
char* allocated(const char* text) {
    char* const copy = strdup(text);
    EXPECT_NE(copy, nullptr);
    return copy;
}

template <class Record>
void freeNew(Record& record, const Record& initial) {
    freeUnlessInitial(xdrProcedure<Record>, &record, &initial, sizeof record);
}

// A record of one member, and what lies behind it.
struct Neighbours {
    char* member;
    char* behind;
    bool behindIsKept;
};

// In place of an XDR routine: whether what is behind a record counts as kept with it.
bool_t lookBehind(XDR* stream, ...) {
    va_list arguments;
    va_start(arguments, stream);
    auto* const record = va_arg(arguments, Neighbours*);
    va_end(arguments);
    record->behindIsKept = isKept(&record->behind);
    return TRUE;
}

TEST(KeptMembers, AListOfTheCallerStaysBesideOneThatWasDecoded) {
    char own[] = "own";
    const Command_Result initial{0, 0, {3, own}, {0, nullptr}};
    Command_Result result = initial;
    result.output2 = {4, allocated("errs")};
    freeNew(result, initial);
    EXPECT_EQ(result.output1.output1_val, own);
    EXPECT_STREQ(own, "own");
    EXPECT_EQ(result.output2.output2_val, nullptr);
}

TEST(KeptMembers, ATextOfTheCallerStays) {
    char own[] = "own";
    const StringArrayEntry initial{own, 3};
    StringArrayEntry result = initial;
    freeNew(result, initial);
    EXPECT_EQ(result.text, own);
    EXPECT_STREQ(own, "own");
}

TEST(KeptMembers, OpaqueBytesOfTheCallerStay) {
    char own[] = "own";
    const GPIO_Read_Result initial{0, {3, own}};
    GPIO_Read_Result result = initial;
    freeNew(result, initial);
    EXPECT_EQ(result.states.states_val, own);
    EXPECT_STREQ(own, "own");
}

TEST(KeptMembers, EndWhereTheRecordEnds) {
    Neighbours record{};
    const Neighbours initial{};
    freeUnlessInitial(lookBehind, &record, &initial, sizeof record.member);
    EXPECT_FALSE(record.behindIsKept);
}

TEST(KeptMembers, InAListOfTheCallerStayWhateverTheyAre) {
    char* const text = allocated("a text of the list");
    StringArrayEntry own[] = {{text, 18}};
    const JTAG_ShiftMulti_Result initial{{1, own}, 0};
    JTAG_ShiftMulti_Result result = initial;
    freeNew(result, initial);
    EXPECT_EQ(own[0].text, text);
    EXPECT_STREQ(text, "a text of the list");
    std::free(text);
}

TEST(KeptMembers, AListInPlaceOfTheCallersIsFreed) {
    char own[] = "own";
    const Command_Result initial{0, 0, {3, own}, {0, nullptr}};
    Command_Result result = initial;
    result.output1 = {5, allocated("other")};
    freeNew(result, initial);
    EXPECT_EQ(result.output1.output1_val, nullptr);
    EXPECT_STREQ(own, "own");
}

TEST(KeptMembers, AreNoneOutsideOfTheFreeing) {
    char own[] = "own";
    const StringArrayEntry initial{own, 3};
    StringArrayEntry result = initial;
    freeNew(result, initial);
    EXPECT_FALSE(isKept(&result.text));
}

} // namespace
} // namespace Orvane
