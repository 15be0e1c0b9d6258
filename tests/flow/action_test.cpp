#include "flow/action.h"

#include <gtest/gtest.h>

#include "flow/rules.h"

using namespace test;

namespace {

const OfpAction &first_action(const Rule &rule) { return *rule.item.actions[0]; }

// The action as it is written; its size is the one foretold.
Bytes written(const Rule &rule)
{
    Bytes out(40, 0xee);
    const uint64_t size = ofp::put_action(first_action(rule), out.data());
    EXPECT_EQ(ofp::action_size(first_action(rule)), size);
    EXPECT_EQ(out.slice(size), Bytes(40 - size, 0xee));
    out.resize(size);
    return out;
}

uint64_t counted(const Rule &rule) { return ofp::counted_action_size(first_action(rule)); }

} // namespace

TEST(Action, OutputHasNoMaxLength)
{
    Rule rule;
    rule.output(5);
    EXPECT_EQ(written(rule), hex("0000 0010 00000005 0000 000000000000"));
    EXPECT_EQ(counted(rule), 16u);
}

TEST(Action, OutputToAReservedPort)
{
    Rule rule;
    rule.action(OFP_ACTION_OUTPUT, {OFP_PORT_RESERVED, 0xfffffffd});
    EXPECT_EQ(written(rule), hex("0000 0010 fffffffd 0000 000000000000"));
}

TEST(Action, Group)
{
    Rule rule;
    rule.group(9);
    EXPECT_EQ(written(rule), hex("0016 0008 00000009"));
    EXPECT_EQ(counted(rule), 8u);
}

TEST(Action, ExperimenterWithTwoValues)
{
    Rule rule;
    rule.action(OFP_ACTION_EXPERIMENTER, {0, 0, 0x01020304, 0x05060708});
    EXPECT_EQ(written(rule), hex("ffff 0018 00000fe2 00000000 01020304 05060708 00000000"));
    EXPECT_EQ(counted(rule), 24u);
}

TEST(Action, ExperimenterWithOneValue)
{
    for (uint32_t subtype : {1u, 2u}) {
        Rule rule;
        rule.action(OFP_ACTION_EXPERIMENTER, {subtype, subtype, 0x01020304});
        EXPECT_EQ(written(rule), hex("ffff 0010 00000fe2") + be32(subtype) + hex("01020304"));
        EXPECT_EQ(counted(rule), 16u);
    }
}

TEST(Action, ExperimenterWithAMacAddress)
{
    Rule rule;
    rule.action(OFP_ACTION_EXPERIMENTER, {3, 3, 0x33221100, 0x5544}); // 00:11:22:33:44:55
    EXPECT_EQ(written(rule), hex("ffff 0018 00000fe2 00000003 001122334455 000000000000"));
    EXPECT_EQ(counted(rule), 24u);
}

TEST(Action, AnUnknownSubtypeIsNothing)
{
    for (uint32_t subtype : {4u, 7u, 0xffffffffu}) {
        Rule rule;
        rule.action(OFP_ACTION_EXPERIMENTER, {subtype, subtype, 0, 0});
        EXPECT_EQ(written(rule), Bytes());
        EXPECT_EQ(counted(rule), 0u);
    }
}

TEST(Action, CountingReadsTheFirstWordAndWritingTheSecond)
{
    Rule rule;
    rule.action(OFP_ACTION_EXPERIMENTER, {0, 1, 2, 0});
    EXPECT_EQ(written(rule).size(), 16u);
    EXPECT_EQ(counted(rule), 24u);
    Rule unknown;
    unknown.action(OFP_ACTION_EXPERIMENTER, {7, 3, 0, 0});
    EXPECT_EQ(written(unknown).size(), 24u);
    EXPECT_EQ(counted(unknown), 0u);
}

TEST(Action, AnyOtherTypeIsWrittenAsExperimenterAndCountsNothing)
{
    Rule rule;
    rule.action(17, {0, 2, 5});
    EXPECT_EQ(written(rule), hex("ffff 0010 00000fe2 00000002 00000005"));
    EXPECT_EQ(counted(rule), 0u);
}
