#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "ofp.h"
#include "wire/datagram.h"
#include "wire/decode.h"

namespace ofpctl {
namespace {

const std::vector<uint8_t> echo_time{
    0x00, 0x01, 0x00, 0x04, 0x00, 0x00, 0x00, 0x06, // message head: set echo time
    0x00, 0x08, 0x00, 0x08,                         // TLV 8, 8 bytes
    0x00, 0x00, 0x00, 0x0a, 0x00, 0x01, 0x00, 0x00, // 10 seconds, instance 1
};

std::string json_of(const std::vector<uint8_t> &datagram)
{
    std::string out;
    JsonWriter json(out);
    json.begin_object();
    write_datagram(json, datagram);
    json.end();
    return out;
}

TEST(DatagramText, ShowsEveryByteBesideItsMember)
{
    EXPECT_EQ(datagram_text(echo_time),
              "SET_ECHO_TIME (6), 20 bytes\n"
              "  0000  00 01 00 04              TLV 1 MsgHead, 4 bytes\n"
              "  0004  00 00 00 06              code = 0x00000006 SET_ECHO_TIME\n"
              "  0008  00 08 00 08              TLV 8 EchoTime, 8 bytes\n"
              "  000c  00 00 00 0a              interval = 10\n"
              "  0010  00 01                    instance_id = 1\n"
              "  0012  00 00                    reserved_6\n");
}

TEST(DatagramText, NamesResultCodes)
{
    const std::vector<uint8_t> reply{0x00, 0x01, 0x00, 0x04, 0x20, 0x00, 0x00, 0x01,
                                     0x00, 0x02, 0x00, 0x04, 0x42, 0x30, 0x01, 0x15};
    const std::string text = datagram_text(reply);
    EXPECT_NE(text.find("RESULT (0x20000001), 16 bytes\n"), std::string::npos) << text;
    EXPECT_NE(text.find("code = 0x42300115 AGENT_NO_INSTANCE\n"), std::string::npos) << text;
}

TEST(DatagramText, AValueOfAnotherLengthIsShownAsBytes)
{
    std::vector<uint8_t> shorter(echo_time.begin(), echo_time.end() - 2);
    shorter[11] = 6;
    const std::string text = datagram_text(shorter);
    EXPECT_NE(
        text.find("  0008  00 08 00 06              TLV 8 EchoTime, 6 bytes; its record has 8 "
                  "bytes\n  000c  00 00 00 0a 00 01        value\n"),
        std::string::npos)
        << text;
}

TEST(DatagramText, WhatIsNoTlvIsShownAsSuch)
{
    const std::string cut = datagram_text({echo_time.begin(), echo_time.end() - 1});
    EXPECT_NE(cut.find("  0008  00 08 00 08 00 00 00 0a  no whole TLV\n  0010  00 01 00\n"),
              std::string::npos)
        << cut;
    EXPECT_EQ(datagram_text({}), "no message head, 0 bytes\n");
    EXPECT_EQ(datagram_text(std::vector<uint8_t>{1, 2}),
              "no message head, 2 bytes\n  0000  01 02                    no whole TLV\n");
}

TEST(DatagramText, AnUnknownTypeHasNoName)
{
    const std::vector<uint8_t> odd{0x00, 0x01, 0x00, 0x04, 0x12, 0x34, 0x56,
                                   0x78, 0xff, 0xff, 0x00, 0x01, 0x07};
    EXPECT_EQ(datagram_text(odd), "unknown message (0x12345678), 13 bytes\n"
                                  "  0000  00 01 00 04              TLV 1 MsgHead, 4 bytes\n"
                                  "  0004  12 34 56 78              code = 305419896\n"
                                  "  0008  ff ff 00 01              TLV 65535, 1 byte\n"
                                  "  000c  07                       value\n");
}

TEST(DatagramText, VlansAndAddressesAreReadable)
{
    std::vector<uint8_t> vlans{0x00, 0x01, 0x00, 0x04, 0x00, 0x00, 0x00, 0x2f,
                               0x00, 0x5a, 0x00, 0x0c, 0x00, 0x00, 0x00, 0x04,
                               0x00, 0x00, 0x00, 0x20, 0x06, 0x00, 0x01, 0x00};
    EXPECT_NE(datagram_text(vlans).find("map = 1-2,16\n"), std::string::npos)
        << datagram_text(vlans);

    OfpCtrlCfg controller{};
    controller.address[0] = 0x010200c0; // as it lies
    uint8_t buffer[200];
    const uint64_t size = OFP_msg_EncapBasicMsg(buffer, sizeof buffer, OFP_MSG_SET_CTRL_CFG,
                                                OFP_TLV_CtrlCfg, sizeof controller, &controller);
    EXPECT_NE(datagram_text({buffer, size}).find("address = 192.0.2.1\n"), std::string::npos);
}

TEST(DatagramText, AGroupMessageCountsItsFirstHeaderTwice)
{
    std::vector<uint8_t> group{
        0x00, 0x01, 0x00, 0x04, 0x50, 0x00, 0x00, 0x04, // message head: delete group
        0x00, 0x7a, 0x00, 0x0c, 0x04, 0x0f, 0x00, 0x08, 0x00, 0x00, 0x00, 0x01, // 8 bytes, not 12
        0x00, 0x7a, 0x00, 0x08, 0x04, 0x14, 0x00, 0x08, 0x00, 0x00, 0x00, 0x02, // barrier
    };
    const DecodedDatagram decoded = decode_datagram(group);
    EXPECT_EQ(decoded.taken, group.size());
    ASSERT_EQ(decoded.tlvs.size(), 3U);
    EXPECT_EQ(decoded.tlvs[1].note, "its length counts the TLV's header");
    EXPECT_EQ(decoded.tlvs[2].note, "");
}

TEST(DatagramJson, HasTlvsWithTheirFields)
{
    EXPECT_EQ(
        json_of(echo_time),
        R"({"code":6,"message":"SET_ECHO_TIME","bytes":20,)"
        R"("hex":"000100040000000600080008)"
        R"(0000000a00010000","tlvs":[{"type":1,"name":"MsgHead","offset":0,"length":4,"fields":[)"
        R"({"name":"code","offset":4,"bytes":"00000006","number":"6",)"
        R"("value":"0x00000006 SET_ECHO_TIME"}]},)"
        R"({"type":8,"name":"EchoTime","offset":8,"length":8,"fields":[)"
        R"({"name":"interval","offset":12,"bytes":"0000000a","number":"10","value":"10"},)"
        R"({"name":"instance_id","offset":16,"bytes":"0001","number":"1","value":"1"},)"
        R"({"name":"reserved_6","offset":18,"bytes":"0000"}]}],"not_a_tlv":0})");
}

// Whatever arrives is shown whole: the fields of all TLVs and the rest cover every byte once.
TEST(Decode, CoversEveryByteOfAnything)
{
    std::mt19937 random(7);
    for (int round = 0; round < 20000; round++) {
        std::vector<uint8_t> datagram(random() % 200);
        for (uint8_t &byte : datagram)
            byte = static_cast<uint8_t>(random() % 4 == 0 ? random() : random() % 16);
        // Most types would be unknown otherwise, most lengths too long.
        for (std::size_t at = 0; at + 4 <= datagram.size();) {
            datagram[at] = 0;
            datagram[at + 1] = static_cast<uint8_t>(random() % 240);
            datagram[at + 2] = 0;
            at += std::size_t{4} + datagram[at + 3];
        }
        const DecodedDatagram decoded = decode_datagram(datagram);
        std::size_t at = 0;
        for (const DecodedTlv &tlv : decoded.tlvs) {
            ASSERT_EQ(tlv.offset, at);
            at += 4;
            for (const DecodedField &field : tlv.fields) {
                ASSERT_EQ(field.offset, at) << tlv.type << " " << field.name;
                at += field.size;
            }
        }
        ASSERT_EQ(at, decoded.taken);
        ASSERT_LE(at, datagram.size());
        ASSERT_FALSE(datagram_text(datagram).empty());
    }
}

} // namespace
} // namespace ofpctl
