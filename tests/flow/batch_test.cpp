#include "flow/batch.h"

#include <gtest/gtest.h>

#include "flow/rules.h"

using namespace test;

namespace {

constexpr uint64_t most = OFP_LARGE_DATAGRAM_SIZE;

ofp::Batch cut(Rules &rules) { return ofp::cut_batch(rules.count(), rules.items()); }

// A rule of a counted size: 108 bytes alone, 16 for each output.
void add_outputs(Rules &rules, uint32_t outputs)
{
    Rule &rule = rules.add();
    for (uint32_t i = 0; i < outputs; ++i)
        rule.output(1);
}

} // namespace

TEST(Batch, HoldsUpToTwelveRules)
{
    const std::pair<uint32_t, uint32_t> cases[] = {{1, 1}, {11, 11}, {12, 12}, {13, 12}, {25, 12}};
    for (auto [count, taken] : cases) {
        Rules rules(count);
        EXPECT_EQ(cut(rules).count, taken) << count;
    }
}

TEST(Batch, KnowsTheSizeOfItsDatagram)
{
    Rules rules(12);
    EXPECT_EQ(cut(rules).size, 28u + 12 * (4 + 72 + 12));
}

TEST(Batch, EndsBeforeTheRuleThatExceedsTheCountedSize)
{
    // 12 rules of 4096 bytes are 49152; another 16 bytes are too many.
    Rules whole, exceeding;
    for (int i = 0; i < 12; ++i)
        add_outputs(whole, (4096 - 108 - 4) / 16); // 4092: counted sizes are 12 modulo 16
    EXPECT_EQ(cut(whole).count, 12u);
    for (int i = 0; i < 12; ++i)
        add_outputs(exceeding, (4096 - 108 - 4) / 16 + 1);
    EXPECT_EQ(cut(exceeding).count, 11u);
}

TEST(Batch, CountsTheHeadOfEveryRule)
{
    // Sizes of 24572 and 24588 make 49160 with a head each, 49132 with one.
    Rules rules;
    add_outputs(rules, (24572 - 108) / 16);
    add_outputs(rules, (24588 - 108) / 16);
    EXPECT_EQ(OFP_encode_GetRuleMsgLen(1, rules.items()), 24572u);
    EXPECT_EQ(cut(rules).count, 1u);
}

TEST(Batch, ARuleBeyondTheCountedSizeIsRefused)
{
    Rules rules;
    add_outputs(rules, (49152 - 108) / 16 + 1);
    add_outputs(rules, 1);
    EXPECT_EQ(cut(rules).count, 0u);
}

TEST(Batch, ARuleThatNoDatagramHoldsRefusesItsBatch)
{
    constexpr uint16_t longest = most - 28 - 4 - 48 - 20 - 8 - 12 - 4;
    Rules alone, second;
    alone.add(1).string(longest);
    EXPECT_EQ(cut(alone).count, 1u);
    EXPECT_EQ(cut(alone).size, most - 4); // datagrams of rules are 4 modulo 8
    second.add(1);
    second.add(1).string(longest + 1);
    EXPECT_EQ(cut(second).count, 0u);
}

TEST(Batch, RulesThatTogetherNeedMoreThanADatagramAreSplit)
{
    Rules rules;
    for (uint32_t i = 0; i < 12; ++i)
        rules.add(i).string(5000);
    const ofp::Batch batch = cut(rules);
    EXPECT_EQ(batch.count, 9u); // of 5096 bytes each
    EXPECT_LE(batch.size, most);
}

TEST(Batch, ASplitBatchEndsAtTheFirstRuleThatDoesNotFit)
{
    Rules rules;
    rules.add(1).string(30000);
    rules.add(2).string(30000);
    rules.add(3);
    EXPECT_EQ(cut(rules).count, 1u);
}

TEST(Batch, KnowsWhetherBytesAreSkipped)
{
    Rules rules(3);
    EXPECT_FALSE(cut(rules).has_gaps);
    rules[2].masks({OFP_FIELD_IN_PORT});
    EXPECT_TRUE(cut(rules).has_gaps);
}
