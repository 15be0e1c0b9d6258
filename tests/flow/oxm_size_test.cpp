#include "flow/oxm_size.h"

#include <gtest/gtest.h>

#include "flow/rules.h"

using namespace test;

namespace {

uint64_t counted(const Rule &rule) { return OFP_encodeoxm_GetOxmLen(&rule.item.match); }
uint64_t padded(uint64_t size) { return (size + 7) / 8 * 8; }

uint64_t written(const Rule &rule)
{
    Bytes out(50000);
    return OFP_encodeoxm_Fill(&rule.item.match, out.size(), out.data());
}

// Bytes counted for each field bit: plain and masked.
struct Row {
    unsigned plain;
    unsigned masked;
};
const Row rows[64] = {
    {8, 12},  {8, 12},  {12, 20},  {10, 16}, {10, 16}, {6, 8}, {6, 8},  {5, 6},   // 0
    {5, 6},   {5, 6},   {5, 6},    {8, 12},  {8, 12},  {6, 8}, {6, 8},  {6, 8},   // 8
    {6, 8},   {6, 8},   {6, 8},    {5, 6},   {5, 6},   {6, 8}, {8, 12}, {8, 12},  // 16
    {10, 16}, {10, 16}, {20, 36},  {20, 36}, {8, 12},  {5, 6}, {5, 6},  {20, 36}, // 24
    {10, 16}, {10, 16}, {8, 12},   {5, 6},   {5, 6},   {8, 8}, {0, 0},  {16, 16}, // 32
    {4, 4},   {4, 4},   {8, 8},    {10, 10}, {8, 8},   {4, 4}, {4, 4},  {6, 6},   // 40
    {8, 8},   {10, 10}, {6, 6},    {36, 36}, {8, 8},   {4, 4}, {8, 8},  {8, 8},   // 48
    {8, 8},   {8, 8},   {84, 164}, {0, 0},   {6, 8},   {5, 6}, {8, 12}, {6, 8},   // 56
};

// Ten items, enough of them that slot 38 exists, or one less.
void fill_list(Rule &rule, unsigned items)
{
    for (unsigned i = 0; i < items; ++i)
        rule.experimenter(0, {});
}

} // namespace

TEST(OxmSize, CountsEachFieldBit)
{
    for (unsigned bit = 0; bit < 64; ++bit) {
        Rule rule;
        rule.has({bit});
        EXPECT_EQ(counted(rule), padded(4 + rows[bit].plain)) << bit;
        rule.masks({bit});
        EXPECT_EQ(counted(rule), padded(4 + rows[bit].masked)) << bit;
    }
}

TEST(OxmSize, CountsAllFieldBitsTogether)
{
    Rule rule;
    rule.item.match.fields = ~uint64_t{0};
    uint64_t plain = 4, masked = 4;
    for (const Row &row : rows) {
        plain += row.plain;
        masked += row.masked;
    }
    EXPECT_EQ(counted(rule), padded(plain));
    rule.mask.masked = ~uint64_t{0};
    EXPECT_EQ(counted(rule), padded(masked));
}

TEST(OxmSize, AMatchWithoutFieldsCounts8WhateverElseItHolds)
{
    Rule rule;
    rule.string(100);
    EXPECT_EQ(counted(rule), 8u);
}

TEST(OxmSize, ExperimenterMatchesAreNotCounted)
{
    Rule rule(1);
    rule.string(100);
    EXPECT_EQ(counted(rule), 16u);
}

TEST(OxmSize, TheTunnelCountsByTheStringInSlot38)
{
    Rule with, other_kind, shorter, no_word;
    for (Rule *rule : {&with, &other_kind, &shorter, &no_word})
        rule->has({38});
    fill_list(with, 38);
    with.experimenter(0, hex("01000000"));
    EXPECT_EQ(counted(with), padded(4 + 40));
    fill_list(other_kind, 38);
    other_kind.experimenter(38, hex("02000000"));
    EXPECT_EQ(counted(other_kind), 8u);
    fill_list(no_word, 38);
    no_word.experimenter(38, hex("01"));
    EXPECT_EQ(counted(no_word), 8u);
    // A list of 38 items ends before that slot.
    fill_list(shorter, 38);
    EXPECT_EQ(counted(shorter), 8u);
    with.item.match.fields = 1;
    EXPECT_EQ(counted(with), 16u) << "the tunnel does not take part";
}

TEST(OxmSize, SlotThatIsNullCountsNothing)
{
    Rule rule;
    rule.has({38});
    fill_list(rule, 38);
    rule.experimenter(nullptr);
    EXPECT_EQ(counted(rule), 8u);
    rule.item.match.exp_match.items = nullptr;
    EXPECT_EQ(counted(rule), 8u);
}

TEST(OxmSize, BatchInterfacesByCount)
{
    const std::pair<uint32_t, uint64_t> cases[] = {
        {0, 0}, {1, 12}, {61, 252}, {62, 256}, {63, 268}, {124, 512}, {130, 544}, {10000, 41296}};
    for (auto [count, size] : cases) {
        EXPECT_EQ(OFP_encodeoxm_GetBatchIfOxmLen(count), size) << count;
        Rule rule;
        rule.interfaces(count);
        EXPECT_EQ(counted(rule), padded(4 + size)) << count;
        EXPECT_EQ(written(rule), padded(4 + size)) << count;
    }
    EXPECT_EQ(OFP_encodeoxm_GetBatchIfOxmLen(0xffffffff), 0xffffffffull / 62 * 256 + 20);
}

TEST(OxmSize, AgreesWithWhatIsWrittenButForThreeFields)
{
    const uint64_t deviating = 1ull << 37 | 1ull << 38 | 1ull << 39;
    for (unsigned bit = 0; bit < 64; ++bit) {
        if (bit >= 37 && bit < 58)
            continue;
        Rule rule;
        rule.has({bit});
        EXPECT_EQ(counted(rule), written(rule)) << bit;
        if (bit >= 58 && bit <= 62)
            continue; // a mask that is announced only
        rule.masks({bit});
        EXPECT_EQ(counted(rule), written(rule)) << bit;
    }
    Rule rule;
    rule.item.match.fields = deviating;
    EXPECT_EQ(counted(rule), padded(4 + 8 + 0 + 16));
    EXPECT_EQ(written(rule), padded(4 + 8 + 12 + 6));
    rule.mask.masked = deviating;
    EXPECT_EQ(written(rule), padded(4 + 12 + 20 + 8));
}

TEST(OxmSize, ForetellsWhatIsWritten)
{
    for (unsigned bit = 0; bit < 64; ++bit) {
        Rule rule;
        rule.interfaces(70).string(9);
        rule.item.match.fields = 1ull << bit;
        EXPECT_EQ(ofp::match_size(rule.item.match), written(rule)) << bit;
        rule.masks({bit});
        EXPECT_EQ(ofp::match_size(rule.item.match), written(rule)) << bit;
    }
}

TEST(OxmSize, NamesTheFieldsThatSkipTheirMask)
{
    const uint64_t maskless = 0x0000001fe03807a3; // 0, 1, 5, 7 to 10, 19 to 21, 29 to 36
    for (unsigned bit = 0; bit < 64; ++bit) {
        Rule rule;
        rule.masks({bit});
        EXPECT_FALSE(ofp::leaves_gaps(rule.item.match)) << bit;
        rule.has({bit});
        EXPECT_EQ(ofp::leaves_gaps(rule.item.match), (maskless >> bit & 1) != 0) << bit;
    }
}

TEST(OxmSize, AMatchWithoutMaskBlockHasNoMasks)
{
    Rule rule(1);
    rule.item.match.mask = nullptr;
    EXPECT_EQ(counted(rule), 16u);
    EXPECT_EQ(ofp::match_size(rule.item.match), 16u);
}
