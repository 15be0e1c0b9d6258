#include <gtest/gtest.h>

#include "flow/rules.h"

using namespace test;

namespace {

constexpr uint32_t ok = OFP_RC_OK;
constexpr uint32_t refused = OFP_RC_FAILED;

uint32_t check(const Rule &rule) { return OFP_encodeoxm_CheckMatch(&rule.item.match); }

// Sets a value of the match, of its IPv6 block or of its masks.
using Setter = void (*)(Rule &, uint32_t);

struct Row {
    unsigned bit;
    uint32_t greatest;
    Setter value;
    Setter mask; // null: the field has none
};

// clang-format off
const Row rows[] = {
    {6, 4095,      [](Rule &r, uint32_t v) { r.item.match.vlan_vid = static_cast<uint16_t>(v); },
                   [](Rule &r, uint32_t v) { r.mask.vlan_vid = static_cast<uint16_t>(v); }},
    {7, 7,         [](Rule &r, uint32_t v) { r.item.match.vlan_pcp = static_cast<uint8_t>(v); }, nullptr},
    {8, 63,        [](Rule &r, uint32_t v) { r.item.match.ip_dscp = static_cast<uint8_t>(v); }, nullptr},
    {9, 3,         [](Rule &r, uint32_t v) { r.item.match.ip_ecn = static_cast<uint8_t>(v); }, nullptr},
    {28, 0xfffff,  [](Rule &r, uint32_t v) { r.ipv6.ipv6_flabel = v; },
                   [](Rule &r, uint32_t v) { r.mask.ipv6_flabel = v; }},
    {34, 0xfffff,  [](Rule &r, uint32_t v) { r.item.match.mpls_label = v; }, nullptr},
    {35, 7,        [](Rule &r, uint32_t v) { r.item.match.mpls_tc = static_cast<uint8_t>(v); }, nullptr},
    {36, 1,        [](Rule &r, uint32_t v) { r.item.match.mpls_bos = static_cast<uint8_t>(v); }, nullptr},
    {37, 0xffffff, [](Rule &r, uint32_t v) { r.item.match.pbb_isid = v; },
                   [](Rule &r, uint32_t v) { r.mask.pbb_isid = v; }},
    {39, 511,      [](Rule &r, uint32_t v) { r.ipv6.ipv6_exthdr = static_cast<uint16_t>(v); },
                   [](Rule &r, uint32_t v) { r.mask.ipv6_exthdr = static_cast<uint16_t>(v); }},
    {63, 4095,     [](Rule &r, uint32_t v) { r.item.match.cvlan_vid = static_cast<uint16_t>(v); },
                   [](Rule &r, uint32_t v) { r.mask.cvlan_vid = static_cast<uint16_t>(v); }},
};
// clang-format on

} // namespace

TEST(OxmCheck, ValuesHaveALimitWhileTheirFieldTakesPart)
{
    for (const Row &row : rows) {
        Rule rule;
        row.value(rule, row.greatest + 1);
        EXPECT_EQ(check(rule), ok) << row.bit << ": the field does not take part";
        rule.has({row.bit});
        EXPECT_EQ(check(rule), refused) << row.bit;
        row.value(rule, row.greatest);
        EXPECT_EQ(check(rule), ok) << row.bit;
    }
}

TEST(OxmCheck, MasksHaveALimitAlsoWhenTheirFieldDoesNotTakePart)
{
    for (const Row &row : rows) {
        if (row.mask == nullptr)
            continue;
        Rule rule;
        row.mask(rule, row.greatest + 1);
        EXPECT_EQ(check(rule), ok) << row.bit << ": the mask bit is clear";
        rule.masks({row.bit});
        EXPECT_EQ(check(rule), refused) << row.bit;
        row.mask(rule, row.greatest);
        EXPECT_EQ(check(rule), ok) << row.bit;
    }
}

TEST(OxmCheck, OtherFieldsHaveNoLimit)
{
    Rule rule;
    uint64_t limited = 1ull << 59;
    for (const Row &row : rows)
        limited |= 1ull << row.bit;
    rule.item.match.fields = ~limited;
    rule.mask.masked = ~uint64_t{0};
    rule.item.match.in_port = 0xffffffff;
    rule.item.match.ip_proto = 0xff;
    EXPECT_EQ(check(rule), ok);
}

TEST(OxmCheck, NeedsAMaskBlock)
{
    Rule rule;
    rule.item.match.mask = nullptr;
    EXPECT_EQ(check(rule), refused);
}

TEST(OxmCheck, Ipv6FieldsNeedTheirBlock)
{
    for (unsigned bit = 0; bit < 64; ++bit) {
        if (bit == 59)
            continue;
        Rule rule;
        rule.has({bit});
        rule.item.match.ipv6 = nullptr;
        const bool needs_block = (bit >= 26 && bit <= 33) || bit == 39;
        EXPECT_EQ(check(rule), needs_block ? refused : ok) << bit;
    }
}

TEST(OxmCheck, AMaskBitOfAnIpv6FieldNeedsNoBlock)
{
    Rule rule;
    rule.masks({28, 39});
    rule.item.match.ipv6 = nullptr;
    EXPECT_EQ(check(rule), ok);
}

TEST(OxmCheck, TheReservedWordIsZero)
{
    Rule rule;
    rule.item.match.reserved = uint64_t{1} << 63;
    EXPECT_EQ(check(rule), refused);
}

TEST(OxmCheck, BatchInterfacesAreOneToTenThousand)
{
    const std::pair<uint32_t, uint32_t> cases[] = {
        {0, refused}, {1, ok}, {10000, ok}, {10001, refused}};
    for (auto [count, code] : cases) {
        Rule rule;
        rule.has({59});
        rule.item.match.batch_if.count = count;
        EXPECT_EQ(check(rule), code) << count;
    }
    Rule rule;
    rule.item.match.batch_if.count = 10001;
    EXPECT_EQ(check(rule), ok) << "the field does not take part";
}

TEST(OxmCheck, AnExperimenterCountNeedsAList)
{
    Rule rule;
    rule.item.match.exp_match.count = 1;
    EXPECT_EQ(check(rule), refused);
    rule.item.match.exp_match.count = 0;
    EXPECT_EQ(check(rule), ok);
}

TEST(OxmCheck, TheFlowLabelPassesAndIsEncoded)
{
    Rule rule;
    rule.has({28});
    rule.ipv6.ipv6_flabel = 0x100000;
    EXPECT_EQ(check(rule), refused);
    rule.ipv6.ipv6_flabel = 0x12345;
    EXPECT_EQ(check(rule), ok);
    Bytes out(8);
    EXPECT_EQ(OFP_encodeoxm_Ipv6Flabel(&rule.item.match, 8, out.data()), 8u);
    EXPECT_EQ(out.slice(4), hex("00012345"));
}
