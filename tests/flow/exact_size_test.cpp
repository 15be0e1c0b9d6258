#include "flow/exact_size.h"

#include <random>

#include <gtest/gtest.h>

#include "flow/guarded.h"
#include "flow/oxm_size.h"
#include "flow/rules.h"

using namespace test;

namespace {

// Rules of every shape, reproducibly.
class RandomRules {
public:
    void add_to(Rules &rules)
    {
        Rule &rule = rules.add();
        // Few fields or many, unassigned bits among them.
        rule.item.match.fields = one_in(3) ? random_() : random_() & random_() & random_();
        rule.mask.masked = one_in(2) ? random_() : 0;
        add_interfaces(rule);
        for (uint32_t left = below(4); left > 0; --left)
            add_experimenter(rule);
        for (uint32_t left = below(5); left > 0; --left)
            add_action(rule);
    }
    uint32_t below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }

private:
    bool one_in(uint32_t count) { return below(count) == 0; }

    void add_interfaces(Rule &rule)
    {
        const bool takes_part = (rule.item.match.fields >> OFP_FIELD_BATCH_IF & 1) != 0;
        rule.interfaces(below(200));
        if (!takes_part)
            rule.item.match.fields &= ~(uint64_t{1} << OFP_FIELD_BATCH_IF);
    }
    void add_experimenter(Rule &rule)
    {
        Bytes data(below(20));
        for (uint8_t &byte : data)
            byte = static_cast<uint8_t>(below(3));
        if (one_in(2) && data.size() >= 4)
            std::fill_n(data.begin() + 1, 3, uint8_t{0}); // a kind of 0 to 2
        const uint32_t type = one_in(3) ? 38 : below(70);
        rule.experimenter(type, data);
    }
    void add_action(Rule &rule)
    {
        const uint32_t types[] = {OFP_ACTION_OUTPUT, OFP_ACTION_GROUP, OFP_ACTION_EXPERIMENTER, 17};
        rule.action(types[below(4)], {below(6), below(6), 3, 4});
    }

    std::mt19937_64 random_{20240611};
};

uint64_t exact_size(Rules &rules)
{
    uint64_t size = ofp::batch_head_size;
    const OfpFlowItem *items = rules.items();
    for (uint32_t i = 0; i < rules.count(); ++i)
        size += ofp::rule_size(items[i]);
    return size;
}

// The TLVs and messages of a datagram fill it exactly.
void expect_whole(const Bytes &datagram, uint32_t rules)
{
    size_t at = 0;
    while (at + 4 <= datagram.size())
        at += 4u + datagram.u16(at + 2);
    EXPECT_EQ(at, datagram.size());
    const std::vector<Bytes> messages = openflow_messages(datagram);
    EXPECT_EQ(messages.size(), 2u * rules);
    for (const Bytes &message : messages)
        EXPECT_EQ(message.u16(2), message.size());
    for (size_t i = 0; i < messages.size(); i += 2) {
        const size_t match = 48 + (messages[i].u16(50) + 7u) / 8 * 8;
        EXPECT_EQ(messages[i].u16(match), 3) << "the instruction follows the match";
        EXPECT_EQ(match + messages[i].u16(match + 2), messages[i].size());
    }
}

} // namespace

TEST(ExactSize, IsWhatEncodingWritesAndNeverExceeds)
{
    RandomRules random;
    Guarded buffer(65536);
    for (int round = 0; round < 3000 && !testing::Test::HasFailure(); ++round) {
        Rules rules;
        for (uint32_t left = 1 + random.below(12); left > 0; --left)
            random.add_to(rules);
        const uint64_t size = exact_size(rules);
        ASSERT_LE(size, 65536u);
        uint8_t *out = buffer.last(size);
        const OfpFlowRuleCtx ctx = {.client_id = 4096, .table_id = 200};
        const uint8_t head[16] = {};
        platform = Platform();
        ASSERT_EQ(OFP_encode_FlowRule(&ctx, head, rules.count(), rules.items(), size, out), size);
        expect_whole(bytes_of(out, size), rules.count());
    }
}

TEST(ExactSize, AMatchFitsItsSizeUnlessAStringTrailsIt)
{
    RandomRules random;
    Guarded buffer(65536);
    for (int round = 0; round < 3000; ++round) {
        Rules rules;
        random.add_to(rules);
        Rule &rule = rules[0];
        rule.experimenter(47, hex("0201")); // behind any string
        const uint64_t size = ofp::match_size(rule.item.match);
        ASSERT_EQ(OFP_encodeoxm_Fill(&rule.item.match, size, buffer.last(size)), size);
    }
}

TEST(ExactSize, OfKnownRules)
{
    Rule empty, output(7), string;
    EXPECT_EQ(ofp::rule_size(empty.item), 4u + 64 + 12);
    EXPECT_EQ(ofp::rule_size(output.output(5).item), 4u + 88 + 12);
    // The counted size leaves the string out.
    EXPECT_EQ(ofp::rule_size(string.string(1000).item), 4u + 48 + 1016 + 8 + 12);
    EXPECT_EQ(OFP_encode_GetRuleMsgLen(1, &string.item), 28u + 80);
}
