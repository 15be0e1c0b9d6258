#include <cerrno>
#include <cstring>
#include <memory>

#include "double/memory.h"
#include "double/sweep.h"
#include "ofp/codec.h"
#include "ofp/flow.h"
#include "ofp/query.h"
#include "ofp/result.h"

using namespace test;

namespace {

class Rule : public PlatformTest {};

// Rule 0x01020304 of instance 4097, table 5; its table-miss rule.
const Bytes rule_key = tlv(56, hex("01020304 1001 05 00"));
const Bytes miss_key = tlv(56, hex("00000000 1001 05 00"));

const Bytes stats_value = hex("0000000000000001 0000000000000002 00000003 00000000");
const Bytes stats_record = hex("0100000000000000 0200000000000000 03000000 00000000");

OfpFRStatsInfo preset_stats()
{
    OfpFRStatsInfo stats;
    std::memset(&stats, 0xee, sizeof stats);
    return stats;
}

// A flow item that matches in_port 3.
struct Item {
    OfpMatchMask mask{};
    OfpFlowItem item{};
    Item()
    {
        item.match.fields = 1;
        item.match.in_port = 3;
        item.match.mask = &mask;
    }
};

const Bytes in_port_match = hex("0001 000c"         // OXM, 12 bytes
                                "80000004 00000003" // in_port = 3
                                "00000000");        // to a multiple of 8

OfpRuleIDInfo key_of(uint32_t rule_id) { return {rule_id, 0x1001, 5, 0}; }

} // namespace

TEST_F(Rule, InfoTakesTheDatagramIntoALargeBuffer)
{
    const Bytes reply = message(0x2000000e, {tlv(57, counting(104))});
    platform.reply(reply);
    Bytes buffer(OFP_LARGE_DATAGRAM_SIZE, 0xee);
    uint64_t length = 99;
    EXPECT_EQ(OFP_get_RuleInfo(0x1001, 5, 0x01020304, buffer.data(), &length), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x1000000d, {rule_key})}));
    EXPECT_EQ(platform.calls("SOCK_Recv")[0].arguments[1], 49152u);
    EXPECT_EQ(length, reply.size());
    EXPECT_EQ(buffer.slice(0, length), reply);
}

TEST_F(Rule, MissInfoTakesTheDatagramIntoAnOrdinaryBuffer)
{
    const Bytes reply = message(0x20000010, {tlv(57, counting(104))});
    platform.reply(reply);
    Bytes buffer(OFP_DATAGRAM_SIZE, 0xee);
    uint64_t length = 99;
    EXPECT_EQ(OFP_get_MissRuleInfo(0x1001, 5, buffer.data(), &length), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x1000000f, {miss_key})}));
    EXPECT_EQ(platform.calls("SOCK_Recv")[0].arguments[1], 8192u);
    EXPECT_EQ(buffer.slice(0, length), reply);
}

TEST_F(Rule, RawQueriesLeaveTheLengthToAResultReply)
{
    Bytes buffer(OFP_LARGE_DATAGRAM_SIZE);
    uint64_t length = 99;
    for (uint32_t code : {0u, 0x40010005u}) {
        platform.reply(result_reply(code));
        platform.reply(result_reply(code));
        EXPECT_EQ(OFP_get_RuleInfo(1, 2, 3, buffer.data(), &length), code);
        EXPECT_EQ(OFP_get_MissRuleInfo(1, 2, buffer.data(), &length), code);
    }
    EXPECT_EQ(length, 99u);
}

TEST_F(Rule, StatsAreTakenAndConverted)
{
    platform.reply(message(0x2000000d, {tlv(33, stats_value)}));
    OfpFRStatsInfo stats = preset_stats();
    EXPECT_EQ(OFP_get_RuleStats(0x1001, 5, 0x01020304, &stats), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x1000000c, {rule_key})}));
    EXPECT_EQ(bytes_of(stats), stats_record);
}

TEST_F(Rule, StatsAreUntouchedByAResultReply)
{
    platform.reply(result_reply(0));
    OfpFRStatsInfo stats = preset_stats();
    EXPECT_EQ(OFP_get_RuleStats(1, 2, 3, &stats), uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(stats), bytes_of(preset_stats()));
}

TEST_F(Rule, MissStatsAreClearedFirst)
{
    platform.reply(result_reply(0));
    OfpFRStatsInfo stats = preset_stats();
    EXPECT_EQ(OFP_get_MissRuleStats(0x1001, 5, &stats), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x1000000e, {miss_key})}));
    EXPECT_EQ(bytes_of(stats), Bytes(24));

    platform.reply(message(0x2000000f, {tlv(33, stats_value)}));
    EXPECT_EQ(OFP_get_MissRuleStats(0x1001, 5, &stats), uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(stats), stats_record);

    platform.daemon_runs(false);
    EXPECT_EQ(OFP_get_MissRuleStats(0x1001, 5, &stats), uint32_t{OFP_RC_DAEMON_DOWN});
    EXPECT_EQ(bytes_of(stats), Bytes(24));
}

TEST_F(Rule, NextIdIsTaken)
{
    platform.reply(message(0x2000000c, {tlv(31, hex("01020305"))}));
    uint32_t next = 0xee;
    EXPECT_EQ(OFP_get_NextRuleID(0x1001, 5, 0x01020304, &next), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x1000000b, {rule_key})}));
    EXPECT_EQ(next, 0x01020305u);
}

TEST_F(Rule, NextNoEffectiveIdIsAnsweredWithItsOwnCode)
{
    platform.reply(message(0x10000025, {tlv(31, hex("01020305"))}));
    uint32_t next = 0xee;
    EXPECT_EQ(OFP_get_NextNoEffectiveRuleID(0x1001, 5, 0x01020304, &next), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x10000025, {rule_key})}));
    EXPECT_EQ(next, 0x01020305u);

    platform.reply(message(0x2000000c, {tlv(31, hex("01020306"))}));
    EXPECT_EQ(OFP_get_NextNoEffectiveRuleID(0x1001, 5, 0x01020304, &next), uint32_t{OFP_RC_OK});
    EXPECT_EQ(next, 0u); // a foreign reply
}

TEST_F(Rule, NextIdIsZeroAfterAFailedExchangeAndUntouchedWithoutAChannel)
{
    for (auto query : {OFP_get_NextRuleID, OFP_get_NextNoEffectiveRuleID}) {
        uint32_t next = 0xee;
        EXPECT_EQ(query(1, 2, 3, &next), uint32_t{OFP_RC_NO_REPLY});
        EXPECT_EQ(next, 0u);

        next = 0xee;
        platform.next("SOCK_Send", {1});
        EXPECT_EQ(query(1, 2, 3, &next), uint32_t{OFP_RC_FAILED});
        EXPECT_EQ(next, 0u);

        next = 0xee;
        platform.reply(result_reply(0x40010005));
        EXPECT_EQ(query(1, 2, 3, &next), uint32_t{OFP_RC_NOT_FOUND});
        EXPECT_EQ(next, 0u);

        next = 0xee;
        platform.next("SOCK_Socket", {-1, EMFILE});
        EXPECT_EQ(query(1, 2, 3, &next), uint32_t{OFP_RC_FAILED});
        platform.next("SOCK_Connect", {-1, ENOENT});
        EXPECT_EQ(query(1, 2, 3, &next), uint32_t{OFP_RC_NO_REPLY});
        platform.daemon_runs(false);
        EXPECT_EQ(query(1, 2, 3, &next), uint32_t{OFP_RC_DAEMON_DOWN});
        EXPECT_EQ(next, 0xeeu);
        platform.daemon_runs(true);
    }
}

TEST_F(Rule, NextIdByMatchSendsTheKeyAndTheMatch)
{
    platform.reply(message(0x2000000c, {tlv(31, hex("01020305"))}));
    const Item item;
    OfpRuleIDInfo key = key_of(0x01020304);
    EXPECT_EQ(OFP_get_NextRuleIDByMatch(&item.item, &key), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({message(0x10000026, {rule_key}) + in_port_match}));
    EXPECT_EQ(bytes_of(key), bytes_of(key_of(0x01020305)));
}

TEST_F(Rule, NextIdByMatchClearsTheKeyAfterAFailedExchange)
{
    const Item item;
    OfpRuleIDInfo key = key_of(7);
    EXPECT_EQ(OFP_get_NextRuleIDByMatch(&item.item, &key), uint32_t{OFP_RC_NO_REPLY});
    EXPECT_EQ(bytes_of(key), bytes_of(key_of(0)));

    key = key_of(7);
    memory::fail_at(1);
    EXPECT_EQ(OFP_get_NextRuleIDByMatch(&item.item, &key), uint32_t{OFP_RC_NO_RESOURCE});
    EXPECT_EQ(bytes_of(key), bytes_of(key_of(0)));
    EXPECT_EQ(platform.sent.size(), 1u);

    key = key_of(7);
    platform.daemon_runs(false);
    EXPECT_EQ(OFP_get_NextRuleIDByMatch(&item.item, &key), uint32_t{OFP_RC_DAEMON_DOWN});
    EXPECT_EQ(bytes_of(key), bytes_of(key_of(7)));
}

TEST_F(Rule, NextIdByMatchRefusesAMatchThatNoDatagramHolds)
{
    // 800 items of 64 bytes and their headers exceed 49152 bytes.
    struct alignas(8) String {
        uint32_t type = 38;
        uint16_t length = 64;
        uint16_t reserved = 0;
        uint32_t kind = 1;
        char text[60] = {'x'};
    } string;
    std::vector<OfpExpMatchItem *> items(800, reinterpret_cast<OfpExpMatchItem *>(&string));
    Item item;
    item.item.match.exp_match = {uint32_t(items.size()), items.data()};
    OfpRuleIDInfo key = key_of(7);
    EXPECT_EQ(OFP_get_NextRuleIDByMatch(&item.item, &key), uint32_t{OFP_RC_FAILED});
    EXPECT_TRUE(platform.sent.empty());
    EXPECT_EQ(key.rule_id, 0u);
}

TEST_F(Rule, EveryQueryHandlesFailures)
{
    static const Item item;
    struct Row {
        const char *name;
        Bytes reply;
        std::function<uint64_t()> run;
    };
    const auto buffer = std::make_shared<Bytes>(OFP_LARGE_DATAGRAM_SIZE);
    const Row rows[] = {
        {"RuleInfo", message(0x2000000e, {tlv(57, Bytes(104))}),
         [buffer] {
             uint64_t length = 0;
             return OFP_get_RuleInfo(1, 2, 3, buffer->data(), &length);
         }},
        {"MissRuleInfo", message(0x20000010, {tlv(57, Bytes(104))}),
         [buffer] {
             uint64_t length = 0;
             return OFP_get_MissRuleInfo(1, 2, buffer->data(), &length);
         }},
        {"RuleStats", message(0x2000000d, {tlv(33, Bytes(24))}),
         [] {
             OfpFRStatsInfo stats{};
             return OFP_get_RuleStats(1, 2, 3, &stats);
         }},
        {"MissRuleStats", message(0x2000000f, {tlv(33, Bytes(24))}),
         [] {
             OfpFRStatsInfo stats{};
             return OFP_get_MissRuleStats(1, 2, &stats);
         }},
        {"NextRuleID", message(0x2000000c, {tlv(31, Bytes(4))}),
         [] {
             uint32_t next = 0;
             return OFP_get_NextRuleID(1, 2, 3, &next);
         }},
        {"NextNoEffectiveRuleID", message(0x10000025, {tlv(31, Bytes(4))}),
         [] {
             uint32_t next = 0;
             return OFP_get_NextNoEffectiveRuleID(1, 2, 3, &next);
         }},
        {"NextRuleIDByMatch", message(0x2000000c, {tlv(31, Bytes(4))}),
         [] {
             OfpRuleIDInfo key = key_of(7);
             return OFP_get_NextRuleIDByMatch(&item.item, &key);
         }},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        const Operation operation{[&row] { platform.reply(row.reply); }, row.run};
        expect_failures_handled(operation, query_codes({{"malloc", OFP_RC_NO_RESOURCE}}));
        expect_same_datagrams_on_any_stack(operation);
        for (size_t size = 1; size < row.reply.size(); ++size) {
            platform.reply(row.reply.slice(0, size));
            EXPECT_EQ(row.run(), uint32_t{OFP_RC_OK});
        }
        EXPECT_TRUE(platform.open_sockets().empty());
    }
}
