// The record of a discovered board: construction, assignment, comparison.
#include "ov_sys/Interface/foundation/AddressResponse.h"

#include <gtest/gtest.h>
#include <set>

namespace Orvane {
namespace {

TEST(AddressResponse, IsEmptyByDefault) {
    const AddressResponse record;
    EXPECT_EQ(record.name, "");
    EXPECT_EQ(record.address, "");
}

TEST(AddressResponse, KeepsNameThenAddress) {
    const AddressResponse record("host 01A2:0", "10.0.0.5");
    EXPECT_EQ(record.name, "host 01A2:0");
    EXPECT_EQ(record.address, "10.0.0.5");
}

TEST(AddressResponse, LaysTheNameBeforeTheAddress) {
    const AddressResponse record;
    EXPECT_LT(static_cast<const void*>(&record.name), static_cast<const void*>(&record.address));
}

TEST(AddressResponse, CopyHasBothTexts) {
    const AddressResponse original("board", "10.0.0.1");
    const AddressResponse copy(original);
    EXPECT_EQ(copy.name, "board");
    EXPECT_EQ(copy.address, "10.0.0.1");
}

TEST(AddressResponse, AssignReplacesBothTexts) {
    AddressResponse record("old", "10.0.0.1");
    record.assign("new", "10.0.0.2");
    EXPECT_EQ(record.name, "new");
    EXPECT_EQ(record.address, "10.0.0.2");
}

TEST(AddressResponse, AssignTakesItsOwnTexts) {
    AddressResponse record("a name too long to be kept within the string", "10.0.0.1");
    record.assign(record.address, record.name);
    EXPECT_EQ(record.name, "10.0.0.1");
    EXPECT_EQ(record.address, "a name too long to be kept within the string");
}

TEST(AddressResponse, EqualsWhenBothTextsDo) {
    AddressResponse record("board", "10.0.0.1");
    const AddressResponse same("board", "10.0.0.1");
    EXPECT_TRUE(record == same);                  // the member
    EXPECT_TRUE(same == AddressResponse(record)); // the free operator
    EXPECT_FALSE(record == AddressResponse("Board", "10.0.0.1"));
    EXPECT_FALSE(same == AddressResponse("Board", "10.0.0.1"));
}

TEST(AddressResponse, OfOneNameAndTwoAddressesIsEquivalentInOrderButNotEqual) {
    const AddressResponse first("board", "10.0.0.1");
    const AddressResponse second("board", "10.0.0.2");
    EXPECT_FALSE(first < second);
    EXPECT_FALSE(second < first);
    EXPECT_FALSE(first == second);
}

TEST(AddressResponse, AssignmentBetweenRecordsOfOneNameCopiesTheAddress) {
    AddressResponse first("board", "10.0.0.1");
    const AddressResponse second("board", "10.0.0.2");
    AddressResponse& result = (first = second);
    EXPECT_EQ(first.name, "board");
    EXPECT_EQ(first.address, "10.0.0.2");
    EXPECT_EQ(&result, &first);
}

TEST(AddressResponse, AssignmentOfAnEqualRecordLeavesTheTextsWhereTheyAre) {
    AddressResponse record("a name too long to be kept within the string", "10.0.0.1");
    record.name.reserve(500);
    const char* const place = record.name.data();
    const AddressResponse equal(record);
    record = equal;
    EXPECT_EQ(record.name.data(), place);
    EXPECT_EQ(record.name, equal.name);
}

TEST(AddressResponse, AssignmentToItselfChangesNothing) {
    AddressResponse record("board", "10.0.0.1");
    AddressResponse& alias = record;
    record = alias;
    EXPECT_EQ(record.name, "board");
    EXPECT_EQ(record.address, "10.0.0.1");
}

TEST(AddressResponse, OrdersByTheBytesOfTheName) {
    EXPECT_TRUE(AddressResponse("B", "9.9.9.9") < AddressResponse("a", "1.1.1.1"));
    EXPECT_FALSE(AddressResponse("a", "1.1.1.1") < AddressResponse("B", "9.9.9.9"));
    EXPECT_TRUE(AddressResponse("board1", "") < AddressResponse("board10", ""));
}

TEST(AddressResponse, SetHoldsOneRecordPerName) {
    const std::set<AddressResponse> boards = {AddressResponse("board", "10.0.0.1"),
                                              AddressResponse("board", "10.0.0.2"),
                                              AddressResponse("other", "")};
    EXPECT_EQ(boards.size(), 2U);
}

} // namespace
} // namespace Orvane
