// Finding a type's XDR routine, and freeing through it.
#include "ov_sys/Interface/rpc_protocol/Codec.h"

#include "tests/support/rpc_protocol/WireBytes.h"

#include <gtest/gtest.h>

namespace {

struct NotOnTheWire {
    int number;
};

} // namespace

TEST(Codec, KnowsEveryWireRecordAndNothingElseAsOne) {
#define EXPECT_WIRE_RECORD(Record) EXPECT_TRUE(Orvane::IsWireRecord<Record>::value) << #Record;
    ORVANE_WIRE_RECORDS(EXPECT_WIRE_RECORD)
#undef EXPECT_WIRE_RECORD
    EXPECT_FALSE(Orvane::IsWireRecord<int>::value);
    EXPECT_FALSE(Orvane::IsWireRecord<NotOnTheWire>::value);
}

TEST(Codec, EncodesABareIntAsOneWord) {
    int value = -123;
    EncodeStream stream;
    EXPECT_TRUE(Orvane::Codec<int>::run(stream.get(), &value));
    EXPECT_EQ(stream.bytes(), wire("ffffff85"));
}

TEST(Codec, GivesLibtirpcAProcedureThatRunsTheRecordsRoutine) {
    const xdrproc_t procedure = Orvane::xdrProcedure<Simple_Param>;
    Simple_Param param{1, 2};
    EncodeStream stream;
    EXPECT_TRUE(procedure(stream.get(), &param));
    EXPECT_EQ(stream.bytes(), wire("00000001 00000002"));
}

TEST(FreeDecoded, FreesARecordsMemoryOnceAndNullsIt) {
    WireBytes bytes = wire("00000000 00000001 00000005");
    DecodeStream stream(bytes);
    MDIO_Read_Result result{};
    ASSERT_TRUE(xdr_MDIO_Read_Result(stream.get(), &result));
    Orvane::freeDecoded(result);
    EXPECT_EQ(result.data.data_val, nullptr);
    Orvane::freeDecoded(result);
    EXPECT_EQ(result.data.data_val, nullptr);
}

TEST(FreeDecoded, LeavesTypesThatAreNoRecordsAlone) {
    int number = 5;
    NotOnTheWire other{6};
    Orvane::freeDecoded(number);
    Orvane::freeDecoded(other);
    EXPECT_EQ(number, 5);
    EXPECT_EQ(other.number, 6);
}
