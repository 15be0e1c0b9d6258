#include <cerrno>

#include "query/query_case.h"

using namespace test;

namespace {

class DebugQuery : public PlatformTest {};

const Bytes packet_request = message(0x10000012, {tlv(71, hex("0102 0304") + Bytes(92))});
const Bytes packet_reply = message(0x20000013, {tlv(72, counting(32))});

} // namespace

TEST_F(DebugQuery, InfoSendsTheCallersRecordAndReplacesIt)
{
    auto debug = record_of<OfpGlbDebug>(hex("0201 0403"));
    platform.reply(message(0x20000012, {tlv(71, counting(96))}));
    EXPECT_EQ(OFP_get_GlbDbgInfo(&debug), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent,
              std::vector({message(0x10000011, {tlv(71, hex("0102 0304") + Bytes(92))})}));
    EXPECT_EQ(debug.value_u16_0, 0x0102);
    EXPECT_EQ(debug.value_u64_16, 0x1112131415161718u);
    EXPECT_EQ(debug.value_u32_88, 0x595a5b5cu);
    EXPECT_EQ(bytes_of(debug.opaque_72), counting(96).slice(72, 16));
}

TEST_F(DebugQuery, InfoIsKeptWhenNoneCame)
{
    OfpGlbDebug debug;
    fill_record(&debug, sizeof debug, counting(96));
    platform.reply(result_reply(0));
    EXPECT_EQ(OFP_get_GlbDbgInfo(&debug), uint32_t{OFP_RC_OK});
    EXPECT_EQ(OFP_get_GlbDbgInfo(&debug), uint32_t{OFP_RC_NO_REPLY});
    EXPECT_EQ(bytes_of(debug), counting(96));
}

TEST_F(DebugQuery, InfoBehavesLikeAnyQuery)
{
    expect_single_exchange({.answers = {{message(0x10000011, {tlv(71, Bytes(96))}),
                                         {message(0x20000012, {tlv(71, counting(96))})}}},
                            .run =
                                [] {
                                    OfpGlbDebug debug{};
                                    return OFP_get_GlbDbgInfo(&debug);
                                },
                            .any_code = false});
}

TEST_F(DebugQuery, PacketsAreTaken)
{
    platform.reply(packet_reply);
    uint64_t counters[3] = {0xee, 0xee, 0xee};
    uint16_t value = 0xee;
    EXPECT_EQ(OFP_get_GlbDbgInfoPkt(0x0102, 0x0304, counters, &value), uint32_t{OFP_RC_OK});
    EXPECT_EQ(platform.sent, std::vector({packet_request}));
    EXPECT_EQ(counters[0], 0x1112131415161718u);
    EXPECT_EQ(counters[1], 0x191a1b1c1d1e1f20u);
    EXPECT_EQ(counters[2], 0xeeu);
    EXPECT_EQ(value, 0x090a);

    platform.reply(packet_reply);
    counters[0] = 0;
    EXPECT_EQ(OFP_get_GlbDbgInfoPkt(0x0102, 0x0304, counters, nullptr), uint32_t{OFP_RC_OK});
    EXPECT_EQ(counters[0], 0x1112131415161718u);
}

TEST_F(DebugQuery, PacketsAreWrittenWheneverTheRequestWasSent)
{
    const auto query = [](uint32_t code, uint64_t expected) {
        uint64_t counters[2] = {0xee, 0xee};
        uint16_t value = 0xee;
        EXPECT_EQ(OFP_get_GlbDbgInfoPkt(1, 2, counters, &value), code);
        EXPECT_EQ(counters[0], expected);
        EXPECT_EQ(counters[1], expected);
        EXPECT_EQ(value, expected);
    };
    query(OFP_RC_NO_REPLY, 0);
    platform.reply(result_reply(0x77));
    query(0x77, 0);
    platform.reply(result_reply(0));
    query(OFP_RC_OK, 0);
    platform.next("SOCK_Send", {-1, EPIPE});
    query(OFP_RC_FAILED, 0xee);
    platform.next("SOCK_Connect", {-1, ENOENT});
    query(OFP_RC_NO_REPLY, 0xee);
    platform.daemon_runs(false);
    query(OFP_RC_DAEMON_DOWN, 0xee);
}

TEST_F(DebugQuery, PacketsBehaveLikeAnyQuery)
{
    expect_single_exchange({.answers = {{packet_request, {packet_reply}}},
                            .run =
                                [] {
                                    uint64_t counters[2];
                                    uint16_t value;
                                    return OFP_get_GlbDbgInfoPkt(0x0102, 0x0304, counters, &value);
                                },
                            .any_code = false});
}
