#include "verbs/packet_reply.h"

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace ofpctl {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes hex(std::string_view digits)
{
    std::string packed;
    for (const char digit : digits)
        if (digit != ' ')
            packed += digit;
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < packed.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoul(packed.substr(i, 2), nullptr, 16)));
    return bytes;
}

// Two tables, the first with a better rule that two fields kept from matching.
const Bytes whole =
    hex("0001 0004 60000002"
        "6003 0008 00 00 0000 00000002"                 // carried out, two outputs
        "6004 0008 00000007 0064 0a 00"                 // table 10, rule 7
        "6005 0008 00000009 00c8 0002"                  // not rule 9
        "6006 0010 80001908 0a000100 ffffff00 0a000001" // nw_dst 10.0.1.0/24
        "6006 0004 ffff7450"                            // an IP range
        "6004 0008 00000003 0001 c8 00"                 // table 200, rule 3
        "6007 0018 0016 0008 00000007 0000 0010 00000002 0000000000000000" // group:7, output:2
        "6008 0010 00000002 00000007 00000001 00000000"
        "6008 0010 00000001 ffffffff 00000000 00000001");

TEST(PacketReply, IsReadInFull)
{
    const auto reply = read_packet_reply(whole);
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->end, agent::PacketEnd::carried_out);
    EXPECT_EQ(reply->output_count, 2u);
    ASSERT_EQ(reply->visits.size(), 2u);
    EXPECT_EQ(reply->visits[0].table, 10);
    EXPECT_EQ(reply->visits[0].rule, 7u);
    EXPECT_FALSE(reply->visits[1].better);
    ASSERT_TRUE(reply->visits[0].better);
    const PacketNearMiss &miss = *reply->visits[0].better;
    EXPECT_EQ(miss.rule, 9u);
    EXPECT_EQ(miss.priority, 200);
    ASSERT_EQ(miss.differences.size(), 2u);
    EXPECT_EQ(miss.differences[0].field, "nw_dst");
    EXPECT_EQ(miss.differences[0].wanted, "10.0.1.0/24");
    EXPECT_EQ(miss.differences[0].has, "10.0.0.1");
    EXPECT_EQ(miss.differences[1].field, "ip_range");
    EXPECT_TRUE(miss.differences[1].has.empty());
    EXPECT_EQ(reply->actions, "group:7,output:2");
    ASSERT_EQ(reply->outputs.size(), 2u);
    EXPECT_EQ(reply->outputs[0].group_id, 7u);
    EXPECT_EQ(reply->outputs[1].flags, agent::PACKET_HELD_BACK);
}

TEST(PacketReply, CutShortWithinATlvIsNone)
{
    // Where one TLV ends and the next begins.
    std::vector<std::size_t> ends = {0};
    while (ends.back() < whole.size())
        ends.push_back(
            ends.back() + 4 +
            static_cast<std::size_t>(whole[ends.back() + 2] << 8 | whole[ends.back() + 3]));
    for (std::size_t length = 0; length < whole.size(); length++) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        const bool at_end = std::find(ends.begin(), ends.end(), length) != ends.end();
        EXPECT_EQ(read_packet_reply(cut).has_value(), at_end && length >= ends[2]) << length;
    }
}

TEST(PacketReply, WithAnyByteChangedIsReadOrRefused)
{
    std::size_t read = 0;
    std::size_t refused = 0;
    for (std::size_t at = 0; at < whole.size(); at++) {
        for (const uint8_t change : std::initializer_list<uint8_t>{0x01, 0x80, 0xff}) {
            Bytes damaged = whole;
            damaged[at] ^= change;
            ++(read_packet_reply(damaged) ? read : refused);
        }
    }
    EXPECT_GT(read, 100u);
    EXPECT_GT(refused, 50u);
}

TEST(PacketReply, OfAnotherMessageOrWithAMissWithoutAVisitIsNone)
{
    EXPECT_FALSE(read_packet_reply(hex("0001 0004 60000001 6003 0008 0000000000000000")));
    EXPECT_FALSE(read_packet_reply(hex("0001 0004 60000002")));
    EXPECT_FALSE(read_packet_reply(
        hex("0001 0004 60000002 6003 0008 0000000000000000 6005 0008 0000000900c80002")));
    EXPECT_FALSE(read_packet_reply(
        hex("0001 0004 60000002 6003 0008 0000000000000000 6004 0008 0000000700640a00"
            "6006 0004 ffff7450")));
}

} // namespace
} // namespace ofpctl
