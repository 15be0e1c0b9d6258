#include "query/query_case.h"

using namespace test;

namespace {

class GroupQuery : public PlatformTest {};

const Bytes key = tlv(97, hex("01020304 1001 0000")); // group 0x01020304 of instance 4097
const Bytes next_request = message(0x10000014, {key});
const Bytes next_reply = message(0x20000015, {tlv(97, hex("01020305 1001 0000"))});
const Bytes smart_request =
    message(0x1000002b, {tlv(225, hex("01020304 05060708 090a0b0c 1001 0000"))});

OfpSmartGroupID smart_key() { return {0x01020304, 0x05060708, 0x090a0b0c, 0x1001, {}}; }

} // namespace

TEST_F(GroupQuery, TableIsTaken)
{
    const Bytes request = message(0x10000013, {tlv(95, hex("1001 0000"))});
    const Bytes reply = message(0x20000014, {tlv(96, hex("00000203 1001 0000"))});
    platform.reply(reply);
    auto table = preset<OfpGroupTable>();
    EXPECT_EQ(OFP_get_GroupTable(0x1001, &table), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({request}));
    EXPECT_EQ(bytes_of(table), hex("03020000 0110 0000"));

    table = preset<OfpGroupTable>();
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_get_GroupTable(0x1001, &table), uint32_t{OFP_RC_OK});
    EXPECT_EQ(bytes_of(table), Bytes(8, 0xee));

    expect_single_exchange({.answers = {{request, {reply}}},
                            .run =
                                [] {
                                    OfpGroupTable taken{};
                                    return OFP_get_GroupTable(0x1001, &taken);
                                },
                            .any_code = false});
}

TEST_F(GroupQuery, NextIdIsTaken)
{
    platform.reply(next_reply);
    uint32_t next = 0xee;
    EXPECT_EQ(OFP_get_NextGroupID(0x1001, 0x01020304, &next), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({next_request}));
    EXPECT_EQ(next, 0x01020305u);
}

TEST_F(GroupQuery, NextIdFailsOnAnyReplyWithoutIt)
{
    uint32_t next = 0xee;
    for (const Bytes &reply : {result_reply(0), message(0x20000014) + next_reply.slice(8),
                               message(0x20000015, {tlv(96, Bytes(8))}), message(0x20000015),
                               message(0x20000015, {tlv(96, {}), tlv(97, Bytes(8))})}) {
        platform.reply(reply);
        EXPECT_EQ(OFP_get_NextGroupID(0x1001, 0x01020304, &next), uint32_t{OFP_RC_FAILED});
    }
    EXPECT_EQ(next, 0xeeu);
}

TEST_F(GroupQuery, NextIdBehavesLikeAnyQuery)
{
    expect_single_exchange({.answers = {{next_request, {next_reply}}},
                            .run =
                                [] {
                                    uint32_t next = 0xee;
                                    const uint32_t code =
                                        OFP_get_NextGroupID(0x1001, 0x01020304, &next);
                                    EXPECT_EQ(next, code == 0 ? 0x01020305u : 0xeeu);
                                    return code;
                                },
                            .nothing = OFP_RC_FAILED,
                            .any_code = false});
}

TEST_F(GroupQuery, NextSmartIdReplacesTheFirstWordOfTheKey)
{
    platform.reply(next_reply);
    OfpSmartGroupID group = smart_key();
    EXPECT_EQ(OFP_get_NextSmartGroupID(&group), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({smart_request}));
    OfpSmartGroupID expected = smart_key();
    expected.group_id = 0x01020305;
    EXPECT_EQ(bytes_of(group), bytes_of(expected));
}

TEST_F(GroupQuery, NextSmartIdIsZeroAfterASuccessWithoutIt)
{
    for (const Bytes &reply : {result_reply(0), message(0x20000016)}) {
        platform.reply(reply);
        OfpSmartGroupID group = smart_key();
        EXPECT_EQ(OFP_get_NextSmartGroupID(&group), uint32_t{OFP_RC_OK});
        EXPECT_EQ(group.group_id, 0u);
        EXPECT_EQ(group.value_u32_4, smart_key().value_u32_4);
    }
}

TEST_F(GroupQuery, NextSmartIdKeepsTheKeyOnFailure)
{
    const auto expect_kept = [](uint32_t code) {
        OfpSmartGroupID group = smart_key();
        EXPECT_EQ(OFP_get_NextSmartGroupID(&group), code);
        EXPECT_EQ(bytes_of(group), bytes_of(smart_key()));
    };
    platform.reply(result_reply(0x77));
    expect_kept(0x77);
    expect_kept(OFP_RC_NO_REPLY);
    platform.next("SOCK_Send", {1});
    expect_kept(OFP_RC_FAILED);
    platform.daemon_runs(false);
    expect_kept(OFP_RC_DAEMON_DOWN);
}

TEST_F(GroupQuery, NextSmartIdBehavesLikeAnyQuery)
{
    expect_single_exchange({.answers = {{smart_request, {next_reply}}},
                            .run =
                                [] {
                                    OfpSmartGroupID group = smart_key();
                                    return OFP_get_NextSmartGroupID(&group);
                                },
                            .any_code = false});
}

TEST_F(GroupQuery, SummaryHandsOverTheDatagram)
{
    const Bytes request = message(0x10000015, {key});
    const Bytes reply = message(0x20000016, {tlv(98, counting(48)), tlv(99, counting(32))});
    platform.reply(reply);
    Bytes buffer(200, 0xee);
    uint64_t length = 99;
    EXPECT_EQ(OFP_get_GroupSummary(0x1001, 0x01020304, buffer.size(), buffer.data(), &length), 0u);
    EXPECT_EQ(platform.sent, std::vector({request}));
    EXPECT_EQ(length, reply.size());
    EXPECT_EQ(buffer, reply + Bytes(200 - reply.size(), 0xee));

    length = 99;
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_get_GroupSummary(0x1001, 0x01020304, buffer.size(), buffer.data(), &length), 0u);
    EXPECT_EQ(length, 99u);

    expect_single_exchange({.answers = {{request, {reply}}}, .run = [] {
                                uint8_t space[200];
                                uint64_t received;
                                return OFP_get_GroupSummary(0x1001, 0x01020304, sizeof space, space,
                                                            &received);
                            }});
}
