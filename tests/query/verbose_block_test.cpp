#include "query/verbose_block.h"

#include <cstddef>
#include <cstring>
#include <memory>

#include "query/query_case.h"

using namespace test;

namespace {

class VerboseBlock : public PlatformTest {
protected:
    VerboseBlock() : verbose(new OfpVerbose) { clear(); }

    void clear() { OFP_get_InitVerbose(verbose.get()); }
    uint32_t read(OfpVerboseConfigured *) { return ofp::read_block(0x1001, &verbose->configured); }
    uint32_t read(OfpVerboseRunning *) { return ofp::read_block(0x1001, &verbose->running); }

    std::unique_ptr<OfpVerbose> verbose;
};

const Bytes key = tlv(4, hex("1001 0000"));
const Bytes filter_3 = tlv(124, hex("1001 0003 00000007"));
const Bytes filter_1 = tlv(124, hex("1001 0001 00000007")) + tlv(125, hex("00000000 0102 0304"));

Bytes configured(const Bytes &tlvs) { return message(0x20000006) + tlvs; }
Bytes running(const Bytes &tlvs) { return message(0x20000007) + tlvs; }

// Where a value goes and how its bytes 1, 2, 3, ... lie there.
struct Field {
    uint16_t type;
    size_t offset;
    Bytes value;
};

const Bytes words_32_16 = hex("04030201 0605 0708");
const Bytes words_16_32 = hex("0201 0304 08070605");
const Bytes words_16_16 = hex("0201 0403");

const Field configured_fields[] = {
    {9, offsetof(OfpVerboseConfigured, flow_entry_limit), words_32_16},
    {87, offsetof(OfpVerboseConfigured, datapath_id), hex("0807060504030201 0a09 0b0c0d0e0f10")},
    {88, offsetof(OfpVerboseConfigured, vlan_loosen), words_16_16},
    {92, offsetof(OfpVerboseConfigured, mac_learning), words_16_16},
    {94, offsetof(OfpVerboseConfigured, conn_mode), words_32_16},
    {10, offsetof(OfpVerboseConfigured, fail_open), words_32_16},
    {127, offsetof(OfpVerboseConfigured, miss_rule), words_32_16},
    {128, offsetof(OfpVerboseConfigured, forbidden_port), words_32_16},
    {131, offsetof(OfpVerboseConfigured, oap_server), counting(32) + hex("24232221 2625 2827")},
    {68, offsetof(OfpVerboseConfigured, dyn_mac_aware), words_16_16},
    {164, offsetof(OfpVerboseConfigured, qinq_net_wkcfg), words_16_16},
    {177, offsetof(OfpVerboseConfigured, tcp_dscp), words_16_32},
    {172, offsetof(OfpVerboseConfigured, permit_port_type), words_32_16},
    {154, offsetof(OfpVerboseConfigured, precedence), hex("0201 0403 05060708")},
    {178, offsetof(OfpVerboseConfigured, tcp_nsr), words_16_16},
    {188, offsetof(OfpVerboseConfigured, exclude_conn_id),
     hex("0201 0304 08070605 100f0e0d0c0b0a09")},
    {199, offsetof(OfpVerboseConfigured, data_plane_mode), words_16_16},
    {224, offsetof(OfpVerboseConfigured, smart_group), words_16_16},
    {211, offsetof(OfpVerboseConfigured, ttp_mode), words_16_16},
    {233, offsetof(OfpVerboseConfigured, flow_monitor_interval), words_16_32},
    {234, offsetof(OfpVerboseConfigured, flow_monitor_threshold), words_16_32},
};

const Field running_fields[] = {
    {9, offsetof(OfpVerboseRunning, flow_entry_limit), words_32_16},
    {87, offsetof(OfpVerboseRunning, datapath_id), hex("0807060504030201 0a09 0b0c0d0e0f10")},
    {88, offsetof(OfpVerboseRunning, vlan_loosen), words_16_16},
    {92, offsetof(OfpVerboseRunning, mac_learning), words_16_16},
    {94, offsetof(OfpVerboseRunning, conn_mode), words_32_16},
    {10, offsetof(OfpVerboseRunning, fail_open), words_32_16},
    {127, offsetof(OfpVerboseRunning, miss_rule), words_32_16},
    {128, offsetof(OfpVerboseRunning, forbidden_port), words_32_16},
    {132, offsetof(OfpVerboseRunning, oap_server_run),
     counting(32) + hex("24232221 28272625 2a29 2b2c")},
    {164, offsetof(OfpVerboseRunning, qinq_net_wkcfg), words_16_16},
    {177, offsetof(OfpVerboseRunning, tcp_dscp), words_16_32},
    {178, offsetof(OfpVerboseRunning, tcp_nsr), words_16_16},
    {172, offsetof(OfpVerboseRunning, permit_port_type), words_32_16},
    {199, offsetof(OfpVerboseRunning, data_plane_mode), words_16_16},
    {224, offsetof(OfpVerboseRunning, smart_group), words_16_16},
    {211, offsetof(OfpVerboseRunning, ttp_mode), words_16_16},
    {233, offsetof(OfpVerboseRunning, flow_monitor_interval), words_16_32},
    {234, offsetof(OfpVerboseRunning, flow_monitor_threshold), words_16_32},
};

void put(Bytes *bytes, size_t at, const Bytes &value)
{
    std::copy(value.begin(), value.end(), bytes->begin() + static_cast<ptrdiff_t>(at));
}

// The slots of n flow tables, the last byte of each its number.
Bytes tables(uint16_t type, size_t size, size_t n)
{
    Bytes tlvs;
    for (size_t i = 0; i < n; ++i) {
        Bytes value(size);
        value[0] = static_cast<uint8_t>(i);
        value[1] = static_cast<uint8_t>(i >> 8);
        tlvs += tlv(type, value);
    }
    return tlvs;
}

} // namespace

TEST_F(VerboseBlock, SendsTheInstanceAndReadsItsFilter)
{
    platform.reply(configured(filter_1));
    EXPECT_EQ(read(&verbose->configured), uint32_t{OFP_RC_OK});
    platform.reply(running(filter_3));
    EXPECT_EQ(read(&verbose->running), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x10000006, {key}), message(0x10000007, {key})}));
    EXPECT_EQ(verbose->configured.filter.instance_id, 0x1001);
    EXPECT_EQ(verbose->configured.filter.filter_kind, 1);
    EXPECT_EQ(verbose->configured.filter.ext, 7u);
    EXPECT_EQ(verbose->configured.filter.param_a, 0x0102);
    EXPECT_EQ(verbose->configured.filter.param_b, 0x0304);
    EXPECT_EQ(verbose->running.filter.filter_kind, 3);
}

TEST_F(VerboseBlock, EveryConfiguredValueGoesIntoItsMemberAlone)
{
    for (const Field &field : configured_fields) {
        SCOPED_TRACE(field.type);
        clear();
        verbose->configured.table_count = 9;
        Bytes expected = bytes_of(verbose->configured);
        const OfpInstFilter filter{.instance_id = 0x1001, .filter_kind = 3, .param = 0, .ext = 7};
        put(&expected, offsetof(OfpVerboseConfigured, filter), bytes_of(filter));
        put(&expected, offsetof(OfpVerboseConfigured, table_count), {0});
        put(&expected, field.offset, field.value);
        platform.reply(configured(filter_3 + tlv(999, Bytes(4)) +
                                  tlv(field.type, counting(field.value.size()))));
        EXPECT_EQ(read(&verbose->configured), uint32_t{OFP_RC_OK});
        EXPECT_EQ(bytes_of(verbose->configured), expected);
    }
}

TEST_F(VerboseBlock, EveryRunningValueGoesIntoItsMemberAlone)
{
    for (const Field &field : running_fields) {
        SCOPED_TRACE(field.type);
        clear();
        verbose->running.table_count = 9;
        Bytes expected = bytes_of(verbose->running);
        const OfpInstFilter filter{.instance_id = 0x1001, .filter_kind = 3, .param = 0, .ext = 7};
        put(&expected, offsetof(OfpVerboseRunning, filter), bytes_of(filter));
        put(&expected, offsetof(OfpVerboseRunning, table_count), {0});
        put(&expected, field.offset, field.value);
        platform.reply(
            running(filter_3 + tlv(999, Bytes(4)) + tlv(field.type, counting(field.value.size()))));
        EXPECT_EQ(read(&verbose->running), uint32_t{OFP_RC_OK});
        EXPECT_EQ(bytes_of(verbose->running), expected);
    }
}

TEST_F(VerboseBlock, AValueLongerThanItsMemberIsCut)
{
    for (const Field &field : configured_fields) {
        SCOPED_TRACE(field.type);
        clear();
        Bytes expected = bytes_of(verbose->configured);
        put(&expected, field.offset, field.value);
        platform.reply(configured(tlv(field.type, counting(60))));
        EXPECT_EQ(read(&verbose->configured), uint32_t{OFP_RC_OK});
        EXPECT_EQ(bytes_of(verbose->configured), expected);
    }
}

TEST_F(VerboseBlock, ValuesOfTheOtherBlockAreSkipped)
{
    clear();
    const Bytes before = bytes_of(verbose->running);
    for (uint16_t type : std::initializer_list<uint16_t>{69, 131, 68, 154, 188}) {
        platform.reply(running(tlv(type, Bytes(60, 0x55))));
        EXPECT_EQ(read(&verbose->running), uint32_t{OFP_RC_OK});
    }
    EXPECT_EQ(bytes_of(verbose->running), before);
    const Bytes also_before = bytes_of(verbose->configured);
    for (uint16_t type : std::initializer_list<uint16_t>{70, 132}) {
        platform.reply(configured(tlv(type, Bytes(60, 0x55))));
        EXPECT_EQ(read(&verbose->configured), uint32_t{OFP_RC_OK});
    }
    EXPECT_EQ(bytes_of(verbose->configured), also_before);
}

TEST_F(VerboseBlock, NothingBehindTheHeadLeavesTheBlock)
{
    std::memset(&verbose->configured.filter, 0xee, sizeof(OfpInstFilter));
    verbose->configured.table_count = 9;
    const Bytes before = bytes_of(verbose->configured);
    for (const Bytes &reply : {configured({}), result_reply(0), hex("00"), filter_3}) {
        platform.reply(reply);
        EXPECT_EQ(read(&verbose->configured), uint32_t{OFP_RC_OK});
        EXPECT_EQ(bytes_of(verbose->configured), before);
    }
}

TEST_F(VerboseBlock, NothingBehindTheFilterMeansNoTables)
{
    verbose->configured.table_count = verbose->running.table_count = 9;
    platform.reply(configured(filter_1));
    EXPECT_EQ(read(&verbose->configured), uint32_t{OFP_RC_OK});
    platform.reply(running(filter_3));
    EXPECT_EQ(read(&verbose->running), uint32_t{OFP_RC_OK});
    EXPECT_EQ(verbose->configured.table_count, 0);
    EXPECT_EQ(verbose->running.table_count, 0);
}

TEST_F(VerboseBlock, AFilterOfAnUnknownKindIsSkippedLikeAnyValue)
{
    platform.reply(configured(tlv(124, hex("1001 0009 00000007")) + tlv(88, counting(4))));
    EXPECT_EQ(read(&verbose->configured), uint32_t{OFP_RC_OK});
    EXPECT_EQ(verbose->configured.filter.filter_kind, 9);
    EXPECT_EQ(bytes_of(verbose->configured.vlan_loosen), words_16_16);
}

TEST_F(VerboseBlock, TablesFillTheSlotsInOrder)
{
    platform.reply(configured(filter_3 + tlv(69, hex("05 000000 00000102")) + tlv(88, counting(4)) +
                              tlv(69, hex("06 000000 00000304"))));
    EXPECT_EQ(read(&verbose->configured), uint32_t{OFP_RC_OK});
    EXPECT_EQ(verbose->configured.table_count, 2);
    EXPECT_EQ(bytes_of(verbose->configured.flow_table[0]), hex("05 000000 02010000"));
    EXPECT_EQ(bytes_of(verbose->configured.flow_table[1]), hex("06 000000 04030000"));
    EXPECT_EQ(bytes_of(verbose->configured.flow_table[2]), Bytes(8));

    platform.reply(running(filter_3 + tlv(70, hex("05 000000 00000102 00000506"))));
    EXPECT_EQ(read(&verbose->running), uint32_t{OFP_RC_OK});
    EXPECT_EQ(verbose->running.table_count, 1);
    EXPECT_EQ(bytes_of(verbose->running.flow_table_run[0]), hex("05 000000 02010000 06050000"));
}

TEST_F(VerboseBlock, The256thTableLiesOnTheMembersBehindTheSlots)
{
    platform.reply(configured(filter_3 + tables(69, 8, 255)));
    EXPECT_EQ(read(&verbose->configured), uint32_t{OFP_RC_OK});
    EXPECT_EQ(verbose->configured.table_count, 255);
    EXPECT_EQ(verbose->configured.flow_table[254][0], 254);
    EXPECT_EQ(bytes_of(verbose->configured.flow_entry_limit), Bytes(8));

    platform.reply(configured(filter_3 + tables(69, 8, 258)));
    EXPECT_EQ(read(&verbose->configured), uint32_t{OFP_RC_OK});
    EXPECT_EQ(verbose->configured.table_count, 2);
    EXPECT_EQ(bytes_of(verbose->configured.flow_table[0]), hex("0001") + Bytes(6)); // the 257th
    EXPECT_EQ(bytes_of(verbose->configured.flow_table[1]), hex("0101") + Bytes(6));
    EXPECT_EQ(bytes_of(verbose->configured.flow_table[2]), hex("0200") + Bytes(6));
    EXPECT_EQ(bytes_of(verbose->configured.flow_entry_limit), hex("ff00") + Bytes(6));
    EXPECT_EQ(bytes_of(verbose->configured.datapath_id), Bytes(16));

    const Bytes last = tlv(70, hex("ff 000000 00000001 00000002"));
    platform.reply(running(filter_3 + tables(70, 12, 255) + last));
    EXPECT_EQ(read(&verbose->running), uint32_t{OFP_RC_OK});
    EXPECT_EQ(verbose->running.table_count, 0);
    EXPECT_EQ(bytes_of(verbose->running.flow_entry_limit), hex("ff 000000 01000000"));
    EXPECT_EQ(bytes_of(verbose->running.datapath_id), hex("02000000") + Bytes(12));
}

TEST_F(VerboseBlock, VlansGoIntoTheCallersBitmapIfThereIsOne)
{
    const Bytes vlans = tlv(90, hex("00000004 00000020 01020304"));
    platform.reply(configured(filter_3 + vlans));
    EXPECT_EQ(read(&verbose->configured), uint32_t{OFP_RC_OK});
    EXPECT_EQ(verbose->configured.vlans, nullptr);

    alignas(8) uint8_t room[2][16];
    verbose->configured.vlans = Bitmap_CreateFromBuffer(32, room[0], sizeof room[0]);
    verbose->running.vlans = Bitmap_CreateFromBuffer(32, room[1], sizeof room[1]);
    platform.reply(configured(filter_3 + vlans));
    platform.reply(running(filter_3 + vlans + tlv(88, counting(4))));
    EXPECT_EQ(read(&verbose->configured), uint32_t{OFP_RC_OK});
    EXPECT_EQ(read(&verbose->running), uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(room[0]).slice(8, 4), hex("01020304"));
    EXPECT_EQ(bytes_of(room[1]).slice(8, 4), hex("01020304"));
    EXPECT_EQ(bytes_of(verbose->running.vlan_loosen), words_16_16);
}

TEST_F(VerboseBlock, BehavesLikeAnyQuery)
{
    OfpVerbose *record = verbose.get();
    expect_single_exchange(
        {.answers = {{message(0x10000006, {key}), {configured(filter_1 + tlv(9, counting(8)))}}},
         .run = [record] { return ofp::read_block(0x1001, &record->configured); }});
    expect_single_exchange(
        {.answers = {{message(0x10000007, {key}), {running(filter_1 + tlv(9, counting(8)))}}},
         .run = [record] { return ofp::read_block(0x1001, &record->running); }});
}
