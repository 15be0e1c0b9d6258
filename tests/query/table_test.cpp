#include <cerrno>
#include <cstring>

#include "double/sweep.h"
#include "ofp/query.h"
#include "ofp/result.h"

using namespace test;

namespace {

class Table : public PlatformTest {};

// Instance 4097, table 5.
const Bytes table_key = hex("000e 0004 1001 05 00");

template <typename Record>
Record preset()
{
    Record record;
    std::memset(&record, 0xee, sizeof record);
    return record;
}

} // namespace

TEST_F(Table, InfoAsksForTheTableAndTakesItsRecord)
{
    platform.reply(message(0x2000000b, {tlv(55, hex("00000001 00000002 00000003 00000004" // counts
                                                    "1001 0006 0007 05 00 0008 0000"))}));
    auto info = preset<OfpTableInfo>();
    EXPECT_EQ(OFP_get_TableInfo(0x1001, 5, &info), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x1000000a, {table_key})}));
    EXPECT_EQ(bytes_of(info), hex("01000000 02000000 03000000 04000000"
                                  "0110 0600 0700 05 00 0800 0000"));
}

TEST_F(Table, InfoIsUntouchedByAResultReply)
{
    platform.reply(result_reply(0));
    auto info = preset<OfpTableInfo>();
    EXPECT_EQ(OFP_get_TableInfo(0x1001, 5, &info), uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(info), Bytes(28, 0xee));
}

TEST_F(Table, MibInfoIsAnsweredWithItsOwnCode)
{
    const Bytes value = hex("1001 05 00000001 00000002 00000003");
    platform.reply(message(0x10000029, {tlv(209, value)}));
    auto info = preset<OfpMibTableInfo>();
    EXPECT_EQ(OFP_get_MibGetTableInfo(0x1001, 5, &info), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x10000029, {table_key})}));
    EXPECT_EQ(bytes_of(info), hex("0110 05 01000000 02000000 03000000"));

    platform.reply(message(0x20000029, {tlv(209, Bytes(15))}));
    EXPECT_EQ(OFP_get_MibGetTableInfo(0x1001, 5, &info), uint32_t{OFP_RC_OK});
    EXPECT_EQ(uint32_t{info.max_rules}, 1u); // a foreign reply: nothing was taken
}

TEST_F(Table, MibNextMovesTheKeyOn)
{
    platform.reply(message(0x1000002a, {tlv(209, hex("1002 07 00000001 00000002 00000003"))}));
    uint16_t instance_id = 0x1001;
    uint8_t table_id = 5;
    auto info = preset<OfpMibTableInfo>();
    EXPECT_EQ(OFP_get_MibGetNextTableInfo(&instance_id, &table_id, &info), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x1000002a, {table_key})}));
    EXPECT_EQ(instance_id, 0x1002);
    EXPECT_EQ(table_id, 7);
    EXPECT_EQ(uint32_t{info.max_rules}, 1u);
}

TEST_F(Table, MibNextTakesTheKeyFromTheRecordAlsoWithoutAReply)
{
    uint16_t instance_id = 0x1001;
    uint8_t table_id = 5;
    OfpMibTableInfo info{.instance_id = 0x2222, .table_id = 0x33};
    EXPECT_EQ(OFP_get_MibGetNextTableInfo(&instance_id, &table_id, &info),
              uint32_t{OFP_RC_NO_REPLY});
    EXPECT_EQ(instance_id, 0x2222);
    EXPECT_EQ(table_id, 0x33);
}

TEST_F(Table, MibNextKeepsTheKeyWhenNothingWasSent)
{
    uint16_t instance_id = 0x1001;
    uint8_t table_id = 5;
    OfpMibTableInfo info{.instance_id = 0x2222, .table_id = 0x33};
    platform.next("SOCK_Send", {-1, EPIPE});
    EXPECT_EQ(OFP_get_MibGetNextTableInfo(&instance_id, &table_id, &info), uint32_t{OFP_RC_FAILED});
    platform.daemon_runs(false);
    EXPECT_EQ(OFP_get_MibGetNextTableInfo(&instance_id, &table_id, &info),
              uint32_t{OFP_RC_DAEMON_DOWN});
    EXPECT_EQ(instance_id, 0x1001);
    EXPECT_EQ(table_id, 5);
}

TEST_F(Table, CacheInfoSendsThreeValues)
{
    Bytes value = counting(68);
    platform.reply(message(0x20000020, {tlv(153, value)}));
    auto info = preset<OfpCacheInfoRep>();
    EXPECT_EQ(OFP_get_CacheInfo(0x0102, 0x0304, 0x0506, &info), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent,
              std::vector({message(0x10000020, {tlv(152, hex("0102 0304 0506 0000"))})}));
    EXPECT_EQ(info.value_u16_12, 0x0d0e);
    EXPECT_EQ(info.value_u32_44, 0x2d2e2f30u);
    EXPECT_EQ(bytes_of(info).slice(0, 12), value.slice(0, 12));
}

TEST_F(Table, NextIdIsTheLowByte)
{
    platform.reply(message(0x2000000a, {tlv(35, hex("0b 000000"))}));
    uint8_t next = 0xee;
    EXPECT_EQ(OFP_get_NextTableID(0x1001, 255, &next), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x10000009, {tlv(14, hex("1001 ff 00"))})}));
    EXPECT_EQ(next, 11);
}

TEST_F(Table, NextIdIsZeroAfterAFailedExchangeAndUntouchedWithoutAChannel)
{
    uint8_t next = 0xee;
    EXPECT_EQ(OFP_get_NextTableID(1, 5, &next), uint32_t{OFP_RC_NO_REPLY});
    EXPECT_EQ(next, 0);
    next = 0xee;
    platform.next("SOCK_Send", {-1, EPIPE});
    EXPECT_EQ(OFP_get_NextTableID(1, 5, &next), uint32_t{OFP_RC_FAILED});
    EXPECT_EQ(next, 0);
    next = 0xee;
    platform.next("SOCK_Connect", {-1, ENOENT});
    EXPECT_EQ(OFP_get_NextTableID(1, 5, &next), uint32_t{OFP_RC_NO_REPLY});
    platform.daemon_runs(false);
    EXPECT_EQ(OFP_get_NextTableID(1, 5, &next), uint32_t{OFP_RC_DAEMON_DOWN});
    EXPECT_EQ(next, 0xee);
}

TEST_F(Table, EveryQueryHandlesFailures)
{
    struct Row {
        const char *name;
        Bytes reply;
        std::function<uint64_t()> run;
    };
    const Row rows[] = {
        {"TableInfo", message(0x2000000b, {tlv(55, Bytes(28))}),
         [] {
             OfpTableInfo info{};
             return OFP_get_TableInfo(1, 2, &info);
         }},
        {"MibGetTableInfo", message(0x10000029, {tlv(209, Bytes(15))}),
         [] {
             OfpMibTableInfo info{};
             return OFP_get_MibGetTableInfo(1, 2, &info);
         }},
        {"MibGetNextTableInfo", message(0x1000002a, {tlv(209, Bytes(15))}),
         [] {
             uint16_t instance_id = 1;
             uint8_t table_id = 2;
             OfpMibTableInfo info{};
             return OFP_get_MibGetNextTableInfo(&instance_id, &table_id, &info);
         }},
        {"CacheInfo", message(0x20000020, {tlv(153, Bytes(68))}),
         [] {
             OfpCacheInfoRep info{};
             return OFP_get_CacheInfo(1, 2, 3, &info);
         }},
        {"NextTableID", message(0x2000000a, {tlv(35, Bytes(4))}),
         [] {
             uint8_t next = 0;
             return OFP_get_NextTableID(1, 2, &next);
         }},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        const Operation operation{[&row] { platform.reply(row.reply); }, row.run};
        expect_failures_handled(operation, query_codes());
        expect_same_datagrams_on_any_stack(operation);
        // Every truncation of the reply is taken as far as it goes.
        for (size_t size = 1; size < row.reply.size(); ++size) {
            platform.reply(row.reply.slice(0, size));
            EXPECT_EQ(row.run(), uint32_t{OFP_RC_OK});
        }
        EXPECT_TRUE(platform.open_sockets().empty());
    }
}
