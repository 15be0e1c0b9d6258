// The library's encoder and the decoder here, which know nothing of each other, agree.
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include <gtest/gtest.h>

#include "flow/flow_decode.h"
#include "flow_record.h"
#include "ofp.h"

namespace flow_test {
namespace {

using namespace ofpctl;

using Message = std::vector<uint8_t>;

// The flow-mod that the library makes of an item, without its envelope.
Message flow_mod_of(const OfpFlowItem &item)
{
    constexpr std::size_t envelope = 8 + 20 + 4; // message head, client head, TLV header
    constexpr std::size_t barrier = 12;
    Message datagram(1 << 17);
    OfpFlowRuleCtx context{};
    context.table_id = 200;
    const uint8_t head[16] = {};
    const uint64_t size =
        OFP_encode_FlowRule(&context, head, 1, &item, datagram.size(), datagram.data());
    EXPECT_GT(size, envelope + barrier);
    datagram.resize(size - barrier);
    datagram.erase(datagram.begin(), datagram.begin() + envelope);
    return datagram;
}

std::string decoded(std::span<const uint8_t> message)
{
    FlowDecodeResult result = decode_flow_mod(message);
    if (const auto *wrong = std::get_if<std::string>(&result))
        return "wrong: " + *wrong;
    const Flow &flow = std::get<Flow>(result);
    return format_flow(*flow.item, *flow.table);
}

TEST(FlowDecode, BringsBackWhateverTheLibraryEncodes)
{
    Random random(8);
    for (int i = 0; i < 5000; ++i) {
        const auto record = random_record(random);
        ASSERT_EQ(OFP_encodeoxm_CheckMatch(&record->match()), 0U);
        FlowDecodeResult result = decode_flow_mod(flow_mod_of(record->item));
        if (const auto *wrong = std::get_if<std::string>(&result))
            FAIL() << *wrong << "\n" << format_flow(record->item);
        const Flow &flow = std::get<Flow>(result);
        ASSERT_EQ(carried(*flow.item), carried(record->item)) << format_flow(record->item);
        ASSERT_EQ(flow.table, 200);
    }
}

TEST(FlowDecode, WhatLoadsIsEncodedAndBroughtBackInTheSameWords)
{
    Random random(9);
    for (int i = 0; i < 3000; ++i) {
        const std::string line = format_flow(random_record(random)->item);
        const FlowItemPtr item = parsed(line);
        ASSERT_EQ(OFP_encodeoxm_CheckMatch(&item->match), 0U) << line;
        ASSERT_EQ(decoded(flow_mod_of(*item)), line);
    }
}

TEST(FlowDecode, LongInterfaceListsComeInSeveralEntries)
{
    for (const std::string_view list : {"1", "1-62", "1-63", "1-124", "5:1-9998:7"}) {
        const std::string line = "table=200,priority=1,batch_if=" + std::string(list);
        const FlowItemPtr item = parsed(line + ",actions=drop");
        EXPECT_EQ(decoded(flow_mod_of(*item)), line + ",actions=drop");
    }
}

// priority 100, tcp, nw_src 10.0.0.0/8, output 5
Message five_tuple()
{
    return {
        0x04, 0x0e, 0x00, 0x68, 0,    0,    0, 0,    // version, flow-mod, length 104, xid
        0,    0,    0,    0,    0,    0,    0, 0,    // cookie
        0,    0,    0,    0,    0,    0,    0, 0,    // cookie mask
        0xc8, 0x00, 0,    0,    0,    0,    0, 0x64, // table 200, add, timeouts, priority
        0xff, 0xff, 0xff, 0xff,                      // buffer
        0xff, 0xff, 0xff, 0xff,                      // out port
        0xff, 0xff, 0xff, 0xff,                      // out group
        0x00, 0x1e, 0,    0,                         // flags, pad
        0x00, 0x01, 0x00, 0x1b,                      // match: OXM, 27 bytes
        0x80, 0x00, 0x0a, 0x02, 0x08, 0x00,          // eth_type 0x0800
        0x80, 0x00, 0x14, 0x01, 0x06,                // ip_proto 6
        0x80, 0x00, 0x17, 0x08, 10,   0,    0, 0,    255, 0, 0, 0, // ipv4_src 10.0.0.0/255.0.0.0
        0,    0,    0,    0,    0,                                 // pad
        0x00, 0x03, 0x00, 0x18, 0,    0,    0, 0,                  // write-actions, 24 bytes
        0x00, 0x00, 0x00, 0x10, 0,    0,    0, 5,                  // output 5
        0,    0,    0,    0,    0,    0,    0, 0,                  // max_len 0, pad
    };
}

TEST(FlowDecode, ReadsTheBytesOfTheStandard)
{
    EXPECT_EQ(decoded(five_tuple()), "table=200,priority=100,tcp,nw_src=10.0.0.0/8,"
                                     "actions=write_actions(output:5)");
}

// A whole mask is the field alone, an empty one no field; bits outside do not count.
TEST(FlowDecode, MasksComeBackInTheirCanonicalForm)
{
    constexpr std::size_t value = 67;
    constexpr std::size_t mask = 71;
    Message message = five_tuple();
    const auto with = [&](std::initializer_list<uint8_t> bytes) {
        std::copy(bytes.begin(), bytes.end(), message.begin() + mask);
        return decoded(message);
    };
    ASSERT_EQ(message[value], 10);
    EXPECT_EQ(with({255, 255, 255, 255}),
              "table=200,priority=100,tcp,nw_src=10.0.0.0,actions=write_actions(output:5)");
    EXPECT_EQ(with({0, 0, 0, 0}), "table=200,priority=100,tcp,actions=write_actions(output:5)");
    EXPECT_EQ(with({2, 0, 0, 0}),
              "table=200,priority=100,tcp,nw_src=2.0.0.0/2.0.0.0,actions=write_actions(output:5)");
}

TEST(FlowDecode, OtherRulesAreToldApart)
{
    struct Row {
        std::size_t at;
        std::initializer_list<uint8_t> bytes;
        std::string_view told;
    };
    for (const auto &[at, bytes, told] : std::initializer_list<Row>{
             {0, {5}, "no flow-mod: OFPBRC_BAD_VERSION"},
             {1, {15}, "no flow-mod: OFPBRC_BAD_TYPE"},
             {3, {0x70}, "no flow-mod: OFPBRC_BAD_LEN"},
             {49, {0}, "no flow-mod: OFPBMC_BAD_TYPE"},
             {50, {0xff}, "no flow-mod: OFPBMC_BAD_LEN"},
             {51, {0x1a}, "the match ends within a field"},
             {52, {0x80, 0x01}, "match field 0x8001/5 is not known"},
             {54, {0x58}, "match field 0x8000/44 is not known"},
             {54, {0x0b, 0x02}, "eth_type has 1 bytes instead of 2"},
             {54, {0x0e}, "vlan_pcp has 2 bytes instead of 1"},
             {54, {0x0c}, "vlan_vid lacks the present bit"},
             {60, {0x11, 0x00}, "ip_dscp has 0 bytes instead of 1"},
             {60, {0x12, 0x01, 0xff}, "ip_ecn has bits beyond its 2"},
             {63, {0xff, 0xff, 0x4a, 0x08}, "experimenter is not this system's"},
             {63, {0xff, 0xff, 0x77, 0x08}, "batch_if is not this system's"},
             {63, {0xff, 0xff, 0x79, 0x08}, "vrf has 4 bytes instead of 2"},
             {63, {0xff, 0xff, 0x74, 0x08}, "ip_range has 12 bytes"},
             {63, {0xff, 0xff, 0x82, 0x08}, "match field 0xffff/65 is not known"},
             {80, {0x00, 0x04}, "instruction 4 is not of this library"},
             {83, {0x10}, "the actions end within one"},
             {83, {0x19}, "the instructions end within one"},
             {88, {0x00, 0x12}, "action 18 is not of this library"},
             {88, {0xff, 0xff}, "an experimenter action is not this system's"},
             {88,
              {0xff, 0xff, 0x00, 0x10, 0, 0, 0x0f, 0xe2, 0, 0, 0, 0},
              "experimenter action 0 has 16 bytes"},
             {91, {0x08}, "the actions end within one"},
         }) {
        Message message = five_tuple();
        std::copy(bytes.begin(), bytes.end(), message.begin() + static_cast<std::ptrdiff_t>(at));
        EXPECT_EQ(decoded(message), "wrong: " + std::string(told)) << at;
    }
}

TEST(FlowDecode, DamagedMessagesNeverHarm)
{
    Random random(10);
    for (int i = 0; i < 3000; ++i) {
        Message message = flow_mod_of(random_record(random)->item);
        for (uint64_t n = random() % 4; n > 0; --n)
            message[random() % message.size()] = static_cast<uint8_t>(random());
        if (random() % 4 == 0)
            message.resize(random() % message.size());
        message.shrink_to_fit();
        FlowDecodeResult result = decode_flow_mod(message);
        if (const auto *wrong = std::get_if<std::string>(&result))
            ASSERT_FALSE(wrong->empty());
        else
            ASSERT_FALSE(format_flow(*std::get<Flow>(result).item).empty());
    }
}

} // namespace
} // namespace flow_test
