// The samples, with bytes written by hand.
#include "tests/support/RecordSamples.h"

namespace {

using Samples = std::vector<RecordSample>;

template <class Record>
const char* nameOf();

#define NAME(Record)                                                                                         \
    template <>                                                                                              \
    const char* nameOf<Record>() {                                                                           \
        return #Record;                                                                                      \
    }
ORVANE_WIRE_RECORDS(NAME)
#undef NAME

// One record: `fill` gives its members in wire order, each with its value and its bytes.
template <class Record, class Fill>
void add(Samples& samples, Fill fill) {
    const auto record = std::make_shared<Record>();
    RecordSample sample{nameOf<Record>(), typeid(Record), sizeof(Record), record.get(), {}, {}, {}, {record}};
    sample.run = [](XDR* stream, void* any) {
        return Orvane::Codec<Record>::run(stream, static_cast<Record*>(any));
    };
    sample.freeDecoded = [](void* any) { Orvane::freeDecoded(*static_cast<Record*>(any)); };
    MemberWriter writer(sample, record.get());
    fill(*record, writer);
    samples.push_back(sample);
}

void addShared(Samples& samples) {
    add<StringArrayEntry>(samples, [](auto& r, MemberWriter& m) {
        m.text(r.text, "01X10", "00000005 3031583130 000000");
        m.value(r.length, 5u, "00000005");
    });
    add<Simple_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.value, 0x80000001u, "80000001");
        m.value(r.handle, 0x01020304u, "01020304");
    });
    add<ID_Param>(samples, [](auto& r, MemberWriter& m) { m.value(r.handle, 0xfffffe07u, "fffffe07"); });
    add<Simple_Result>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.value, -2, "fffffffe");
        m.value(r.error, -16, "fffffff0");
    });
}

void addSetup(Samples& samples) {
    add<Open_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.sessionId, 0x0a0b0c0du, "0a0b0c0d");
        m.value(r.byte1, 0x81, "00000081");
        m.value(r.byte2, 0x02, "00000002");
        m.value(r.byte3, 0xff, "000000ff");
        m.value(r.byte4, 0x04, "00000004");
        m.value(r.int1, -1, "ffffffff");
        m.value(r.int2, 0x12345678, "12345678");
    });
    add<Open_Result>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.word1, 0x11111117u, "11111117");
        m.value(r.sessionId, 0xfedcba98u, "fedcba98");
        m.value(r.word3, 0x33333333u, "33333333");
        m.value(r.error, -28, "ffffffe4");
    });
    add<Close_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000107u, "00000107");
        m.value(r.int1, -9, "fffffff7");
    });
    add<Get_UID_Result>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.byte1, 0xc3, "000000c3");
        m.value(r.word1, 0xdeadbeefu, "deadbeef");
        m.value(r.error, 0x7fffffff, "7fffffff");
    });
    add<Command_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000207u, "00000207");
        m.list(r.command, {'l', 's', 0x80}, "00000003 0000006c 00000073 ffffff80");
        m.value(r.word1, 30u, "0000001e");
    });
    add<Command_Result>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.error, -5, "fffffffb");
        m.value(r.status, 127, "0000007f");
        m.list(r.output1, {'a', 0}, "00000002 00000061 00000000");
        m.list(r.output2, {0xff}, "00000001 ffffffff");
    });
    add<Get_Error_Result>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.error, -22, "ffffffea");
        m.value(r.byte1, 0x9a, "0000009a");
        m.value(r.int1, 77, "0000004d");
    });
}

void addMdioLists(Samples& samples) {
    add<MDIO_Mixed_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000301u, "00000301");
        m.list(r.words1, {0xffffu}, "00000001 0000ffff");
        m.list(r.words2, {0x001e0001u, 0x001e0002u}, "00000002 001e0001 001e0002");
        m.list(r.words3, {0xe1000003u}, "00000001 e1000003");
        m.list(r.words4, {2, 0, 1}, "00000003 00000002 00000000 00000001");
    });
    add<MDIO_Read_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000401u, "00000401");
        m.list(r.addresses, {0x20010002u, 0x20010003u}, "00000002 20010002 20010003");
    });
    add<MDIO_Read_Result>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.error, -1, "ffffffff");
        m.list(r.data, {0xabcd, 0xffffffffu, 3}, "00000003 0000abcd ffffffff 00000003");
    });
    add<MDIO_Write_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000601u, "00000601");
        m.value(r.int1, -3, "fffffffd");
        m.list(r.addresses, {0x40020004u}, "00000001 40020004");
        m.list(r.values, {0x1234, 0x5678}, "00000002 00001234 00005678");
    });
}

void addMdioScalars(Samples& samples) {
    add<MDIO_Read_Param_No_Addr>(
        samples, [](auto& r, MemberWriter& m) { m.value(r.handle, 0x00000501u, "00000501"); });
    add<MDIO_Read_Result_Single>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.error, -110, "ffffff92");
        m.value(r.value, 0xcafef00du, "cafef00d");
    });
    add<MDIO_Write_Param_No_Addr>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000701u, "00000701");
        m.value(r.value, 0x89abcdefu, "89abcdef");
    });
    add<MDIO_InterruptRequest_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000801u, "00000801");
        m.value(r.byte1, 0xe1, "000000e1");
        m.value(r.byte2, 0x1e, "0000001e");
        m.value(r.int1, -100, "ffffff9c");
        m.value(r.int2, 100, "00000064");
    });
    add<MDIO_InterruptProcessed_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000901u, "00000901");
        m.value(r.word1, 0x55aa55aau, "55aa55aa");
    });
    add<MDIO_Result>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.value, 4, "00000004");
        m.value(r.error, -19, "ffffffed");
    });
    add<MDIO_FlushPort_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000a01u, "00000a01");
        m.value(r.byte1, 0x01, "00000001");
        m.value(r.byte2, 0xfe, "000000fe");
    });
}

void addI2c(Samples& samples) {
    add<I2C_Read_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000b02u, "00000b02");
        m.value(r.byte1, 0xa0, "000000a0");
        m.value(r.word1, 0x10000001u, "10000001");
        m.value(r.byte2, 0x02, "00000002");
        m.value(r.byte3, 0x93, "00000093");
    });
    add<I2C_Read_Reg_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000c02u, "00000c02");
        m.value(r.byte1, 0xa1, "000000a1");
        m.value(r.word1, 0x20000001u, "20000001");
        m.value(r.word2, 0x30000002u, "30000002");
        m.value(r.byte2, 0x82, "00000082");
        m.value(r.byte3, 0x03, "00000003");
    });
    add<I2C_Read_Result>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.error, -6, "fffffffa");
        m.list(r.data, {0x80, 0x7f}, "00000002 00000080 0000007f");
    });
    add<I2C_Write_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000d02u, "00000d02");
        m.value(r.byte1, 0xa2, "000000a2");
        m.value(r.word1, 0x00000050u, "00000050");
        m.list(r.data, {0xff, 0x00, 0x01}, "00000003 000000ff 00000000 00000001");
    });
    const auto trans = [](I2C_Block_Trans_Param& r, MemberWriter& m) {
        m.list(r.bytes, {0x91, 0x12}, "00000002 00000091 00000012");
        m.list(r.words1, {0x10101010u}, "00000001 10101010");
        m.list(r.words2, {0x20202020u, 0x21212121u}, "00000002 20202020 21212121");
        m.list(r.words3, {}, "00000000");
        m.list(r.words4, {0xf0f0f0f0u}, "00000001 f0f0f0f0");
    };
    add<I2C_Block_Trans_Param>(samples, trans);
    add<I2C_Block_Reg_Read_Param>(samples, [&](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000e02u, "00000e02");
        trans(r.trans, m);
    });
    add<I2C_Block_Reg_Write_Param>(samples, [&](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00000f02u, "00000f02");
        trans(r.trans, m);
        m.list(r.data, {0xd0}, "00000001 000000d0");
    });
    add<I2C_Block_Mask_Write_Param>(samples, [&](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00001002u, "00001002");
        trans(r.trans, m);
        m.list(r.data, {0xd1, 0xd2}, "00000002 000000d1 000000d2");
        m.value(r.mask, 0xbf, "000000bf");
    });
}

void addGpio(Samples& samples) {
    add<GPIO_Indexes_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00001103u, "00001103");
        m.list(r.indexes, {1, 0xfe, 3, 4, 5}, "00000005 01fe030405 000000");
    });
    add<GPIO_Read_Result>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.error, -95, "ffffffa1");
        m.list(r.states, {1, 0, 0xff, 1}, "00000004 0100ff01");
    });
    add<GPIO_States_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00001203u, "00001203");
        m.list(r.indexes, {7, 8, 9}, "00000003 070809 00");
        m.list(r.states, {0, 1}, "00000002 0001 0000");
    });
    add<GPIO_BitBang_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00001303u, "00001303");
        m.list(r.bytes1, {0x11}, "00000001 11 000000");
        m.list(r.bytes2, {0x22, 0x23}, "00000002 2223 0000");
        m.list(r.bytes3, {0x33, 0x34, 0x35}, "00000003 333435 00");
    });
}

void addJtag(Samples& samples) {
    add<JTAG_ShiftMulti_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00001405u, "00001405");
        m.strings(r.list1, {"1010", "X"}, "00000002 00000004 31303130 00000004 00000001 58 000000 00000001");
        m.strings(r.list2, {""}, "00000001 00000000 00000000");
        m.strings(r.list3, {"01"}, "00000001 00000002 3031 0000 00000002");
    });
    add<JTAG_ShiftMulti_Result>(samples, [](auto& r, MemberWriter& m) {
        m.strings(r.entries, {"110", "0"},
                  "00000002 00000003 313130 00 00000003 00000001 30 000000 00000001");
        m.value(r.error, -71, "ffffffb9");
    });
}

void addAdc(Samples& samples) {
    add<ADC_Result>(samples, [](auto& r, MemberWriter& m) { m.value(r.error, -12, "fffffff4"); });
    add<ADC_Data_Get_Param>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00001506u, "00001506");
        m.value(r.count, 4096u, "00001000");
    });
    add<ADC_Max_Result>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.error, -1, "ffffffff");
        m.list(r.data, {0xf1}, "00000001 000000f1");
    });
    add<ADC_Data>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.error, -2, "fffffffe");
        m.list(r.data, {0xf2, 0x02}, "00000002 000000f2 00000002");
    });
    add<ADC_Dump>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00001606u, "00001606");
        m.list(r.name, {'d', '.', 'b'}, "00000003 00000064 0000002e 00000062");
    });
    add<ADC_Event>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00001706u, "00001706");
        m.list(r.name, {'e', 0xe9}, "00000002 00000065 ffffffe9");
    });
    add<ADC_EventData>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.error, -3, "fffffffd");
        m.list(r.data, {0x00, 0xf3}, "00000002 00000000 000000f3");
    });
    add<ADC_ChannelMask>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00001806u, "00001806");
        m.value(r.mask, 0x8000000fu, "8000000f");
    });
}

void addThermal(Samples& samples) {
    add<THRM_Result>(samples, [](auto& r, MemberWriter& m) { m.value(r.error, -4, "fffffffc"); });
    add<THRM_State>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.error, -5, "fffffffb");
        m.value(r.state, 2, "00000002");
    });
    add<THRM_Get_Temp>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.error, -6, "fffffffa");
        m.value(r.temperature, -0.5f, "bf000000");
    });
    add<THRM_Get_Temp_Arg>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, -0x7ffffff9, "80000007");
        m.value(r.channel, 2u, "00000002");
    });
    add<THRM_Set_Temp_Arg>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, 0x00001907, "00001907");
        m.value(r.temperature, 85.5f, "42ab0000");
        m.value(r.byte1, 0x81, "00000081");
        m.value(r.channel, 0xfffffffeu, "fffffffe");
    });
    add<THRM_Control_Arg>(samples, [](auto& r, MemberWriter& m) {
        m.value(r.handle, -2, "fffffffe");
        m.value(r.channel, 3u, "00000003");
    });
}

Samples allSamples() {
    Samples samples;
    for (const auto addRoom :
         {addShared, addSetup, addMdioLists, addMdioScalars, addI2c, addGpio, addJtag, addAdc, addThermal})
        addRoom(samples);
    return samples;
}

} // namespace

const std::vector<RecordSample>& recordSamples() {
    static const Samples samples = allSamples();
    return samples;
}
