#include <gtest/gtest.h>

#include "flow/rules.h"

using namespace test;

namespace {

using Encoder = uint64_t (*)(const OfpFRMatch *match, uint64_t room, uint8_t *out);

Bytes encoded(Encoder encode, const Rule &rule)
{
    Bytes out(50000, 0xee);
    out.resize(encode(&rule.item.match, out.size(), out.data()));
    return out;
}

// An OXM of batch interfaces first to last.
Bytes chunk(uint32_t first, uint32_t last, const char *header)
{
    Bytes oxm = hex(header) + hex("00000fe2");
    for (uint32_t i = first; i <= last; ++i)
        oxm += be32(i);
    return oxm;
}

} // namespace

TEST(OxmPrivate, WritesNothingWhileTheBitIsClear)
{
    Rule rule;
    rule.interfaces(3);
    rule.item.match.fields = 0;
    for (Encoder encode :
         {OFP_encodeoxm_PrivIPRange, OFP_encodeoxm_PrivBatchIf, OFP_encodeoxm_PrivVrf,
          OFP_encodeoxm_PrivFragment, OFP_encodeoxm_PrivOutPort, OFP_encodeoxm_PrivCVlanID})
        EXPECT_EQ(encoded(encode, rule), Bytes());
}

TEST(OxmPrivate, IpRangeIsTwentyWords)
{
    Rule rule;
    rule.has({58});
    Bytes expected = hex("ffff 74 50");
    for (uint32_t i = 0; i < 20; ++i) {
        rule.item.match.ip_range[i] = 0x01020300 + i;
        expected += be32(0x01020300 + i);
    }
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivIPRange, rule), expected);
}

TEST(OxmPrivate, VrfFragmentAndOutPortHaveAHeaderOfFourBytes)
{
    Rule rule;
    rule.has({60, 61, 62});
    rule.item.match.vrf = 0x0102;
    rule.item.match.fragment = 3;
    rule.item.match.out_port = 0x04050607;
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivVrf, rule), hex("ffff 78 02 0102"));
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivFragment, rule), hex("ffff 7a 01 03"));
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivOutPort, rule), hex("ffff 7c 04 04050607"));
}

TEST(OxmPrivate, FixedFieldsAnnounceAMaskButDoNotGrow)
{
    Rule rule;
    rule.has({58, 60, 61, 62}).masks({58, 60, 61, 62});
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivIPRange, rule), hex("ffff 75 a0") + Bytes(80, 0));
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivVrf, rule), hex("ffff 79 04 0000"));
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivFragment, rule), hex("ffff 7b 02 00"));
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivOutPort, rule), hex("ffff 7d 08 00000000"));
}

TEST(OxmPrivate, CustomerVlanCarriesThePresentBitInValueAndMask)
{
    Rule rule;
    rule.has({63});
    rule.item.match.cvlan_vid = 0xe064;
    rule.mask.cvlan_vid = 0xe0ff;
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivCVlanID, rule), hex("ffff 7e 02 1064"));
    rule.masks({63});
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivCVlanID, rule), hex("ffff 7f 04 1064 10ff"));
}

TEST(OxmPrivate, BatchInterfacesAreCutIntoChunksOf62)
{
    Rule none, one, whole, more;
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivBatchIf, none.has({59})), Bytes());
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivBatchIf, one.interfaces(1)), chunk(1, 1, "ffff 76 08"));
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivBatchIf, whole.interfaces(62)), chunk(1, 62, "ffff 76 fc"));
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivBatchIf, more.interfaces(63)),
              chunk(1, 62, "ffff 76 fc") + chunk(63, 63, "ffff 76 08"));
}

TEST(OxmPrivate, HundredAndThirtyInterfacesTakeThreeOxms)
{
    Rule rule;
    rule.interfaces(130);
    const Bytes oxms = encoded(OFP_encodeoxm_PrivBatchIf, rule);
    EXPECT_EQ(oxms, chunk(1, 62, "ffff 76 fc") + chunk(63, 124, "ffff 76 fc") +
                        chunk(125, 130, "ffff 76 1c"));
    EXPECT_EQ(oxms.size(), 544u);
    EXPECT_EQ(OFP_encodeoxm_GetBatchIfOxmLen(130), 544u);
}

TEST(OxmPrivate, TheMaskBitOfBatchInterfacesShowsInEveryHeader)
{
    Rule rule;
    rule.interfaces(63).masks({59});
    const Bytes oxms = encoded(OFP_encodeoxm_PrivBatchIf, rule);
    EXPECT_EQ(oxms.slice(0, 4), hex("ffff 77 f8")); // 252 modulo 128, twice
    EXPECT_EQ(oxms.slice(256, 4), hex("ffff 77 10"));
}

TEST(OxmPrivate, AnInterfaceCountWithoutArrayIsNothing)
{
    Rule rule;
    rule.has({59});
    rule.item.match.batch_if = {.count = 5, .if_index = nullptr};
    EXPECT_EQ(encoded(OFP_encodeoxm_PrivBatchIf, rule), Bytes());
}
