#include <gtest/gtest.h>

#include "flow/rules.h"

using namespace test;

namespace {

Bytes filled(const Rule &rule)
{
    Bytes out(50000, 0xee);
    out.resize(OFP_encodeoxm_Fill(&rule.item.match, out.size(), out.data()));
    return out;
}

Bytes header(uint32_t oxm_class, uint32_t field, uint8_t length, uint64_t masked)
{
    Bytes out(4, 0xee);
    OFP_encodeoxm_Header(oxm_class, field, length, masked, out.data());
    return out;
}

} // namespace

TEST(OxmFill, HeaderTakesTheLowSixteenBitsOfTheClass)
{
    EXPECT_EQ(header(static_cast<uint32_t>(-32768), 11, 4, 0), hex("8000 16 04"));
    EXPECT_EQ(header(static_cast<uint32_t>(-1), 60, 2, 0), hex("ffff 78 02"));
}

TEST(OxmFill, HeaderAnnouncesAMaskByTheBitOfItsOwnField)
{
    EXPECT_EQ(header(0x8000, 11, 4, uint64_t{1} << 12), hex("8000 16 04"));
    EXPECT_EQ(header(0x8000, 11, 4, uint64_t{1} << 11), hex("8000 17 08"));
    EXPECT_EQ(header(0xffff, 63, 2, uint64_t{1} << 63), hex("ffff 7f 04"));
    EXPECT_EQ(header(0xffff, 64, 2, ~uint64_t{0}), hex("ffff 80 02")); // no such mask bit
}

TEST(OxmFill, HeaderDoublesTheLengthModulo128)
{
    EXPECT_EQ(header(0x8000, 0, 252, 1), hex("8000 01 f8"));
    EXPECT_EQ(header(0x8000, 0, 128, 1), hex("8000 01 00"));
    EXPECT_EQ(header(0x8000, 0, 252, 0), hex("8000 00 fc"));
}

TEST(OxmFill, AMatchOnTheIngressPortAlone)
{
    EXPECT_EQ(filled(Rule(7)), hex("0001 000c  8000 00 04 00000007  00000000"));
}

TEST(OxmFill, AnEmptyMatch) { EXPECT_EQ(filled(Rule()), hex("0001 0004 00000000")); }

TEST(OxmFill, FieldsAscendAndThePaddingIsZero)
{
    Rule rule;
    rule.has({63, 10, 5, 39, 60}).masks({39});
    rule.item.match.eth_type = 0x86dd;
    rule.item.match.ip_proto = 6;
    rule.ipv6.ipv6_exthdr = 0x101;
    rule.mask.ipv6_exthdr = 0x1ff;
    rule.item.match.vrf = 9;
    rule.item.match.cvlan_vid = 5;
    EXPECT_EQ(filled(rule), hex("0001 0023"
                                "8000 0a 02 86dd"
                                "8000 14 01 06"
                                "8000 4f 04 0101 01ff"
                                "ffff 78 02 0009"
                                "ffff 7e 02 1005"
                                "0000000000"));
}

TEST(OxmFill, PadsEveryRemainderOfEight)
{
    // 4 + 5 per one-byte field: lengths 9, 14, 19, 24, ...
    Rule rule;
    const unsigned bits[] = {7, 8, 9, 10, 19, 20, 35, 36};
    size_t length = 4;
    for (unsigned bit : bits) {
        rule.has({bit});
        length += 5;
        const Bytes match = filled(rule);
        EXPECT_EQ(match.size(), (length + 7) / 8 * 8);
        EXPECT_EQ(match.u16(2), length);
        EXPECT_EQ(match.slice(length), Bytes(match.size() - length, 0));
    }
}

TEST(OxmFill, UnassignedFieldBitsAreNothing)
{
    Rule rule(7);
    rule.item.match.fields |= 0x03ffff00'00000000;
    rule.mask.masked = 0x03ffff00'00000000;
    EXPECT_EQ(filled(rule), filled(Rule(7)));
}

TEST(OxmFill, ExperimenterMatchesFollowTheFields)
{
    Rule rule(7);
    rule.experimenter(47, hex("0201"));
    EXPECT_EQ(filled(rule), hex("0001 0016  8000 00 04 00000007  ffff 5e 06 00000fe2 0102  0000"));
}

TEST(OxmFill, ExperimenterMatchesAloneMakeAMatch)
{
    Rule rule;
    rule.experimenter(37, hex("01000000")).experimenter(37, hex("02000000"));
    EXPECT_EQ(filled(rule), hex("0001 001c"
                                "ffff 4a 08 00000fe2 00000001"
                                "ffff 4a 08 00000fe2 00000002"
                                "00000000"));
    EXPECT_EQ(OFP_encodeoxm_GetOxmLen(&rule.item.match), 8u);
}

TEST(OxmFill, AllFieldsTogether)
{
    Rule rule;
    rule.interfaces(1);
    rule.item.match.fields = ~uint64_t{0};
    const Bytes match = filled(rule);
    // headers of 40 + 6 fields, values of 178 + 80 + 8 + 2 + 1 + 4 + 2 bytes
    const size_t values = 4 + 4 + 8 + 6 + 6 + 2 + 2 + 4 + 8 + 12 + 2 + 2 + 8 + 12 + 32 + 4 + 2 +
                          16 + 12 + 4 + 2 + 4 + 8 + 2;
    EXPECT_EQ(match.u16(2), 4 + 46 * 4 + values + 80 + 8 + 2 + 1 + 4 + 2);
}
